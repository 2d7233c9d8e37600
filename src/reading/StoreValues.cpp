#include "reading/StoreValues.h"

namespace reading {

namespace {

template <std::size_t size>
void PutAll(ValueStore& store, const core::Station& station, const std::array<std::optional<StoredValue>, size>& values,
            std::string (*addressOf)(const core::Station& station, int position), core::ValueKind kind) {
    const std::string type = station.protocol == core::Protocol::Bsap ? std::string() : core::TextOf(kind);
    for (std::size_t n = 1; n < size; ++n) {
        if (values[n]) {
            store.Put(addressOf(station, static_cast<int>(n)), type, *values[n]);
        }
    }
}

}  // namespace

void StoreValues(ValueStore& store, const core::Station& station, const ListValues& values) {
    PutAll(store, station, values.floats, FloatAddress, core::ValueKind::Float);
    PutAll(store, station, values.booleans, BooleanAddress, core::ValueKind::Logical);
}

}  // namespace reading
