#include <gmock/gmock.h>
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

TEST_F(StationChecksTest, EachFieldHasItsMessageAndControl) {
    using Spoil = void (*)(StationRecord&);
    const std::string group = "Select proper group / cmbgroupno";
    const std::string slave = "Select proper Slave Address / txtslaveaddres";
    const std::string delay = "Select proper Delay Time / txtdelay";
    const std::string phone = "Phone no. Should not be blank / txtphoneno";
    const std::string settings = "Select proper Comport Setting / cmdportsetting";
    const std::pair<Spoil, std::string> cases[] = {
        {[](StationRecord&) {}, ""},
        {[](StationRecord& r) { r.groupno = "5"; }, group},
        {[](StationRecord& r) { r.groupno = "-1"; }, group},
        {[](StationRecord& r) { r.groupno = "abc"; }, group},
        {[](StationRecord& r) { r.groupno = "1.5"; }, group},
        {[](StationRecord& r) { r.groupno = std::string(400, '9'); }, group},
        {[](StationRecord& r) { r.groupno = "0"; }, ""},
        {[](StationRecord& r) { r.groupno = " 4 "; }, ""},
        {[](StationRecord& r) { r.consumer = " \t"; }, "Consumer Should not be blank / txtconsumer"},
        {[](StationRecord& r) { r.rtumake = ""; }, "RTU Make Should not be blank / cmbrtumake"},
        {[](StationRecord& r) { r.modelno = ""; }, "Model no. Should not be blank / cmbmodelno"},
        {[](StationRecord& r) { r.comtype = ""; }, "Communication Type Should not be blank / cmbcommtype"},
        {[](StationRecord& r) { r.comport = ""; }, "Communication port Should not be blank / cmbcommport"},
        {[](StationRecord& r) { r.comtype = "IP"; }, "IP address should not be blank / txtIPAdr"},
        {[](StationRecord& r) {  // an address needs no line
             r.comtype = "IP";
             r.ip = "10.0.0.1";
             r.comport = r.baudrate = "";
         },
         ""},
        {[](StationRecord& r) { r.protocol = r.Mode = ""; }, "Protocol Should not be blank / cmbprotocol"},
        {[](StationRecord& r) {  // which no run reads
             r.protocol = "Modbus";
             r.typeInteger = true;
         },
         "Type Integer should be Modbus Configurable / chk_MBConfig"},
        {[](StationRecord& r) {
             r.protocol = "Modbus";
             r.typeInteger = r.MB_CONFIG = true;
         },
         ""},
        {[](StationRecord& r) { r.typeInteger = true; }, ""},  // BSAP has no registers
        {[](StationRecord& r) { r.slaveaddress = ""; }, "SlaveAddress Should not be blank / txtslaveaddres"},
        {[](StationRecord& r) { r.baudrate = ""; }, "Comport Setting Should not be blank / cmdportsetting"},
        {[](StationRecord& r) { r.comtype = "DialUp Modem"; }, phone},
        {[](StationRecord& r) { r.comtype = "gsm modem"; }, phone},
        {[](StationRecord& r) { r.delaytime = "99"; }, delay},
        {[](StationRecord& r) { r.delaytime = "100"; }, ""},
        {[](StationRecord& r) { r.delaytime = "60000"; }, ""},
        {[](StationRecord& r) { r.delaytime = "60001"; }, delay},
        {[](StationRecord& r) { r.delaytime = "abc"; }, delay},
        {[](StationRecord& r) { r.slaveaddress = "0"; }, slave},
        {[](StationRecord& r) { r.slaveaddress = "127"; }, ""},
        {[](StationRecord& r) { r.slaveaddress = "128"; }, slave},
        {[](StationRecord& r) { r.slaveaddress = "1x"; }, slave},
        {[](StationRecord& r) { r.protocol = "Modbus", r.slaveaddress = "247"; }, ""},
        {[](StationRecord& r) { r.protocol = "Modbus", r.slaveaddress = "248"; }, slave},
        {[](StationRecord& r) { r.protocol = "Quantum", r.slaveaddress = "0"; }, ""},
        {[](StationRecord& r) { r.baudrate = "9600,N,8"; }, settings},
        {[](StationRecord& r) { r.baudrate = "1200,e,7,2"; }, ""},
        {[](StationRecord& r) { r.systemtype = ""; }, "System Type Should not be blank / cmbsysvolttype"},
        {[](StationRecord& r) { r.modelno = "CWGFC-MULTISTREAM", r.No_Stream = ""; },
         "Multistream count Should not be blank / cmb_MultiNO"},
        {[](StationRecord& r) { r.No_Stream = ""; }, ""},  // of a model that has one
    };
    const auto before = records::Snapshot(desk.dbconn);
    for (const auto& [spoil, told] : cases) {
        StationRecord record = records::Filled();
        spoil(record);
        EXPECT_EQ(Told(record), told);
    }
    EXPECT_EQ(records::Snapshot(desk.dbconn), before);
}

// A form with every fault at once tells them one by one, as the operator mends them.
TEST_F(StationChecksTest, TheFirstFaultIsTold) {
    Register(1, "Mill", 2);
    for (int i = 2; i <= 11; ++i) {
        Register(i, "Neighbour", 1);
    }
    StationRecord record;
    record.modelno = record.No_Stream = record.delaytime = "";
    const struct {
        const char* control;
        void (*mend)(StationRecord&);
    } steps[] = {
        {"cmbgroupno", [](StationRecord& r) { r.groupno = "1"; }},
        {"txtconsumer", [](StationRecord& r) { r.consumer = "Mill"; }},
        {"cmbrtumake", [](StationRecord& r) { r.rtumake = "BB"; }},
        {"cmbmodelno", [](StationRecord& r) { r.modelno = "CWEFM-MultiStream"; }},
        {"cmbcommtype", [](StationRecord& r) { r.comtype = "GSM Modem"; }},
        {"cmbcommport", [](StationRecord& r) { r.comport = "COM1"; }},
        {"cmbprotocol", [](StationRecord& r) { r.protocol = "BSAP"; }},
        {"txtslaveaddres", [](StationRecord& r) { r.slaveaddress = "1"; }},
        {"cmdportsetting", [](StationRecord& r) { r.baudrate = "9600,N,8,1"; }},
        {"txtphoneno", [](StationRecord& r) { r.phoneno = "555"; }},
        {"txtconsumer", [](StationRecord& r) { r.consumer = "New"; }},
        {"txtdelay", [](StationRecord& r) { r.delaytime = "500"; }},
        {"cmbgroupno", [](StationRecord& r) { r.groupno = "2"; }},
        {"cmbsysvolttype", [](StationRecord& r) { r.systemtype = "12 VDC"; }},
        {"cmb_MultiNO", [](StationRecord& r) { r.No_Stream = "2"; }},
    };
    for (const auto& step : steps) {
        EXPECT_THAT(Told(record), testing::EndsWith(std::string(" / ") + step.control));
        step.mend(record);
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
