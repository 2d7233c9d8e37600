#include "collection/RunQueue.h"

#include <algorithm>
#include <utility>

namespace collection {

namespace {

std::size_t UrgencyOf(How how) {
    switch (how) {
        case How::Schedule:
            return 0;
        case How::Hand:
            return 1;
        case How::Late:
            return 2;
        case How::Retry:
            break;
    }
    return 3;
}

}  // namespace

void RunQueue::Add(Turn turn) {
    waiting_[UrgencyOf(turn.how)].push_back(std::move(turn));
}

std::optional<Turn> RunQueue::Next() {
    return Next([](const Turn&) { return true; });
}

std::optional<Turn> RunQueue::Next(const Preferred& preferred) {
    for (auto& turns : waiting_) {
        if (!turns.empty()) {
            auto next = std::find_if(turns.begin(), turns.end(), preferred);
            next = next == turns.end() ? turns.begin() : next;
            Turn turn = std::move(*next);
            turns.erase(next);
            return turn;
        }
    }
    return std::nullopt;
}

bool RunQueue::NextIs(const Preferred& preferred) const {
    const auto first = std::find_if(waiting_.begin(), waiting_.end(), [](const auto& turns) { return !turns.empty(); });
    return first != waiting_.end() && std::any_of(first->begin(), first->end(), preferred);
}

bool RunQueue::Empty() const {
    return std::all_of(waiting_.begin(), waiting_.end(), [](const auto& turns) { return turns.empty(); });
}

bool RunQueue::Holds(std::int64_t locationID) const {
    const auto isIts = [&](const Turn& turn) { return turn.collects && turn.locationID == locationID; };
    return std::any_of(waiting_.begin(), waiting_.end(),
                       [&](const auto& turns) { return std::any_of(turns.begin(), turns.end(), isIts); });
}

bool RunQueue::Holds(std::int64_t locationID, const core::DateTime& due) const {
    const auto serves = [&](const Turn& turn) {
        return turn.collects && turn.how != How::Hand && turn.locationID == locationID && turn.due == due;
    };
    return std::any_of(waiting_.begin(), waiting_.end(),
                       [&](const auto& turns) { return std::any_of(turns.begin(), turns.end(), serves); });
}

}  // namespace collection
