#pragma once

#include <cstdint>
#include <string>

namespace core {
class Clock;
class Database;
class Logs;
}  // namespace core

namespace session {

// The list of a station's configurable parameters.
struct ConfigParams {
    std::string text;      // lines, each followed by CR LF
    bool written = false;  // it stands in confparams.txt
};

// Lists the parameters of a stream that are marked as configurable, with their values as they are in the station's map:
// a dash where none was read, and its moment beside what is not of today. Writes the list to confparams.txt in place of
// the one before. Throws DatabaseError, and std::runtime_error when the register has no such station.
ConfigParams fetch_params(core::Database& dbconn, core::Logs& logs, const core::Clock& clock, std::int64_t station,
                          int streamno);

}  // namespace session
