#include <ctime>

#include "reports/HistoryLog.h"
#include "support/ScratchDesk.h"

namespace reports {

namespace {

using Cells = std::vector<std::string>;

// Each entry as "description=value" with "|note" where there is one.
std::vector<std::string> Parsed(const std::string& text) {
    std::vector<std::string> shown;
    for (const LogEntry& entry : ParseLogText(text)) {
        shown.push_back(entry.description + "=" + entry.value + (entry.hasNote ? "|" + entry.note : ""));
    }
    return shown;
}

TEST(ParseLogText, TakesEveryKindOfTextApart) {
    struct Case {
        std::string text;
        std::vector<std::string> entries;
    };
    for (const Case& c : std::vector<Case>{
             {"", {}},
             {"Volume=5", {}},
             {"noise#Volume=5", {"Volume=5"}},
             {"#A=1#B=2?SCM#C=ON", {"A=1", "B=2|SCM", "C=ON"}},
             {"#A=#B=?#C=?kPa", {"A=", "B=|", "C=|kPa"}},
             {"#A=1=2?x?y", {"A=1=2|x?y"}},
             {"#Open?=1?", {"Open?=1|"}},
             {"#no value#A=1", {"A=1"}},
             {"#=7# =8#A=1#", {"A=1"}},
             {"###", {}},
             {"#Stream #1 Flow=5", {"1 Flow=5"}},
         }) {
        EXPECT_EQ(Parsed(c.text), c.entries) << c.text;
    }
}

TEST(ParseLogText, Keeps501Entries) {
    std::string text;
    for (int n = 1; n <= 502; ++n) {
        text += "#P" + std::to_string(n) + "=1";
    }
    EXPECT_EQ(ParseLogText(text).size(), 501U);
}

TEST(CellText, RoundsWhatHasANote) {
    struct Case {
        LogEntry entry;
        const char* cell;
    };
    for (const Case& c :
         {Case{{"A", "1.23456789", false, ""}, "1.23456789"}, Case{{"A", "1.23456789", true, "SCM"}, "1.234568 SCM"},
          Case{{"A", "-5", true, ""}, "-5"}, Case{{"A", "123456789012", true, "SCM"}, "123456789012 SCM"},
          Case{{"A", "", true, "kPa"}, "kPa"}, Case{{"A", "inf", true, "kPa"}, "inf kPa"},
          Case{{"A", "1,5", true, "kPa"}, "1,5 kPa"}, Case{{"A", " ON ", false, ""}, " ON "}}) {
        EXPECT_EQ(CellText(c.entry), c.cell) << c.entry.value;
    }
}

struct HistoryLogTest : testing::Test {
    support::ScratchDesk desk;

