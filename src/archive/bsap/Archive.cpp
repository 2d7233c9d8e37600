#include "archive/bsap/Archive.h"

#include "protocols/bsap/BsapFrame.h"

namespace archive {

namespace {

using namespace std::string_literals;
using protocols::BsapCounters;
using protocols::HighByte;
using protocols::LowByte;

constexpr core::DateTime dayZero = {1976, 12, 31, 0, 0, 0};
constexpr std::int64_t secondsADay = 86400;

std::string Frame(BsapCounters& counters, int node, const std::string& body) {
    return protocols::BuildApplicationFrame(counters, node, protocols::SequenceOrder::LowHigh, body);
}

std::string FileByte(int file) {
    return {LowByte(file), '\0'};
}

std::string Word(int number) {
    return {LowByte(number), HighByte(number)};
}

}  // namespace

std::string BuildArchiveInfoRequest(BsapCounters& counters, int node, int file) {
    return Frame(counters, node, "\x70\x07\x04"s + FileByte(file));
}

std::string BuildArchiveFieldRequest(BsapCounters& counters, int node, int file, int fieldIndex) {
    return Frame(counters, node, "\x70\x07\x02"s + FileByte(file) + LowByte(fieldIndex) + '\0');
}

std::string BuildArchiveReadRequest(BsapCounters& counters, int node, int file, int record, int archivecount) {
    return Frame(counters, node, "\x70\x07\x07"s + FileByte(file) + Word(record) + LowByte(archivecount));
}

std::string BuildArchiveDateRequest(BsapCounters& counters, int node, int file, const core::DateTime& date) {
    return Frame(counters, node, "\x70\x07\x06"s + FileByte(file) + Word(ArchiveDay(date)) + "\0\0"s);
}

std::string BuildAuditRequest(BsapCounters& counters, int node, const AuditCursors& cursors, int position,
                              int archivecount) {
    return Frame(
        counters, node,
        "\x70\x03\x05"s + LowByte(cursors.a) + LowByte(cursors.b) + '\0' + LowByte(archivecount) + Word(position));
}

int ArchiveDay(const core::DateTime& date) {
    const core::DateTime midnight = {date.year, date.month, date.day, 0, 0, 0};
    return static_cast<int>((core::ToSeconds(midnight) - core::ToSeconds(dayZero)) / secondsADay);
}

core::DateTime DateOfArchiveDay(int day) {
    return core::FromSeconds(core::ToSeconds(dayZero) + day * secondsADay);
}

}  // namespace archive
