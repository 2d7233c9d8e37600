#include "stations/StationRules.h"

#include <algorithm>
#include <utility>

#include "core/Text.h"

namespace stations {

namespace {

using Texts = std::vector<std::string>;

template <typename Rule>
using RuleTable = std::vector<std::pair<std::string, Rule>>;

// The rule of a name, in any case; the rule of every other name when the table does not have it.
template <typename Rule>
Rule Find(const RuleTable<Rule>& table, const std::string& name, const Rule& other) {
    const std::string trimmed = core::Trim(name);
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&](const auto& entry) { return core::SameText(entry.first, trimmed); });
    return row == table.end() ? other : row->second;
}

ModelRule SingleStream(const std::string& method, Metering metering, std::optional<core::Protocol> protocol) {
    return {.isCW = true,
            .cmb_stm1 = method,
            .metering = metering,
            .protocol = protocol,
            .mbConfigEnabled = false,
            .No_Stream = "1"};
}

ModelRule MultiStream(const Texts& counts) {
    return {.isCW = true,
            .cmb_stm1 = "AGA3",
            .protocol = core::Protocol::Bsap,
            .streamsShown = true,
            .streamCounts = counts,
            .No_Stream = "1"};
}

// A model that is no CW model.
ModelRule Tele(const std::string& method, Metering metering, const std::string& No_Stream) {
    return {.cmb_stm1 = method,
            .metering = metering,
            .meteringHidden = true,
            .mbConfigEnabled = false,
            .No_Stream = No_Stream};
}

// Before a model is chosen the map may still become one that is laid out by hand; the model then fixes it.
ModelRule NoModel() {
    ModelRule rule = Tele("AGA3", Metering::Unchanged, "");
    rule.mbConfigEnabled = true;
    return rule;
}

const RuleTable<ModelRule>& ModelRules() {
    static const RuleTable<ModelRule> rules = {
        {"", NoModel()},
        {"CWEFM-AGA3", SingleStream("AGA3", Metering::Aga3, {})},
        {"CWGFC-AGA3", SingleStream("AGA3", Metering::Aga3, {})},
        {"CWEFM-AGA7", SingleStream("AGA7", Metering::Aga7, {})},
        {"CWGFC-AGA7", SingleStream("AGA7", Metering::Aga7, {})},
        {"CWEFM-AGA9", SingleStream("AGA9", Metering::Unchanged, core::Protocol::Bsap)},
        {"CWGFC-AGA9", SingleStream("AGA9", Metering::Unchanged, core::Protocol::Bsap)},
        {"CWEPAC-AGA11", SingleStream("AGA11", Metering::Unchanged, core::Protocol::Bsap)},
        {"CWEFM-MultiStream", MultiStream({"1", "2", "3", "4"})},
        {"CWGFC-MultiStream", MultiStream({"1", "2"})},
        {"CW_Micro",
         {.protocol = core::Protocol::Bsap, .protocolLocked = true, .scheduleEnabled = false, .isMicro = true}},
        {"TeleFlow", Tele("AGA3", Metering::Aga3, "")},
        {"TeleFlow+", Tele("AGA3", Metering::Aga3, "")},
        {"TeleCorrector", Tele("AGA7", Metering::Aga7, "1")},
        {"TeleCorrector+", Tele("AGA7", Metering::Aga7, "1")},
    };
    return rules;
}

// Types that the form does not offer are here too: a stored row may hold them.
const RuleTable<CommunicationRule>& CommunicationRules() {
    static const RuleTable<CommunicationRule> rules = {
        {"DialUp Modem", {.phoneVisible = true, .delaytime = "4000"}},
        {"GSM Modem", {.phoneVisible = true, .delaytime = "6000"}},
        {"IP", {.settingVisible = false, .baud = Baud::Unchanged, .ipVisible = true, .lineHiddenOnDisplay = true}},
        {"Radio", {.settingEnabled = false, .baud = Baud::Radio}},
    };
    return rules;
}

