#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/Database.h"

// A register of stations to show and to test the program on, without a station form.
namespace demo {

struct DemoStation {
    std::string consumer;
    std::string modelno;
    std::string protocol;  // "Modbus", "BSAP" or "Quantum"
    std::string mode;      // Modbus: "RTU" or "ASCII"
    int port = 1;          // COM1 to COM9
    int slaveaddress = 1;
    std::string phoneno{};  // set: behind a modem
    int No_Stream = 1;
    std::array<std::string, 4> stream{};  // of a CW model
    std::string contracthour = "00:00";
    int delaytime = 100;  // ms
    int groupno = 1;
    std::string duration = "Daily";
    std::string day = "0";
};

// Adds the station with its map, in one transaction, and returns its location. Throws DatabaseError.
std::int64_t AddStation(core::Database& dbconn, const DemoStation& station);

// One station of each kind that the field has: Modbus RTU on a direct line, Modbus ASCII, BSAP in the long reply layout
// behind a modem, BSAP in the short one with two streams, and Quantum. Each has a port of its own from COM1.
std::vector<DemoStation> OneOfEach(const std::string& contracthour);

}  // namespace demo
