#include "signals/calibration/CalibrationSignals.h"

#include <algorithm>

#include "core/Database.h"
#include "core/Text.h"

namespace signals {

namespace {

// Which position is whose, in the order of `transmitters`. Live values, span values and statuses are rows of
// calibration; the commands are rows of calibSystemSignals.
struct PartPlaces {
    CalibrationPart part;
    const char* name;
    bool isSystemSignal;
    std::array<std::size_t, 3> positions;  // from 1, as the rows are counted
};
constexpr std::array<PartPlaces, 6> places = {{{CalibrationPart::Live, "live value", false, {1, 2, 3}},
                                               {CalibrationPart::SpanValue, "span value", false, {4, 5, 6}},
                                               {CalibrationPart::Status, "status", false, {7, 7, 8}},
                                               {CalibrationPart::Zero, "zero command", true, {1, 2, 3}},
                                               {CalibrationPart::Span, "span command", true, {4, 5, 6}},
                                               {CalibrationPart::Restore, "restore command", true, {7, 8, 9}}}};

const PartPlaces& PlacesOf(CalibrationPart part) {
    return *std::find_if(places.begin(), places.end(), [part](const PartPlaces& row) { return row.part == part; });
}

template <std::size_t count>
void Fill(std::array<std::string, count>& names, const std::vector<std::string>& rows) {
    for (std::size_t row = 0; row < std::min(count, rows.size()); ++row) {
        names[row] = core::Trim(rows[row]);
    }
}

}  // namespace

const char* NameOf(Transmitter transmitter) {
    switch (transmitter) {
        case Transmitter::DP:
            return "DP";
        case Transmitter::SP:
            return "SP";
        case Transmitter::Temp:
            break;
    }
    return "Temp";
}

CalibrationPlace PlaceOf(Transmitter transmitter, CalibrationPart part) {
    const PartPlaces& row = PlacesOf(part);
    return {row.isSystemSignal, row.positions[static_cast<std::size_t>(transmitter)] - 1};
}

std::string& CalibrationSignals::At(const CalibrationPlace& place) {
    return place.isSystemSignal ? systemSignals[place.index] : signals[place.index];
}

const std::string& CalibrationSignals::Of(Transmitter transmitter, CalibrationPart part) const {
    const CalibrationPlace place = PlaceOf(transmitter, part);
    return place.isSystemSignal ? systemSignals[place.index] : signals[place.index];
}

CalibrationSignals ReadCalibrationSignals(core::Database& dbconn) {
    CalibrationSignals names;
    Fill(names.signals, dbconn.Texts("select name from calibration order by srno, rowid"));
    Fill(names.systemSignals, dbconn.Texts("select name from calibSystemSignals order by rowid"));
    return names;
}

void SaveCalibrationSignals(core::Database& dbconn, const CalibrationSignals& names) {
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from calibration");
        int srno = 0;
        for (const std::string& name : names.signals) {
            dbconn.Execute("insert into calibration values(?,?)", {++srno, name});
        }
        dbconn.Execute("delete from calibSystemSignals");
        for (const std::string& name : names.systemSignals) {
            dbconn.Execute("insert into calibSystemSignals values(?)", {name});
        }
    });
}

std::string MissingName(const CalibrationSignals& names) {
    for (const PartPlaces& row : places) {
        for (const Transmitter transmitter : transmitters) {
            if (names.Of(transmitter, row.part).empty()) {
                return std::string("No signal is named for the ") + row.name + " of " + NameOf(transmitter) +
                       ": enter it in the calibration signals";
            }
        }
    }
    return {};
}

}  // namespace signals
