#include <gtest/gtest.h>

#include "core/Address.h"
#include "core/Station.h"
#include "support/ScratchDesk.h"

using namespace core;

namespace {

struct StationTest : testing::Test {
    support::ScratchDesk desk;

    Station Read(const std::string& columns, const std::string& values) {
        desk.dbconn.Execute("delete from configdata_master");
        desk.dbconn.Execute("insert into configdata_master(locationID," + columns + ") values(1," + values + ")");
        return ReadStation(desk.dbconn, 1).value();
    }
};

TEST_F(StationTest, NullsTakeTheValuesOfAPlainModbusStation) {
    const Station station = Read("consumer", "'Mill'");
    EXPECT_EQ(station.protocol, Protocol::Modbus);
    EXPECT_EQ(station.slaveaddress, 1);
    EXPECT_EQ(station.commtimeout, 2000);
    EXPECT_EQ(station.comport, 1);
    EXPECT_EQ(station.settings, "9600,N,8,1");
    EXPECT_EQ(station.phoneno, "");
    EXPECT_EQ(station.framing, Framing::Rtu);
    EXPECT_EQ(station.dialprefix, "atx3dt");
    EXPECT_EQ(station.No_Stream, 1);
    EXPECT_FALSE(ReadStation(desk.dbconn, 2));
}

TEST_F(StationTest, WhatAHandWrote) {
    EXPECT_EQ(Read("delaytime", "99999999999").commtimeout, 60000);
    EXPECT_EQ(Read("delaytime", "-5").commtimeout, 0);
    EXPECT_EQ(Read("comport", "'COM7'").comport, 7);
    EXPECT_EQ(Read("comport", "'COM12'").comport, 2) << "the last character of its name";
    EXPECT_EQ(Read("comport", "'3'").comport, 3);
    const Station onNetwork = Read("ip,comport,baudrate,phoneno", "'10.0.0.7','COM4','19200,N,8,1','5550100'");
    EXPECT_EQ(onNetwork.settings, "9600,n,8,1");
    EXPECT_EQ(onNetwork.phoneno, "");
}

TEST_F(StationTest, CwModelsSpeakBsapWhateverTheColumnSays) {
    EXPECT_EQ(Read("modelno,protocol,mode", "'CWEFM-AGA3','Modbus','RTU'").protocol, Protocol::Bsap);
    // The one CW model that a run does not treat as one.
    const Station micro = Read("modelno,protocol,mode", "'CW_Micro','Modbus','ASCII'");
    EXPECT_FALSE(micro.isCW);
    EXPECT_EQ(micro.protocol, Protocol::Modbus);
    EXPECT_EQ(micro.framing, Framing::Ascii);
    EXPECT_TRUE(Read("modelno", "'TeleCorrector+'").isTeleCorrector);
}

TEST_F(StationTest, TheTextsOfProtocolAndFramingAreReadWithoutCaseAndWhatNamesNoneIsModbusRtu) {
    EXPECT_EQ(Read("protocol,mode", "'modbus ',' ascii'").ProtocolText(), "Modbus ASCII");
    EXPECT_EQ(Read("protocol,mode", "'bsap','ASCII'").ProtocolText(), "BSAP");
    EXPECT_EQ(Read("protocol,mode", "'QUANTUM',''").ProtocolText(), "Quantum");
    EXPECT_EQ(Read("protocol,mode", "'Fieldbus','Morse'").ProtocolText(), "Modbus RTU");
    EXPECT_EQ(Read("protocol,mode", "'',''").ProtocolText(), "Modbus RTU");
}

TEST_F(StationTest, AnIpStationHasNoLineAndNoPhone) {
    const Station station = Read("ip,comport,baudrate,phoneno", "'10.0.0.7','COM4','19200,N,8,1','5550100'");
    EXPECT_EQ(station.settings, "9600,n,8,1");
    EXPECT_EQ(station.phoneno, "");
    EXPECT_FALSE(AddressOf(station)) << "without a port";
    EXPECT_EQ(AddressOf(Read("ip,protocol,mode", "' Pump7.example:4001 ','BSAP','TCP'")),
              (Address{"pump7.example", 4001}));
    EXPECT_EQ(AddressOf(Read("ip,protocol,mode", "'10.0.0.7','Modbus','tcp'")), (Address{"10.0.0.7", 502}));
    EXPECT_FALSE(AddressOf(Read("ip,modelno,protocol,mode", "'10.0.0.7','CWEFM-AGA3','Modbus','TCP'")))
        << "it speaks BSAP";
}

// What is behind one address is on one line, however it was spelled.
TEST(AddressTest, OneAddressHasOneTextAndNothingElseIsTaken) {
    const std::pair<const char*, const char*> taken[] = {
        {"10.0.0.7:4001", "10.0.0.7:4001"},
        {"10.0.0.7", "10.0.0.7:502"},
        {" GATE-3.Field.Example:65535\t", "gate-3.field.example:65535"},
        {"terminal_server:1", "terminal_server:1"},
        {"[FD00:0:0::7]:04001", "[fd00::7]:4001"},
        {"[::1]", "[::1]:502"},
        {"[fe80::1%eth0]:7", "[fe80::1%eth0]:7"},
    };
    for (const auto& [text, address] : taken) {
        const auto parsed = ParseAddress(text, modbusTcpPort);
        ASSERT_TRUE(parsed) << text;
        EXPECT_EQ(AddressText(*parsed), address);
    }
    for (const char* text : {"",
                             ":4001",
                             "a:",
                             "a:0",
                             "a:65536",
                             "a:-1",
                             "a:4001x",
                             "a:+1",
                             "a:1:2",
                             "::1",
                             "fd00::7:4001",
                             "[::1]4001",
                             "[::1",
                             "[]:1",
                             "[10.0.0.7]:1",
                             "[fe80::1%]:1",
                             "10.0.0.256:1",
                             "10.0.7:1",
                             "10.0.0.010:1",
                             "-a:1",
                             "a..b:1",
                             "a b:1",
                             "a/b:1",
                             "http://a:1",
                             "m\xc3\xbcller:1",
                             "4001"}) {
        EXPECT_FALSE(ParseAddress(text, modbusTcpPort)) << text;
    }
    EXPECT_FALSE(ParseAddress("10.0.0.7"));
}

TEST_F(StationTest, StreamsCountOnMultistreamModelsOnly) {
    EXPECT_EQ(Read("modelno,No_Stream", "'TeleFlow',3").No_Stream, 1);
    const Station two = Read("modelno,No_Stream,stream1,stream2", "'CWGFC-MultiStream',2,'AGA3','aga7'");
    EXPECT_EQ(two.No_Stream, 2);
    EXPECT_EQ(two.ModelText(1), "AGA3");
    EXPECT_EQ(two.ModelText(2), "AGA7");
    EXPECT_EQ(two.ModelText(3), "");
    EXPECT_EQ(Read("modelno,No_Stream", "'CWGFC-MultiStream',99").No_Stream, 4);
}

TEST_F(StationTest, TheCountsAreThoseOfTheModelInHand) {
    desk.dbconn.Execute("delete from modbus_para");
    desk.dbconn.Execute(
        "insert into modbus_para values(10,1,2,3,4,5,6,7,'TeleFlow'),(20,2,0,0,0,0,0,0,'TeleCorrector'),"
        "(30,3,0,0,0,0,0,0,'AGA7')");
    const auto teleflow = ReadModelCounts(desk.dbconn, Read("modelno", "'TeleRTU'"), 1);
    EXPECT_EQ(teleflow->floatcount, 10);
    EXPECT_EQ(teleflow->archive[5], 7);
    EXPECT_EQ(ReadModelCounts(desk.dbconn, Read("modelno", "'TeleCorrector'"), 1)->boolcount, 2);
    EXPECT_EQ(ReadModelCounts(desk.dbconn, Read("modelno,stream1", "'CWEFM-AGA7','AGA7'"), 1)->floatcount, 30);
    EXPECT_FALSE(ReadModelCounts(desk.dbconn, Read("modelno,stream1", "'CWEFM-AGA9','AGA9'"), 1));
}

}  // namespace
