#include <gtest/gtest.h>

#include "stations/Records.h"
#include "support/ScratchDesk.h"

namespace {

using stations::StationRecord;

struct StationChecksTest : testing::Test {
    support::ScratchDesk desk;

    // "message / control" of what is refused; empty when the record may be saved.
    std::string Told(const StationRecord& record, bool isNewStation = true, const std::string& currentconsumer = "") {
        const auto refusal = stations::CheckRecord(desk.dbconn, record, isNewStation, currentconsumer);
        return refusal ? refusal->message + " / " + refusal->control : std::string();
    }

    void Register(std::int64_t locationId, const std::string& consumer, int group) {
        desk.dbconn.Execute("insert into configdata_master(locationID,consumer,groupno) values(?,?,?)",
                            {locationId, consumer, group});
    }
};

TEST_F(StationChecksTest, WhatAFieldMayHold) {
    const std::string group = "Select proper group / cmbgroupno";
    const std::string slave = "Select proper Slave Address / txtslaveaddres";
    const std::string delay = "Select proper Delay Time / txtdelay";
    const struct {
        std::string StationRecord::*field;
        std::string value;
        std::string told;
        const char* protocol = "BSAP";
    } cases[] = {
        {&StationRecord::consumer, "Mill", ""},
        {&StationRecord::groupno, "5", group},
        {&StationRecord::groupno, "-1", group},
        {&StationRecord::groupno, "abc", group},
        {&StationRecord::groupno, "1.5", group},
        {&StationRecord::groupno, std::string(400, '9'), group},
        {&StationRecord::groupno, "0", ""},
        {&StationRecord::groupno, " 4 ", ""},
        {&StationRecord::delaytime, "99", delay},
        {&StationRecord::delaytime, "100", ""},
        {&StationRecord::delaytime, "60000", ""},
        {&StationRecord::delaytime, "60001", delay},
        {&StationRecord::delaytime, "abc", delay},
        {&StationRecord::slaveaddress, "0", slave},
        {&StationRecord::slaveaddress, "127", ""},
        {&StationRecord::slaveaddress, "128", slave},
        {&StationRecord::slaveaddress, "1x", slave},
        {&StationRecord::slaveaddress, "247", "", "Modbus"},
        {&StationRecord::slaveaddress, "248", slave, "Modbus"},
        {&StationRecord::slaveaddress, "0", "", "Quantum"},
        {&StationRecord::baudrate, "9600,N,8", "Select proper Comport Setting / cmdportsetting"},
        {&StationRecord::baudrate, "1200,e,7,2", ""},
        {&StationRecord::No_Stream, "", ""},  // of a model that has one
        {&StationRecord::comtype, "DialUp Modem", "Phone no. Should not be blank / txtphoneno"},
        {&StationRecord::comtype, "IP", "IP address should not be blank / txtIPAdr"},
    };
    const auto before = records::Snapshot(desk.dbconn);
    for (const auto& c : cases) {
        StationRecord record = records::Filled();
        record.protocol = c.protocol;
        record.*c.field = c.value;
        EXPECT_EQ(Told(record), c.told) << c.value << " " << c.protocol;
    }
    StationRecord network = records::Filled();
    network.comtype = "IP";
    network.ip = "10.0.0.1:4001";
    network.comport = network.baudrate = "";
    EXPECT_EQ(Told(network), "") << "an address needs no line";
    network.ip = "10.0.0.1";
    EXPECT_EQ(Told(network), "Enter the IP address with its port, such as 10.0.0.7:4001 / txtIPAdr");
    network.protocol = "Modbus";
    network.Mode = "TCP";
    EXPECT_EQ(Told(network), "") << "which has a port of its own";
    StationRecord serial = records::Filled();
    serial.protocol = "Modbus";
    serial.Mode = "TCP";
    EXPECT_EQ(Told(serial), "Mode TCP needs the Communication Type IP / cmbcommtype");

    StationRecord integers = records::Filled();
    integers.typeInteger = true;
    EXPECT_EQ(Told(integers), "") << "BSAP has no registers";
    integers.protocol = "Modbus";
    EXPECT_EQ(Told(integers), "Type Integer should be Modbus Configurable / chk_MBConfig") << "no run reads them";
    integers.MB_CONFIG = true;
    EXPECT_EQ(Told(integers), "");
    EXPECT_EQ(records::Snapshot(desk.dbconn), before);
}

// A form with every fault at once: they are told one by one, as the operator corrects them.
TEST_F(StationChecksTest, TheFirstFaultIsTold) {
    Register(1, "Mill", 2);
    for (int i = 2; i <= 11; ++i) {
        Register(i, "Neighbour", 1);
    }
    StationRecord record;
    record.modelno = record.No_Stream = record.delaytime = "";
    record.consumer = " \t";
    const struct {
        const char* told;
        std::string StationRecord::*field;
        const char* corrected;
    } steps[] = {
        {"Select proper group / cmbgroupno", &StationRecord::groupno, "1"},
        {"Consumer Should not be blank / txtconsumer", &StationRecord::consumer, "Mill"},
        {"RTU Make Should not be blank / cmbrtumake", &StationRecord::rtumake, "BB"},
        {"Model no. Should not be blank / cmbmodelno", &StationRecord::modelno, "CWEFM-MULTISTREAM"},
        {"Communication Type Should not be blank / cmbcommtype", &StationRecord::comtype, "gsm modem"},
        {"Communication port Should not be blank / cmbcommport", &StationRecord::comport, "COM1"},
        {"Protocol Should not be blank / cmbprotocol", &StationRecord::protocol, "BSAP"},
        {"SlaveAddress Should not be blank / txtslaveaddres", &StationRecord::slaveaddress, "1"},
        {"Comport Setting Should not be blank / cmdportsetting", &StationRecord::baudrate, "9600,N,8,1"},
        {"Phone no. Should not be blank / txtphoneno", &StationRecord::phoneno, "555"},
        {"Consumer Name Exists / txtconsumer", &StationRecord::consumer, "New"},
        {"Select proper Delay Time / txtdelay", &StationRecord::delaytime, "500"},
        {"You can't add more station in this group / cmbgroupno", &StationRecord::groupno, "2"},
        {"System Type Should not be blank / cmbsysvolttype", &StationRecord::systemtype, "12 VDC"},
        {"Multistream count Should not be blank / cmb_MultiNO", &StationRecord::No_Stream, "2"},
    };
    for (const auto& [told, field, corrected] : steps) {
        EXPECT_EQ(Told(record), told);
        record.*field = corrected;
    }
    EXPECT_EQ(Told(record), "");
}

TEST_F(StationChecksTest, ANameBelongsToOneStation) {
    Register(1, "Mill", 1);
    Register(2, "O'Brien's Works", 1);
    const struct {
        const char* consumer;
        bool isNewStation;
        const char* currentconsumer;
        bool exists;
    } cases[] = {
        {" mill ", true, "", true},     {"O'Brien's Works", true, "", true}, {"Mill", true, "Mill", true},
        {"MILL", false, "Mill", false}, {"Mill", false, "Works", true},      {"o'brien's works", false, "Mill", true},
        {"Kiln", false, "Mill", false}, {"Kiln", true, "", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Told(records::Filled(1, c.consumer), c.isNewStation, c.currentconsumer),
                  c.exists ? "Consumer Name Exists / txtconsumer" : "")
            << c.consumer << c.isNewStation << c.currentconsumer;
    }
}

TEST_F(StationChecksTest, AGroupHoldsTenStations) {
    for (int i = 1; i <= 10; ++i) {
        EXPECT_EQ(Told(records::Filled(i, "New")), "") << i;
        Register(i, "Station " + std::to_string(i), 1);
    }
    StationRecord eleventh = records::Filled(11, "Eleventh");
    EXPECT_EQ(Told(eleventh), "You can't add more station in this group / cmbgroupno");
    EXPECT_EQ(Told(records::Filled(10, "Renamed"), false, "Station 10"), "") << "an edit is never refused by it";
    eleventh.groupno = "2";
    EXPECT_EQ(Told(eleventh), "");
}

}  // namespace
