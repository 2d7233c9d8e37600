#include "demo/DemoRegister.h"

#include "core/Station.h"
#include "core/Text.h"
#include "stations/MapBuilder.h"

namespace demo {

namespace {

bool IsAga3(const DemoStation& station) {
    return core::IsCwModel(station.modelno) ? station.stream[0] == "AGA3"
                                            : station.modelno.rfind("TeleCorrector", 0) != 0;
}

stations::MapChoices Choices(const DemoStation& station, std::int64_t locationID) {
    stations::MapChoices choices;
    choices.locationID = locationID;
    choices.groupno = station.groupno;
    choices.modelno = station.modelno;
    choices.protocol = station.protocol;
    choices.No_Stream = station.No_Stream;
    choices.stream = station.stream;
    choices.optAga3 = IsAga3(station);
    return choices;
}

void InsertRow(core::Database& dbconn, const DemoStation& station, std::int64_t locationID) {
    const auto count = dbconn.First("select count(*) from configdata_master where groupno=?", {station.groupno});
    dbconn.Execute(
        "insert into configdata_master(locationID, consumer, presentallocation, rtumake, modelno, comtype, systemtype, "
        "voltlimit, delaytime, drs, ip, comport, baudrate, phoneno, protocol, slaveaddress, groupno, groupcnt, aga3_7, "
        "aga8_fpv, Gross_Detail, gasauto, MGO_Qty, Cont_Pr, No_Stream, stream1, stream2, stream3, stream4, mode, "
        "duration, day, contracthour, rtubits, MB_CONFIG, sampledtoday, sampleddate) "
        "values(?,?,24000,'BB',?,?,'12 "
        "VDC',11.5,?,0,'',?,'9600,N,8,1',?,?,?,?,?,?,true,false,false,20000,8.5,?,?,?,?,?,"
        "?,?,?,?,false,false,false,0)",
        {locationID,
         station.consumer,
         station.modelno,
         station.phoneno.empty() ? "Direct Comport" : "DialUp Modem",
         station.delaytime,
         "COM" + std::to_string(station.port),
         station.phoneno,
         station.protocol,
         station.slaveaddress,
         station.groupno,
         (*count)[0].Long() + 1,
         IsAga3(station),
         station.No_Stream,
         station.stream[0],
         station.stream[1],
         station.stream[2],
         station.stream[3],
         station.mode,
         station.duration,
         station.day,
         station.contracthour});
}

}  // namespace

std::int64_t AddStation(core::Database& dbconn, const DemoStation& station) {
    std::int64_t locationID = 0;
    dbconn.InTransaction([&] {
        locationID = (*dbconn.First("select ifnull(max(locationID),0)+1 from configdata_master"))[0].Long();
        InsertRow(dbconn, station, locationID);
        stations::BuildMap(dbconn, Choices(station, locationID));
        for (const char* description : {"Todays Allocation", "Additional", "Locking Position"}) {
            dbconn.Execute("insert into SummaryPara values(?,?,0)", {locationID, description});
        }
    });
    return locationID;
}

std::vector<DemoStation> OneOfEach(const std::string& contracthour) {
    std::vector<DemoStation> stations(5);
    stations[0] = {"North Gate", "TeleFlow", "Modbus", "RTU", 1, 1};
    stations[1] = {"River Crossing", "TeleCorrector", "Modbus", "ASCII", 2, 7};
    stations[2] = {"Hill Farm", "TeleFlow+", "BSAP", "", 3, 5, "5550142"};
    stations[3] = {"O'Brien's Works", "CWGFC-MultiStream", "BSAP", "", 4, 6, "", 2, {"AGA3", "AGA7", "", ""}};
    stations[4] = {"Kiln No. 4", "Quantum", "Quantum", "", 5, 12};
    for (DemoStation& station : stations) {
        station.contracthour = contracthour;
    }
    return stations;
}

}  // namespace demo
