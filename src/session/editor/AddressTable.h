#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string_view>

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

    // Registers an address that others may have too. One that the table does not reach or has no room for is passed
    // over.
    void Share(std::int64_t address, std::string_view type);

    // Gives it free again, a float's second register with it, once for each time that it was registered. What is not
    // registered is passed over.
    void DeleteHash(std::int64_t address, std::string_view type);

  private:
    static constexpr std::size_t capacity = 101;  // buckets, addresses of a bucket, coils

    using Holders = std::map<std::int64_t, int>;  // how many parameters have an address

    bool TakesTwo(std::string_view type) const;
    // Where an address of a type stands; null for 0 and beyond the table.
    Holders* HoldersOf(std::int64_t address, std::string_view type);

    bool rtuBitsMode_;
    std::array<Holders, capacity> addressTable_;
    Holders coilList_;
};

}  // namespace session
