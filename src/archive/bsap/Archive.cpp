#include "archive/bsap/Archive.h"

#include "protocols/bsap/BsapFrame.h"

namespace archive {

namespace {

using protocols::BsapCounters;
using protocols::BuildApplicationFrame;
using protocols::HighByte;
using protocols::LowByte;
namespace bsap = protocols::bsap;

constexpr core::DateTime dayZero = {1976, 12, 31, 0, 0, 0};
constexpr std::int64_t secondsADay = 86400;

std::string FileByte(int file) {
    return {LowByte(file), '\0'};
}

std::string Word(int number) {
    return {LowByte(number), HighByte(number)};
}

}  // namespace

std::string BuildArchiveInfoRequest(BsapCounters& counters, int node, int file) {
    return BuildApplicationFrame(counters, node, bsap::archiveInformation, FileByte(file));
}

std::string BuildArchiveFieldRequest(BsapCounters& counters, int node, int file, int fieldIndex) {
    return BuildApplicationFrame(counters, node, bsap::archiveDefinitions, FileByte(file) + LowByte(fieldIndex) + '\0');
}

std::string BuildArchiveReadRequest(BsapCounters& counters, int node, int file, int record, int archivecount) {
    return BuildApplicationFrame(counters, node, bsap::archiveRecords,
                                 FileByte(file) + Word(record) + LowByte(archivecount));
}

std::string BuildArchiveDateRequest(BsapCounters& counters, int node, int file, const core::DateTime& date) {
    return BuildApplicationFrame(counters, node, bsap::archiveByDate,
                                 FileByte(file) + Word(ArchiveDay(date)) + Word(0));
}

std::string BuildAuditRequest(BsapCounters& counters, int node, const AuditCursors& cursors, int position,
                              int archivecount) {
    const std::string from = {LowByte(cursors.a), LowByte(cursors.b), '\0'};
    return BuildApplicationFrame(counters, node, bsap::auditRecords, from + LowByte(archivecount) + Word(position));
}

int ArchiveDay(const core::DateTime& date) {
    const core::DateTime midnight = {date.year, date.month, date.day, 0, 0, 0};
    return static_cast<int>((core::ToSeconds(midnight) - core::ToSeconds(dayZero)) / secondsADay);
}

core::DateTime DateOfArchiveDay(int day) {
    return core::FromSeconds(core::ToSeconds(dayZero) + day * secondsADay);
}

}  // namespace archive
