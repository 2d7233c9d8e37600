#include "reading/StoreValues.h"

#include "core/Text.h"

namespace reading {

namespace {

template <std::size_t size>
void PutAll(ValueStore& store, const core::Station& station, const std::array<std::optional<StoredValue>, size>& values,
            std::string (*addressOf)(const core::Station& station, int position), const char* modbusType) {
    const char* const type = core::SameText(station.protocol, "BSAP") ? "" : modbusType;
    for (std::size_t n = 1; n < size; ++n) {
        if (values[n]) {
            store.Put(addressOf(station, static_cast<int>(n)), type, *values[n]);
        }
    }
}

}  // namespace

void StoreValues(ValueStore& store, const core::Station& station, const ListValues& values) {
    PutAll(store, station, values.floats, FloatAddress, TypeText(BlockType::Float));
    PutAll(store, station, values.booleans, BooleanAddress, TypeText(BlockType::Coil));
}

}  // namespace reading
