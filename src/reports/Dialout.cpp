#include "reports/Dialout.h"

namespace reports {

std::vector<DialoutRow> ReadDialout(core::Database& dbconn) {
    std::vector<DialoutRow> rows;
    for (const core::Row& row : dbconn.Query("select * from dialout")) {
        rows.push_back({row.Text("Phone_Num"), row.Text("Date_Time"), row.Bool("Ack")});
    }
    return rows;
}

void AddDialoutRow(core::Database& dbconn, const core::DateTime& now, std::int32_t phone) {
    dbconn.Execute("insert into dialout(Phone_Num, Date_Time, Ack) values(?,?,false)", {phone, core::IsoText(now)});
}

void AcknowledgeAlarms(core::Database& dbconn) {
    dbconn.Execute("update dialout set Ack = true where Ack = false and Phone_Num = ?", {acknowledgedPhone});
}

}  // namespace reports
