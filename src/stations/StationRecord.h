#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/Kinds.h"

namespace stations {

// A row of the register as the station form holds it: numbers are the texts of their fields, as they were typed.
struct StationRecord {
    std::int64_t locationId = 0;
    std::string consumer;
    std::string presentallocation;
    std::string rtumake;
    std::string modelno;
    std::string comtype;
    std::string systemtype;
    std::string voltlimit;
    std::string delaytime = "500";  // ms
    std::string ip;
    std::string comport;
    std::string baudrate;  // "9600,N,8,1"
    std::string phoneno;
    std::string protocol;
    std::string slaveaddress;
    std::string groupno;
    bool aga3_7 = false;        // AGA3; off: AGA7
    bool aga8_fpv = true;       // AGA8; off: NX-19
    bool Gross_Detail = false;  // Gross; off: Detail
    bool gasauto = false;
    std::string Mgo_Qty;
    std::string Cont_Pr;
    std::string No_Stream = "1";
    std::array<std::string, 4> stream;  // "AGA3", "AGA7", "AGA9", "AGA11"
    std::string Mode;                   // "RTU", "ASCII" or "TCP"; empty but for Modbus
    bool standardFraming = false;       // of Mode "ASCII": two-digit LRC, checked on replies
    core::Pacing pacing = core::Pacing::Stated;
    core::WordOrder wordOrder = core::WordOrder::HighFirst;  // of Modbus
    std::string duration = "None";       // as the form offers it: "None", "Daily", "Weekly", "Monthly"
    int weekday = 2;                     // 1 Sunday to 7 Saturday
    int monthday = 1;                    // 1 to 31
    std::string contracthour = "00:00";  // "hh:mm"
    bool rtubits = false;                // one register holds a whole float
    bool typeInteger = false;            // the form's "Type Integer"; not in the register
    std::string emailto;
    std::string emailcc;
    std::string emailbcc;
    std::string emailsubject;
    bool MB_CONFIG = false;

    bool operator==(const StationRecord&) const = default;
};

}  // namespace stations
