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
    const struct {
        const char* label;
        Spoil spoil;
        const char* told;
    } cases[] = {
        {"nothing", [](StationRecord&) {}, ""},
        {"group 5", [](StationRecord& r) { r.groupno = "5"; }, "Select proper group / cmbgroupno"},
        {"group -1", [](StationRecord& r) { r.groupno = "-1"; }, "Select proper group / cmbgroupno"},
        {"group abc", [](StationRecord& r) { r.groupno = "abc"; }, "Select proper group / cmbgroupno"},
        {"no group", [](StationRecord& r) { r.groupno = " "; }, "Select proper group / cmbgroupno"},
        {"between two groups", [](StationRecord& r) { r.groupno = "1.5"; }, "Select proper group / cmbgroupno"},
        {"many digits", [](StationRecord& r) { r.groupno = std::string(400, '9'); },
         "Select proper group / cmbgroupno"},
        {"group 0", [](StationRecord& r) { r.groupno = "0"; }, ""},
        {"group 4", [](StationRecord& r) { r.groupno = " 4 "; }, ""},
        {"consumer", [](StationRecord& r) { r.consumer = " \t"; }, "Consumer Should not be blank / txtconsumer"},
        {"make", [](StationRecord& r) { r.rtumake = ""; }, "RTU Make Should not be blank / cmbrtumake"},
        {"model", [](StationRecord& r) { r.modelno = ""; }, "Model no. Should not be blank / cmbmodelno"},
        {"type", [](StationRecord& r) { r.comtype = ""; }, "Communication Type Should not be blank / cmbcommtype"},
        {"port", [](StationRecord& r) { r.comport = ""; }, "Communication port Should not be blank / cmbcommport"},
        {"address", [](StationRecord& r) { r.comtype = "IP"; }, "IP address should not be blank / txtIPAdr"},
        {"an address needs no line",
         [](StationRecord& r) {
             r.comtype = "IP";
             r.ip = "10.0.0.1:4001";
             r.comport = r.baudrate = "";
         },
         ""},
        {"an address without a port", [](StationRecord& r) { r.comtype = "IP", r.ip = "10.0.0.1"; },
         "Enter the IP address with its port, such as 10.0.0.7:4001 / txtIPAdr"},
        {"Modbus TCP has a port",
         [](StationRecord& r) { r.comtype = "IP", r.ip = "[::1]", r.protocol = "Modbus", r.Mode = "TCP"; }, ""},
        {"Modbus TCP on a serial port", [](StationRecord& r) { r.protocol = "Modbus", r.Mode = "TCP"; },
         "Mode TCP needs the Communication Type IP / cmbcommtype"},
        {"protocol", [](StationRecord& r) { r.protocol = r.Mode = ""; }, "Protocol Should not be blank / cmbprotocol"},
        {"integers that no run reads",
         [](StationRecord& r) {
             r.protocol = "Modbus";
             r.typeInteger = true;
         },
         "Type Integer should be Modbus Configurable / chk_MBConfig"},
        {"integers of a map laid out by hand",
         [](StationRecord& r) {
             r.protocol = "Modbus";
             r.typeInteger = r.MB_CONFIG = true;
         },
         ""},
        {"integers of BSAP, which has no registers", [](StationRecord& r) { r.typeInteger = true; }, ""},
        {"Modbus without a mode", [](StationRecord& r) { r.protocol = "Modbus"; }, ""},
        {"slave", [](StationRecord& r) { r.slaveaddress = ""; }, "SlaveAddress Should not be blank / txtslaveaddres"},
        {"settings", [](StationRecord& r) { r.baudrate = ""; }, "Comport Setting Should not be blank / cmdportsetting"},
        {"phone", [](StationRecord& r) { r.comtype = "DialUp Modem"; }, "Phone no. Should not be blank / txtphoneno"},
        {"phone, GSM", [](StationRecord& r) { r.comtype = "gsm modem"; }, "Phone no. Should not be blank / txtphoneno"},
        {"99 ms", [](StationRecord& r) { r.delaytime = "99"; }, "Select proper Delay Time / txtdelay"},
        {"100 ms", [](StationRecord& r) { r.delaytime = "100"; }, ""},
        {"60 s", [](StationRecord& r) { r.delaytime = "60000"; }, ""},
        {"hours", [](StationRecord& r) { r.delaytime = "60001"; }, "Select proper Delay Time / txtdelay"},
        {"BSAP 0", [](StationRecord& r) { r.slaveaddress = "0"; }, "Select proper Slave Address / txtslaveaddres"},
        {"BSAP 128", [](StationRecord& r) { r.slaveaddress = "128"; }, "Select proper Slave Address / txtslaveaddres"},
        {"Modbus 247",
         [](StationRecord& r) {
             r.protocol = "Modbus";
             r.slaveaddress = "247";
         },
         ""},
        {"Modbus 248",
         [](StationRecord& r) {
             r.protocol = "Modbus";
             r.slaveaddress = "248";
         },
         "Select proper Slave Address / txtslaveaddres"},
        {"Quantum 0",
         [](StationRecord& r) {
             r.protocol = "Quantum";
             r.slaveaddress = "0";
         },
         ""},
        {"address text", [](StationRecord& r) { r.slaveaddress = "1x"; },
         "Select proper Slave Address / txtslaveaddres"},
        {"line settings", [](StationRecord& r) { r.baudrate = "9600,N,8"; },
         "Select proper Comport Setting / cmdportsetting"},
        {"line settings in small letters", [](StationRecord& r) { r.baudrate = "1200,e,7,2"; }, ""},
        {"no number", [](StationRecord& r) { r.delaytime = "abc"; }, "Select proper Delay Time / txtdelay"},
        {"volts", [](StationRecord& r) { r.systemtype = ""; }, "System Type Should not be blank / cmbsysvolttype"},
        {"streams",
         [](StationRecord& r) {
             r.modelno = "CWGFC-MULTISTREAM";
             r.No_Stream = "";
         },
         "Multistream count Should not be blank / cmb_MultiNO"},
        {"streams of another model", [](StationRecord& r) { r.No_Stream = ""; }, ""},
    };
    const auto before = records::Snapshot(desk.dbconn);
    for (const auto& c : cases) {
        StationRecord record = records::Filled();
        c.spoil(record);
        EXPECT_EQ(Told(record), c.told) << c.label;
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
    const char* exists = "Consumer Name Exists / txtconsumer";
    const struct {
        const char* consumer;
        bool isNewStation;
        const char* currentconsumer;
        const char* told;
    } cases[] = {
        {"Mill", true, "", exists},
        {" mill ", true, "", exists},
        {"O'Brien's Works", true, "", exists},
        {"Mill", true, "Mill", exists},
        {"Mill", false, "Mill", ""},
        {"MILL", false, "Mill", ""},
        {"Mill", false, "Works", exists},
        {"o'brien's works", false, "Mill", exists},
        {"Kiln", false, "Mill", ""},
        {"Kiln", true, "", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Told(records::Filled(1, c.consumer), c.isNewStation, c.currentconsumer), c.told)
            << c.consumer << c.isNewStation << c.currentconsumer;
    }
}

TEST_F(StationChecksTest, AGroupHoldsTenStations) {
    for (int i = 1; i <= 10; ++i) {
        const std::string consumer = "Station " + std::to_string(i);
        const StationRecord record = records::Filled(i, consumer);
        EXPECT_EQ(Told(record), "") << consumer;
        stations::SaveStation(desk.dbconn, record, {});
    }
    StationRecord eleventh = records::Filled(11, "Eleventh");
    EXPECT_EQ(Told(eleventh), "You can't add more station in this group / cmbgroupno");
    EXPECT_EQ(Told(records::Filled(10, "Renamed"), false, "Station 10"), "") << "an edit is never refused by it";
    eleventh.groupno = "2";
    EXPECT_EQ(Told(eleventh), "");
}

}  // namespace
