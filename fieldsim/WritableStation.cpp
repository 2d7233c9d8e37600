#include "fieldsim/WritableStation.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>

namespace fieldsim {

std::optional<WriteFault> WriteFaultByName(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, WriteFault>, 8> names = {{
        {"None", WriteFault::None},
        {"Refuse", WriteFault::Refuse},
        {"Late", WriteFault::Late},
        {"LostBefore", WriteFault::LostBefore},
        {"LostAfter", WriteFault::LostAfter},
        {"Ignore", WriteFault::Ignore},
        {"Limit", WriteFault::Limit},
        {"Slow", WriteFault::Slow},
    }};
    const auto* const known =
        std::find_if(names.begin(), names.end(), [&](const auto& entry) { return entry.first == name; });
    return known != names.end() ? std::optional(known->second) : std::nullopt;
}

std::string Describe(const Write& write) {
    std::ostringstream text;
    if (write.to == Write::To::List) {
        text << write.list << '-' << write.position;
    } else {
        text << (write.to == Write::To::Coil ? "coil " : "register ") << write.position;
    }
    text << (write.description.empty() ? "" : " ") << write.description << " = ";
    if (write.text) {
        text << '"' << *write.text << '"';
    } else {
        text << write.value;
    }
    text << (write.accepted ? "" : " refused");
    return text.str();
}

std::vector<std::string> WritableStation::WritesText() const {
    std::vector<std::string> all;
    std::transform(writes_.begin(), writes_.end(), std::back_inserter(all), Describe);
    return all;
}

WriteFault WritableStation::NextFault() {
    if (manners_.diesAt > 0 && --manners_.diesAt == 0) {
        manners_.dead = true;
        return WriteFault::LostBefore;
    }
    if (manners_.script.empty()) {
        return manners_.otherwise;
    }
    const WriteFault fault = manners_.script.front();
    manners_.script.pop_front();
    return fault;
}

WriteFault WritableStation::Take(const std::vector<Change>& changes, bool sound, const Moment& now) {
    const WriteFault fault = NextFault();
    const bool accepted =
        sound && fault != WriteFault::Refuse && fault != WriteFault::LostBefore && fault != WriteFault::Ignore;
    for (const Change& change : changes) {
        if (accepted && fault == WriteFault::Slow) {
            slow_.emplace_back(now.milliseconds + manners_.slowMs, change);
        } else if (accepted) {
            Change made = change;
            if (fault == WriteFault::Limit) {
                made.wanted.value = std::min(made.wanted.value, manners_.highest);
            }
            Make(made, now);
        }
        writes_.push_back(change.wanted);
        writes_.back().accepted = accepted;
        writes_.back().at = now;
        if (accepted && told_) {
            told_(writes_.back());
        }
    }
    lineIsDown_ = manners_.lineDown && (fault == WriteFault::LostBefore || fault == WriteFault::LostAfter);
    return fault;
}

void WritableStation::MakeDue(const Moment& now) {
    for (const auto& [at, change] : slow_) {
        if (at <= now.milliseconds) {
            Make(change, now);
        }
    }
    std::erase_if(slow_, [&](const auto& slow) { return slow.first <= now.milliseconds; });
}

void WritableStation::Make(const Change& change, const Moment& now) {
    if (change.wanted.text) {
        change.list->FixText(*change.signal, *change.wanted.text);
        return;
    }
    change.list->Fix(*change.signal, change.wanted.value);
    if (change.clockElements != nullptr && change.signal->description == kSetClock && change.wanted.value != 0) {
        clock_->Set(*change.clockElements, now.local);
    }
}

std::optional<Answer> WritableStation::Answered(std::string bytes, std::uint32_t delayMs, WriteFault fault) const {
    if (fault == WriteFault::LostBefore || fault == WriteFault::LostAfter) {
        return std::nullopt;
    }
    return Answer{std::move(bytes), delayMs + (fault == WriteFault::Late ? manners_.lateMs : 0)};
}

}  // namespace fieldsim
