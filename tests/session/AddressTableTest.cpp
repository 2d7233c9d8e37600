// The addresses of a map laid out by hand: which are taken, and which come free again.

#include <gtest/gtest.h>

#include <vector>

#include "session/editor/AddressTable.h"

namespace session {
namespace {

constexpr const char* coil = "Coil(Boolean)";
constexpr auto Free = AddressOutcome::Free;
constexpr auto Overlaps = AddressOutcome::Overlaps;
constexpr auto Beyond = AddressOutcome::Beyond;

struct Step {
    int address;
    const char* type;
    AddressOutcome outcome;
    bool takenOut = false;  // DeleteHash instead of Hash
};

struct Case {
    const char* what;
    bool rtuBitsMode;
    std::vector<Step> steps;
};

constexpr bool oneRegister = true;
constexpr bool twoRegisters = false;

const std::vector<Case> cases = {
    {"0 is not assigned, as often as you like", twoRegisters, {{0, "Float", Free}, {0, "Float", Free}}},
    {"an integer twice", twoRegisters, {{7, "Integer", Free}, {7, "Integer", Overlaps}}},
    {"coils and registers are two things",
     twoRegisters,
     {{5, coil, Free}, {5, "Integer", Free}, {5, "coil(boolean)", Overlaps}, {10100, coil, Free}}},
    {"a float has two registers", twoRegisters, {{10, "Float", Free}, {11, "Integer", Overlaps}, {12, "Float", Free}}},
    {"a float whose second is taken leaves nothing",
     twoRegisters,
     {{11, "Integer", Free}, {10, "Float", Overlaps}, {10, "Integer", Free}}},
    {"a float in one register", oneRegister, {{10, "Float", Free}, {11, "Float", Free}, {10, "Float", Overlaps}}},
    {"the second is sought in the bucket of the first",
     twoRegisters,
     {{199, "Float", Free}, {200, "Integer", Free}, {199, "Integer", Overlaps}}},
    {"what is taken out is free, with its second",
     twoRegisters,
     {{10, "Float", Free},
      {10, "Float", Free, true},
      {11, "Integer", Free},
      {199, "Float", Free},
      {199, "Float", Free, true},
      {199, "Float", Free},
      {5, coil, Free},
      {5, coil, Free, true},
      {5, coil, Free},
      {77, "Integer", Free, true}}},
    {"the end of the table",
     twoRegisters,
     {{10099, "Float", Free},
      {10100, "Integer", Beyond},
      {65536, "Float", Beyond},
      {-1, coil, Beyond},
      {-150, "Integer", Beyond},
      {10100, "Integer", Free, true},
      {-150, "Integer", Free, true}}},
};

TEST(AddressTable, KeepsAddressesApart) {
    for (const Case& c : cases) {
        AddressTable table(c.rtuBitsMode);
        for (const Step& step : c.steps) {
            if (step.takenOut) {
                table.DeleteHash(step.address, step.type);
            } else {
                EXPECT_EQ(table.Hash(step.address, step.type), step.outcome)
                    << c.what << ": " << step.address << " " << step.type;
            }
        }
    }
}

TEST(AddressTable, HoldsAHundredAndOneCoils) {
    AddressTable table(twoRegisters);
    for (int address = 1; address <= 101; ++address) {
        EXPECT_EQ(table.Hash(address, coil), Free) << address;
    }
    EXPECT_EQ(table.Hash(102, coil), Beyond);
    table.DeleteHash(50, coil);
    EXPECT_EQ(table.Hash(102, coil), Free);
}

}  // namespace
}  // namespace session
