// How a BSAP station is written to.

#include <algorithm>

#include "fieldsim/BsapBytes.h"
#include "fieldsim/BsapStation.h"

namespace fieldsim {

namespace {

constexpr char kFloat = '\x0B';
constexpr char kOn = '\x09';
constexpr char kOff = '\x0A';
constexpr char kText = '\x0D';

// 80, two bytes of load version, FF, how many signals.
constexpr std::size_t kHead = 5;

}  // namespace

std::optional<Answer> BsapStation::AnswerWrite(const Request& request, const Moment& now) {
    const std::string_view function = request.function;
    std::vector<Change> changes;
    const bool sound = function.size() > kHead && Elements(function, changes) && Open() &&
                       function.substr(1, 3) == LoadVersion() + '\xFF';
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
    std::string_view rest = function.substr(kHead);
    bool sound = true;
    for (int left = ByteAt(function, kHead - 1); left > 0; --left) {
        if (rest.size() < 3) {
            return false;
        }
        Change change = ChangeAt(LowFirstAt(rest, 0));
        const bool logical = change.signal != nullptr && change.signal->kind == Kind::Logical;
        const char form = rest[2];
        rest.remove_prefix(3);
        std::size_t length = 0;
        if (form == kFloat) {
            length = 4;
            change.wanted.value = rest.size() >= length ? FloatLowFirstAt(rest, 0) : 0;
            sound = sound && !logical;
        } else if (form == kOn || form == kOff) {
            change.wanted.value = form == kOn ? 1 : 0;
            sound = sound && logical;
        } else if (const std::size_t end = rest.find('\0'); form == kText && end != std::string_view::npos) {
            length = end + 1;
            change.wanted.text = rest.substr(0, end);
        } else {
            sound = false;
        }
        sound = sound && change.signal != nullptr && length <= rest.size();
        rest.remove_prefix(std::min(length, rest.size()));
        changes.push_back(std::move(change));
    }
    return sound && !changes.empty() && rest.empty();
}

BsapStation::Change BsapStation::ChangeAt(int msd) const {
    Change change;
    change.wanted.to = Write::To::List;
    change.wanted.list = msd / Msd(1, 0);
    change.wanted.position = msd % Msd(1, 0);
    const auto list = lists_.find(change.wanted.list);
    if (list != lists_.end()) {
        change.list = list->second.get();
        change.signal = change.list->At(change.wanted.position);
    }
    if (change.signal != nullptr) {
        change.wanted.description = change.signal->description;
    }
    // The clock's elements are analogs of the same stream, in the list in front of its logicals.
    if (const auto before = lists_.find(change.wanted.list - 1); before != lists_.end()) {
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
