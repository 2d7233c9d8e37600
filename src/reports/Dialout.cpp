#include "reports/Dialout.h"

#include <cstdio>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Settings.h"

namespace reports {

namespace {

// A stored date or moment as people read it; what is none stays as it is.
std::string Readable(const std::string& stored) {
    core::DateTime at{0, 0, 0, 0, 0, 0};
    const int read = std::sscanf(stored.c_str(), "%4d-%2d-%2d %2d:%2d:%2d", &at.year, &at.month, &at.day, &at.hour,
                                 &at.minute, &at.second);
    if (read < 3 || !at.Valid()) {
        return stored;
    }
    return read < 6 ? core::DateText(at) : core::DateText(at) + " " + core::TimeText(at);
}

}  // namespace

DialoutNumbers ReadDialoutNumbers(core::Database& dbconn) {
    return {core::ReadSetting(dbconn, core::Setting::DialoutNoted),
            core::ReadSetting(dbconn, core::Setting::DialoutAcknowledged)};
}

std::vector<DialoutCall> ReadDialout(core::Database& dbconn) {
    std::vector<DialoutCall> calls;
    for (const core::Row& row : dbconn.Query("select * from dialout order by rowid")) {
        calls.push_back({row.Text("Phone_Num"), Readable(row.Text("Date_Time")), row.Bool("Ack")});
    }
    return calls;
}

void AddDialoutRow(core::Database& dbconn, std::int32_t phone, const core::DateTime& now) {
    dbconn.Execute("insert into dialout(Phone_Num, Date_Time, Ack) values(?,?,false)",
                   {static_cast<std::int64_t>(phone), core::IsoText(now).substr(0, 10)});
}

int AcknowledgeDialout(core::Database& dbconn, const DialoutNumbers& numbers) {
    return dbconn.Execute("update dialout set Ack=true where Ack=false and Phone_Num in (?,?)",
                          {static_cast<std::int64_t>(numbers.acknowledged), static_cast<std::int64_t>(numbers.noted)});
}

}  // namespace reports
