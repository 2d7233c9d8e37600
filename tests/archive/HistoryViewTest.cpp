#include <gmock/gmock.h>

#include "archive/view/HistoryLines.h"
#include "archive/view/HistoryView.h"
#include "support/ScratchDesk.h"

using namespace archive;

namespace {

using Texts = std::vector<std::string>;

constexpr int hourly = 2;

struct HistoryViewTest : testing::Test {
    support::ScratchDesk desk;

    void Save(const Texts& fields, const std::vector<ArchiveRecord>& records, const ArchiveKey& key = {7, 1, hourly}) {
        SaveArchive(desk.dbconn, key, {fields, records});
    }

    // The rows as the grid shows them, read in portions, cells separated by "|".
    Texts View(const HistoryChoice& choice, int historyType = hourly, std::size_t portion = 2) {
        HistoryView view(desk.dbconn, 7, choice, historyType);
        Texts lines;
        for (auto rows = view.Next(portion); !rows.empty(); rows = view.Next(portion)) {
            EXPECT_LE(rows.size(), portion);
            for (const HistoryRow& row : rows) {
                std::string line;
                for (const std::string& cell : ShownCells(row)) {
                    line += (line.empty() ? "" : "|") + cell;
                }
                lines.push_back(line);
            }
        }
        EXPECT_EQ(view.Done(), view.Total());
        EXPECT_EQ(view.Total(), lines.size());
        return lines;
    }
};

// One record at each of these times, its value the place in the list.
std::vector<ArchiveRecord> At(const std::vector<core::DateTime>& times) {
    std::vector<ArchiveRecord> records;
    for (const core::DateTime& at : times) {
        records.push_back({at, 1, 1, {static_cast<double>(records.size() + 1)}});
    }
    return records;
}

HistoryChoice Days(int from, int to) {
    return {1, ArchiveKind::Hourly, false, {2026, 3, from, 0, 0, 0}, {2026, 3, to, 0, 0, 0}};
}

const HistoryChoice everything{1, ArchiveKind::Hourly};

TEST_F(HistoryViewTest, RowsComeInOrderOfTimeAndValuesSlideLeft) {
    Save({"PRESSURE         ", "FLOW             "}, {{{2026, 3, 9, 8, 0, 0}, 1, 1, {3.25, 30}},
                                                      {{2026, 3, 9, 6, 0, 0}, 1, 1, {1, 10}},
                                                      {{2026, 3, 9, 7, 0, 0}, 1, 1, {}}});
    // The station's list has changed since: the old column stays and has nothing.
    Save({"FLOW             ", "TEMP|'IN'        "}, {{{2026, 3, 9, 9, 5, 4}, 1, 1, {0, -1.5}}});
    HistoryView view(desk.dbconn, 7, everything, hourly);
    EXPECT_EQ(view.Columns(), (Texts{"PRESSURE         ", "FLOW             ", "TEMP|'IN'        "}));
    EXPECT_EQ(View(everything),
              (Texts{"09/03/2026   6:0:0|1|10", "", "09/03/2026   8:0:0|3.25|30", "09/03/2026   9:5:4|0|-1.5"}));
    const auto rows = view.Next(100);
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[3].values[0].column, 1U);  // FLOW, wherever the grid shows it
    EXPECT_EQ(rows[3].values[1].column, 2U);
}

