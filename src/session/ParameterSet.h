#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Clock.h"
#include "core/Kinds.h"
#include "core/Quality.h"
#include "session/ParameterGroups.h"

namespace core {
class Database;
}

namespace session {

// A row of the station's map in hand.
struct ParameterRow {
    std::string Description;
    std::string startaddress;  // "54-83", or a register or coil in decimal, from 1
    std::string type;          // as the map names it: "Float", "Boolean", "Integer", "Coil(Boolean)"
    std::string unit;
    double lastvalue = 0;
    std::int64_t MSD = 0;  // BSAP: the station's address of the signal; Modbus: the number of startaddress
    core::ValueKind kind = core::ValueKind::Float;

    std::optional<core::DateTime> readat;  // when lastvalue was read; nothing: never
    std::optional<core::Quality> quality;  // how its last reading ended; nothing: never read
    bool read = false;                     // it was read in this session
    int missedPolls = 0;                   // polls of this session since then that did not bring it
    bool pending = false;                  // a value was entered that the station has not yet been seen to have
    bool changed = false;                  // the last poll brought another value than the one before
};

// Where a row stands in a set: its group of parameterGroups and its place there, from 0.
struct RowPlace {
    std::size_t group = 0;
    std::size_t row = 0;

    bool operator==(const RowPlace&) const = default;
};

// The copy of a station's rows that a session works on: of one stream, sorted into their groups. A row's place in its
// group never changes while the set stands, so screens refresh by place and search for nothing.
class ParameterSet {
  public:
    using Rows = std::vector<ParameterRow>;

    // Reads the rows of a stream in the order of their numbers. Rows of a group that no grid shows are left out. Throws
    // DatabaseError, and std::length_error when a group has more rows than it holds: a fault of the map.
    void Load(core::Database& dbconn, std::int64_t locationID, int streamno, bool isModbus);

    // The rows of a group of parameterGroups.
    Rows& Of(std::size_t group) { return groups_[group]; }
    const Rows& Of(std::size_t group) const { return groups_[group]; }

    ParameterRow& At(const RowPlace& place) { return groups_[place.group].at(place.row); }
    const ParameterRow& At(const RowPlace& place) const { return groups_[place.group].at(place.row); }

    // The first row of a description, in one group or in all of them; nothing when there is none. Case does not count.
    std::optional<RowPlace> Find(std::string_view aga, std::string_view description) const;
    std::optional<RowPlace> Find(std::string_view description) const;

    // Calls `work` with every row of every group.
    template <typename Work>
    void ForEach(const Work& work) {
        for (Rows& rows : groups_) {
            for (ParameterRow& row : rows) {
                work(row);
            }
        }
    }

  private:
    std::array<Rows, groupCount> groups_;
};

// A value that the station gave: the row has it, and no longer shows an entered one.
void TakeValue(ParameterRow& row, double value, const core::DateTime& at, core::Quality quality = core::Quality::Good);

// Whether a figure may be shown of a row: not of one that was never read, was refused, or has no number of the wire.
bool HasFigure(const ParameterRow& row);

// What the Value column shows of a row: the word of a switch, the number with six decimals, or a dash.
std::string ValueCell(const ParameterRow& row, bool isCW);

}  // namespace session
