#pragma once

#include <cstdint>
#include <memory>

#include "fieldsim/Signals.h"

// The program of a simulated flow computer, as far as its signals tell of it.
namespace fieldsim {

inline constexpr int kProgramList = 10;  // the list that holds its signals

// Named signals of every kind: numbers plain, with alarms, of the system and unknown; logicals plain and with alarms;
// texts, one of them empty. Some move about the value that they have, each seed in its own way.
std::shared_ptr<SignalList> MakeProgram(std::uint32_t seed);

// What an engineer changes in this program: two values, one signal inserted, one removed, one turned to text.
void ChangeProgram(SignalList& program);
// And back to what it was.
void ChangeProgramBack(SignalList& program);

}  // namespace fieldsim