const RuleTable<ProtocolRule>& ProtocolRules() {
    static const RuleTable<ProtocolRule> rules = {
        {core::TextOf(core::Protocol::Quantum), {}},
        {core::TextOf(core::Protocol::Bsap), {}},
        {core::TextOf(core::Protocol::Modbus),
         {.modeVisible = true,
          .mode = core::Framing::Rtu,
          .mbConfigVisible = true,
          .setRegisterVisible = true,
          .saveWaitsForRegisters = true,
          .floatTwoRegisters = true}},
        {"Radio", {.modeVisible = true, .setRegisterUnchanged = true}},
    };
    return rules;
}

struct ListCheck {
    ListRefusal refusal;
    Texts alsoTaken{};  // not offered, but no fault either
};

const RuleTable<ListCheck>& ListChecks() {
    static const RuleTable<ListCheck> checks = {
        {"cmbrtumake", {{"Invalid RTU"}}},
        {"cmbmodelno", {{"Invalid Model"}}},
        {"cmbcommtype", {{"Invalid Communication Type", true}}},
        {"cmbcommport", {{"Invalid Comport", true}}},
        {"cmbprotocol", {{"Invalid Protocol", true}, {core::TextOf(core::Protocol::Quantum)}}},
        {"cmbbautrate", {{"Invalid Baudrate"}}},
        {"cmbdatabits", {{"Invlaid Databits"}}},
        {"cmbparity", {{"Invalid Parity"}}},
        {"cmbstopbits", {{"Invalid Stopbits"}}},
    };
    return checks;
}

}  // namespace

const Texts& CommunicationTypes() {
    static const Texts list = {"DialUp Modem", "GSM Modem", "Direct Comport", "IP"};
    return list;
}

const Texts& Protocols() {
    static const Texts list = {core::TextOf(core::Protocol::Bsap), core::TextOf(core::Protocol::Modbus)};
    return list;
}

const Texts& Modes() {
    static const Texts list = {core::TextOf(core::Framing::Rtu), core::TextOf(core::Framing::Ascii),
                               core::TextOf(core::Framing::Tcp)};
    return list;
}

const Texts& Groups() {
    static const Texts list = {"1", "2", "3", "4"};
    return list;
}

const Texts& SystemTypes() {
    static const Texts list = {"6   VDC", "12 VDC"};
    return list;
}

const Texts& StreamMethods() {
    static const Texts list = {"AGA3", "AGA7", "AGA9"};
    return list;
}

const Texts& Durations() {
    static const Texts list = {"None", "Daily", "Weekly", "Monthly"};
    return list;
}

const Texts& Weekdays() {
    static const Texts list = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    return list;
}

Texts Makes(core::Database& dbconn) {
    return dbconn.Texts("select cmpcode from product order by cmpcode");
}

Texts Models(core::Database& dbconn, const std::string& make) {
    return dbconn.Texts("select modelno from product_model where cmpcode = ? order by modelno", {core::Trim(make)});
}

Texts Comports(core::Database& dbconn) {
    return dbconn.Texts("select * from comports");
}

Texts Baudrates(core::Database& dbconn) {
    return dbconn.Texts("select * from baudrate");
}

ModelRule RuleOfModel(const std::string& modelno) {
    return Find(ModelRules(), modelno, Tele("AGA3", Metering::Unchanged, ""));
}

CommunicationRule RuleOfCommunication(const std::string& comtype) {
    return Find(CommunicationRules(), comtype, {});
}

ProtocolRule RuleOfProtocol(const std::string& protocol) {
    return Find(ProtocolRules(), protocol, {});
}

bool IsInList(const Texts& list, const std::string& text) {
    const std::string trimmed = core::Trim(text);
    return std::any_of(list.begin(), list.end(), [&](const auto& entry) { return core::SameText(entry, trimmed); });
}

std::optional<ListRefusal> CheckTyped(const std::string& control, const Texts& list, const std::string& text) {
    const ListCheck check = Find(ListChecks(), control, {});
    if (check.refusal.message.empty() || core::Trim(text).empty() || IsInList(list, text) ||
        IsInList(check.alsoTaken, text)) {
        return std::nullopt;
    }
    return check.refusal;
}

}  // namespace stations
