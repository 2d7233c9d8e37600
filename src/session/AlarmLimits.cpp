#include "session/AlarmLimits.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "core/Text.h"

namespace session {

namespace {

constexpr std::size_t blockRows = 7;

constexpr std::array<std::string_view, 7> lastRows = {
    "Differential Pressure Hi-Hi", "Flowrate Hi-Hi",       "Flowing Pressure Hi-Hi", "Flowing Temperature Hi-Hi",
    "Main Battery Hi-Hi",          "Auxilary Input Hi-Hi", "UnCorr.Flowrate Hi-Hi"};

bool EndsBlock(const ParameterRow& row) {
    return std::any_of(lastRows.begin(), lastRows.end(),
                       [&](std::string_view name) { return core::SameText(row.Description, name); });
}

}  // namespace

AlarmState check_alarm(const AlarmBlock& block, AlarmLatches& latches) {
    const double value = block.value;
    if (value > block.hiHi || (latches.HiHi && value > block.hiHi - block.hiDeadband)) {
        latches.HiHi = true;
        return AlarmState::HiHi;
    }
    latches.HiHi = false;
    if (value >= block.hi || (latches.Hi && value > block.hi - block.hiDeadband)) {
        latches.Hi = true;
        return AlarmState::Hi;
    }
    if (value < block.loLo || (latches.LoLo && value < block.loLo - block.loDeadband)) {
        latches.LoLo = true;
        return AlarmState::LoLo;
    }
    if (value < block.lo || (latches.Lo && value < block.lo - block.loDeadband)) {
        latches.Lo = true;
        return AlarmState::Lo;
    }
    latches = {};
    return AlarmState::Normal;
}

unsigned AlarmColour(AlarmState state) {
    static constexpr std::array<unsigned, 5> colours = {0xffffff, 0xffffc0, 0xc0ffc0, 0xffc0c0, 0xff8080};
    return colours[static_cast<std::size_t>(state)];
}

const char* AlarmWord(AlarmState state) {
    static constexpr std::array<const char*, 5> words = {"", "Lo-Lo", "Lo", "Hi", "Hi-Hi"};
    return words[static_cast<std::size_t>(state)];
}

std::vector<AlarmWatch::Live> AlarmWatch::Judge(const ParameterSet& set) {
    std::vector<Live> states;
    const std::size_t group = *GroupOf("ALARM");
    const auto& rows = set.Of(group);
    for (std::size_t last = blockRows - 1; last < rows.size(); ++last) {
        if (!EndsBlock(rows[last])) {
            continue;
        }
        const std::size_t live = last - (blockRows - 1);
        if (!std::all_of(&rows[live], &rows[last] + 1, HasFigure)) {
            continue;
        }
        const auto value = [&](std::size_t n) { return rows[live + n].lastvalue; };
        const AlarmBlock block{value(0), value(1), value(2), value(3), value(4), value(5), value(6)};
        states.push_back({{group, live}, check_alarm(block, latches_[live])});
    }
    return states;
}

}  // namespace session