    void Parameter(std::int64_t station, const std::string& description, const std::string& unit) {
        desk.dbconn.Execute("insert into configdata_detail(locationID, description, unit) values(?,?,?)",
                            {station, description, unit});
    }
    void Log(std::int64_t station, const core::Value& date, const core::Value& desc) {
        desk.dbconn.Execute("insert into LogParam(LocationId, date, \"desc\") values(?,?,?)", {station, date, desc});
    }
    std::vector<Cells> Grid(const core::DateTime& from, const core::DateTime& to) {
        std::vector<Cells> rows;
        for (const HistoryRow& row : ReadHistory(desk.dbconn, 1, DaysOf(from, to)).rows) {
            rows.push_back({row.parameter});
            rows.back().insert(rows.back().end(), row.cells.begin(), row.cells.end());
        }
        return rows;
    }
};

TEST_F(HistoryLogTest, FindsTheStationsOfTheRangeAndADayAround) {
    desk.dbconn.Execute("insert into configdata_master(locationID, consumer) values(2, 'O''Hara & <b>Sons</b>')");
    const std::pair<std::int64_t, core::Value> logged[] = {{1, "2026-03-07 23:59:59"},
                                                           {2, "2026-03-08 00:00:00"},
                                                           {2, "2026-03-09 08:00:00"},
                                                           {3, "2026-03-10 00:00:00"},
                                                           {4, "2026-03-10 00:00:01"},
                                                           {5, "yesterday"},
                                                           {6, {}}};
    for (const auto& [station, date] : logged) {
        Log(station, date, "");
    }
    const auto stations = FindLogStations(desk.dbconn, {2026, 3, 9, 11, 0, 0}, {2026, 3, 9, 11, 0, 0});
    ASSERT_EQ(stations.size(), 2U);
    EXPECT_EQ(stations[0].locationID, 2);
    EXPECT_EQ(stations[0].consumer, "O'Hara & <b>Sons</b>");
    EXPECT_EQ(stations[1].locationID, 3);
    EXPECT_EQ(stations[1].consumer, "");
}

TEST_F(HistoryLogTest, ARowAParameterAColumnADay) {
    Parameter(1, "Flowing Pressure", "kg/cm2");
    Parameter(1, "Door Position", "");
    Parameter(1, "Valve's \"state\"", " ");
    Parameter(2, "Of another", "");
    Log(1, "2026-02-28 08:00:00", "#Flowing Pressure=3.1234567?kg/cm2#Door Position=OPEN#Valve's \"state\"=<b>1</b>");
    Log(1, "2026-03-02 08:00:00", "#Flowing Pressure=4?kg/cm2");
    Log(1, "2026-03-02 09:00:00", "#Flowing Pressure=5?kg/cm2");
    Log(2, "2026-03-01 08:00:00", "#Flowing Pressure=9");
    EXPECT_EQ(Grid({2026, 2, 28, 9, 0, 0}, {2026, 3, 2, 9, 0, 0}),
              (std::vector<Cells>{{"Flowing Pressure[kg/cm2]", "3.123457 kg/cm2", "", "4 kg/cm2"},
                                  {"Door Position", "OPEN", "", ""},
                                  {"Valve's \"state\"", "<b>1</b>", "", ""}}));
    EXPECT_EQ(Grid({2026, 3, 2, 0, 0, 0}, {2026, 3, 2, 0, 0, 0})[0], (Cells{"Flowing Pressure[kg/cm2]", "4 kg/cm2"}));
    EXPECT_TRUE(Grid({2026, 3, 2, 0, 0, 0}, {2026, 3, 1, 0, 0, 0}).empty());
    EXPECT_TRUE(ReadHistory(desk.dbconn, 1, DaysOf({2026, 3, 2, 0, 0, 0}, {2026, 3, 3, 0, 0, 0})).anyDay);
    EXPECT_FALSE(ReadHistory(desk.dbconn, 1, DaysOf({2026, 3, 3, 0, 0, 0}, {2026, 3, 3, 0, 0, 0})).anyDay);
}

TEST_F(HistoryLogTest, TheFirstValueWhoseNameIsContainedFillsTheRow) {
    Parameter(1, "Volume", "SCM");
    Parameter(1, "Volume", "SCM");
    Parameter(1, "Corrected Volume Today", "SCM");
    Parameter(1, "volume", "");
    // The values of the second day stand in another order.
    Log(1, "2026-03-01 08:00:00", "#=99#Volume=1#Volume=2#Corrected Volume Today=3");
    Log(1, "2026-03-02 08:00:00", "#Corrected Volume Today=3#Volume=1#Volume=2");
    EXPECT_EQ(Grid({2026, 3, 1, 0, 0, 0}, {2026, 3, 2, 0, 0, 0}),
              (std::vector<Cells>{{"Volume[SCM]", "1", "1"},
                                  {"Volume[SCM]", "1", "1"},
                                  {"Corrected Volume Today[SCM]", "1", "3"},
                                  {"volume", "", ""}}));
}

TEST_F(HistoryLogTest, DamagedRowsLeaveTheirCellsEmpty) {
    Parameter(1, "Volume", "");
    desk.dbconn.Execute("insert into configdata_detail(locationID) values(1)");
    Log(1, "2026-03-01", {});
    Log(1, "2026-03-02 99:99:99", "#Volume=2");
    Log(1, "2026-03-33 08:00:00", "#Volume=33");
    Log(1, "2026-03-04", std::string("\xFF#Volume\0=#Volume=4", 19));
    Log(1, "2026-03-05", 12.5);
    Log(1, "2026-03-06", std::string(1000000, '#'));
    EXPECT_EQ(Grid({2026, 3, 1, 0, 0, 0}, {2026, 3, 6, 0, 0, 0}),
              (std::vector<Cells>{{"Volume", "", "2", "", "4", "", ""}, {"", "", "", "", "", "", ""}}));
}

TEST_F(HistoryLogTest, AYearOf300ParametersIsThereAtOnce) {
    std::string text;
    desk.dbconn.InTransaction([&] {
        for (int n = 0; n < 300; ++n) {
            const std::string name = "Cumulative Standard Volume " + std::to_string(1000 + n);
            Parameter(1, name, "SCM");
            text += "#" + name + "=" + std::to_string(n) + ".5?SCM";
        }
        for (const core::DateTime& day : DaysOf({2025, 1, 1, 0, 0, 0}, {2025, 12, 31, 0, 0, 0})) {
            Log(1, core::IsoText(day), text);
        }
    });
    const std::clock_t start = std::clock();
    const HistoryGrid grid = ReadHistory(desk.dbconn, 1, DaysOf({2025, 1, 1, 0, 0, 0}, {2025, 12, 31, 0, 0, 0}));
    EXPECT_LT(std::clock() - start, 3 * CLOCKS_PER_SEC);  // of a slow build; a query a day and cell takes minutes
    ASSERT_EQ(grid.rows.size(), 300U);
    ASSERT_EQ(grid.rows[299].cells.size(), 365U);
    EXPECT_EQ(grid.rows[299].cells[364], "299.5 SCM");
}

}  // namespace

}  // namespace reports
