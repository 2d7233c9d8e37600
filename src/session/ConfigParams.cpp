#include "session/ConfigParams.h"

#include <stdexcept>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Logs.h"
#include "core/Station.h"
#include "core/Text.h"
#include "session/ParameterSet.h"
#include "session/ValueText.h"

namespace session {

namespace {

constexpr const char* lineEnd = "\r\n";

std::string Value(const core::Row& row, bool isCW) {
    if (KindOf(row.Text("type")) == DataKind::Logical) {
        return valueText(isCW, row.Text("description"), row.Number("lastvalue"));
    }
    return core::Trim(core::NumberText(row.Number("lastvalue")) + " " + row.Text("unit"));
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
    for (const core::Row& row :
         dbconn.Query("select distinct description,locationID,lastvalue,CFP,type,unit from ConfigData_Detail where "
                      "streamNo=? and locationID = ? order by description",
                      {streamno, station})) {
        if (row.Bool("CFP")) {
            list.text += "\t" + row.Text("description") + " = " + Value(row, master->isCW) + lineEnd;
        }
    }
    list.written = logs.WriteConfParams(list.text);
    return list;
}

}  // namespace session
