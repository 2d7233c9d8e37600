#include "fieldsim/StationClock.h"

#include <algorithm>
#include <cmath>

#include "core/Text.h"
#include "fieldsim/Signals.h"

namespace fieldsim {

bool ShowsClock(std::string_view description) {
    static constexpr std::array<std::string_view, 3> parts = {"RTU TIME", "SYSTEM TIME", "DD MM YY"};
    const std::string name = core::UpperText(description);
    return name == "DATE" || name == "TIME" || std::any_of(parts.begin(), parts.end(), [&](std::string_view part) {
               return name.find(part) != std::string::npos;
           });
}

core::DateTime StationClock::Says(const core::DateTime& local) const {
    return core::FromSeconds(core::ToSeconds(local) + aheadSeconds_);
}

void StationClock::Set(const SignalList& elements, const core::DateTime& local) {
    std::array<int, kClockElements.size()> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Signal* element = elements.Find(kClockElements[i]);
        const double value = element != nullptr ? elements.ValueAt(*element, local) : -1;
        if (!(value >= 0 && value <= 9999)) {
            return;
        }
        values[i] = static_cast<int>(std::lround(value));
    }
    const core::DateTime time{values[0], values[1], values[2], values[3], values[4], values[5]};
    if (time.Valid()) {
        aheadSeconds_ = core::ToSeconds(time) - core::ToSeconds(local);
    }
}

}  // namespace fieldsim
