// How a BSAP station answers for single signals and finds them by their names.

#include <algorithm>

#include "core/Text.h"
#include "fieldsim/BsapBytes.h"
#include "fieldsim/BsapStation.h"

namespace fieldsim {

namespace {

using namespace std::string_view_literals;

constexpr RecordForm kSingle{true, false, true};
constexpr RecordForm kNamed{true, true, true};

// Masters write the number of names as its decimal digits.
int FromDigits(int byte) {
    return byte / 16 * 10 + byte % 16;
}

// The texts in front of the zeros; nothing when the last has none.
std::optional<std::vector<std::string_view>> ClosedTexts(std::string_view bytes) {
    std::vector<std::string_view> texts;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\0');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        texts.push_back(bytes.substr(0, end));
        bytes.remove_prefix(end + 1);
    }
    return texts;
}

}  // namespace

BsapStation::Place BsapStation::ByName(std::string_view name) const {
    for (const auto& [number, list] : lists_) {
        for (const Signal& signal : list->Signals()) {
            if (core::SameText(NameOnLine(signal.description), name)) {
                return {number, &signal};
            }
        }
    }
    return {};
}

// By address: 00 05 F8 01, load version, FF 01, address. By name: 04 05 F8 01 FF, how many, names closed by 00.
std::optional<std::string> BsapStation::Singles(const Request& request, const Moment& now) {
    const std::string_view function = request.function;
    std::vector<Place> places;
    if (function.starts_with("\x08\x05\xF9\x01\xFF"sv)) {
        return Search(request, now);
    }
    if (function.starts_with("\x00\x05\xF8\x01"sv) && function.size() == 10 &&
        function.substr(4, 4) == LoadVersion() + "\xFF\x01") {
        return SinglesOf(request, {ByMsd(LowFirstAt(function, 8))}, now);
    }
    if (!function.starts_with("\x04\x05\xF8\x01\xFF"sv) || function.size() < 6) {
        return std::nullopt;
    }
    const auto names = ClosedTexts(function.substr(6));
    if (!names || static_cast<int>(names->size()) != FromDigits(ByteAt(function, 5))) {
        return std::nullopt;
    }
    std::transform(names->begin(), names->end(), std::back_inserter(places),
                   [this](std::string_view name) { return ByName(name); });
    return SinglesOf(request, places, now);
}

// All of them, or nothing.
std::optional<std::string> BsapStation::SinglesOf(const Request& request, const std::vector<Place>& places,
                                                  const Moment& now) {
    std::string answer = AnswerHead(request) + LoadVersion();
    for (const Place& place : places) {
        if (place.signal == nullptr) {
            return std::nullopt;
        }
        answer += RecordOf(place, kSingle, now);
    }
    return !places.empty() && answer.size() <= kLongestBody ? std::optional(answer) : std::nullopt;
}

// 08 05 F9 01 FF, where to go on, 00 00, the kind of search, a pattern closed by 00. The two layouts have flags of
// their own: one for names that begin like the pattern, one for those with an attribute. Where to go on is how many
// matches the master has had.
std::optional<std::string> BsapStation::Search(const Request& request, const Moment& now) {
    const std::string_view function = request.function;
    if (function.size() < 11 || function.substr(7, 2) != "\0\0"sv || function.find('\0', 10) != function.size() - 1) {
        return std::nullopt;
    }
    const int flag = ByteAt(function, 9);
    const bool byAttribute = flag == (options_.shortLayout ? 0x20 : 0x00);
    if (!byAttribute && flag != (options_.shortLayout ? 0x82 : 0x80)) {
        return std::nullopt;
    }
    auto next = static_cast<std::size_t>(LowFirstAt(function, 5));
    if (next != 0 && options_.betweenReplies) {
        options_.betweenReplies();
    }
    const std::vector<Place> found = Matches(function.substr(10, function.size() - 11), byAttribute);
    const std::string head = AnswerHead(request);
    std::string records;
    while (next < found.size()) {
        const std::string record = RecordOf(found[next], kNamed, now);
        if (head.size() + 2 + records.size() + record.size() > kLongestBody) {
            break;
        }
        records += record;
        ++next;
    }
    return head + LowFirst(next < found.size() ? static_cast<int>(next) : 0) + records;
}

std::vector<BsapStation::Place> BsapStation::Matches(std::string_view pattern, bool byAttribute) const {
    std::vector<Place> found;
    for (const auto& [number, list] : lists_) {
        for (const Signal& signal : list->Signals()) {
            const std::string name = NameOnLine(signal.description);
            if (byAttribute ? HasAttribute(name, pattern) : BeginsLike(name, pattern)) {
                found.push_back({number, &signal});
            }
        }
    }
    return found;
}

}  // namespace fieldsim
