#include "session/AddressTable.h"

#include <algorithm>

#include "core/Text.h"

namespace session {

namespace {

constexpr std::int64_t bucketSize = 100;

bool IsCoil(std::string_view type) {
    return core::SameText(type, "Coil(Boolean)");
}

bool Holds(const std::vector<std::int64_t>& addresses, std::int64_t address) {
    return std::find(addresses.begin(), addresses.end(), address) != addresses.end();
}

void Remove(std::vector<std::int64_t>& addresses, std::int64_t address) {
    const auto found = std::find(addresses.begin(), addresses.end(), address);
    if (found != addresses.end()) {
        addresses.erase(found);
    }
}

}  // namespace

bool AddressTable::TakesTwo(std::string_view type) const {
    return !rtuBitsMode_ && core::SameText(type, "Float");
}

AddressOutcome AddressTable::Hash(std::int64_t address, std::string_view type) {
    if (address == 0) {
        return AddressOutcome::Free;
    }
    const bool isCoil = IsCoil(type);
    if (address < 0 || (!isCoil && address >= static_cast<std::int64_t>(capacity) * bucketSize)) {
        return AddressOutcome::Beyond;
    }
    // The second register of a float is sought and kept in the bucket of the first. So a float at 199 and an integer
    // at 200 do not collide: the operators' maps count on it.
    auto& taken = isCoil ? coilList_ : addressTable_[static_cast<std::size_t>(address / bucketSize)];
    const std::size_t registers = TakesTwo(type) ? 2 : 1;
    for (std::size_t i = 0; i < registers; ++i) {
        if (Holds(taken, address + static_cast<std::int64_t>(i))) {
            return AddressOutcome::Overlaps;
        }
    }
    if (taken.size() + registers > capacity) {
        return AddressOutcome::Beyond;
    }
    for (std::size_t i = 0; i < registers; ++i) {
        taken.push_back(address + static_cast<std::int64_t>(i));
    }
    return AddressOutcome::Free;
}

void AddressTable::DeleteHash(std::int64_t address, std::string_view type) {
    const bool isCoil = IsCoil(type);
    if (address <= 0 || (!isCoil && address >= static_cast<std::int64_t>(capacity) * bucketSize)) {
        return;
    }
    auto& taken = isCoil ? coilList_ : addressTable_[static_cast<std::size_t>(address / bucketSize)];
    Remove(taken, address);
    if (TakesTwo(type)) {
        Remove(taken, address + 1);
    }
}

}  // namespace session
