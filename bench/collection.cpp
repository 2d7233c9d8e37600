// Storing a stream's values, and a month of minutes of forty stations on a bad line.

#include <algorithm>
#include <chrono>

#include "bench/Figure.h"
#include "reading/StoreValues.h"
#include "support/CollectionDesk.h"

namespace {

using bench::Goal;

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// 400 floats and 80 logicals into a map that has a row for each.
bool StoringAStream() {
    support::ScratchDesk desk;
    core::Station station;
    station.locationID = 1;
    station.protocol = core::Protocol::Bsap;
    reading::ListValues values;
    desk.dbconn.InTransaction([&] {
        for (int n = 1; n <= 400; ++n) {
            desk.dbconn.Execute("insert into configdata_detail(locationID,startaddress,type,StreamNo) values(1,?,?,1)",
                                {"54-" + std::to_string(n), "Float"});
        }
        for (int n = 1; n <= 80; ++n) {
            desk.dbconn.Execute("insert into configdata_detail(locationID,startaddress,type,StreamNo) values(1,?,?,1)",
                                {"55-" + std::to_string(n), "Boolean"});
        }
    });
    for (std::size_t n = 1; n <= 400; ++n) {
        values.floats[n] = {static_cast<double>(n) / 7, core::Quality::Good, core::IsoText(desk.clock.Now()), "kg/cm2",
                            static_cast<std::int64_t>(n)};
    }
    for (std::size_t n = 1; n <= 80; ++n) {
        values.booleans[n] = {1, core::Quality::Good, core::IsoText(desk.clock.Now()), "",
                              static_cast<std::int64_t>(n)};
    }
    constexpr int rounds = 20;
    const auto start = std::chrono::steady_clock::now();
    for (int round = 0; round < rounds; ++round) {
        values.floats[1]->value = round;
        desk.dbconn.InTransaction([&] {
            reading::ValueStore store(desk.dbconn, station, 1);
            store.AskLists();
            reading::StoreValues(store, station, values);
        });
    }
    return bench::Report("store 400 floats, 80 logicals", Seconds(start) / rounds * 1000, "ms", Goal::AtMost, 60);
}

// Forty stations of all kinds, ten contract hours apart by some minutes, four on each.
std::vector<demo::DemoStation> FortyStations() {
    std::vector<demo::DemoStation> stations;
    for (int i = 0; i < 40; ++i) {
        const int minute = 5 * (i / 4) + i % 3;
        auto kinds =
            demo::OneOfEach((i % 8 < 4 ? "06:" : "18:") + std::string(minute < 10 ? "0" : "") + std::to_string(minute));
        demo::DemoStation station = kinds[static_cast<std::size_t>(i) % kinds.size()];
        station.consumer += " " + std::to_string(i + 1);
        station.slaveaddress = i + 20;
        station.phoneno += station.phoneno.empty() ? "" : std::to_string(i + 10);
        station.groupno = i / 10 + 1;
        stations.push_back(station);
    }
    return stations;
}

bool AMonthOfMinutes() {
    constexpr int days = 30;
    support::CollectionDesk desk{{2026, 3, 1, 0, 0, 30}};
    desk.dbconn.InTransaction([&] {
        for (const auto& station : FortyStations()) {
            demo::AddStation(desk.dbconn, station);
        }
    });
    // One exchange in eighty is spoilt, and with it about one conversation in ten.
    using enum fieldsim::Fault;
    fieldsim::LineFaults::Options faults;
    faults.chances = {{Silence, 0.0025}, {Cut, 0.0025}, {NoiseBefore, 0.0025}, {Late, 0.0025}, {Echo, 0.0025}};
    desk.OpenField({.faultsElsewhere = faults});
    int tried = 0;
    desk.clock.Every(600000, [&] {
        tried += static_cast<int>(
            std::count_if(desk.feedback.status.begin(), desk.feedback.status.end(),
                          [](const std::string& text) { return text.starts_with("Data Collecting from Location "); }));
        desk.feedback.status.clear();
    });
    desk.StartTicking();
    const auto start = std::chrono::steady_clock::now();
    desk.clock.Run(days * 24ULL * 3600 * 1000);
    const double seconds = Seconds(start);
    constexpr double due = days * 40;
    bool met = bench::Report("a month of forty stations", seconds, "s", Goal::AtMost, 60);
    met &= bench::Report("due collections tried", tried / due * 100, "%", Goal::AtLeast, 100);
    met &=
        bench::Report("days stored", static_cast<double>(desk.Count("LogParam")) / due * 100, "%", Goal::AtLeast, 99);
    return met;
}

}  // namespace

int main() {
    const bool stored = StoringAStream();
    return AMonthOfMinutes() && stored ? 0 : 1;
}
