#include <gtest/gtest.h>

#include <map>

#include "core/Users.h"
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

TEST_F(DeliveredDataTest, EveryBoundOfTheStatementsHasRowsOnBothSides) {
    const struct {
        const char* aga;
        int from;
        int to;
    } dropped[] = {{"TOTRND", 102, 106}, {"ALARM", 268, 274}, {"ALARM", 279, 285},
                   {"PID", 206, 208},    {"PID", 198, 199},   {"PID", 209, 210}};
    for (const auto& d : dropped) {
        const std::string rows = "parameter where protocol='Modbus' and aga='" + std::string(d.aga) + "' and srno";
        EXPECT_GT(Count(rows + " < " + std::to_string(d.from)), 0) << d.aga << d.from;
        EXPECT_EQ(Count(rows + " between " + std::to_string(d.from) + " and " + std::to_string(d.to)),
                  d.to - d.from + 1);
        EXPECT_GT(Count(rows + " > " + std::to_string(d.to)), 0) << d.aga << d.to;
    }
    for (const auto& [aga, bound] : std::map<std::string, int>{{"KEYPAD", 137}, {"ALARM", 232}, {"ALARM", 238}}) {
        EXPECT_EQ(Texts("select count(*) from parameter where protocol='Modbus' and aga=? and srno in (?,?)",
                        {aga, bound, bound + 1}),
                  Names{"2"});
    }
    // The "or" outside the protocol test lets nothing of the other protocols in.
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

TEST_F(DeliveredDataTest, QuantumRowsCarryTheNamesOfTheThreeMessages) {
    EXPECT_EQ(Texts("select description from parameter where protocol='Quantum' order by srno"),
              (Names{"Cumulative Mass",
                     "Cumulative Standard Volume",
                     "Cumulative Flowing Volume",
                     "Cumulative Energy",
                     "Current Mass Flowrate",
                     "Current Standard Volume Flowrate",
                     "Current Flowing Volume Flowrate",
                     "Current Energy FlowRate",
                     "Last 24 hrs MASS",
                     "Last 24 hrs Standard Volume",
                     "Last 24 hrs Flowing Volume",
                     "Last 24 hrs Energy",
                     "Current  24 hrs MASS",
                     "Current  24 hrs Standard Volume",
                     "Current  24 hrsFlowing Volume",
                     "Current  24 hrs Energy",
                     "DD MM YY HH MM SS",
                     "Temperature",
                     "Pressure",
                     "Density Used",
                     "DP Used",
                     "Standard Density",
                     "Calorific Value",
                     "SG"}));
}

// The names that have words for their two states; a name in another spelling would show as an empty cell.
TEST_F(DeliveredDataTest, EveryCoilHasItsWords) {
    Names teleflow = tables::Split(
        "Tap Location; Pressure Tap location; Tap Type; AGA3/7 Method; AGA3 Method; AGA8 Method; "
        "AGA8 Gross Method; Pipe Material; Orifice Material; PID Control; Nomination Control; "
        "Digital Output 1 State; Digital Output 2 State; Digital Input 1 State; Digital Input 2 State; "
        "Digital Output - 1; Digital Output - 2; Radio Power; Radio Shutdown; Auxilary Power; SSV Stream1; "
        "SSV Stream2; Nomination Function Enable; Daily Nomination Enable; Alarm; PID Control Flow/Pressure; "
        "Low DP CutOff; Low Battery Alarm; Battery Overcharge Alarm; AGA8 Calculation Error Alarm; "
        "FP Math Error Alarm; Self Check Fail Alarm; Transmitter Fail Alarm; Sensor Checksum Fail Alarm; "
        "Radio Sensing; Sampler Function Enable; Stack DP Enable; UnCorrected Sampler Enable; "
        "Mode Selection; Stop Mode; Unit Selection; Status; PID Output Auto/Manual; Time Sync; "
        "Door Position; Low Flow CutOff Alarm DialOut; Back Flow Alarm DialOut; Transmitter Failure DialOut; "
        "Low Ram Battery DialOut; FP Math Error DialOut; Self Check Fail DialOut; DP Alarm DialOut; "
        "Flowing Pressure Alarm DialOut; Temperature Alarm DialOut; Flow Rate Alarm DialOut; "
        "Auxilary Input Alarm DialOut; Nomination Alarm DialOut; Battery Voltage Alarm DialOut; "
        "Battery Overcharge DialOut; Hourly Scheduling Enable; Local Scheduling Enable; RTS Delay Mode; "
        "AO Selection Type; Set Analog Output; N2 Selection; CO2 Selection; Gravity Selection; "
        "Static Pressure Selection; Temprature Selection; Set Time & Date");
    Names cw = tables::Split(
        "Tap Type; AGA3/7 Method; AGA3 Method; Flow Calculation Method; AGA - 8 Method; "
        "AGA - 8 Gross Method; Pipe material; Orifice Material; PID Control Enable; Time Sync; "
        "Self Check Fail Alarm; Transmitter Fail Alarm; Sensor Checksum Fail Alarm; Stack DP Enable; "
        "Low DP CutOff; FP Math Error Alarm; Digital Output - 1; Digital Output - 2; Digital Output - 3; "
        "Set Keypad Frequency; USM Uncurrected Flow Keypad; Alarm; Low Battery Alarm; Diff.Pressure Alarm; "
        "Pressure Alarm; Temperature Alarm; Flow Rate Alarm; Battery Power Alarm; "
        "AGA8 Calculation Error Alarm; UnCrr.Flow Rate Alarm; PID Output Auto/Manual; "
        "Hourly Scheduling Enable; Local Scheduling Enable; Metering Pressure Gauge; "
        "Spacific Gravity Calculate; Frequency Selected; CV Selected; CV Gross/Net Selected; Error Curve; "
        "Mass pulse serial; Mass Temp selected; Density Selected; Set Time & Date");
    for (int i = 1; i <= 10; ++i) {
        teleflow.push_back("Digital Input - " + std::to_string(i));
        cw.push_back("Digital Input - " + std::to_string(i));
    }
    EXPECT_EQ(Sorted(Texts("select description from parameter where protocol='Modbus' and type='Boolean'")),
              Sorted(teleflow));
    std::string all;
    for (const char* method : {"aga3", "aga7", "aga9", "aga11"}) {
        all += (all.empty() ? "" : " union ") + std::string("select description from mdbus_mflow_") + method +
               " where type='Boolean'";
    }
    EXPECT_EQ(Sorted(Texts(all)), Sorted(cw));
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
    EXPECT_EQ(Count("comports"), 9);
    EXPECT_EQ(Texts("select device from comports where portname='COM3'"), Names{"/dev/ttyS2"});
    EXPECT_EQ(Count("baudrate where baudrate in ('1200','9600','19200','115200')"), 4);
    for (const std::string& make : Texts("select cmpcode from product")) {
        EXPECT_EQ(Sorted(Texts("select modelno from product_model where cmpcode=?", {make})),
                  Sorted({"TeleFlow", "TeleFlow+", "TeleCorrector", "TeleCorrector+", "TeleRTU", "TeleRTU(M)",
                          "CWEFM-AGA3", "CWEFM-AGA7", "CWEFM-AGA9", "CWGFC-AGA3", "CWGFC-AGA7", "CWGFC-AGA9",
                          "CWEPAC-AGA11", "CWEFM-MultiStream", "CWGFC-MultiStream", "CW_Micro"}));
    }
    EXPECT_EQ(Count("product where cmpcode in ('BB','Bristol Babcock')"), 2);
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
