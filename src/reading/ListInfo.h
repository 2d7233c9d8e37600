#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/Database.h"
#include "core/Station.h"

namespace reading {

// The most values of one collection of a stream.
constexpr int maxFloats = 400;
constexpr int maxBooleans = 80;

// What the station's map says of a position of the float or the Boolean list.
struct ListEntry {
    std::string description;  // empty: the map has no such position
    std::string unit;
};

// The names behind the positions of a stream's two lists, from 1; index 0 is not used.
struct ListInfo {
    std::array<ListEntry, maxFloats + 1> floats;
    std::array<ListEntry, maxBooleans + 1> booleans;
};

// The address under which the map of the station keeps position n of its float list: "54-n" for BSAP; for Modbus the
// register in decimal, 2n - 1 where a float takes two registers, n where one register holds it.
std::string FloatAddress(const core::Station& station, int position);

// The same for its Boolean list: "55-n" for BSAP, coil n for Modbus. The prefixes are the same for every stream.
std::string BooleanAddress(const core::Station& station, int position);

// Reads the names of a stream's positions from the station's map. Throws DatabaseError.
ListInfo ReadListInfo(core::Database& dbconn, const core::Station& station, int streamno);

}  // namespace reading
