#include <gtest/gtest.h>

#include "core/Database.h"
#include "support/ScratchDesk.h"

using namespace core;

namespace {

struct DatabaseTest : testing::Test {
    support::ScratchDesk desk;
    Database& dbconn = desk.dbconn;

    std::string One(const std::string& sql, std::initializer_list<Value> values = {}) {
        return dbconn.First(sql, values).value()[0].Text();
    }
};

TEST_F(DatabaseTest, AnyTextCanStandInAnyColumn) {
    for (const std::string text : {"O'Brien", "%_\"", "", "')--", "Ω µ"}) {
        dbconn.Execute("insert into Scheduler(RTUName) values(?)", {text});
        EXPECT_EQ(One("select RTUName from Scheduler where RTUName=?", {text}), text);
    }
}

TEST_F(DatabaseTest, FindsTextAndColumnsInAnySpelling) {
    dbconn.Execute("insert into configdata_master(locationID, consumer) values(7, 'North Gate')");
    const auto row = dbconn.First("select * from ConfigData_Master where CONSUMER='north gate'");
    ASSERT_TRUE(row);
    EXPECT_EQ(row->Long("LocationId"), 7);
    EXPECT_TRUE(row->IsNull("protocol"));
    EXPECT_THROW((void)row->Text("nothing"), DatabaseError);
}

TEST_F(DatabaseTest, TheHourOfTheScheduleComparesInAnyOfItsForms) {
    const std::pair<const char*, const char*> cases[] = {
        {"00:00", "12:00 AM"},
        {"00:59:59", "12:59 AM"},
        {"12:00", "12:00 PM"},
        {"23:59:01", "11:59 PM"},
        {"8:5", "08:05 AM"},
        {"2026-11-24 08:05:00", "08:05 AM"},
        {"08:05 AM", "08:05 AM"},
        {"1:05 PM", "01:05 PM"},
        {"12:00 AM", "12:00 AM"},
        {"", ""},  // nothing at all
        {"noon", ""},
        {"25:00", ""},
        {"08:61", ""},
    };
    for (const auto& [stored, text] : cases) {
        EXPECT_EQ(One("select format(?,'HH:MM AMPM')", {stored}), text) << stored;
    }
    EXPECT_TRUE(dbconn.First("select format(null,'HH:MM AMPM')").value()[0].IsNull());
}

TEST_F(DatabaseTest, DatePartsOfAStoredDate) {
    EXPECT_EQ(One("select day(?)||month(?)||year(?)", {"2026-03-09 08:00:00", "2026-03-09", "2026-03-09"}), "932026");
    EXPECT_TRUE(dbconn.First("select day('soon')").value()[0].IsNull());
}

TEST_F(DatabaseTest, ATransactionIsWholeOrNotThere) {
    const auto add = [&] { dbconn.Execute("insert into Scheduler(RTUName) values('x')"); };
    EXPECT_THROW(dbconn.InTransaction([&] {
        add();
        dbconn.InTransaction(add);
        dbconn.Execute("insert into no_such_table values(1)");
    }),
                 DatabaseError);
    EXPECT_EQ(One("select count(*) from Scheduler"), "0");
    dbconn.InTransaction([&] {
        add();
        dbconn.InTransaction(add);
    });
    EXPECT_EQ(One("select count(*) from Scheduler"), "2");
}

TEST_F(DatabaseTest, AQueryInsideAQueryOfTheSameTextDisturbsNobody) {
    dbconn.Execute("insert into Scheduler(RTUName) values('a'),('b')");
    int seen = 0;
    for (const Row& outer : dbconn.Query("select RTUName from Scheduler order by 1")) {
        static_cast<void>(outer);
        seen += static_cast<int>(dbconn.Query("select RTUName from Scheduler order by 1").size());
    }
    EXPECT_EQ(seen, 4);
}

TEST(Database, AMissingOrDamagedFileIsAnError) {
    const support::ScratchDirectory scratch;
    EXPECT_THROW(Database(scratch.path / "Kolmar.mdb"), DatabaseError);
    std::ofstream(scratch.path / "Kolmar.mdb") << std::string(5000, 'x');
    EXPECT_THROW(Database(scratch.path / "Kolmar.mdb"), DatabaseError);
}

TEST_F(DatabaseTest, AFullDiskIsAnErrorAndLosesNothingThatWasThere) {
    // The page limit stands for the disk: the engine answers both with the same failure.
    dbconn.Execute("insert into Scheduler(RTUName) values('kept')");
    dbconn.Query("pragma max_page_count=1");  // clamps to the present size
    EXPECT_THROW(dbconn.InTransaction([&] {
        for (int i = 0; i < 20000; ++i) {
            dbconn.Execute("insert into Scheduler(RTUName) values(?)", {std::string(500, 'x')});
        }
    }),
                 DatabaseError);
    EXPECT_EQ(One("select count(*) from Scheduler"), "1");
    dbconn.Query("pragma max_page_count=1000000");
    dbconn.Execute("insert into Scheduler(RTUName) values('again')");
    EXPECT_EQ(One("select count(*) from Scheduler"), "2");
}

}  // namespace
