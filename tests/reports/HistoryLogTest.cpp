#include <gmock/gmock.h>

#include "reports/Dialout.h"
#include "reports/HistoryLog.h"
#include "reports/MonthChart.h"
#include "support/ScratchDesk.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace reports {

void PrintTo(const LogEntry& entry, std::ostream* out) {
    *out << entry.description << "|" << entry.value << "|" << entry.hasNote << "|" << entry.note;
}

namespace {

std::vector<std::string> Parsed(const std::string& text) {
    std::vector<std::string> parts;
    for (const LogEntry& entry : ParseLogText(text)) {
        parts.push_back(entry.description + "|" + entry.value + (entry.hasNote ? "|" + entry.note : ""));
    }
    return parts;
}

TEST(ParseLogText, CutsADayIntoItsValues) {
    EXPECT_THAT(Parsed(""), IsEmpty());
    EXPECT_THAT(Parsed("no value=1"), IsEmpty());
    EXPECT_THAT(Parsed("#Flowing Pressure=17.836887?kg/cm2#Door Position=OPEN"),
                ElementsAre("Flowing Pressure|17.836887|kg/cm2", "Door Position|OPEN"));
    EXPECT_THAT(Parsed("lost#A=1#B#=2#C=#D=a=b?c?d#"), ElementsAre("A|1", "B|", "|2", "C|", "D|a=b|c?d", "|"));
}

TEST(ParseLogText, HoldsAtMost501Values) {
    std::string text;
    for (int i = 0; i < 600; ++i) {
        text += "#P" + std::to_string(i) + "=" + std::to_string(i);
    }
    const auto entries = ParseLogText(text);
    ASSERT_EQ(entries.size(), 501U);
    EXPECT_EQ(entries.back().description, "P500");
}

TEST(CheckDays, LooksAtTheDatesOnly) {
    const core::DateTime today{2026, 3, 9, 7, 0, 0};
    struct Case {
        core::DateTime from, to;
        const char* message;
    };
    for (const Case& c :
         {Case{{2026, 3, 9}, {2026, 3, 9, 23, 0, 0}, ""}, Case{{2026, 3, 1}, {2026, 3, 9}, ""},
          Case{{2026, 3, 9}, {2026, 3, 8}, "Properly Choose Date From which To which you want to view log"},
          Case{{2026, 3, 9}, {2026, 3, 10}, "Log Do Not have the Data"},
          Case{{2026, 3, 12}, {2026, 3, 11}, "Properly Choose Date From which To which you want to view log"}}) {
        EXPECT_EQ(CheckDays(c.from, c.to, today), c.message);
    }
}

struct HistoryLogTest : testing::Test {
    support::ScratchDesk desk;

