#include "session/WriteLevels.h"

#include "core/Text.h"
#include "core/Users.h"
#include "stations/TemplateQueries.h"

namespace session {

namespace {

// The templates give the highest level to just those parameters that a station measures or counts. Totals are never
// written, whatever level a template of older make gives them.
constexpr int measuredLevel = 6;
constexpr const char* totals = "TOTRND";

struct Levels {
    int RS = 0;
    int WS = 0;
    bool measured = false;
};

std::optional<Levels> LevelsOf(core::Database& dbconn, const core::Station& station, int streamno,
                               const std::string& description) {
    const std::string table = station.isCW ? stations::CwTable(station.ModelText(streamno)) : "Parameter";
    if (table.empty()) {
        return std::nullopt;
    }
    const auto row =
        dbconn.First("select RS,WS,description,aga from " + table + " where description = ?", {description});
    if (!row) {
        return std::nullopt;
    }
    const auto WS = static_cast<int>(row->Long("WS"));
    return Levels{static_cast<int>(row->Long("RS")), WS,
                  WS >= measuredLevel || core::SameText(core::Trim(row->Text("aga")), totals)};
}

}  // namespace

bool MayWriteParameter(core::Database& dbconn, const core::Station& station, int streamno,
                       const std::string& description, const std::string& user) {
    const auto levels = LevelsOf(dbconn, station, streamno, description);
    if (!levels || (levels->measured && !core::IsSuperUser(user))) {
        return false;
    }
    return core::CheckWriteLevel(dbconn, description, levels->RS, levels->WS, user) == core::AccessLevel::ReadWrite;
}

bool IsMeasuredSignal(core::Database& dbconn, const core::Station& station, std::int64_t MSD) {
    for (const core::Row& row :
         dbconn.Query("select description, streamNo from configdata_detail where locationID = ? and MSD = ?",
                      {station.locationID, MSD})) {
        const auto levels = LevelsOf(dbconn, station, static_cast<int>(row.Long("streamNo")), row.Text("description"));
        if (levels && levels->measured) {
            return true;
        }
    }
    return false;
}

}  // namespace session
