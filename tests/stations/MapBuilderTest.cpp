#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stations/MapBuilder.h"
#include "stations/Tables.h"
#include "support/ScratchDesk.h"

namespace {

using stations::MapChoices;
using testing::ElementsAre;

MapChoices Station(const std::string& modelno, const std::string& protocol, bool optAga3 = false) {
    MapChoices choices;
    choices.locationID = 7;
    choices.groupno = 3;
    choices.modelno = modelno;
    choices.protocol = core::ProtocolOf(protocol);
    choices.optAga3 = optAga3;
    return choices;
}

struct MapBuilderTest : testing::Test {
    support::ScratchDesk desk;

    std::int64_t Count(const std::string& condition) {
        return tables::Count(desk.dbconn, "configdata_detail where " + condition);
    }

    std::vector<std::string> Texts(const std::string& sql) { return tables::Texts(desk.dbconn, sql); }

    std::vector<std::string> Cells(const std::string& description) {
        const auto row = desk.dbconn.First("select * from configdata_detail where description=?", {description});
        std::vector<std::string> cells;
        for (std::size_t i = 0; row && i < row->Size(); ++i) {
            cells.push_back((*row)[i].Text());
        }
        return cells;
    }
};

// The lists hold 162 rows of the groups that all families share, 24 AGA3, 25 AGA7, 18 KEYPAD (6 up to 137), 19 TOTRND
// (5 of 102 to 106), 78 ALARM, 31 PID (182 to 212) and 20 CURVE rows.
TEST_F(MapBuilderTest, RowsOfEachFamily) {
    const struct {
        const char* protocol;
        bool optAga3;
        int rows;
        int keypad, totrnd, alarm, pid, curve;
        std::vector<std::string> missingPid;  // srno of the template
    } cases[] = {
        {"BSAP", true, 162 + 24 + 18 + 14 + 71 + 28, 18, 14, 71, 28, 0, {"206", "207", "208"}},
        {"BSAP", false, 162 + 25 + 12 + 19 + 71 + 27 + 20, 12, 19, 71, 27, 20, {"209", "210", "211", "212"}},
        {"Modbus", true, 162 + 24 + 18 + 14 + 71 + 29 + 20, 18, 14, 71, 29, 20, {"198", "199"}},
        {"Modbus",
         false,
         162 + 25 + 12 + 19 + 71 + 25 + 20,
         12,
         19,
         71,
         25,
         20,
         {"207", "208", "209", "210", "211", "212"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.protocol) + (c.optAga3 ? " AGA3" : " AGA7"));
        stations::BuildMap(desk.dbconn, Station("TeleFlow", c.protocol, c.optAga3));
        EXPECT_EQ(Count("locationID=7 and StreamNo=1 and groupno=3 and lastvalue=0"), c.rows);
        EXPECT_EQ(Count("aga='KEYPAD'"), c.keypad);
        EXPECT_EQ(Count("aga='TOTRND'"), c.totrnd);
        EXPECT_EQ(Count("aga='ALARM'"), c.alarm);
        EXPECT_EQ(Count("aga='PID'"), c.pid);
        EXPECT_EQ(Count("aga='CURVE'"), c.curve);
        EXPECT_EQ(Count("aga='AGA3'") > 0, c.optAga3);
        EXPECT_EQ(Count("aga='AGA7'") > 0, !c.optAga3);
        EXPECT_EQ(Count("description like 'Differential Pressure %'") > 0, c.optAga3) << "alarm rows 226 to 232";
        EXPECT_EQ(Count("description like 'UnCorr.Flowrate %'") > 0, !c.optAga3) << "alarm rows 268 to 274";
        EXPECT_EQ(Texts("select srno from parameter where protocol='Modbus' and aga='PID' and description not in "
                        "(select description from configdata_detail) order by srno"),
                  c.missingPid);
        EXPECT_THAT(Texts("select min(srno)||' '||max(srno) from configdata_detail"),
                    ElementsAre("1 " + std::to_string(c.rows)));
    }
}

TEST_F(MapBuilderTest, TheAddressGridsOfferTheirOwnRows) {
    for (const bool optAga3 : {true, false}) {
        auto choices = Station("TeleFlow", "Modbus", optAga3);
        choices.MB_CONFIG = true;
        stations::BuildRegisterTable(desk.dbconn, choices, stations::RegisterTableUse::AddressGrids);
        const int rows = optAga3 ? 182 + 24 + 18 + 14 + 71 + 29 : 182 + 25 + 12 + 19 + 65 + 25;
        EXPECT_EQ(Texts("select count(*)||' '||max(srno)||' '||sum(MBUS) from mdbus_table where locationID=7"),
                  std::vector{std::to_string(rows) + " " + std::to_string(rows) + " 0"})
            << "no register is assigned yet";
        EXPECT_EQ(Texts("select min(srno)||' '||max(srno) from parameter where protocol='Modbus' and aga='ALARM' and "
                        "description not in (select description from mdbus_table)"),
                  std::vector<std::string>{optAga3 ? "279 285" : "226 238"});
    }
    EXPECT_EQ(Count("1=1"), 0);
}

TEST_F(MapBuilderTest, RegistersFollowTheSizeOfAValue) {
    // Position 100 of the float list; a coil keeps its number.
    const std::string name =
        Texts("select description from parameter where protocol='Modbus' and address='54-100'").at(0);
    const struct {
        stations::RegisterSize registers;
        const char* address;
    } cases[] = {{stations::TypeFloatTwoRegisters(), "199"},
                 {stations::TypeFloatOneRegister(), "100"},
                 {stations::TypeInteger(), "100"}};
    for (const auto& c : cases) {
        auto choices = Station("TeleFlow", "Modbus", true);
        choices.registers = c.registers;
        stations::BuildRegisterMap(desk.dbconn, choices);
        const auto value = Cells(name);
        EXPECT_EQ(value[2], c.address);
        EXPECT_EQ(value[3], "Float");
        EXPECT_EQ(value[9], c.address);
        const auto coil = Cells("Set Time & Date");
        EXPECT_THAT((std::vector{coil[2], coil[3], coil[9]}), ElementsAre("23", "Coil(Boolean)", "23"));
    }
    EXPECT_EQ(Texts("select MBUS from mdbus_table where locationID=7 and address='54-100'"),
              std::vector<std::string>{"100"});
}

TEST_F(MapBuilderTest, ARowIsTheTemplateUnderItsListPosition) {
    stations::BuildMap(desk.dbconn, Station("TeleCorrector", "BSAP"));
    EXPECT_THAT(Texts("select locationID||startaddress||type||lastvalue||groupno||aga||MSD||StreamNo from "
                      "configdata_detail where description='Set Year'"),
                ElementsAre("754-120Float0.03TIME01"));
    EXPECT_THAT(Texts("select unit||aga||CFP||RS||WS from configdata_detail where description='K Factor'"),
                ElementsAre("P/m3AGA7124"));
    stations::BuildMap(desk.dbconn, Station("TeleFlow", "Quantum"));
    EXPECT_EQ(Count("startaddress='1' and aga='Quantum' and StreamNo=1 and MSD=0"), 24);
    EXPECT_THAT(Cells("DP Used"), ElementsAre("7", "DP Used", "1", "Float", "21", "0", "3", "mmWC", "Quantum", "0", "0",
                                              "1", "6", "1", "", ""));
}

TEST_F(MapBuilderTest, StreamsShareTheirPositionsAndAreToldByNumber) {
    auto choices = Station("CWEFM-MultiStream", "BSAP");
    choices.No_Stream = 3;
    choices.stream = {"AGA3", "AGA7", "AGA3", "AGA9"};
    stations::BuildMap(desk.dbconn, choices);
    const auto aga3 = tables::Count(desk.dbconn, "mdbus_mflow_aga3");
    const auto aga7 = tables::Count(desk.dbconn, "mdbus_mflow_aga7");
    EXPECT_EQ(Count("StreamNo=1"), aga3);
    EXPECT_EQ(Count("StreamNo=2"), aga7);
    EXPECT_EQ(Count("StreamNo=3"), aga3);
    EXPECT_EQ(Count("StreamNo=4"), 0);
    EXPECT_EQ(Count("startaddress='54-1'"), 3);
    EXPECT_THAT(Texts("select max(srno) from configdata_detail"), ElementsAre(std::to_string(2 * aga3 + aga7)));
}

TEST_F(MapBuilderTest, OneStreamTakesItsMethodsTable) {
    auto choices = Station("CWEPAC-AGA11", "BSAP");
    choices.No_Stream = 4;
    choices.stream = {"AGA11", "AGA3", "AGA3", "AGA3"};
    stations::BuildMap(desk.dbconn, choices);
    EXPECT_EQ(Texts("select StreamNo||description||startaddress||type from configdata_detail"),
              Texts("select '1'||description||startaddress||type from mdbus_mflow_aga11 order by srno"));
}

TEST_F(MapBuilderTest, SetRegisterOnACwModelLeavesTheClockOut) {
    auto choices = Station("CWEFM-AGA7", "Modbus");
    choices.stream[0] = "AGA7";
    stations::BuildRegisterMap(desk.dbconn, choices);
    EXPECT_EQ(Count("aga='TIME'"), 0);
    EXPECT_EQ(Cells("UnCorr.Flowrate")[2], "41") << "54-21: two registers a value";
    stations::BuildMap(desk.dbconn, choices);
    EXPECT_EQ(Count("aga='TIME'"), 7) << "Save replaces what Set Register made";
    EXPECT_EQ(Count("description='UnCorr.Flowrate'"), 1);
}

TEST_F(MapBuilderTest, StationsWhoseRowsComeFromElsewhere) {
    stations::BuildMap(desk.dbconn, Station("CW_Micro", "BSAP"));
    stations::BuildMap(desk.dbconn, Station("CW_MICRO", "Modbus"));
    EXPECT_EQ(Count("1=1"), 0);

    auto byHand = Station("TeleFlow", "Modbus", true);
    byHand.MB_CONFIG = true;
    desk.dbconn.Execute(
        "insert into configdata_detail (locationID,description,startaddress) values(7,'Flowrate','11')");
    stations::BuildMap(desk.dbconn, byHand);
    EXPECT_EQ(Count("startaddress='11'"), 1);
    EXPECT_EQ(Count("1=1"), 1);
}

TEST_F(MapBuilderTest, ANewMapReplacesAnEarlierTryOfThisStationOnly) {
    auto neighbour = Station("TeleFlow", "BSAP", true);
    neighbour.locationID = 8;
    stations::BuildMap(desk.dbconn, neighbour);
    const auto ofNeighbour = Count("locationID=8");
    stations::BuildRegisterMap(desk.dbconn, Station("TeleFlow", "Modbus", true));
    stations::BuildRegisterMap(desk.dbconn, Station("TeleCorrector", "Modbus"));
    EXPECT_EQ(Count("locationID=7"), 334);
    EXPECT_THAT(Texts("select count(*) from mdbus_table"), ElementsAre("334"));
    stations::BuildMap(desk.dbconn, Station("TeleFlow", "BSAP", true));
    EXPECT_EQ(Count("locationID=7 and startaddress not like '5_-%'"), 0);
    EXPECT_EQ(Count("locationID=8"), ofNeighbour);
}

TEST_F(MapBuilderTest, AnEditNeverDoublesAMap) {
    auto choices = Station("CWEFM-AGA3", "Modbus");
    choices.stream[0] = "AGA3";
    choices.isNewStation = false;
    stations::BuildMap(desk.dbconn, choices);
    const auto rows = Count("1=1");
    EXPECT_GT(rows, 0) << "a CW station on Modbus that had none";
    desk.dbconn.Execute("update configdata_detail set lastvalue=12.5 where description='Volume Yesterday'");
    stations::BuildMap(desk.dbconn, choices);
    stations::BuildRegisterMap(desk.dbconn, choices);
    EXPECT_EQ(Count("1=1"), rows);
    EXPECT_EQ(Cells("Volume Yesterday")[5], "12.5");

    auto teleflow = Station("TeleFlow", "BSAP");
    teleflow.locationID = 9;
    teleflow.isNewStation = false;
    stations::BuildMap(desk.dbconn, teleflow);
    EXPECT_EQ(Count("locationID=9"), 0);
}

}  // namespace
