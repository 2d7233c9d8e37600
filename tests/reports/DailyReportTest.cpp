#include <gmock/gmock.h>

#include "collection/DayLine.h"
#include "reports/DailyReport.h"
#include "support/ScratchDesk.h"

using testing::HasSubstr;

namespace {

struct DailyReportTest : testing::Test {
    support::ScratchDesk desk{{2026, 3, 10, 8, 0, 0}};
    const core::DateTime day = desk.clock.Now();

    void Make() {
        reports::makereport_daily(desk.dbconn, day, desk.clock.Now(), desk.feedback);
        reports::WriteDailyReport(desk.dbconn, day, desk.clock.Now(), desk.shared.dailyReportPath);
    }
    std::string Page() const { return support::FileText(desk.shared.dailyReportPath); }
};

TEST_F(DailyReportTest, HoldsARowAStationWithTheFiguresOfTheDay) {
    desk.dbconn.Execute(
        "insert into configdata_master(locationID,consumer,presentallocation,MGO_Qty,Cont_Pr) values"
        "(2,'Mill',24000,20000,8.5),(1,'Farm',null,null,null),(3,'Old',1,2,3)");
    desk.dbconn.Execute(
        "insert into LogParam values(2,'2026-03-10 06:00:00','',500,12000,7.25),"
        "(3,'2026-03-09 06:00:00','',1,1,1),(3,'2026-02-10 06:00:00','',1,1,1)");
    Make();
    const auto rows = desk.dbconn.Query("select * from daily_rep");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].Text("consumer"), "Farm");
    EXPECT_EQ(rows[0].Number("presentallocation"), 0);
    EXPECT_EQ(rows[1].Long("srno"), 2);
    EXPECT_EQ(rows[1].Number("dayflow"), 500);
    EXPECT_EQ(rows[1].Number("averageflow"), 1200);  // 12000 on the tenth
    EXPECT_EQ(rows[1].Number("pressure"), 7.25);
    EXPECT_EQ(rows[1].Text("status"), "A");
    EXPECT_EQ(rows[2].Number("dayflow"), 0);
    Make();
    EXPECT_EQ(desk.dbconn.Query("select * from daily_rep").size(), 3U);
}

TEST_F(DailyReportTest, ThePageSurvivesAnyNameAndFigure) {
    desk.dbconn.Execute(
        "insert into configdata_master(locationID,consumer,presentallocation,MGO_Qty,Cont_Pr) values"
        "(1,?,999,-1234.5,8.5),(2,'B',1234567.891,-100,1e300)",
        {"{Süd} \\ O'Brien \xFF \xF0\x9F\x98\x80"});
    Make();
    const std::string page = Page();
    for (const char* const text :
         {"\\{S\\u252?d\\} \\\\ O'Brien ? ", "10/03/2026", " 999.00", " -1\\~234.50", " 1\\~234\\~567.89", " -100.00",
          " 8.50", " 1e+300", "\\b 1\\~235\\~566.89\\b0", "\\b -1\\~334.50\\b0"}) {
        EXPECT_THAT(page, HasSubstr(text));
    }
    int depth = 0;
    for (std::size_t i = 0; i < page.size(); ++i) {
        depth += page[i] == '{' && page[i - (i > 0)] != '\\' ? 1 : 0;
        depth -= page[i] == '}' && page[i - 1] != '\\' ? 1 : 0;
    }
    EXPECT_EQ(depth, 0);
}

TEST_F(DailyReportTest, AReportThatCannotBeWrittenLeavesTheOldOne) {
    Make();  // of an empty register
    EXPECT_THAT(desk.feedback.status, testing::Contains("No Data available"));
    const std::string before = Page();
    std::filesystem::create_directory(desk.shared.directory / "daily_report.rtf.part");
    EXPECT_THROW(Make(), std::system_error);
    EXPECT_EQ(Page(), before);
}

// What nobody received is no zero; what a unit counts over its lifetime is no flow of the day.
TEST_F(DailyReportTest, SaysWhatCameOfTheDay) {
    desk.dbconn.Execute(
        "insert into configdata_master(locationID,consumer,protocol,duration,contracthour) values"
        "(1,'Farm','BSAP','Daily','06:00'),(2,'Mill','Modbus','Daily','06:00'),(3,'Kiln','Quantum','Daily','06:00'),"
        "(4,'Lodge','Modbus','Daily','14:30'),(5,'Meadow','Modbus','NO','00:00'),(6,'Gate','Modbus','Daily','06:00')");
    desk.dbconn.Execute(
        "insert into outcome(locationID,gasday,ended,how,attempts,line,asked,received,result) values"
        "(1,'2026-03-10','2026-03-10 06:01:00','schedule',1,'COM1',9,9,'collected'),"
        "(2,'2026-03-10','2026-03-10 06:05:00','schedule',3,'COM3 555',0,0,'not reached'),"
        "(3,'2026-03-10','2026-03-10 06:09:00','late',1,'COM5',24,24,'collected'),"
        "(4,'2026-03-09','2026-03-10 07:00:00','hand',1,'COM5',9,9,'collected'),"
        "(6,'2026-03-10','2026-03-10 06:10:00','schedule',1,'COM5',9,8,'partly')");
    desk.dbconn.Execute(
        "insert into gasday(locationID, gasday, readat, dayflow, monthflow, pressure) "
        "values(1,'2026-03-10','',500,12000,7.25),(3,'2026-03-10','',888,99999,4),"
        "(4,'2026-03-09','',77,77,77),(6,'2026-03-10','',60,null,2)");
    // A row that a run by hand left under this day, of yesterday's gas day.
    desk.dbconn.Execute("insert into LogParam values(4,'2026-03-10 07:00:00','',77,77,77)");
    Make();
    struct Line {
        std::optional<double> dayflow, monthflow, averageflow, pressure;
        std::string status;
        bool operator==(const Line&) const = default;
    };
    std::vector<Line> lines;
    for (const auto& line : reports::DailyLines(desk.dbconn, day, day)) {
        lines.push_back({line.dayflow, line.monthflow, line.averageflow, line.pressure, line.status});
    }
    const std::vector<Line> expected = {{500, 12000, 1200, 7.25, "06:01 by schedule"},
                                        {{}, {}, {}, {}, "not reached, 3 dials, 06:05"},
                                        {888, 99999, {}, 4, "06:09 late"},
                                        {{}, {}, {}, {}, "due 14:30"},
                                        {{}, {}, {}, {}, "no schedule"},
                                        {60, {}, {}, 2, "partly, 8 of 9 values, 06:10"}};
    EXPECT_EQ(lines, expected);
    EXPECT_THAT(Page(), HasSubstr("99\\~999.00\\line cumulative"));
    EXPECT_THAT(Page(), HasSubstr("no data"));
    EXPECT_THAT(Page(), HasSubstr("\\b 560.00\\b0"));  // without the counter
    EXPECT_THAT(Page(), HasSubstr("Total without 4 of the stations"));
    const auto count = collection::CountDay(desk.dbconn, day, day);
    EXPECT_EQ(count.missing, 1);
    EXPECT_EQ(count.partly, 1);
    EXPECT_EQ(desk.dbconn.First("select dayflow from daily_rep where consumer='Mill'").value()[std::size_t{0}].Raw(),
              core::Value(0.0).Raw());
}

}  // namespace
