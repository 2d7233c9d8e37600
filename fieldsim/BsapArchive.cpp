#include "fieldsim/BsapArchive.h"

#include <algorithm>

#include "core/Text.h"
#include "fieldsim/BsapBytes.h"

namespace fieldsim {

namespace {

using namespace std::string_view_literals;

constexpr std::array<std::uint8_t, 2> kNoSuchFile = {135, 129};
constexpr std::array<std::uint8_t, 2> kNoSuchField = {135, 130};

constexpr std::size_t kArchiveNameLength = 9;
constexpr std::size_t kFieldNameLength = 17;
constexpr std::size_t kDefinitionLength = 27;
constexpr std::size_t kAuditTextLength = 12;

// What stands in front of the numbers is the request itself. Masters do not look at it.
std::string Echo(std::string_view function, std::size_t length) {
    std::string echo(function.substr(0, length));
    echo.resize(length, '\0');
    return echo;
}

std::string Padded(const std::string& text, std::size_t length) {
    std::string padded = core::ToCodePage(text).value_or(std::string());
    padded.resize(length, ' ');
    return padded;
}

std::string Text(const TimeBytes& time) {
    return {time.begin(), time.end()};
}

HistoryReply Numbers(const ArchiveFile& file, std::string_view function) {
    const auto count = static_cast<int>(file.records.size());
    const int oldest = count > 0 ? file.oldest : 0;
    const int behindForming = count > 0 ? file.oldest + count + 1 : 0;
    return {{}, Echo(function, 8) + LowFirst(behindForming) + LowFirst(oldest) + LowFirst(count)};
}

std::string DefinitionHead(std::string_view function, std::size_t total, std::size_t count, const std::string& name) {
    return Echo(function, 6) + LowFirst(static_cast<int>(total)) + static_cast<char>(count) +
           Padded(name, kArchiveNameLength) + std::string(12, '\0');
}

HistoryReply NoDefinitions(std::string_view function, std::array<std::uint8_t, 2> status) {
    return {status, DefinitionHead(function, 0, 0, "")};
}

HistoryReply ShortRefusal(std::array<std::uint8_t, 2> status) {
    return {status, Echo("", 2)};
}

HistoryReply Definitions(const ArchiveFile& file, std::string_view function, std::size_t room) {
    if (file.definitionStatus != HistoryReply().status) {
        return file.shortRefusals ? ShortRefusal(file.definitionStatus)
                                  : NoDefinitions(function, file.definitionStatus);
    }
    const std::size_t from = ByteAt(function, 5);
    if (from >= file.fields.size()) {
        return NoDefinitions(function, kNoSuchField);
    }
    const std::size_t fitting = (room - DefinitionHead(function, 0, 0, "").size()) / kDefinitionLength;
    const std::size_t count = std::min(file.fields.size() - from, fitting);
    std::string data = DefinitionHead(function, file.fields.size(), count, file.name);
    for (std::size_t i = from; i < from + count; ++i) {
        data += Padded(file.fields[i], kFieldNameLength) + std::string(kDefinitionLength - kFieldNameLength, '\0');
    }
    return {{}, data};
}

std::string RecordText(const FileRecord& record, std::size_t fields) {
    std::string text = Text(record.timeBytes.value_or(ToTimeBytes(record.at)));
    text += LowFirst(record.localID) + LowFirst(record.globalID);
    for (std::size_t i = 0; i < fields; ++i) {
        text += FloatLowFirst(i < record.values.size() ? record.values[i] : 0);
    }
    return text;
}

// The records from a place in the file on; `asked` 0: as many as fit.
HistoryReply Records(ArchiveFile& file, std::string_view function, std::size_t from, int asked, std::size_t room) {
    ++file.replies;
    const bool single = file.singleEvery > 0 && file.replies % file.singleEvery == 0;
    const std::size_t most = single ? 1 : file.mostPerReply;
    std::string records;
    int count = 0;
    std::size_t next = from;
    while (next < file.records.size() && (asked == 0 || count < asked)) {
        const std::string record = RecordText(file.records[next], file.fields.size());
        const bool full = most != 0 && static_cast<std::size_t>(count) >= most;
        if (full || (count > 0 && 8 + records.size() + record.size() > room)) {
            break;
        }
        records += record;
        ++count;
        ++next;
    }
    const bool more = count > 0 && next < file.records.size();
    const int found = count > 0 ? file.oldest + static_cast<int>(from) : 0;
    return {{}, Echo(function, 4) + (more ? '\1' : '\0') + static_cast<char>(count) + LowFirst(found) + records};
}

// The place of a number as it comes over the line. One that no record has is below or above them, whichever is nearer
// on the way round; while the numbers have not gone round, below is what is smaller.
std::size_t PlaceOf(const ArchiveFile& file, int number) {
    constexpr int numbers = 65536;
    const auto count = static_cast<int>(file.records.size());
    if (file.oldest + count < numbers) {
        return static_cast<std::size_t>(std::max(number - file.oldest, 0));
    }
    const int above = (number - file.oldest % numbers + numbers) % numbers;
    const bool below = above >= count && above - count >= numbers - above;
    return static_cast<std::size_t>(below ? 0 : above);
}

// The place of the first record of that day or a later one. A day has a sign: what is before 1977 is before all.
std::size_t PlaceOfDay(const ArchiveFile& file, int day) {
    const int from = static_cast<std::int16_t>(day);
    const auto found = std::find_if(file.records.begin(), file.records.end(), [&](const FileRecord& record) {
        return LowFirstAt(Text(record.timeBytes.value_or(ToTimeBytes(record.at))), 0) >= from;
    });
    return static_cast<std::size_t>(found - file.records.begin());
}

std::string EventText(const AuditEvent& event) {
    std::string text(1, static_cast<char>(event.flags));
    text += core::ToCodePage(event.signal).value_or(std::string()) + '\0';
    text += Text(event.timeBytes.value_or(ToTimeBytes(event.at)));
    text += static_cast<char>(event.fraction);
    text += FloatLowFirst(event.first) + FloatLowFirst(event.second) + Padded(event.characters, kAuditTextLength);
    return text + LowFirst(event.localID) + LowFirst(event.globalID) + LowFirst(event.lastWord);
}

// The cursors are the number of events that the master has had, low byte first.
HistoryReply Audit(const std::vector<AuditEvent>& all, std::string_view function, std::size_t room) {
    const int cursor = LowFirstAt(function, 3);
    const int asked = ByteAt(function, 6);
    auto next = static_cast<std::size_t>(cursor != 0 ? cursor : std::max(LowFirstAt(function, 7) - 1, 0));
    std::string events;
    int count = 0;
    while (next < all.size() && (asked == 0 || count < asked)) {
        const std::string event = EventText(all[next]);
        if (count > 0 && 9 + events.size() + event.size() > room) {
            break;
        }
        events += event;
        ++count;
        ++next;
    }
    const int goOn = count > 0 ? static_cast<int>(next) : cursor;
    const int total = count > 0 ? static_cast<int>(all.size()) : 0;
    return {{}, Echo(function, 4) + LowFirst(total) + LowFirst(goOn) + static_cast<char>(count) + events};
}

// 70 07, what is asked, the number of the file.
std::optional<HistoryReply> AnswerArchive(StationHistory& history, std::string_view function, std::size_t room,
                                          const core::DateTime& now) {
    enum Asked : char { kDefinitions = 2, kNumbers = 4, kFromDate = 6, kFromNumber = 7 };
    static const std::map<char, std::size_t> lengths = {
        {kDefinitions, 7}, {kNumbers, 5}, {kFromDate, 9}, {kFromNumber, 8}};
    const auto length = function.size() > 4 ? lengths.find(function[2]) : lengths.end();
    if (length == lengths.end() || length->second != function.size()) {
        return std::nullopt;
    }
    const auto known = history.archives.find(LowFirstAt(function, 3));
    if (known == history.archives.end()) {
        return function[2] == kDefinitions ? NoDefinitions(function, kNoSuchFile) : ShortRefusal(kNoSuchFile);
    }
    ArchiveFile& file = known->second;
    file.RecordUntil(now);
    switch (function[2]) {
        case kNumbers:
            return Numbers(file, function);
        case kDefinitions:
            return Definitions(file, function, room);
        case kFromNumber:
            return Records(file, function, PlaceOf(file, LowFirstAt(function, 5)), ByteAt(function, 7), room);
        default:
            return Records(file, function, PlaceOfDay(file, LowFirstAt(function, 5)), 0, room);
    }
}

}  // namespace

std::optional<HistoryReply> AnswerHistory(StationHistory& history, std::string_view function, std::size_t room,
                                          const core::DateTime& now) {
    if (function.starts_with("\x70\x07"sv)) {
        return AnswerArchive(history, function, room, now);
    }
    if (function.starts_with("\x70\x03\x05"sv) && function.size() == 9) {
        history.audit.RecordUntil(now);
        return Audit(history.audit.events, function, room);
    }
    return std::nullopt;
}

}  // namespace fieldsim
