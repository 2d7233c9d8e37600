#include "reading/RunState.h"

namespace reading {

void DayFigures::AddStream(const DayFigures& stream) {
    const auto add = [](std::optional<double>& sum, const std::optional<double>& part) {
        sum = sum && part ? std::optional(*sum + *part) : std::nullopt;
    };
    add(dayflow, stream.dayflow);
    add(monthflow, stream.monthflow);
}

}  // namespace reading
