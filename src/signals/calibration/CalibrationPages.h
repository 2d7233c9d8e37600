#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace core {
class Database;
}

// What the transmitters of a model measure, for the pages that tell how they are calibrated.
namespace signals {

// The models of all makes, each once. Throws DatabaseError.
std::vector<std::string> CalibrationModels(core::Database& dbconn);

// An orifice meter measures by differential pressure; a turbine, a displacement, an ultrasonic or a mass meter has no
// such transmitter. A model that takes meters of several kinds may have one.
bool MeasuresDifferentialPressure(std::string_view modelno);

}  // namespace signals
