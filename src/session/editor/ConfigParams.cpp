#include "session/editor/ConfigParams.h"

#include <set>
#include <stdexcept>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Logs.h"
#include "core/Station.h"
#include "core/Text.h"
#include "reading/Claim.h"
#include "session/ParameterSet.h"
#include "session/ValueText.h"

namespace session {

namespace {

constexpr const char* lineEnd = "\r\n";

// "1250.25 SCMH", "1250.25 SCMH (of 08/03/2026 08:00:07)", "- (not read yet)".
std::string Value(const core::Row& row, bool isCW, const core::DateTime& today) {
    const reading::Claim claim = reading::ClaimOf(row, today);
    std::string text = "-";
    if (claim.value && core::RowKindOf(row.Text("type")) == core::ValueKind::Logical) {
        text = valueText(isCW, row.Text("description"), *claim.value);
    } else if (claim.value) {
        text = core::Trim(core::NumberText(*claim.value) + " " + claim.unit);
    }
    return text + (claim.mark.empty() ? "" : " (" + claim.mark + ")");
}

}  // namespace

ConfigParams fetch_params(core::Database& dbconn, core::Logs& logs, const core::Clock& clock, std::int64_t station,
                          int streamno) {
    const auto master = core::ReadStation(dbconn, station);
    if (!master) {
        throw std::runtime_error("This station is no longer in the register");
    }
    const core::DateTime now = clock.Now();
    ConfigParams list;
    list.text = "                 Meter ID :-   " + std::to_string(station) + lineEnd +
                "                 Customer Name :-  " + master->consumer + lineEnd + "                 Time :-      " +
                core::DateText(now) + " " + core::TimeText(now) + lineEnd + "** PARAMETERS **" + lineEnd;
    const core::DateTime midnight{now.year, now.month, now.day, 0, 0, 0};
    std::set<std::string> lines;
    for (const core::Row& row :
         dbconn.Query("select description,lastvalue,CFP,type,unit,quality,readat from ConfigData_Detail where "
                      "streamNo=? and locationID = ? order by description",
                      {streamno, station})) {
        const std::string line = "\t" + row.Text("description") + " = " + Value(row, master->isCW, midnight) + lineEnd;
        if (row.Bool("CFP") && lines.insert(line).second) {
            list.text += line;
        }
    }
    list.written = logs.WriteConfParams(list.text);
    return list;
}

}  // namespace session
