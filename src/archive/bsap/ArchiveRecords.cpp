#include "archive/bsap/ArchiveRecords.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "archive/bsap/Archive.h"
#include "core/Text.h"
#include "protocols/WireNumbers.h"
#include "protocols/bsap/BsapLayout.h"

namespace archive {

namespace {

using protocols::archiveRecord;
using protocols::auditEvent;
using protocols::floatLength;

unsigned Byte(std::string_view bytes, std::size_t at) {
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
}

// What is there from a place on.
std::string_view From(std::string_view bytes, std::size_t at) {
    return bytes.substr(std::min(at, bytes.size()));
}

int Day(std::string_view bytes, std::size_t at) {
    return static_cast<int>(Byte(bytes, at) + 256 * Byte(bytes, at + 1));
}

int SignedWord(std::string_view bytes, std::size_t at) {
    constexpr int highest = 32767;
    const int sum = Day(bytes, at);
    return sum > highest ? 0 : sum;
}

core::DateTime TimeStamp(std::string_view bytes, std::size_t day, std::size_t time) {
    core::DateTime stamp = DateOfArchiveDay(Day(bytes, day));
    const int seconds = SignedWord(bytes, time) * protocols::timeUnitSeconds;
    stamp.hour = seconds / 3600;
    stamp.minute = seconds % 3600 / 60;
    stamp.second = seconds % 60;
    return stamp;
}

int EventCode(unsigned char flags, EventCodes codes) {
    return codes == EventCodes::All ? flags % 8 : flags % 2 * 7;
}

}  // namespace

double DecodeFloat(std::string_view bytes) {
    const std::uint32_t word = Byte(bytes, 0) | Byte(bytes, 1) << 8U | Byte(bytes, 2) << 16U | Byte(bytes, 3) << 24U;
    return protocols::WireFloat(word);
}

ArchiveRecord DecodeArchiveRecord(std::string_view record) {
    constexpr int places = 2;
    ArchiveRecord decoded;
    decoded.at = TimeStamp(record, archiveRecord.day, archiveRecord.time);
    decoded.localID = SignedWord(record, archiveRecord.localID);
    decoded.globalID = SignedWord(record, archiveRecord.globalID);
    for (std::size_t at = archiveRecord.firstFloat; at + floatLength <= record.size(); at += floatLength) {
        decoded.values.push_back(core::RoundTo(DecodeFloat(record.substr(at, floatLength)), places));
    }
    return decoded;
}

AuditEvent DecodeAuditRecord(std::string_view record, EventCodes codes) {
    AuditEvent event;
    const std::size_t nul = record.find('\0', 1);
    if (nul == std::string_view::npos) {
        return event;
    }
    const auto rest = record.substr(nul + 1);
    event.at = TimeStamp(rest, auditEvent.day, auditEvent.time);
    const int fractionMs = static_cast<int>(Byte(rest, auditEvent.fraction)) * protocols::fractionUnitMs;
    event.at.second = static_cast<int>(core::RoundTo(event.at.second + fractionMs / 1000.0, 0));
    event.description =
        AuditDescription(core::FromCodePage(record.substr(1, nul - 1)), DecodeFloat(From(rest, auditEvent.firstValue)),
                         DecodeFloat(From(rest, auditEvent.secondValue)), static_cast<unsigned char>(record[0]), codes);
    event.localID = SignedWord(rest, auditEvent.localID);
    event.globalID = SignedWord(rest, auditEvent.globalID);
    return event;
}

std::string AuditDescription(const std::string& name, double first, double second, unsigned char flags,
                             EventCodes codes) {
    static constexpr std::array<const char*, 8> texts = {
        "Signal Value Change", "Logical Alarm",       "Logical Return To Normal", "Analog Low Alarm",
        "Analog High Alarm",   "Analog LowLow Alarm", "Analog HighHigh Alarm",    "Analog Return To Normal"};
    constexpr int places = 4;
    const char* text = texts[static_cast<std::size_t>(EventCode(flags, codes))];
    return name + std::string(9, ' ') + core::NumberText(core::RoundTo(first, places)) + "  " + text + "    [" +
           core::NumberText(core::RoundTo(second, places)) + "]";
}

}  // namespace archive
