#pragma once

#include <string>
#include <string_view>

#include "archive/Download.h"

// What the records of an archive file and of the audit trail hold.
//
// The decoders never fail. Each pair of bytes is a number of 16 bits with a sign to them, but for the day: what is
// above 32767 they cannot form, and that part of the record stays 0, as the operators know it.
namespace archive {

// Day, time in units of 4 seconds, local ID, global ID (two bytes each), then single-precision floats, low byte first.
// The record's length says how many.
ArchiveRecord DecodeArchiveRecord(std::string_view record);

// Single precision, low byte first; four bytes.
double DecodeFloat(std::string_view bytes);

// Which event codes a form can tell.
enum class EventCodes {
    All,
    // frmarchive looks three times at the lowest bit: it knows the codes 0 and 7 only. Its users expect that; it is not
    // to be evened out.
    LowestBit,
};

// Flags, signal name with its NUL, day, time, fraction of a second in 20 ms, two floats, twelve bytes that nobody
// shows, local ID, global ID, a word that nobody shows.
AuditEvent DecodeAuditRecord(std::string_view record, EventCodes codes);

// "NAME         12.5  Signal Value Change    [13]": the event of the lowest three bits of `flags`.
std::string AuditDescription(const std::string& name, double first, double second, unsigned char flags,
                             EventCodes codes);

}  // namespace archive
