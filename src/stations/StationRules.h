#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/Database.h"
#include "core/Kinds.h"

// What the choices of a station record allow: the rules that the station form applies to its controls.
namespace stations {

// The lists of the form.
const std::vector<std::string>& CommunicationTypes();  // "DialUp Modem", "GSM Modem", "Direct Comport", "IP"
const std::vector<std::string>& Protocols();           // "BSAP", "Modbus"
const std::vector<std::string>& Modes();               // "RTU", "ASCII", "TCP"
const std::vector<std::string>& Groups();              // "1" to "4"
const std::vector<std::string>& SystemTypes();         // "6   VDC", "12 VDC"
const std::vector<std::string>& StreamMethods();       // "AGA3", "AGA7", "AGA9"; AGA11 comes by its model only
const std::vector<std::string>& Durations();           // "None", "Daily", "Weekly", "Monthly"
const std::vector<std::string>& Weekdays();            // from "Sunday"
std::vector<std::string> Makes(core::Database& dbconn);
std::vector<std::string> Models(core::Database& dbconn, const std::string& make);
std::vector<std::string> Comports(core::Database& dbconn);
std::vector<std::string> Baudrates(core::Database& dbconn);

// Which of the two options is on; one that a model puts off leaves the other.
enum class Metering { Unchanged, Aga3, Aga7 };

// What a model fixes. A field that the model leaves as it is has no value or the word for it.
struct ModelRule {
    bool isCW = false;                 // unchanged for "CW_Micro", which counts as no CW model here
    std::string cmb_stm1{};            // empty: unchanged
    std::string cmb_stm2to4 = "AGA3";  // the other streams, whatever the model
    Metering metering = Metering::Unchanged;
    bool meteringHidden = false;               // frameaga3_7 hidden and disabled
    std::optional<core::Protocol> protocol{};  // none: unchanged
    bool protocolLocked = false;
    bool scheduleEnabled = true;              // frm_shed
    bool mbConfigEnabled = true;              // chk_MBConfig; a model that does not disable it leaves it as it is
    bool streamsShown = false;                // fr_Mstream, lb_MultiNo, cmb_MultiNO
    std::vector<std::string> streamCounts{};  // list of cmb_MultiNO; empty: unchanged
    std::string No_Stream{};                  // text of cmb_MultiNO; empty: unchanged
    bool isMicro = false;                     // Mode and Set Register out of reach, Save within it
};
ModelRule RuleOfModel(const std::string& modelno);

// What a communication type shows. Where a field is left as it is, the optional has no value.
enum class Baud { Unchanged, Enabled, Radio };  // Radio: enabled, with the text "19200,N,8,1"
struct CommunicationRule {
    bool phoneVisible = false;
    bool portVisible = true;
    bool settingVisible = true;
    bool settingEnabled = true;
    Baud baud = Baud::Enabled;
    bool ipVisible = false;
    std::string delaytime = "500";     // ms
    bool lineHiddenOnDisplay = false;  // while a record is shown: the port and the baud field
};
CommunicationRule RuleOfCommunication(const std::string& comtype);

// What a protocol shows.
struct ProtocolRule {
    bool modeVisible = false;
    std::optional<core::Framing> mode{};  // none: unchanged
    bool mbConfigVisible = false;
    bool setRegisterVisible = false;
    bool setRegisterUnchanged = false;
    bool saveWaitsForRegisters = false;  // disabled while chk_MBConfig is on
    bool floatTwoRegisters = false;      // optf2 on, optint and optf1 off
};
ProtocolRule RuleOfProtocol(const std::string& protocol);

// Whether a typed text is one of a list, without case.
bool IsInList(const std::vector<std::string>& list, const std::string& text);

// What a combo box of frmconfigstation or frmportsetting says to a typed text that its list does not have.
struct ListRefusal {
    std::string message;
    bool textCleared = false;
};

// The refusal of a typed text when its combo box is left; nothing for a blank text, for one of the list and for a
// control that has no such check.
std::optional<ListRefusal> CheckTyped(const std::string& control, const std::vector<std::string>& list,
                                      const std::string& text);

// The line settings of frmportsetting. Parity is "Odd", "Even" or "None".
struct PortChoices {
    std::string baudrate = "9600";
    std::string databits = "8";
    std::string parity = "None";
    std::string stopbits = "1";
};
const std::vector<std::string>& DataBits();
const std::vector<std::string>& Parities();
const std::vector<std::string>& StopBits();

// Whether a text is line settings: a baud rate, a parity, data bits and stop bits of these lists.
bool IsPortSettings(const std::string& settings);

// "9600,N,8,1" taken apart for the dialog; what is not such a text gives the defaults.
PortChoices ReadPortChoices(const std::string& settings);

// The blank fields of the dialog in their order, each with its message and its control; the first is told.
struct PortRefusal {
    std::string message;
    std::string control;
};
std::vector<PortRefusal> BlankPortChoices(const PortChoices& choices);

// The settings text: baud rate, parity letter, data bits, stop bits.
std::string JoinPortChoices(const PortChoices& choices);

}  // namespace stations
