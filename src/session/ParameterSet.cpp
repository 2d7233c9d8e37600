#include "session/ParameterSet.h"

#include <cstdio>
#include <stdexcept>

#include "core/Database.h"
#include "core/Text.h"
#include "session/ValueText.h"

namespace session {

namespace {

ParameterRow RowOf(const core::Row& row, bool isModbus) {
    ParameterRow out;
    out.Description = core::Trim(row.Text("description"));
    out.startaddress = core::Trim(row.Text("startaddress"));
    out.type = core::Trim(row.Text("type"));
    out.unit = core::Trim(row.Text("unit"));
    out.lastvalue = row.Number("lastvalue");
    out.readat = core::MomentOf(row.Text("readat"));
    out.quality = core::QualityOf(row.Text("quality"));
    out.MSD = isModbus ? static_cast<std::int64_t>(core::Val(out.startaddress)) : row.Long("MSD");
    out.kind = core::RowKindOf(out.type);
    return out;
}

}  // namespace

void ParameterSet::Load(core::Database& dbconn, std::int64_t locationID, int streamno, bool isModbus) {
    std::array<Rows, groupCount> groups;
    for (const core::Row& row :
         dbconn.Query("select * from configdata_detail where locationId = ? and streamNo = ? order by aga, srno",
                      {locationID, streamno})) {
        const auto group = GroupOf(core::Trim(row.Text("aga")));
        if (!group) {
            continue;
        }
        if (groups[*group].size() == parameterGroups[*group].capacity) {
            throw std::length_error("More than " + std::to_string(parameterGroups[*group].capacity) + " rows of " +
                                    std::string(parameterGroups[*group].aga) + " [" + std::to_string(locationID) + "]");
        }
        groups[*group].push_back(RowOf(row, isModbus));
    }
    groups_ = std::move(groups);
}

std::optional<RowPlace> ParameterSet::Find(std::string_view aga, std::string_view description) const {
    const auto group = GroupOf(aga);
    for (std::size_t row = 0; group && row < groups_[*group].size(); ++row) {
        if (core::SameText(groups_[*group][row].Description, description)) {
            return RowPlace{*group, row};
        }
    }
    return std::nullopt;
}

std::optional<RowPlace> ParameterSet::Find(std::string_view description) const {
    for (const ParameterGroup& group : parameterGroups) {
        if (const auto place = Find(group.aga, description)) {
            return place;
        }
    }
    return std::nullopt;
}

void TakeValue(ParameterRow& row, double value, const core::DateTime& at, core::Quality quality) {
    row.changed = row.read && row.lastvalue != value;
    row.lastvalue = value;
    row.readat = at;
    row.quality = quality;
    row.read = true;
    row.missedPolls = 0;
    row.pending = false;
}

bool HasFigure(const ParameterRow& row) {
    const bool noNumber = row.quality == core::Quality::Refused || row.quality == core::Quality::OutOfRange;
    return row.pending || (row.readat && !noNumber);
}

std::string ValueCell(const ParameterRow& row, bool isCW) {
    if (!HasFigure(row)) {
        return "-";
    }
    if (row.kind == core::ValueKind::Logical) {
        return valueText(isCW, row.Description, row.lastvalue);
    }
    return core::FixedText(row.lastvalue, 6);
}

}  // namespace session
