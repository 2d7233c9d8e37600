#include "session/LiveState.h"

#include <stdexcept>

#include "core/Database.h"
#include "core/MAIN_Module.h"

namespace session {

namespace {

core::Station StationOf(core::Database& dbconn, std::int64_t locationID) {
    auto station = core::ReadOnlineStation(dbconn, locationID);
    if (!station) {
        throw std::runtime_error("This station is no longer in the register");
    }
    return *station;
}

StationLook LookOf(core::Database& dbconn, std::int64_t locationID) {
    const auto row = dbconn.First(
        "select aga3_7, aga8_fpv, Gross_Detail, drs from configdata_master where locationID = ?", {locationID});
    StationLook look;
    if (row) {
        look.aga3_7 = row->Bool("aga3_7");
        look.aga8_fpv = row->Bool("aga8_fpv");
        look.Gross_Detail = row->Bool("Gross_Detail");
        look.drs = static_cast<int>(row->Long("drs"));
    }
    return look;
}

}  // namespace

LiveState::LiveState(const reading::Workplace& desk, SessionView& screen, std::int64_t locationID)
    : view(screen),
      place(desk.With(view)),
      station(StationOf(desk.dbconn, locationID)),
      look(LookOf(desk.dbconn, locationID)) {
    TakeStream(streamno);
}

core::Station LiveState::ReadRecord() const {
    return StationOf(place.dbconn, station.locationID);
}

void LiveState::TakeStream(int stream) {
    set.Load(place.dbconn, station.locationID, stream, station.protocol == core::Protocol::Modbus);
    streamno = stream;
    watch_.Forget();
    alarms.clear();
    valuesAt.reset();
}

void LiveState::TurnTo(State turned) {
    state = turned;
    view.StateChanged();
}

void LiveState::Refresh(bool received) {
    // The alarm limits of the CW models stand elsewhere: their live values have no colours.
    if (!station.isCW) {
        alarms = watch_.Judge(set);
    }
    if (received) {
        valuesAt = place.clock.Now();
    }
    view.Refreshed();
}

WriteContext LiveState::Context() const {
    return {place.dbconn, place.logs, station, streamno, place.shared.currentuser};
}

}  // namespace session
