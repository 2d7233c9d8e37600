#include "fieldsim/Signals.h"

#include <algorithm>
#include <cmath>

namespace fieldsim {

namespace {

constexpr std::size_t kServedKept = 64;

bool Before(const Signal& a, const Signal& b) {
    return a.position < b.position;
}

double AsServed(Kind kind, double value) {
    switch (kind) {
        case Kind::Float:
            return static_cast<float>(value);
        case Kind::Integer:
            return std::clamp(std::round(value), -32768.0, 32767.0);
        case Kind::Logical:
            return value != 0 ? 1 : 0;
        case Kind::Decimal:
            break;
        case Kind::Text:
            return 0;
    }
    return value;
}

}  // namespace

SignalList::SignalList(std::vector<Signal> signals, Behaviour behaviour)
    : signals_(std::move(signals)), behaviour_(std::move(behaviour)) {
    std::stable_sort(signals_.begin(), signals_.end(), Before);
    places_ = signals_.empty() ? 0 : signals_.back().position;
}

const Signal* SignalList::At(int position) const {
    const auto at = std::lower_bound(signals_.begin(), signals_.end(), Signal{position, {}, {}}, Before);
    return at != signals_.end() && at->position == position ? &*at : nullptr;
}

const Signal* SignalList::Find(std::string_view description) const {
    const auto at = std::find_if(signals_.begin(), signals_.end(),
                                 [&](const Signal& signal) { return signal.description == description; });
    return at != signals_.end() ? &*at : nullptr;
}

double SignalList::ValueAt(const Signal& signal, const core::DateTime& at) const {
    if (const Kept* kept = Of(signal); kept != nullptr && kept->fixed) {
        return AsServed(signal.kind, *kept->fixed);
    }
    if (!behaviour_) {
        return AsServed(signal.kind, signal.value);
    }
    const bool itsClock = clock_ != nullptr && ShowsClock(signal.description);
    return AsServed(signal.kind, behaviour_(signal, itsClock ? clock_->Says(at) : at));
}

double SignalList::Serve(const Signal& signal, const Moment& now) {
    const double value = ValueAt(signal, now.local);
    auto& served = kept_[signal.position].served;
    served.push_back({value, now});
    if (served.size() > kServedKept) {
        served.pop_front();
    }
    return value;
}

std::vector<ServedValue> SignalList::Served(std::string_view description) const {
    std::vector<ServedValue> all;
    for (const Signal& signal : signals_) {
        const Kept* kept = signal.description == description ? Of(signal) : nullptr;
        if (kept != nullptr) {
            all.insert(all.end(), kept->served.begin(), kept->served.end());
        }
    }
    return all;
}

bool SignalList::WasServed(std::string_view description, double value) const {
    // Half of the fourth place, and what was rounded off on the way: a unit's text has five places.
    constexpr double halfPlace = 0.5e-4 + 0.5e-5;
    const auto served = Served(description);
    return std::any_of(served.begin(), served.end(), [&](const ServedValue& known) {
        return std::fabs(known.value - value) <= 1e-9 + std::max(halfPlace, std::fabs(known.value) * 1e-6);
    });
}

std::string SignalList::Text(const Signal& signal) const {
    const Kept* kept = Of(signal);
    return kept != nullptr && kept->text ? *kept->text : signal.text;
}

bool SignalList::Fix(std::string_view description, double value) {
    const Signal* signal = Find(description);
    if (signal != nullptr) {
        Fix(*signal, value);
    }
    return signal != nullptr;
}

const SignalList::Kept* SignalList::Of(const Signal& signal) const {
    const auto kept = kept_.find(signal.position);
    return kept != kept_.end() ? &kept->second : nullptr;
}

}  // namespace fieldsim
