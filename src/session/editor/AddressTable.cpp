#include "session/editor/AddressTable.h"

#include "core/Kinds.h"

namespace session {

namespace {

constexpr std::int64_t bucketSize = 100;

bool IsCoil(std::string_view type) {
    return core::ValueKindOf(type) == core::ValueKind::Logical;
}

}  // namespace

bool AddressTable::TakesTwo(std::string_view type) const {
    return !rtuBitsMode_ && core::ValueKindOf(type) == core::ValueKind::Float;
}

// The second register of a float is sought and kept in the bucket of the first. So a float at 199 and an integer at 200
// do not collide: the operators' maps count on it.
AddressTable::Holders* AddressTable::HoldersOf(std::int64_t address, std::string_view type) {
    const bool isCoil = IsCoil(type);
    if (address <= 0 || (!isCoil && address >= static_cast<std::int64_t>(capacity) * bucketSize)) {
        return nullptr;
    }
    return isCoil ? &coilList_ : &addressTable_[static_cast<std::size_t>(address / bucketSize)];
}

AddressOutcome AddressTable::Hash(std::int64_t address, std::string_view type) {
    if (address == 0) {
        return AddressOutcome::Free;
    }
    const Holders* holders = HoldersOf(address, type);
    if (holders == nullptr) {
        return AddressOutcome::Beyond;
    }
    const std::int64_t last = address + (TakesTwo(type) ? 1 : 0);
    if (holders->contains(address) || holders->contains(last)) {
        return AddressOutcome::Overlaps;
    }
    if (holders->size() + static_cast<std::size_t>(last - address) + 1 > capacity) {
        return AddressOutcome::Beyond;
    }
    Share(address, type);
    return AddressOutcome::Free;
}

void AddressTable::Share(std::int64_t address, std::string_view type) {
    Holders* holders = HoldersOf(address, type);
    const std::int64_t last = address + (TakesTwo(type) ? 1 : 0);
    for (; holders != nullptr && address <= last; ++address) {
        if (holders->contains(address) || holders->size() < capacity) {
            ++(*holders)[address];
        }
    }
}

void AddressTable::DeleteHash(std::int64_t address, std::string_view type) {
    Holders* holders = HoldersOf(address, type);
    const std::int64_t last = address + (TakesTwo(type) ? 1 : 0);
    for (; holders != nullptr && address <= last; ++address) {
        const auto holder = holders->find(address);
        if (holder != holders->end() && --holder->second == 0) {
            holders->erase(holder);
        }
    }
}

}  // namespace session
