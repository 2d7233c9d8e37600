#include <gtest/gtest.h>

#include <fstream>

#include "core/Schema.h"
#include "core/Settings.h"
#include "support/ScratchDesk.h"

using namespace core;

namespace {

// A file as an earlier version delivered it, with a station in it.
struct SchemaTest : testing::TestWithParam<int> {
    support::ScratchDirectory scratch;
    std::filesystem::path file = scratch.path / "Kolmar.mdb";
    const int version = GetParam();
    const std::string copy = file.string() + ".version" + std::to_string(version);

    SchemaTest() {
        std::filesystem::copy_file(NORWEN_EARLIER_DATABASES "/Kolmar" + std::to_string(version) + ".mdb", file);
        Database dbconn(file);
        dbconn.Execute("insert into configdata_master(locationID, consumer, mode) values(3, 'O''Brien', 'ASCII')");
        dbconn.Execute("insert into configdata_detail(locationID, startaddress, lastvalue) values(3, '54-2', 8.5)");
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

TEST_P(SchemaTest, AnEarlierFileBecomesWhatIsDeliveredNow) {
    BringUp(file);
    Database now(file);
    const auto master = now.First("select * from configdata_master").value();
    EXPECT_EQ(master.Text("consumer") + master.Text("framing"), "O'Brienrequired");
    EXPECT_EQ(master.Text("pacing") + master.Text("wordorder"), "statedhigh");
    const auto detail = now.First("select * from configdata_detail").value();
    EXPECT_EQ(detail.Number("lastvalue"), 8.5);
    EXPECT_TRUE(detail.IsNull("readat") && detail.IsNull("quality"));
    now.Execute("delete from configdata_master");
    now.Execute("delete from configdata_detail");
    Database delivered(NORWEN_DATABASE);
    EXPECT_EQ(Everything(now), Everything(delivered));
}

TEST_P(SchemaTest, TheFileIsCopiedFirstAndASecondStartChangesNothing) {
    BringUp(file);
    Database before(copy);
    EXPECT_EQ(before.First("pragma user_version").value()[0].Long(), version);
    EXPECT_EQ(before.First("select lastvalue from configdata_detail").value()[0].Number(), 8.5);
    std::filesystem::remove(copy);
    BringUp(file);
    EXPECT_FALSE(std::filesystem::exists(copy));
}

TEST_P(SchemaTest, WhatFailsLeavesTheFileAsItWas) {
    {
        Database dbconn(file);
        dbconn.Execute("alter table configdata_master add column wordorder text");  // in the way of the last step
    }
    EXPECT_THROW(BringUp(file), DatabaseError);
    Database dbconn(file);
    EXPECT_EQ(dbconn.First("pragma user_version").value()[0].Long(), version);
    EXPECT_FALSE(dbconn.First("select * from pragma_table_info('configdata_master') where name='pacing'"));
    // Where no copy can be made, nothing is changed either.
    std::filesystem::remove(copy);
    std::filesystem::create_directories(copy + "/in the way");
    dbconn.Execute("alter table configdata_master drop column wordorder");
    EXPECT_THROW(BringUp(file), DatabaseError);
    EXPECT_EQ(dbconn.First("pragma user_version").value()[0].Long(), version);
}

TEST_P(SchemaTest, ANewerFileIsRefusedWithItsVersion) {
    {
        Database dbconn(file);
        dbconn.Execute("pragma user_version = 99");
    }
    try {
        BringUp(file);
        FAIL() << "a newer file was taken";
    } catch (const DatabaseError& refusal) {
        EXPECT_NE(std::string(refusal.what()).find("version 99"), std::string::npos) << refusal.what();
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, SchemaTest, testing::Range(0, schemaVersion));

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
