#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace core {
class Database;
}

// The signals by which a station's transmitters are calibrated, as the tables calibration and calibSystemSignals name
// them. A site may name its own.
namespace signals {

enum class Transmitter { DP, SP, Temp };
inline constexpr std::array<Transmitter, 3> transmitters = {Transmitter::DP, Transmitter::SP, Transmitter::Temp};

// "DP", "SP", "Temp".
const char* NameOf(Transmitter transmitter);

// What a signal is to a transmitter.
enum class CalibrationPart { Live, SpanValue, Status, Zero, Span, Restore };

// Where a signal's name stands: in which of the two tables, and at which position from 0.
struct CalibrationPlace {
    bool isSystemSignal = false;
    std::size_t index = 0;
};

// One transmitter measures differential and static pressure: these two have one status.
CalibrationPlace PlaceOf(Transmitter transmitter, CalibrationPart part);

struct CalibrationSignals {
    std::array<std::string, 8> signals;        // of calibration
    std::array<std::string, 9> systemSignals;  // of calibSystemSignals

    std::string& At(const CalibrationPlace& place);
    const std::string& Of(Transmitter transmitter, CalibrationPart part) const;
};

// The names in the order of their rows; empty where the database has none. Throws DatabaseError.
CalibrationSignals ReadCalibrationSignals(core::Database& dbconn);

// Puts these names in place of those before, all or none. Throws DatabaseError.
void SaveCalibrationSignals(core::Database& dbconn, const CalibrationSignals& names);

// Why no calibration can start with these names: one of them is not there. Empty: all are.
std::string MissingName(const CalibrationSignals& names);

}  // namespace signals
