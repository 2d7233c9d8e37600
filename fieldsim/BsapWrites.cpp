// How a BSAP station is written to.

#include <algorithm>
#include <string_view>

#include "fieldsim/BsapBytes.h"
#include "fieldsim/BsapStation.h"

namespace fieldsim {

namespace {

constexpr char kFloat = '\x0B';
constexpr char kOn = '\x09';
constexpr char kOff = '\x0A';
constexpr char kText = '\x0D';

// By address: 80, two bytes of load version, FF, how many signals. By name: 84, FF, one signal.
constexpr std::size_t kHead = 5;
constexpr std::string_view kNamedHead = "\x84\xFF\x01";

// What may be written into a signal: on and off into a logical, a number into a number, a text into a text and, beside
// its value, into any other.
bool Takes(const Signal& signal, char form, std::size_t length) {
    switch (form) {
        case kFloat:
            return signal.kind != Kind::Logical && signal.kind != Kind::Text;
        case kText:
            return signal.kind != Kind::Text || length <= kLongestText + 1;
        default:
            return signal.kind == Kind::Logical;
    }
}

}  // namespace

std::optional<Answer> BsapStation::AnswerWrite(const Request& request, const Moment& now) {
    const std::string_view function = request.function;
    std::vector<Change> changes;
    const bool byName = function[0] == kNamedHead[0];
    const bool understood = byName ? NamedElement(function, changes) : Elements(function, changes);
    const bool sound = understood && Open();
    if (changes.empty()) {
        changes.push_back(ChangeAt(0));  // nothing that could be told: it is noted all the same
    }
    const WriteFault fault = Take(changes, sound, now);
    std::string reply = Acknowledgement(request.sequence);
    if (options_.answersWrites) {
        // A result of each signal; masters do not look at it.
        reply = AnswerHead(request) + LoadVersion();
        reply += std::string(changes.size(), sound && fault != WriteFault::Refuse ? '\0' : '\x04');
    }
    return Answered(std::move(reply), options_.answerMs, fault);
}

// For each signal: its MSD address, low byte first, and a value. Tells whether each is a signal that takes its value,
// and nothing is left over.
bool BsapStation::Elements(std::string_view function, std::vector<Change>& changes) const {
    if (function.size() <= kHead) {
        return false;
    }
    std::string_view rest = function.substr(kHead);
    bool sound = function.substr(1, 3) == LoadVersion() + '\xFF';
    for (int left = ByteAt(function, kHead - 1); left > 0; --left) {
        if (rest.size() < 3) {
            return false;
        }
        Change change = ChangeAt(LowFirstAt(rest, 0));
        rest.remove_prefix(2);
        sound = Value(rest, change) && sound;
        changes.push_back(std::move(change));
    }
    return sound && !changes.empty() && rest.empty();
}

// The name of a signal, closed by 00, and a value.
bool BsapStation::NamedElement(std::string_view function, std::vector<Change>& changes) const {
    const std::size_t end = function.find('\0', kNamedHead.size());
    if (!function.starts_with(kNamedHead) || end == std::string_view::npos || end + 1 == function.size()) {
        return false;
    }
    const std::string_view name = function.substr(kNamedHead.size(), end - kNamedHead.size());
    const Place place = ByName(name);
    Change change = ChangeOf(place.list, place.signal != nullptr ? place.signal->position : 0, place.signal);
    if (place.signal == nullptr) {
        change.wanted.description = name;
    }
    std::string_view rest = function.substr(end + 1);
    const bool sound = Value(rest, change);
    changes.push_back(std::move(change));
    return sound && rest.empty();
}

// Takes a value from the front: its form, and what the form has behind it. Tells whether it is whole, and one that the
// signal takes.
bool BsapStation::Value(std::string_view& rest, Change& change) {
    const char form = rest[0];
    rest.remove_prefix(1);
    std::size_t length = 0;
    bool known = true;
    if (form == kFloat) {
        length = 4;
        change.wanted.value = rest.size() >= length ? FloatLowFirstAt(rest, 0) : 0;
    } else if (form == kOn || form == kOff) {
        change.wanted.value = form == kOn ? 1 : 0;
    } else if (const std::size_t end = rest.find('\0'); form == kText && end != std::string_view::npos) {
        length = end + 1;
        change.wanted.text = rest.substr(0, end);
    } else {
        known = false;
    }
    const bool whole = known && length <= rest.size();
    rest.remove_prefix(std::min(length, rest.size()));
    return whole && change.signal != nullptr && Takes(*change.signal, form, length);
}

// An address that no signal has is told by the place to which it would belong.
BsapStation::Change BsapStation::ChangeAt(int msd) const {
    const Place place = ByMsd(msd);
    return place.signal != nullptr ? ChangeOf(place.list, place.signal->position, place.signal)
                                   : ChangeOf(msd / Msd(1, 0), msd % Msd(1, 0), nullptr);
}

BsapStation::Change BsapStation::ChangeOf(int list, int position, const Signal* signal) const {
    Change change;
    change.wanted.to = Write::To::List;
    change.wanted.list = list;
    change.wanted.position = position;
    change.signal = signal;
    if (signal != nullptr) {
        change.list = lists_.at(list).get();
        change.wanted.description = signal->description;
    }
    // The clock's elements are analogs of the same stream, in the list in front of its logicals.
    if (const auto before = lists_.find(list - 1); before != lists_.end()) {
        change.clockElements = before->second.get();
    }
    return change;
}

std::string BsapStation::TextOf(int list, int position) const {
    const auto known = lists_.find(list);
    const Signal* signal = known != lists_.end() ? known->second->At(position) : nullptr;
    return signal != nullptr ? known->second->Text(*signal) : std::string();
}

}  // namespace fieldsim