    HistoryLogTest() {
        desk.dbconn.Execute("insert into configdata_master(locationID, consumer) values(3, 'O''Brien')");
        for (const auto& [name, unit] :
             {std::pair{"Flowing Pressure", "kg/cm2"}, std::pair{"Door Position", ""},
              std::pair{"Volume Yesterday", "SCM"}, std::pair{"Flowing Pressure", "kg/cm2"}}) {
            desk.dbconn.Execute("insert into configdata_detail(locationID, description, unit) values(3,?,?)",
                                {name, unit});
        }
    }
    void Log(std::int64_t location, const char* date, const char* text) {
        desk.dbconn.Execute("insert into LogParam(LocationId, date, \"desc\") values(?,?,?)", {location, date, text});
    }
    std::vector<std::string> Cells(const History& history, std::size_t row) { return history.rows.at(row).cells; }
};

TEST_F(HistoryLogTest, PutsEachDaysValuesBehindTheirNames) {
    Log(3, "2026-03-07 08:01:00", "#Flowing Pressure=17.83688749?kg/cm2#Door Position=OPEN#=99");
    Log(3, "2026-03-09 23:59:59", "#Door Position=CLOSE#Volume Yesterday=9273.5?SCM");
    Log(4, "2026-03-08 08:01:00", "#Flowing Pressure=1?kg/cm2");
    const auto history = ReadHistory(desk.dbconn, 3, {2026, 3, 7}, {2026, 3, 9});
    EXPECT_TRUE(history.hasRecord);
    EXPECT_THAT(history.days, ElementsAre("07/03/2026", "08/03/2026", "09/03/2026"));
    EXPECT_EQ(history.rows.at(0).parameter, "Flowing Pressure[kg/cm2]");
    EXPECT_THAT(Cells(history, 0), ElementsAre("17.836887 kg/cm2", "", ""));
    EXPECT_EQ(history.rows.at(1).parameter, "Door Position");
    EXPECT_THAT(Cells(history, 1), ElementsAre("OPEN", "", "CLOSE"));
    EXPECT_THAT(Cells(history, 2), ElementsAre("", "", "9273.5 SCM"));
    EXPECT_EQ(Cells(history, 3), Cells(history, 0));  // of one name, of one value
}

TEST_F(HistoryLogTest, ARangeIsInDaysWhateverTheHour) {
    Log(3, "2026-03-08 00:00:00", "#Door Position=OPEN");
    Log(3, "2026-03-09 00:00:00", "#Door Position=CLOSE");
    const auto one = ReadHistory(desk.dbconn, 3, {2026, 3, 8, 12, 0, 0}, {2026, 3, 8, 1, 0, 0});
    EXPECT_THAT(Cells(one, 1), ElementsAre("OPEN"));
    EXPECT_FALSE(ReadHistory(desk.dbconn, 3, {2026, 3, 5}, {2026, 3, 6}).hasRecord);
    EXPECT_THAT(DaysOf({2026, 2, 27}, {2026, 3, 1}), ElementsAre("27/02/2026", "28/02/2026", "01/03/2026"));
}

TEST_F(HistoryLogTest, FindsTheStationsOfARangeAndADayAround) {
    Log(3, "2026-03-07 08:01:00", "");
    Log(7, "2026-03-01 08:01:00", "");
    EXPECT_EQ(FindLogStations(desk.dbconn, {2026, 3, 8}, {2026, 3, 8}).size(), 1U);
    EXPECT_EQ(FindLogStations(desk.dbconn, {2026, 3, 9}, {2026, 3, 9}).size(), 0U);
    const auto all = FindLogStations(desk.dbconn, {2026, 3, 1}, {2026, 3, 9});
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].consumer, "O'Brien");
    EXPECT_EQ(all[1].consumer, "");  // the log of a station that is gone
}

TEST_F(HistoryLogTest, DamagedRowsAreNobodysValues) {
    Log(3, "yesterday", "#Door Position=OPEN");
    Log(3, "2026-03-09 08:00:00", "Door Position=OPEN");
    desk.dbconn.Execute("insert into LogParam(LocationId, date) values(3, '2026-03-08 08:00:00')");
    const auto history = ReadHistory(desk.dbconn, 3, {2026, 3, 8}, {2026, 3, 9});
    EXPECT_THAT(Cells(history, 1), ElementsAre("", ""));
}

TEST_F(HistoryLogTest, AMonthHasItsFiguresByDayOfItsLatestYear) {
    const auto add = [&](const char* date, const core::Value& flow, double pressure) {
        desk.dbconn.Execute("insert into LogParam(LocationId, date, CurrentDayFlow, currentprs) values(3, ?, ?, ?)",
                            {date, flow, pressure});
    };
    add("2025-03-05 08:00:00", 1.0, 1);
    add("2026-03-09 08:00:00", 900.0, 18);
    add("2026-03-02 08:00:00", std::nullopt, 17.5);
    EXPECT_FALSE(ReadMonth(desk.dbconn, 3, 4));
    EXPECT_FALSE(ReadMonth(desk.dbconn, 4, 3));
    const auto march = ReadMonth(desk.dbconn, 3, 3);
    ASSERT_TRUE(march);
    EXPECT_EQ(march->year, 2026);
    ASSERT_EQ(march->points.size(), 2U);
    EXPECT_EQ(march->points[0].day, 2);
    EXPECT_FALSE(march->points[0].CurrentDayFlow);
    EXPECT_EQ(march->points[0].currentprs, 17.5);
    EXPECT_EQ(march->points[1].CurrentDayFlow, 900.0);
    EXPECT_THAT(ChartStations(desk.dbconn), ElementsAre("3-O'Brien"));
}

TEST_F(HistoryLogTest, AlarmCallsAreEnteredUnderOneNumberAndAcknowledgedUnderAnother) {
    AddDialoutRow(desk.dbconn, desk.clock.Now(), alarmPhone);
    AddDialoutRow(desk.dbconn, desk.clock.Now(), acknowledgedPhone);
    AcknowledgeAlarms(desk.dbconn);
    const auto rows = ReadDialout(desk.dbconn);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].Phone_Num, "3508216");
    EXPECT_EQ(rows[0].Date_Time, "2026-03-09 07:59:30");
    EXPECT_FALSE(rows[0].Ack);
    EXPECT_TRUE(rows[1].Ack);
}

}  // namespace
}  // namespace reports
