#include <gtest/gtest.h>

#include "reading/BulkPlan.h"
#include "support/ScratchDesk.h"

using namespace reading;

namespace {

constexpr auto coil = core::ValueKind::Logical;
constexpr auto integer = core::ValueKind::Integer;
constexpr auto real = core::ValueKind::Float;

struct BulkPlanTest : testing::Test {
    support::ScratchDesk desk;
    core::Station station;

    BulkPlanTest() { station.locationID = 5; }

    void Map(const std::string& type, const std::vector<int>& addresses, int streamno = 1) {
        for (const int address : addresses) {
            desk.dbconn.Execute(
                "insert into configdata_detail(locationID, startaddress, type, StreamNo) "
                "values(5,?,?,?)",
                {std::to_string(address), type, streamno});
        }
    }
    std::vector<Block> Plan() { return Collect_StartAddress(desk.dbconn, desk.logs, station, 1); }
};

std::vector<int> Range(int first, int last, int step = 1) {
    std::vector<int> range;
    for (int n = first; n <= last; n += step) {
        range.push_back(n);
    }
    return range;
}

TEST_F(BulkPlanTest, ContiguousFloatsMakeOneBlockByTheRegistersTheyTake) {
    Map("Float", {5, 1, 3});
    EXPECT_EQ(Plan(), (std::vector<Block>{{1, 6, real}}));
    station.rtuBitsMode = true;
    EXPECT_EQ(Plan(), (std::vector<Block>{{1, 1, real}, {3, 1, real}, {5, 1, real}}));
}

TEST_F(BulkPlanTest, ABlockEndsAtThirtyRegistersAndAtAGap) {
    Map("Integer", Range(1, 31));
    Map("Coil(Boolean)", {1, 2, 4});
    Map("Float", Range(101, 131, 2), 1);
    EXPECT_EQ(Plan(),
              (std::vector<Block>{
                  {1, 2, coil}, {4, 1, coil}, {101, 30, real}, {131, 2, real}, {1, 30, integer}, {31, 1, integer}}));
}

TEST_F(BulkPlanTest, OtherStreamsAndUnsetAddressesAreNoAddresses) {
    Map("Integer", {0, 7});
    Map("Integer", {9}, 2);
    desk.dbconn.Execute(
        "insert into configdata_detail(locationID, startaddress, type, StreamNo) "
        "values(5,'','Integer',1),(5,null,'Integer',1),(5,'54-3','Integer',2)");
    EXPECT_EQ(Plan(), (std::vector<Block>{{7, 1, integer}}));
}

TEST_F(BulkPlanTest, AMapOfManyGapsIsPlannedWhole) {
    Map("Integer", Range(1, 241, 2));  // 121 rows, each a block of its own
    Map("Text", {1});
    EXPECT_EQ(Plan().size(), 121U);
    EXPECT_EQ(Plan().back(), (Block{241, 1, integer}));
    EXPECT_NE(desk.RtuErr().find("DATA TYPE MISMATCH"), std::string::npos);
}

// A station may refuse a block for one register behind its last.
TEST_F(BulkPlanTest, AFixedMapIsReadUpToItsLastRow) {
    Map("Float", {1, 517});
    Map("Coil(Boolean)", {75});
    const auto plan = [&](int floats) {
        return PlanBlocks(desk.dbconn, desk.logs, station, 1, {floats, 80, {}}).blocks;
    };
    EXPECT_EQ(plan(265).back(), (Block{497, 22, real}));
    EXPECT_EQ(plan(240).back(), (Block{373, 108, real}));
    EXPECT_EQ(plan(265)[1], (Block{63, 13, coil}));
    desk.dbconn.Execute("delete from configdata_detail");
    EXPECT_EQ(plan(265).back(), (Block{497, 34, real}));
    station.rtuBitsMode = true;
    Map("Float", {1, 259});
    EXPECT_EQ(plan(265).back(), (Block{249, 11, real}));
}

TEST(Collect_StartAddress1, DividesTheTotalsOfTheModel) {
    struct Case {
        int floats, booleans;
        bool rtu32bit;
        std::vector<Block> blocks;
    };
    for (const Case& c : {
             Case{62, 62, false, {{1, 62, coil}, {1, 124, real}}},
             Case{63, 63, false, {{1, 62, coil}, {63, 1, coil}, {1, 124, real}, {125, 2, real}}},
             Case{1, 0, false, {{1, 2, real}}},
             Case{0, 3, false, {{1, 3, coil}}},
             Case{0, 0, false, {}},
             Case{63, 0, true, {{1, 62, real}, {63, 1, real}}},
         }) {
        EXPECT_EQ(Collect_StartAddress1({c.floats, c.booleans, {}}, c.rtu32bit), c.blocks);
    }
    EXPECT_EQ(Collect_StartAddress1({400, 80, {}}, false).size(), 9U);
}

}  // namespace
