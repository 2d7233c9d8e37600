#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

// Which registers and coils of a station laid out by hand are taken, so that no two parameters share one.
namespace session {

enum class AddressOutcome {
    Free,      // it is registered now; or it was 0, which means not assigned and is always free
    Overlaps,  // another parameter has it or its second register; nothing was registered
    Beyond     // the table does not reach so far or is full; nothing was registered
};

// Registers stand in buckets of a hundred, coils in a list of their own, so coil 5 and register 5 are two things.
class AddressTable {
  public:
    // `rtuBitsMode`: one register holds a whole float; else a "Float" takes two.
    explicit AddressTable(bool rtuBitsMode) : rtuBitsMode_(rtuBitsMode) {}

    // Registers an address, from 1, for a value of type "Coil(Boolean)", "Integer" or "Float".
    AddressOutcome Hash(std::int64_t address, std::string_view type);

    // Gives it free again, a float's second register with it. What is not registered is passed over.
    void DeleteHash(std::int64_t address, std::string_view type);

  private:
    static constexpr std::size_t capacity = 101;  // buckets, addresses of a bucket, coils

    bool TakesTwo(std::string_view type) const;

    bool rtuBitsMode_;
    std::array<std::vector<std::int64_t>, capacity> addressTable_;
    std::vector<std::int64_t> coilList_;
};

}  // namespace session
