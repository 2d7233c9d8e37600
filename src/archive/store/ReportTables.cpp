#include "archive/store/ReportTables.h"

#include "core/Database.h"
#include "core/Text.h"

namespace archive {

namespace {

std::size_t ColumnsOf(core::Database& dbconn, const std::string& table) {
    return static_cast<std::size_t>(
        dbconn.First("select count(*) from pragma_table_info(?)", {table}).value()[0].Long());
}

std::string Insert(const std::string& table, std::size_t columns) {
    std::string sql = "insert into " + table + " values (?";
    for (std::size_t i = 1; i < columns; ++i) {
        sql += ", ?";
    }
    return sql + ")";
}

}  // namespace

std::string ArchiveReportTable(ArchiveKind kind, std::string_view modelno) {
    const std::string table = kind == ArchiveKind::Daily ? "Daily" : "Hourly";
    return core::SameText(modelno, "TeleCorrector") ? table : table + "_tf";
}

void FillArchiveTable(core::Database& dbconn, const std::string& table, const std::vector<ArchiveRecord>& records,
                      const std::string& nodename) {
    dbconn.InTransaction([&] {
        const std::size_t columns = ColumnsOf(dbconn, table);
        const std::string insert = Insert(table, columns);
        dbconn.Execute("delete from " + table);
        for (const ArchiveRecord& record : records) {
            std::vector<core::Value> row = {ShownTime(record.at), record.globalID, record.localID};
            row.insert(row.end(), record.values.begin(), record.values.end());
            row.resize(columns);
            row.back() = nodename;
            dbconn.Execute(insert, row);
        }
    });
}

void FillAuditTable(core::Database& dbconn, const std::vector<AuditEvent>& events, const std::string& nodename) {
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from Audit");
        for (const AuditEvent& event : events) {
            dbconn.Execute("insert into Audit values (?, ?, ?, ?, ?)",
                           {ShownTime(event.at), event.description, std::to_string(event.localID),
                            std::to_string(event.globalID), nodename});
        }
    });
}

}  // namespace archive
