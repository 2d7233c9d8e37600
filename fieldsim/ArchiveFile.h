#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/Clock.h"

// What a BSAP station keeps of its past: numbered archive files, and an audit trail.
namespace fieldsim {

// A time as it goes over the line: days after 31 December 1976, and the time of day in units of 4 seconds, each low
// byte first. As bytes it may be a time that there is not: a station's clock with nonsense.
using TimeBytes = std::array<std::uint8_t, 4>;

TimeBytes ToTimeBytes(const core::DateTime& at);

struct FileRecord {
    core::DateTime at{};                   // by the station's clock
    std::optional<TimeBytes> timeBytes{};  // instead of it
    int localID = 0;                       // 16 bits with a sign
    int globalID = 0;                      // likewise
    std::vector<double> values{};          // one a field; what is missing is 0
};

// How a file gets its records.
struct Recording {
    int everySeconds = 3600;
    int fromSecond = 0;        // of the day, from which the seconds count: the contract hour of a daily file
    std::size_t records = 0;   // that the file has when it is asked for the first time, the last one made just then
    std::size_t room = 10000;  // with more than this the oldest go
    std::function<std::vector<double>(const core::DateTime& at)> values{};
    std::optional<std::int64_t> lastMade{};  // seconds; nothing: it was not asked yet
};

// An archive file. The records count up by 1 from the number of the oldest, which is 0 until the file has wrapped.
// Behind the newest stands the one that is being formed: it has a number, and cannot be read. On the line a number has
// two bytes: behind 65,535 comes 0.
struct ArchiveFile {
    std::string name{};                 // 9 characters go out
    std::vector<std::string> fields{};  // names, of which 17 characters go out
    std::deque<FileRecord> records{};   // the oldest first
    int oldest = 0;                     // the number of the first of them, counted on beyond 65,535
    // A reply has room for no more records than this, whatever their length; 0: as many as fit.
    std::size_t mostPerReply = 0;
    // Every so many-th reply with records holds one only, since the station is busy otherwise; 0: none does.
    int singleEvery = 0;
    // Of the answers to requests for the fields; with other than 0, 0 they hold no field.
    std::array<std::uint8_t, 2> definitionStatus{};
    bool shortRefusals = false;  // such an answer ends behind its status, as those to other requests do
    // Without one the records are what they were made. The local time of the field counts, not the station's clock.
    std::optional<Recording> recording{};

    int replies = 0;  // with records, so far

    // Makes the records that the recording owes at this time.
    void RecordUntil(const core::DateTime& now);
};

// What happened at a station, one event of it.
struct AuditEvent {
    std::uint8_t flags = 0;  // the low three bits tell what it was
    std::string signal{};    // at least one character, none of them NUL
    core::DateTime at{};     // by the station's clock
    std::optional<TimeBytes> timeBytes{};
    int fraction = 0;  // of the second, in units of 20 ms
    double first = 0;
    double second = 0;
    std::string characters{};  // twelve of them go out
    int localID = 0;           // 16 bits with a sign
    int globalID = 0;          // likewise
    int lastWord = 0;
};

struct AuditTrail {
    std::vector<AuditEvent> events{};  // the oldest first
    // The events of the time before the trail was asked for the first time; they go in front of what is there then.
    std::function<std::vector<AuditEvent>(const core::DateTime& now)> before{};

    void RecordUntil(const core::DateTime& now);
};

struct StationHistory {
    std::map<int, ArchiveFile> archives{};  // by number, 0 to 65,535
    AuditTrail audit{};
};

}  // namespace fieldsim
