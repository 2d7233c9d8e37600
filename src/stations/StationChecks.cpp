#include <algorithm>
#include <array>

#include "core/Address.h"
#include "core/Station.h"
#include "core/Text.h"
#include "stations/MapBuilder.h"
#include "stations/StationRegister.h"
#include "stations/StationRules.h"

namespace stations {

namespace {

constexpr int mostInGroup = 10;
constexpr double shortestDelay = 100;  // ms
constexpr double longestDelay = 60000;

struct Candidate {
    core::Database& dbconn;
    const StationRecord& record;
    bool isNewStation;
    const std::string& currentconsumer;
};

bool IsBlank(const std::string& text) {
    return core::Trim(text).empty();
}

bool IsType(const StationRecord& record, const char* comtype) {
    return core::SameText(core::Trim(record.comtype), comtype);
}

bool IsIp(const StationRecord& record) {
    return IsType(record, "IP");
}

bool IsModbusTcp(const StationRecord& record) {
    return core::ProtocolOf(record.protocol) == core::Protocol::Modbus &&
           core::FramingOf(record.Mode) == core::Framing::Tcp && !core::IsCwModel(core::Trim(record.modelno));
}

bool HasModem(const StationRecord& record) {
    return IsType(record, "DialUp Modem") || IsType(record, "GSM Modem");
}

// A whole number from 0 to 4. 0 is in no list, but typed it passes: a station in no column of the overview.
bool IsGroup(const std::string& text) {
    const std::string group = core::Trim(text);
    if (group.empty() || group.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    const std::string digits = group.substr(std::min(group.find_first_not_of('0'), group.size()));
    return digits.empty() || (digits.size() == 1 && digits <= "4");
}

// Names are told apart without case everywhere, so a station may change the case of its own name.
bool IsConsumerOfAnother(const Candidate& candidate) {
    const std::string consumer = core::Trim(candidate.record.consumer);
    if (!candidate.isNewStation && core::SameText(consumer, core::Trim(candidate.currentconsumer))) {
        return false;
    }
    return candidate.dbconn.First("select 1 from configdata_master where consumer=? limit 1", {consumer}).has_value();
}

// What the address field of the protocol's frames takes, and no more than its standard gives out.
bool IsSlaveAddress(const StationRecord& record) {
    const std::string text = core::Trim(record.slaveaddress);
    if (text.size() > 3 || text.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    const double address = core::Val(text);
    const auto protocol = core::ProtocolOf(record.protocol);
    if (protocol == core::Protocol::Quantum) {
        return address <= 99;
    }
    const bool isBsap = protocol == core::Protocol::Bsap || core::IsCwModel(core::Trim(record.modelno));
    return address >= 1 && address <= (isBsap ? 127 : 247);
}

// The number that a new station gets is the number of rows in its group and 1.
bool IsGroupFull(const Candidate& candidate) {
    if (!candidate.isNewStation) {
        return false;
    }
    const auto rows = candidate.dbconn.First("select count(*) from configdata_master where groupno = ?",
                                             {core::Val(candidate.record.groupno)});
    return (*rows)[0].Long() >= mostInGroup;
}

// A fixed map of one register a value is read by nobody: only a map that is laid out by hand knows integers.
bool IsIntegerWithoutConfig(const Candidate& candidate) {
    const StationRecord& record = candidate.record;
    if (core::ProtocolOf(record.protocol) != core::Protocol::Modbus || record.MB_CONFIG || record.rtubits ||
        core::IsCwModel(core::Trim(record.modelno))) {
        return false;
    }
    return record.typeInteger || IsIntegerMap(candidate.dbconn, record.locationId);
}

struct Check {
    bool (*fails)(const Candidate& candidate);
    const char* message;
    const char* control;
};

// A blank Mode is not among the checks: its message is tied to a blank protocol too, which is refused before. So a
// Modbus station may be saved without a Mode. "Group No. Should not be blank" cannot be reached behind the first check.
constexpr std::array<Check, 21> checks = {{
    {[](const Candidate& c) { return !IsGroup(c.record.groupno); }, "Select proper group", "cmbgroupno"},
    {[](const Candidate& c) { return IsBlank(c.record.consumer); }, "Consumer Should not be blank", "txtconsumer"},
    {[](const Candidate& c) { return IsBlank(c.record.rtumake); }, "RTU Make Should not be blank", "cmbrtumake"},
    {[](const Candidate& c) { return IsBlank(c.record.modelno); }, "Model no. Should not be blank", "cmbmodelno"},
    {[](const Candidate& c) { return IsBlank(c.record.comtype); }, "Communication Type Should not be blank",
     "cmbcommtype"},
    {[](const Candidate& c) { return IsBlank(c.record.comport) && !IsIp(c.record); },
     "Communication port Should not be blank", "cmbcommport"},
    {[](const Candidate& c) { return IsBlank(c.record.ip) && IsIp(c.record); }, "IP address should not be blank",
     "txtIPAdr"},
    {[](const Candidate& c) { return IsBlank(c.record.protocol); }, "Protocol Should not be blank", "cmbprotocol"},
    {[](const Candidate& c) { return IsBlank(c.record.slaveaddress); }, "SlaveAddress Should not be blank",
     "txtslaveaddres"},
    {[](const Candidate& c) { return IsBlank(c.record.baudrate) && !IsIp(c.record); },
     "Comport Setting Should not be blank", "cmdportsetting"},
    {[](const Candidate& c) { return IsBlank(c.record.phoneno) && HasModem(c.record); },
     "Phone no. Should not be blank", "txtphoneno"},
    {IsConsumerOfAnother, "Consumer Name Exists", "txtconsumer"},
    {[](const Candidate& c) {
         const double delay = core::Val(c.record.delaytime);
         return delay < shortestDelay || delay > longestDelay;
     },
     "Select proper Delay Time", "txtdelay"},
    {IsGroupFull, "You can't add more station in this group", "cmbgroupno"},
    {[](const Candidate& c) { return IsBlank(c.record.systemtype); }, "System Type Should not be blank",
     "cmbsysvolttype"},
    {[](const Candidate& c) {
         return IsBlank(c.record.No_Stream) && core::IsMultiStreamModel(core::Trim(c.record.modelno));
     },
     "Multistream count Should not be blank", "cmb_MultiNO"},
    {IsIntegerWithoutConfig, "Type Integer should be Modbus Configurable", "chk_MBConfig"},
    {[](const Candidate& c) { return !IsSlaveAddress(c.record); }, "Select proper Slave Address", "txtslaveaddres"},
    {[](const Candidate& c) { return !IsIp(c.record) && !IsPortSettings(c.record.baudrate); },
     "Select proper Comport Setting", "cmdportsetting"},
    {[](const Candidate& c) { return IsModbusTcp(c.record) && !IsIp(c.record); },
     "Mode TCP needs the Communication Type IP", "cmbcommtype"},
    {[](const Candidate& c) {
         return IsIp(c.record) &&
                !core::ParseAddress(c.record.ip, IsModbusTcp(c.record) ? core::modbusTcpPort : 0).has_value();
     },
     "Enter the IP address with its port, such as 10.0.0.7:4001", "txtIPAdr"},
}};

}  // namespace

std::optional<Refusal> CheckRecord(core::Database& dbconn, const StationRecord& record, bool isNewStation,
                                   const std::string& currentconsumer) {
    const Candidate candidate{dbconn, record, isNewStation, currentconsumer};
    for (const Check& check : checks) {
        if (check.fails(candidate)) {
            return Refusal{check.message, check.control};
        }
    }
    return std::nullopt;
}

}  // namespace stations