TEST_F(HistoryViewTest, ARangeGoesFromOneBeginningToTheOther) {
    const std::string day8 = "08/03/2026   23:59:59";
    const std::string begins9 = "09/03/2026   0:0:0";
    const std::string hour25 = "09/03/2026   25:0:0";
    const std::string begins10 = "10/03/2026   0:0:0";
    Save({"FLOW             "}, At({{2026, 3, 8, 23, 59, 59},
                                    {2026, 3, 9, 0, 0, 0},
                                    {2026, 3, 9, 25, 0, 0},
                                    {2026, 3, 10, 0, 0, 0},
                                    {2026, 3, 10, 0, 0, 4},
                                    {1976, 12, 31, 6, 0, 0}}));
    EXPECT_EQ(View(Days(9, 10)), (Texts{begins9 + "|2", hour25 + "|3", begins10 + "|4"}));
    EXPECT_EQ(View(Days(10, 11)), (Texts{begins10 + "|4", "10/03/2026   0:0:4|5"}));
    EXPECT_EQ(View(Days(1, 9)), (Texts{day8 + "|1", begins9 + "|2"}));
    EXPECT_EQ(View(Days(10, 9)), Texts{});
    EXPECT_EQ(View(everything), (Texts{"31/12/1976   6:0:0|6", day8 + "|1", begins9 + "|2", hour25 + "|3",
                                       begins10 + "|4", "10/03/2026   0:0:4|5"}));
}

TEST_F(HistoryViewTest, ShowsTheStreamAndTheKindThatWereChosen) {
    const core::DateTime at{2026, 3, 9, 6, 0, 0};
    for (const auto& [key, value] : {std::pair{ArchiveKey{7, 1, 1}, 1.0}, std::pair{ArchiveKey{7, 1, 2}, 2.0},
                                     std::pair{ArchiveKey{7, 2, 5}, 3.0}, std::pair{ArchiveKey{8, 1, 2}, 4.0}}) {
        Save({"FLOW             "}, {{at, 1, 1, {value}}}, key);
    }
    const std::string shown = "09/03/2026   6:0:0|";
    EXPECT_EQ(View({1, ArchiveKind::Daily}, HistoryType(1, ArchiveKind::Daily)), Texts{shown + "1"});
    EXPECT_EQ(View({1, ArchiveKind::Hourly}, HistoryType(1, ArchiveKind::Hourly)), Texts{shown + "2"});
    EXPECT_EQ(View({2, ArchiveKind::Hourly}, HistoryType(2, ArchiveKind::Hourly)), Texts{shown + "3"});
    EXPECT_EQ(View({2, ArchiveKind::Minute}, HistoryType(2, ArchiveKind::Minute)), Texts{});
}

TEST_F(HistoryViewTest, WhatIsStoredInTheMiddleMovesNothing) {
    Save({"FLOW             "}, At({{2026, 3, 9, 6, 0, 0}, {2026, 3, 9, 7, 0, 0}, {2026, 3, 9, 8, 0, 0}}));
    HistoryView view(desk.dbconn, 7, everything, hourly);
    view.Next(2);
    Save({"TEMP             ", "FLOW             "},
         {{{2026, 3, 9, 5, 0, 0}, 1, 1, {9, 9}}, {{2026, 3, 9, 8, 0, 0}, 1, 1, {9, 9}}});
    const auto rest = view.Next(2);
    ASSERT_EQ(rest.size(), 1U);
    EXPECT_EQ(ShownCells(rest[0]), (Texts{"09/03/2026   8:0:0", "3"}));
}

TEST_F(HistoryViewTest, WhatMayBeChosen) {
    desk.dbconn.Execute("insert into configdata_master(locationID, No_Stream) values(7,4),(8,null),(9,1),(9,1)");
    EXPECT_EQ(CountStreams(desk.dbconn, 7), 4);
    EXPECT_EQ(CountStreams(desk.dbconn, 8), 1);
    EXPECT_EQ(CountStreams(desk.dbconn, 9), 2);
    EXPECT_EQ(CountStreams(desk.dbconn, 10), 0);
    EXPECT_EQ(CheckChoice({0, ArchiveKind::Daily}), "Select Stream ");
    EXPECT_EQ(CheckChoice({1, ArchiveKind::Daily}), "");
    // Equal dates move the start on, over the end of a month too.
    const core::DateTime last{2026, 2, 28, 0, 0, 0};
    EXPECT_EQ(StartDay(last, last), (core::DateTime{2026, 3, 1, 0, 0, 0}));
    EXPECT_EQ(StartDay(last, {2026, 3, 1, 0, 0, 0}), last);
    EXPECT_EQ(HistoryTypeOf({4, ArchiveKind::Minute}, 1), 12);
    EXPECT_EQ(HistoryTypeOf({4, std::nullopt}, 5), 5);
}

