#include "reports/TotalsReport.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/Station.h"
#include "core/Text.h"

namespace reports {

namespace {

// The columns of tblmail behind the station's name, in their order; a total is found by the same name in the map.
constexpr std::array<const char*, 16> totals = {"Total Volume Accumulated",
                                                "Volume Today",
                                                "Volume Yesterday",
                                                "Volume This Month",
                                                "Volume Last Month",
                                                "Total Un Volume Accumulated",
                                                "Uncorrected Volume Today",
                                                "Uncorrected Volume Yesterday",
                                                "Uncorrected Volume This Month",
                                                "Uncorrected Volume Last Month",
                                                "Flow Time Today",
                                                "Flow Time Yesterday",
                                                "Energy Today",
                                                "Energy Yesterday",
                                                "Energy This Month",
                                                "Energy Last Month"};
constexpr std::size_t withoutEnergy = 12;

// How many of the totals the report of a model shows; nothing for a model that has no such report.
std::optional<std::size_t> TotalsOf(const core::Station& station) {
    if (station.isTeleCorrector) {
        return totals.size();
    }
    const bool teleFlow = core::SameText(station.modelno, "TeleFlow") || core::SameText(station.modelno, "TeleFlow+");
    return station.isCW || teleFlow ? std::optional(withoutEnergy) : std::nullopt;
}

core::Value LastValue(const std::vector<core::Row>& parameters, const char* description) {
    for (const core::Row& parameter : parameters) {
        if (core::SameText(core::Trim(parameter[0].Text()), description)) {
            return parameter[1];
        }
    }
    return std::nullopt;
}

}  // namespace

bool makereport(core::Database& dbconn, std::int64_t location, int streamno) {
    const auto station = core::ReadStation(dbconn, location);
    const auto count = station ? TotalsOf(*station) : std::nullopt;
    if (!count) {
        return false;
    }
    const auto parameters = dbconn.Query(
        "select description, case when quality='good' or (quality is null and lastvalue<>0) then lastvalue end from "
        "configdata_detail where locationID=? and StreamNo=? and aga='TOTRND'",
        {location, streamno});
    std::vector<core::Value> row = {station->consumer};
    for (const char* const total : std::span(totals).first(*count)) {
        row.push_back(LastValue(parameters, total));
    }
    row.resize(1 + totals.size());
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from tblmail");
        dbconn.Execute("insert into tblmail values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)", row);
    });
    return true;
}

}  // namespace reports
