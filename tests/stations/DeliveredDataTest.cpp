#include <gtest/gtest.h>

#include "core/Users.h"
#include "fieldsim/QuantumUnit.h"
#include "stations/Tables.h"
#include "stations/TemplateQueries.h"
#include "support/ScratchDesk.h"

// Holds the tables that the database is delivered with: what the code looks up by name, by place and by number.
namespace {

using core::Row;
using tables::Names;
using tables::Sorted;

struct DeliveredDataTest : testing::Test {
    support::ScratchDesk desk;

    Names Texts(const std::string& sql, std::initializer_list<core::Value> values = {}) {
        return tables::Texts(desk.dbconn, sql, values);
    }

    std::int64_t Count(const std::string& from) { return tables::Count(desk.dbconn, from); }
};

TEST_F(DeliveredDataTest, TheClockIsSetThroughItsFixedPlaces) {
    const Names parts = {"Set Year", "Set Month", "Set Date", "Set Hour", "Set Minute", "Set Second"};
    const auto clock = [&](const std::string& addressOfName, int first) {
        for (const std::string& part : parts) {
            EXPECT_EQ(Texts(addressOfName, {part}), Names{"54-" + std::to_string(first++)}) << part;
        }
    };
    clock("select address from parameter where protocol='Modbus' and description=?", 120);
    clock("select startaddress from parameter where protocol='BSAP' and description=?", 120);
    clock("select startaddress from mdbus_mflow_aga3 where description=?", 83);
    const std::string last = " where description='Set Time & Date'";
    EXPECT_EQ(Texts("select distinct address from parameter" + last), Names{"55-23"});
    EXPECT_EQ(Texts("select startaddress from mdbus_mflow_aga3" + last), Names{"55-11"});
}

// The "or" outside the protocol test lets nothing of the other protocols in.
TEST_F(DeliveredDataTest, AModbusMapHasModbusRowsOnly) {
    for (const bool optAga3 : {true, false}) {
        auto queries = stations::TemplateMapQueries(optAga3);
        for (const auto use : {stations::RegisterTableUse::SetRegister, stations::RegisterTableUse::AddressGrids}) {
            const auto more = stations::RegisterTableQueries(optAga3, use);
            queries.insert(queries.end(), more.begin(), more.end());
        }
        for (const std::string& query : queries) {
            for (const Row& row : desk.dbconn.Query(query)) {
                ASSERT_EQ(row.Text("protocol"), "Modbus") << query;
            }
        }
    }
}

TEST_F(DeliveredDataTest, ThePositionsOfTheListsAreTheRegistersOfTheTemplates) {
    EXPECT_EQ(Count("parameter where protocol='Modbus' and address <> case type when 'Float' then '54-' else '55-' end "
                    "|| MBUS"),
              0);
    EXPECT_EQ(Count("parameter where datatype <> type"), 0);
    EXPECT_EQ(Count("(select Description,address,type,unit,aga,MBUS,CFP,RS,WS from parameter where protocol='Modbus' "
                    "except select Description,startaddress,type,unit,aga,MBUS,CFP,RS,WS from parameter "
                    "where protocol='BSAP')"),
              0);
    EXPECT_EQ(Count("parameter where protocol='BSAP'"), Count("parameter where protocol='Modbus'"));
    for (const char* method : {"aga3", "aga7", "aga9", "aga11"}) {
        EXPECT_EQ(Count("mdbus_mflow_" + std::string(method) +
                        " where startaddress <> case type when 'Float' then '54-' else '55-' end || MSD or "
                        "srno <> rowid"),
                  0);
    }
}

TEST_F(DeliveredDataTest, AlarmBlocksHoldTheValueAndItsLimits) {
    int first = 226;
    for (const char* quantity : {"Differential Pressure", "Flowrate", "Flowing Pressure", "Flowing Temperature",
                                 "Main Battery", "Auxilary Input", "UnCorr.Flowrate"}) {
        Names block;
        for (const char* row :
             {" Live", " Lo Limit", " Lo Deadband", " Lo-Lo", " Hi Limit", " Hi Deadband", " Hi-Hi"}) {
            block.push_back(std::string(quantity) + row);
        }
        EXPECT_EQ(
            Texts("select description from parameter where protocol='Modbus' and aga='ALARM' and type='Float' and "
                  "srno between ? and ? order by srno",
                  {first, first + 6}),
            block);
        first += 7;
    }
}

// In the spelling that the units have.
TEST_F(DeliveredDataTest, QuantumRowsCarryTheNamesOfTheThreeMessages) {
    Names names;
    for (const int message : {1, 2, 3}) {
        const auto& ofMessage = fieldsim::QuantumNames(message);
        names.insert(names.end(), ofMessage.begin(), ofMessage.end());
    }
    EXPECT_EQ(Texts("select description from parameter where protocol='Quantum' order by srno"), names);
}

TEST_F(DeliveredDataTest, TheListsFitTheBulkReadAndTheArchiveLiesBehindThem) {
    EXPECT_EQ(Sorted(Texts("select model from modbus_para")),
              Sorted({"AGA3", "AGA7", "AGA9", "AGA11", "TeleCorrector", "TeleFlow"}));
    for (const Row& row : desk.dbconn.Query("select * from modbus_para")) {
        const auto floatcount = row[0].Long();
        const auto boolcount = row[1].Long();
        EXPECT_TRUE(floatcount > 0 && floatcount <= 400 && boolcount > 0 && boolcount <= 80);
        EXPECT_LE((boolcount + 61) / 62 + (2 * floatcount + 123) / 124, 10) << "blocks of 62 coils and 124 registers";
        std::set<std::int64_t> registers;
        for (std::size_t i = 2; i < 8; ++i) {
            EXPECT_GT(row[i].Long(), 300);
            registers.insert(row[i].Long());
        }
        EXPECT_EQ(registers.size(), 6U);
        EXPECT_GE(row["hourlyData"].Long() - row["dailyData"].Long(), 60) << "four records of 15 floats";
    }
}

TEST_F(DeliveredDataTest, TheScreensHaveTheirLists) {
    EXPECT_EQ(Texts("select comtype||'='||dialcommand from modem"), (Names{"DialUp Modem=atx3dt", "GSM Modem=atd"}));
    EXPECT_EQ(Texts("select device from comports where portname='COM3'"), Names{"/dev/ttyS2"});
    EXPECT_EQ(Count("baudrate where baudrate in ('1200','9600','19200','115200')"), 4);
    EXPECT_EQ(Texts("select * from logGen"), Names{"0"});
    EXPECT_EQ(Texts("select url||user||password||sender from mail_server"), Names{""});
    EXPECT_GT(Count("calibSystemSignals"), 0);
    EXPECT_EQ(Count("configdata_master") + Count("configdata_detail") + Count("LogParam"), 0);
}

TEST_F(DeliveredDataTest, TheFirstUserCanLogInAndDoEverything) {
    EXPECT_EQ(core::Login(desk.dbconn, desk.shared, desk.logs, "operator", "operator"), core::LoginOutcome::LoggedIn);
    EXPECT_TRUE(desk.shared.rights.rightConfigStation && desk.shared.rights.rightUserManager);
    EXPECT_EQ(core::CheckWriteLevel(desk.dbconn, "Volume Yesterday", 6, 6, desk.shared.currentuser),
              core::AccessLevel::ReadWrite);
}

}  // namespace
