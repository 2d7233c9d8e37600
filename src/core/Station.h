#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/Kinds.h"

namespace core {

class Database;
class Row;

// A row of the register, configdata_master, with its nulls resolved: what a conversation needs to know of a station.
struct Station {
    std::int64_t locationID = 0;
    std::string consumer;
    std::string modelno;
    std::string comtype;
    std::string ip;                        // set: an "IP" station, which has no serial port
    int comport = 1;                       // port number
    std::string settings;                  // "9600,N,8,1"
    std::string phoneno;                   // empty: a line without a modem
    Protocol protocol = Protocol::Modbus;  // BSAP for every CW model
    Framing framing = Framing::Rtu;        // of Modbus
    bool standardFraming = false;          // of Modbus ASCII: two-digit LRC, checked on replies
    int slaveaddress = 1;
    int commtimeout = 2000;  // ms between line operations, from delaytime
    int No_Stream = 1;
    std::array<std::string, 4> stream;  // metering method of each stream
    std::string systemtype;
    double voltlimit = 0;
    bool rtuBitsMode = false;  // one register holds a whole float
    bool MB_CONFIG = false;    // collected by the configured register map
    bool isCW = false;
    bool isTeleCorrector = false;
    bool isMultiStream = false;
    std::string dialprefix;  // modem dial command
    Pacing pacing = Pacing::Stated;
    WordOrder wordOrder = WordOrder::HighFirst;  // of Modbus floats in two registers

    // "Modbus RTU", "BSAP".
    std::string ProtocolText() const;
    // The metering method of a stream from 1, where the model has one; empty otherwise.
    std::string ModelText(int streamno) const;
};

// The counts of the model in hand, from modbus_para.
struct ModelCounts {
    int floatcount = 0;
    int boolcount = 0;
    std::array<int, 6> archive{};  // registers of the Modbus archive
};

// Models that a run treats as CW. CW_Micro is not among them.
bool IsCwModel(const std::string& modelno);

bool IsMultiStreamModel(const std::string& modelno);

// Reads one station; nothing when the register has no such location. Throws DatabaseError.
std::optional<Station> ReadStation(Database& dbconn, std::int64_t locationID);

// The same as a screen in front of the operator sees it: there a CW_Micro is a CW, which speaks BSAP.
std::optional<Station> ReadOnlineStation(Database& dbconn, std::int64_t locationID);

// The modbus_para row of the station's stream; nothing when the table has none for its model. Throws DatabaseError.
std::optional<ModelCounts> ReadModelCounts(Database& dbconn, const Station& station, int streamno);

}  // namespace core
