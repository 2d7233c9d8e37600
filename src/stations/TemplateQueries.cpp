#include "stations/TemplateQueries.h"

#include <string_view>

#include "core/Text.h"

namespace stations {

namespace {

constexpr std::string_view modbusRows = "select * from parameter where protocol= 'Modbus' and ";

// The srno bounds are the subset of each family. The "or" of the AGA3 statements stands outside the protocol test:
// the templates of the other protocols are numbered so that none of them fulfils it.
std::string Modbus(std::string_view condition) {
    return std::string(modbusRows) + std::string(condition) + " order by srno";
}

std::string Method(bool optAga3) {
    return Modbus(optAga3 ? "aga='AGA3'" : "aga='AGA7'");
}

std::string Keypad(bool optAga3) {
    return Modbus(optAga3 ? "aga='KEYPAD'" : "aga='KEYPAD' and srno > 137");
}

std::string Totals(bool optAga3) {
    return Modbus(optAga3 ? "(aga='TOTRND' and srno < 102) or (aga='TOTRND' and srno > 106)" : "aga='TOTRND'");
}

std::string Alarms(bool optAga3) {
    return Modbus(optAga3 ? "(aga='ALARM' and srno < 268) or (aga='ALARM' and srno > 274)"
                          : "aga='ALARM' and srno > 232");
}

std::string AddressGridAlarms(bool optAga3) {
    return Modbus(optAga3 ? "(aga='ALARM' and srno < 279) or (aga='ALARM' and srno > 285)"
                          : "aga='ALARM' and srno > 238");
}

std::string RegisterPid(bool optAga3) {
    return Modbus(optAga3 ? "(aga='PID' and srno < 198) or (aga='PID' and srno > 199)" : "aga='PID' and srno < 207");
}

std::string AddressGridPid(bool optAga3) {
    return Modbus(optAga3 ? "(aga='PID' and srno < 209) or (aga='PID' and srno > 210)" : "aga='PID' and srno < 207");
}

std::string TemplatePid(bool optAga3) {
    return Modbus(optAga3 ? "(aga='PID' and srno < 206) or (aga='PID' and srno > 208)" : "aga='PID' and srno < 209");
}

}  // namespace

std::vector<std::string> TemplateMapQueries(bool optAga3) {
    return {Modbus("aga <> 'ALARM' and aga <> 'PID' and aga <>'TOTRND' and aga<>'KEYPAD' and aga <> 'AGA3' and "
                   "aga <> 'AGA7' and aga<>'CURVE'"),
            Method(optAga3), Keypad(optAga3), Totals(optAga3), Alarms(optAga3), TemplatePid(optAga3),
            // No row has the group 'NotCURVE': an AGA3 station has no error curve.
            Modbus(optAga3 ? "aga='NotCURVE'" : "aga='CURVE'")};
}

std::vector<std::string> RegisterTableQueries(bool optAga3, RegisterTableUse use) {
    const bool grids = use == RegisterTableUse::AddressGrids;
    // The first statement lets the CURVE rows pass, for both families.
    return {Modbus("aga <> 'ALARM' and aga <> 'KEYPAD' and aga <> 'PID' and aga <>'TOTRND' and aga<> 'AGA3' and "
                   "aga <> 'AGA7'"),
            Method(optAga3),
            Keypad(optAga3),
            Totals(optAga3),
            grids ? AddressGridAlarms(optAga3) : Alarms(optAga3),
            grids ? AddressGridPid(optAga3) : RegisterPid(optAga3)};
}

std::string CwTable(const std::string& method) {
    for (const char* known : {"AGA3", "AGA7", "AGA9", "AGA11"}) {
        if (core::SameText(method, known)) {
            return "mdbus_mflow_" + std::string(known);
        }
    }
    return {};
}

}  // namespace stations
