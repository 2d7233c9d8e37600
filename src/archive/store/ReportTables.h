#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "archive/Download.h"

namespace core {
class Database;
}

// The tables that hold the last download for the reports. Each is emptied and filled in one transaction; all functions
// throw DatabaseError, and then the table is as it was.
namespace archive {

// Daily, Hourly of the TeleCorrector, Daily_tf, Hourly_tf of all others.
std::string ArchiveReportTable(ArchiveKind kind, std::string_view modelno);

// A row a record: time stamp as shown, the two IDs, the values as far as the table has columns, `nodename`.
void FillArchiveTable(core::Database& dbconn, const std::string& table, const std::vector<ArchiveRecord>& records,
                      const std::string& nodename);

// The table Audit: a row an event.
void FillAuditTable(core::Database& dbconn, const std::vector<AuditEvent>& events, const std::string& nodename);

}  // namespace archive
