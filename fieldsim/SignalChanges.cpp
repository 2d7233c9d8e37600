// How the signals of a list change with the program of their station.

#include <algorithm>

#include "fieldsim/Signals.h"

namespace fieldsim {

Signal* SignalList::Named(std::string_view description) {
    const Signal* signal = Find(description);
    return signal != nullptr ? &signals_[static_cast<std::size_t>(signal - signals_.data())] : nullptr;
}

int SignalList::Places() const {
    return places_;
}

int SignalList::Msd(const Signal& signal) const {
    const Kept* kept = Of(signal);
    return kept != nullptr ? kept->msd : 0;
}

void SignalList::Move(int from, int by) {
    for (Signal& signal : signals_) {
        signal.position += signal.position >= from ? by : 0;
    }
    std::map<int, Kept> moved;
    for (auto& [position, kept] : kept_) {
        moved.emplace(position + (position >= from ? by : 0), std::move(kept));
    }
    kept_ = std::move(moved);
    places_ += by;
}

void SignalList::Insert(int position, Signal signal) {
    if (position <= places_) {
        Move(position, 1);
    }
    places_ = std::max(places_, position);
    signal.position = position;
    const auto behind =
        std::find_if(signals_.begin(), signals_.end(), [&](const Signal& other) { return other.position > position; });
    signals_.insert(behind, std::move(signal));
}

bool SignalList::Vacate(std::string_view description) {
    const Signal* signal = Find(description);
    if (signal == nullptr) {
        return false;
    }
    kept_.erase(signal->position);
    signals_.erase(signals_.begin() + (signal - signals_.data()));
    return true;
}

bool SignalList::Remove(std::string_view description) {
    const Signal* signal = Find(description);
    const int position = signal != nullptr ? signal->position : 0;
    if (!Vacate(description)) {
        return false;
    }
    Move(position + 1, -1);
    return true;
}

bool SignalList::Replace(std::string_view description, Signal signal) {
    Signal* replaced = Named(description);
    if (replaced == nullptr) {
        return false;
    }
    signal.position = replaced->position;
    kept_.erase(signal.position);
    *replaced = std::move(signal);
    return true;
}

bool SignalList::SetValue(std::string_view description, double value) {
    Signal* signal = Named(description);
    if (signal == nullptr) {
        return false;
    }
    signal->value = value;
    Release(*signal);
    return true;
}

}  // namespace fieldsim
