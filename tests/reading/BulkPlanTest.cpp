#include <gtest/gtest.h>

#include "reading/BulkPlan.h"
#include "support/ScratchDesk.h"

using namespace reading;

namespace {

constexpr auto coil = core::ValueKind::Logical;
constexpr auto integer = core::ValueKind::Integer;
constexpr auto real = core::ValueKind::Float;
using Blocks = std::vector<Block>;

struct BulkPlanTest : testing::Test {
    support::ScratchDesk desk;
    core::Station station;

    BulkPlanTest() { station.locationID = 5; }

    // Rows at the registers from the first to the last.
    void Map(const std::string& type, int first, int last, int step = 1, int streamno = 1) {
        for (int address = first; address <= last; address += step) {
            desk.dbconn.Execute(
                "insert into configdata_detail(locationID, startaddress, type, StreamNo) values(5,?,?,?)",
                {std::to_string(address), type, streamno});
        }
    }
    Blocks Plan() { return Collect_StartAddress(desk.dbconn, desk.logs, station, 1); }
};

TEST_F(BulkPlanTest, AConfiguredBlockEndsAtThirtyRegistersAtAGapAndWithItsType) {
    Map("Integer", 1, 31);
    Map("Coil(Boolean)", 1, 2);
    Map("Coil(Boolean)", 4, 4);
    Map("Float", 101, 131, 2);
    // No addresses of this stream: unset ones, and those of another.
    Map("Integer", 0, 0);
    Map("Integer", 40, 40, 1, 2);
    desk.dbconn.Execute(
        "insert into configdata_detail(locationID, startaddress, type, StreamNo) "
        "values(5,'','Integer',1),(5,null,'Integer',1),(5,'54-3','Integer',2)");
    const Blocks coils = {{1, 2, coil}, {4, 1, coil}};
    const Blocks integers = {{1, 30, integer}, {31, 1, integer}};
    Blocks expected = coils;
    expected.insert(expected.end(), {{101, 30, real}, {131, 2, real}});
    expected.insert(expected.end(), integers.begin(), integers.end());
    EXPECT_EQ(Plan(), expected);
    station.rtuBitsMode = true;  // where each float has one register, these have gaps
    EXPECT_EQ(Plan().size(), 4U + 16);
    EXPECT_EQ(Plan()[3], (Block{103, 1, real}));
}

TEST_F(BulkPlanTest, AMapOfManyGapsIsPlannedWhole) {
    Map("Integer", 1, 241, 2);
    Map("Text", 1, 1);
    EXPECT_EQ(Plan().size(), 121U);
    EXPECT_EQ(Plan().back(), (Block{241, 1, integer}));
    EXPECT_NE(desk.RtuErr().find("DATA TYPE MISMATCH"), std::string::npos);
}

// A station may refuse a block for one register behind its last.
TEST_F(BulkPlanTest, AFixedMapIsReadUpToItsLastRow) {
    Map("Float", 1, 517, 516);
    Map("Coil(Boolean)", 75, 75);
    const auto plan = [&](int floats) {
        return PlanBlocks(desk.dbconn, desk.logs, station, 1, {floats, 80, {}}).blocks;
    };
    EXPECT_EQ(plan(265).back(), (Block{497, 22, real}));
    EXPECT_EQ(plan(240).back(), (Block{373, 108, real}));
    EXPECT_EQ(plan(265)[1], (Block{63, 13, coil}));
    desk.dbconn.Execute("delete from configdata_detail");
    EXPECT_EQ(plan(265).back(), (Block{497, 34, real}));
    station.rtuBitsMode = true;
    Map("Float", 1, 259, 258);
    EXPECT_EQ(plan(265).back(), (Block{249, 11, real}));

    using Counts = core::ModelCounts;
    EXPECT_EQ(Collect_StartAddress1(Counts{63, 62, {}}, false),
              (Blocks{{1, 62, coil}, {1, 124, real}, {125, 2, real}}));
    EXPECT_EQ(Collect_StartAddress1(Counts{63, 63, {}}, true),
              (Blocks{{1, 62, coil}, {63, 1, coil}, {1, 62, real}, {63, 1, real}}));
    EXPECT_EQ(Collect_StartAddress1(Counts{0, 0, {}}, false), Blocks{});
}

}  // namespace
