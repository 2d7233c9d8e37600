#include "reports/Dialout.h"
#include "support/ScratchDesk.h"

namespace reports {

namespace {

TEST(Dialout, AcknowledgesTheOpenCallsOfTheAlarmModemAndThoseThatItNoted) {
    support::ScratchDesk desk;
    core::Database& dbconn = desk.dbconn;
    const core::DateTime now{2026, 3, 9, 8, 0, 0};
    EXPECT_EQ(ReadDialoutNumbers(dbconn).noted, 3508216);
    dbconn.Execute("update settings set value='12345678' where name='dialoutnoted'");
    const DialoutNumbers numbers = ReadDialoutNumbers(dbconn);
    for (const std::int32_t phone : {numbers.noted, 4170253, 4170253, 5550100}) {
        AddDialoutRow(dbconn, phone, now);
    }
    EXPECT_EQ(AcknowledgeDialout(dbconn, numbers), 3);
    EXPECT_EQ(AcknowledgeDialout(dbconn, numbers), 0);
    const auto calls = ReadDialout(dbconn);
    ASSERT_EQ(calls.size(), 4U);
    EXPECT_EQ(calls[0].Phone_Num, "12345678");
    EXPECT_EQ(calls[0].Date_Time, "09/03/2026");
    EXPECT_TRUE(calls[0].Ack && calls[1].Ack && calls[2].Ack);
    EXPECT_FALSE(calls[3].Ack);
}

TEST(Dialout, ShowsWhatIsStored) {
    support::ScratchDesk desk;
    for (const auto& [stored, shown] : {std::pair{"2026-03-09 08:05:09", "09/03/2026 08:05:09"},
                                        std::pair{"2026-03-09", "09/03/2026"}, std::pair{"2026-13-09", "2026-13-09"},
                                        std::pair{"<b>last night</b>", "<b>last night</b>"}, std::pair{"", ""}}) {
        desk.dbconn.Execute("delete from dialout");
        desk.dbconn.Execute("insert into dialout(Date_Time) values(?)", {stored});
        const auto calls = ReadDialout(desk.dbconn);
        EXPECT_EQ(calls[0].Date_Time, shown);
    }
}

}  // namespace

}  // namespace reports
