#pragma once

#include <string>
#include <vector>

// Which rows of the template tables belong to a station's map, and in which order.
namespace stations {

// The statements that make the map of a BSAP station of the TeleFlow family.
std::vector<std::string> TemplateMapQueries(bool optAga3);

// Who fills the register table: Set Register, or the address grids of a station laid out by hand, which offer a
// slightly different choice of ALARM and PID rows.
enum class RegisterTableUse { SetRegister, AddressGrids };

// The statements that fill the register table of a Modbus station of the TeleFlow family.
std::vector<std::string> RegisterTableQueries(bool optAga3, RegisterTableUse use);

// The table of a CW metering method ("AGA3", "AGA7", "AGA9", "AGA11"); empty for any other text.
std::string CwTable(const std::string& method);

}  // namespace stations
