#include "demo/DemoRegister.h"

#include "core/Station.h"
#include "core/Text.h"
#include "stations/StationRegister.h"

namespace demo {

namespace {

bool IsAga3(const DemoStation& station) {
    return core::IsCwModel(station.modelno) ? station.stream[0] == "AGA3"
                                            : station.modelno.rfind("TeleCorrector", 0) != 0;
}

// The record as the station form would hold it.
stations::StationRecord RecordOf(const DemoStation& station, std::int64_t locationId) {
    stations::StationRecord record;
    record.locationId = locationId;
    record.consumer = station.consumer;
    record.presentallocation = "24000";
    record.rtumake = "BB";
    record.modelno = station.modelno;
    record.comtype = station.phoneno.empty() ? "Direct Comport" : "DialUp Modem";
    record.systemtype = "12 VDC";
    record.voltlimit = "11.5";
    record.delaytime = std::to_string(station.delaytime);
    record.comport = "COM" + std::to_string(station.port);
    record.baudrate = "9600,N,8,1";
    record.phoneno = station.phoneno;
    record.protocol = station.protocol;
    record.slaveaddress = std::to_string(station.slaveaddress);
    record.groupno = std::to_string(station.groupno);
    record.aga3_7 = IsAga3(station);
    record.Mgo_Qty = "20000";
    record.Cont_Pr = "8.5";
    record.No_Stream = std::to_string(station.No_Stream);
    record.stream = station.stream;
    record.Mode = station.mode;
    record.duration = station.duration;
    record.weekday = static_cast<int>(core::Val(station.day));
    record.monthday = static_cast<int>(core::Val(station.day));
    record.contracthour = station.contracthour;
    return record;
}

}  // namespace

std::int64_t AddStation(core::Database& dbconn, const DemoStation& station) {
    std::int64_t locationId = 0;
    dbconn.InTransaction([&] {
        locationId = stations::NextLocation(dbconn);
        stations::SaveStation(dbconn, RecordOf(station, locationId), {});
    });
    return locationId;
}

std::vector<DemoStation> OneOfEach(const std::string& contracthour) {
    std::vector<DemoStation> stations(5);
    stations[0] = {"North Gate", "TeleFlow", "Modbus", "RTU", 1, 1};
    stations[1] = {"River Crossing", "TeleCorrector", "Modbus", "ASCII", 2, 7};
    stations[2] = {"Hill Farm", "TeleFlow+", "BSAP", "", 3, 1, "5550142"};
    stations[3] = {"O'Brien's Works", "CWGFC-MultiStream", "BSAP", "", 4, 6, "", 2, {"AGA3", "AGA7", "", ""}};
    stations[4] = {"Kiln No. 4", "Quantum", "Quantum", "", 5, 12};
    stations[2].groupno = 2;
    stations[3].groupno = 3;
    stations[4].groupno = 4;
    for (DemoStation& station : stations) {
        station.contracthour = contracthour;
    }
    return stations;
}

}  // namespace demo