// A line as text: "6=1 7=2, 9=3", its hours and values, the pieces separated by a comma.
std::string Shown(const HistoryLine& line) {
    std::string text;
    for (const auto& piece : line) {
        text += text.empty() ? "" : ",";
        for (const HistoryPoint& point : piece) {
            const auto hours =
                static_cast<std::int64_t>(point.at / 3600) - core::ToSeconds({2026, 3, 9, 0, 0, 0}) / 3600;
            text += (text.empty() ? "" : " ") + std::to_string(hours) + "=" + std::to_string(std::lround(point.value));
        }
    }
    return text;
}

HistoryRow Row(int hour, const std::vector<HistoryValue>& values) {
    const core::DateTime at{2026, 3, 9 + hour / 24, hour % 24, 0, 0};
    return {ShownTime(at), at, values};
}

TEST(HistoryLinesTest, AMissingValueIsAGap) {
    std::vector<HistoryRow> rows{
        Row(1, {{0, 1}, {1, 10}}), Row(2, {{0, 2}}),          Row(3, {{0, 0}, {1, 30}}), Row(4, {}),
        Row(5, {{0, 5}}),          Row(6, {{0, 6}, {1, 60}}), Row(9, {{0, 9}, {1, 90}}), Row(10, {{0, 10}, {1, 100}})};
    rows.insert(rows.begin() + 5, {"09/03/2026   25:0:0", std::nullopt, {{0, 99}, {1, 99}}});
    EXPECT_EQ(Shown(LineOf(rows, 0)), "1=1 2=2 3=0, 5=5 6=6, 9=9 10=10");
    EXPECT_EQ(Shown(LineOf(rows, 1)), "1=10, 3=30, 6=60, 9=90 10=100");
    EXPECT_EQ(Shown(LineOf(rows, 2)), "");
}

TEST(HistoryLinesTest, ThinningKeepsThePeaksAndTheGaps) {
    std::vector<HistoryRow> rows;
    for (int hour = 0; hour < 240; ++hour) {
        rows.push_back(Row(hour, hour == 150 ? std::vector<HistoryValue>{} : std::vector<HistoryValue>{{0, 5}}));
    }
    rows[7].values[0].value = 900;
    rows[201].values[0].value = -3;
    const HistoryLine line = LineOf(rows, 0);
    const double from = line.front().front().at;
    EXPECT_EQ(Shown(Thinned(line, {from, from + 240 * 3600}, 4)),
              "0=5 7=900 59=5 60=5 119=5 120=5 149=5, 151=5 179=5 180=5 201=-3 239=5");
    // A part of it, with its neighbours so that the line reaches both edges; the other piece is out of sight.
    EXPECT_EQ(Shown(Thinned(line, {from + 5.5 * 3600, from + 8.5 * 3600}, 100)), "5=5 6=5 7=900 8=5 9=5");
}

TEST(HistoryLinesTest, TicksAreRoundTimes) {
    const auto start = static_cast<double>(core::ToSeconds({2026, 3, 8, 22, 10, 0}));
    struct Case {
        double span;
        std::size_t atMost;
        std::string ticks;
    };
    for (const Case& c :
         {Case{6 * 3600.0, 4, "09/03 00:00,09/03 03:00,"}, Case{2 * 3600.0, 4, "08/03 23:00,09/03 00:00,"},
          Case{3.5 * 86400, 5, "09/03/2026,10/03/2026,11/03/2026,12/03/2026,"}, Case{20.0, 3, "22:10:00,22:10:15,"}}) {
        std::string ticks;
        for (const TimeTick& tick : TicksOf({start, start + c.span}, c.atMost)) {
            ticks += tick.text + ",";
        }
        EXPECT_EQ(ticks, c.ticks);
    }
    EXPECT_LE(TicksOf({0, 180.0 * 365 * 86400}, 6).size(), 6U);
}

}  // namespace
