#pragma once

#include <string>

#include "core/Clock.h"
#include "protocols/line/Conversation.h"

// The requests for a station's archive files and its audit trail, as finished frames. They draw on the same sequence
// numbers as the other BSAP messages. Of a node, a file, a field index, a cursor and a count the low byte is sent, of a
// record number and a position two bytes.
namespace archive {

// The three numbers of a file.
std::string BuildArchiveInfoRequest(protocols::BsapCounters& counters, int node, int file);

// The next field definitions, from an index that counts from 0.
std::string BuildArchiveFieldRequest(protocols::BsapCounters& counters, int node, int file, int fieldIndex);

// Up to `archivecount` records from a record number on; 0: as many as the station gives at once.
std::string BuildArchiveReadRequest(protocols::BsapCounters& counters, int node, int file, int record,
                                    int archivecount);

// Records from a day on. Its time of day is not sent.
std::string BuildArchiveDateRequest(protocols::BsapCounters& counters, int node, int file, const core::DateTime& date);

// Where the last audit reply left off; 0 and 0 at first.
struct AuditCursors {
    int a = 0;
    int b = 0;
};

// Up to `archivecount` events from a position on.
std::string BuildAuditRequest(protocols::BsapCounters& counters, int node, const AuditCursors& cursors, int position,
                              int archivecount);

// The day of a date as the stations count them: 1 is 1 January 1977; negative before 31 December 1976.
int ArchiveDay(const core::DateTime& date);

// Midnight of such a day.
core::DateTime DateOfArchiveDay(int day);

}  // namespace archive
