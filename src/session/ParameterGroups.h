#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

// The groups into which a station's parameters are sorted, and the grid that shows each.
namespace session {

struct ParameterGroup {
    std::string_view aga;   // as the rows of configdata_detail name it
    std::string_view grid;  // the grid of the group
    std::size_t capacity;   // the most rows of a stream; more are a fault of the map
};

// In the order in which a row is tried.
inline constexpr auto parameterGroups = std::to_array<ParameterGroup>({
    {"AGA3", "aga3grid", 150},
    {"AGA5", "aga5grid", 150},
    {"AGA7", "aga7grid", 150},
    {"AGA8(Detail)", "aga8Detail", 150},
    {"AGA8(GROSS)", "aga8gridGross", 150},
    {"HEALTH", "healthgrid", 150},
    {"TOTRND", "totrendgrid", 150},
    {"GC", "gcgrid", 150},
    {"FPV", "FPVGrid", 150},
    {"PID", "controlgrid", 150},
    {"NOM", "nomgrid", 150},
    {"KEYPAD", "keypadgrid", 150},
    {"IO", "IOGrid", 150},
    {"DRS", "DRSgrid", 150},
    {"RADIO", "radiogrid", 150},
    {"ALARM", "alarmgrid", 150},
    {"CURVE", "radiogrid", 150},
    {"CONSTANTS", "fcgrid", 50},
    {"MODEM", "modemgrid", 50},
    // What an ultrasonic or a mass meter adds stands with the values of its meter, the elements that set the clock
    // and the values of a Quantum unit by themselves.
    {"AGA9", "aga7grid", 150},
    {"AGA11", "aga7grid", 150},
    {"TIME", "", 50},
    {"Quantum", "floatgrid", 150},
});

constexpr std::size_t groupCount = parameterGroups.size();

// The place of a group in the table, by its name in any case; nothing for a name that no grid shows.
std::optional<std::size_t> GroupOf(std::string_view aga);

}  // namespace session
