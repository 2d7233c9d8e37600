#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "core/Schema.h"
#include "core/Settings.h"
#include "support/ScratchDesk.h"

using namespace core;

namespace {

// A file as version 0 delivered it, with a station in it.
struct SchemaTest : testing::Test {
    support::ScratchDirectory scratch;
    std::filesystem::path file = scratch.path / "Kolmar.mdb";

    SchemaTest() {
        std::filesystem::copy_file(NORWEN_DATABASE_0, file);
        Database dbconn(file);
        dbconn.Execute("insert into configdata_master(locationID, consumer, mode) values(3, 'O''Brien', 'ASCII')");
        dbconn.Execute(
            "insert into configdata_detail values(3,'Flowing Pressure','54-2','Float',1,8.5,1,'BAR','AGA3',7,0,1,6,1)");
    }

    static std::vector<std::string> Everything(Database& dbconn) {
        std::vector<std::string> lines;
        for (const Row& table : dbconn.Query("select name from sqlite_master where type='table' order by name")) {
            const std::string name = table[0].Text();
            for (const Row& column :
                 dbconn.Query("select name, type, dflt_value, pk from pragma_table_info(?)", {name})) {
                lines.push_back(name + "." + column[0].Text() + " " + column[1].Text() + " " + column[2].Text() + " " +
                                column[3].Text());
            }
            for (const Row& row : dbconn.Query("select * from \"" + name + "\"")) {
                std::string line = name;
                for (std::size_t i = 0; i < row.Size(); ++i) {
                    line += "|" + row[i].Text();
                }
                lines.push_back(line);
            }
        }
        for (const Row& index : dbconn.Query("select name from sqlite_master where type='index' order by name")) {
            lines.push_back("index " + index[0].Text());
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }
};

TEST_F(SchemaTest, AnEarlierFileBecomesWhatIsDeliveredNow) {
    BringUp(file);
    const auto copy = file.string() + ".version0";
    Database before(copy);
    EXPECT_EQ(before.First("pragma user_version").value()[0].Long(), 0);
    EXPECT_EQ(before.First("select lastvalue from configdata_detail").value()[0].Number(), 8.5);
    std::filesystem::remove(copy);
    BringUp(file);
    EXPECT_FALSE(std::filesystem::exists(copy)) << "a second start changes nothing";

    Database now(file);
    const auto master = now.First("select * from configdata_master").value();
    EXPECT_EQ(master.Text("consumer") + master.Text("framing"), "O'Brienrequired");
    const auto detail = now.First("select * from configdata_detail").value();
    EXPECT_EQ(detail.Number("lastvalue"), 8.5);
    EXPECT_TRUE(detail.IsNull("readat") && detail.IsNull("quality"));
    now.Execute("delete from configdata_master");
    now.Execute("delete from configdata_detail");
    Database delivered(NORWEN_DATABASE);
    EXPECT_EQ(Everything(now), Everything(delivered));
}

TEST_F(SchemaTest, WhatFailsLeavesTheFileAsItWas) {
    {
        Database dbconn(file);
        dbconn.Execute("create table settings(name text)");  // in the way of the last steps
    }
    EXPECT_THROW(BringUp(file), DatabaseError);
    Database dbconn(file);
    EXPECT_EQ(dbconn.First("pragma user_version").value()[0].Long(), 0);
    EXPECT_FALSE(dbconn.First("select * from sqlite_master where name='outcome'"));
    // Where no copy can be made, nothing is changed either.
    std::filesystem::remove(file.string() + ".version0");
    std::filesystem::create_directories(file.string() + ".version0/in the way");
    dbconn.Execute("drop table settings");
    EXPECT_THROW(BringUp(file), DatabaseError);
    EXPECT_EQ(dbconn.First("pragma user_version").value()[0].Long(), 0);
}

TEST_F(SchemaTest, ANewerFileIsRefusedWithItsVersion) {
    {
        Database dbconn(file);
        dbconn.Execute("pragma user_version = 99");
    }
    EXPECT_THAT([&] { BringUp(file); }, testing::ThrowsMessage<DatabaseError>(testing::HasSubstr("version 99")));
}

TEST(SettingsTest, WhatIsNoNumberCountsAsDelivered) {
    support::ScratchDesk desk;
    EXPECT_EQ(ReadSetting(desk.dbconn, Setting::StationMinutes), 30);
    EXPECT_EQ(RetryMinutes(desk.dbconn, 1), 15);
    EXPECT_EQ(RetryMinutes(desk.dbconn, 2), 60);
    EXPECT_EQ(RetryMinutes(desk.dbconn, 4), 60);
    for (const char* text : {"abc", "-1", "", "1e3", "99999999999"}) {
        desk.dbconn.Execute("update settings set value=?", {text});
        EXPECT_EQ(ReadSetting(desk.dbconn, Setting::RetryRounds), 4) << text;
        EXPECT_EQ(RetryMinutes(desk.dbconn, 1), 15) << text;
    }
    desk.dbconn.Execute("update settings set value=' 0'");
    EXPECT_EQ(ReadSetting(desk.dbconn, Setting::RetryRounds), 0);
    desk.dbconn.Execute("delete from settings");
    EXPECT_EQ(ReadSetting(desk.dbconn, Setting::CalibrationLevel), 5);
}

}  // namespace
