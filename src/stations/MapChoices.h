#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "core/Kinds.h"

namespace stations {

// How many registers a value takes on a map made by Set Register. A template's register n starts at
// n * registerCount - registerOffset, so maps stay free of overlaps; coils keep their number.
struct RegisterSize {
    int registerCount = 2;
    int registerOffset = 1;
    std::string registerTypeName = "Float";
};

inline RegisterSize TypeInteger() {
    return {1, 0, "Integer"};
}
inline RegisterSize TypeFloatOneRegister() {
    return {1, 0, "Float"};
}
inline RegisterSize TypeFloatTwoRegisters() {
    return {2, 1, "Float"};
}

// What fixes the parameter rows of a station, as the station form holds it.
struct MapChoices {
    std::int64_t locationID = 0;
    int groupno = 1;
    std::string modelno;
    std::optional<core::Protocol> protocol;
    int No_Stream = 1;                  // 1 to 4; only MultiStream models have more than one
    std::array<std::string, 4> stream;  // metering method of each stream: "AGA3", "AGA7", "AGA9", "AGA11"
    bool optAga3 = false;               // the AGA3 family; off: the AGA7 family
    bool isNewStation = true;           // being added; false: an edit
    bool MB_CONFIG = false;             // the operator lays out the registers by hand
    RegisterSize registers;
};

}  // namespace stations
