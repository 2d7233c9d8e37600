// The program against BSAP stations that another program plays: each value that a collection stores is the one at its
// place in the station's list.

#include <gmock/gmock.h>

#include <chrono>
#include <ctime>
#include <thread>

#include "demo/DemoRegister.h"
#include "support/BsapPeer.h"

namespace {

// Not close to the end of a minute: the program's first tick comes a minute after its start.
std::string MinuteOfTheFirstTick() {
    std::time_t now = std::time(nullptr);
    while (now % 60 > 48) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        now = std::time(nullptr);
    }
    now += 60;
    std::tm local{};
    localtime_r(&now, &local);
    char text[8];
    std::strftime(text, sizeof text, "%H:%M", &local);
    return text;
}

void ExpectCollected(core::Database& dbconn, std::int64_t location, support::BsapPeer& peer, int atLeast) {
    const std::string state = peer.State();
    int places = 0;
    for (const std::string list : {"54", "55"}) {
        const auto signals = support::PeerSignals(dbconn, state, "$.lists." + list);
        for (std::size_t n = 1; n <= signals.size(); ++n) {
            const auto& signal = signals[n - 1];
            for (const core::Row& row :
                 dbconn.Query("select * from configdata_detail where locationID=? and startaddress=?",
                              {location, list + "-" + std::to_string(n)})) {
                ++places;
                // Four places are stored.
                EXPECT_NEAR(row.Number("lastvalue"), signal.value, 0.51e-4)
                    << location << " " << list << "-" << n << " " << row.Text("description");
                EXPECT_EQ(row.Long("MSD"), signal.address);
                if (!signal.units.empty()) {  // else the map's unit stays
                    EXPECT_EQ(row.Text("unit"), signal.units);
                }
            }
        }
    }
    EXPECT_GE(places, atLeast);
    EXPECT_GT(support::PeerNumber(dbconn, state, "$.counts.\"not ready\""), 0);
    EXPECT_EQ(support::PeerNumber(dbconn, state, "$.counts.badChecks"), 0);
}

TEST(BsapProgram, CollectsStationsOfAnotherHandInBothLayouts) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const support::ScratchDirectory scratch;
    std::filesystem::create_directory(scratch.path / "scheduler");
    std::filesystem::copy_file(NORWEN_DATABASE, scratch.path / "Kolmar.mdb");
    support::BsapPeer dialled({"--layout", "long", "--modem", "--not-ready", "0.3", "--noise", "0.3", "--seed", "5",
                               "--analogs", "270", "--logicals", "78", "--version", "1034", "--delay", "20"});
    support::BsapPeer direct({"--layout", "cw", "--address", "16", "--not-ready", "0.3", "--noise", "0.3", "--seed",
                              "6", "--analogs", "230", "--logicals", "60", "--version", "1010", "--delay", "20"});
    core::Database dbconn(scratch.path / "Kolmar.mdb");
    dbconn.Execute("update comports set device=? where portname='COM4'", {dialled.Path()});
    dbconn.Execute("update comports set device=? where portname='COM5'", {direct.Path()});
    const std::string due = MinuteOfTheFirstTick();
    const auto far = demo::AddStation(dbconn, {"Hill Farm", "TeleFlow+", "BSAP", "", 4, 1, "5550142", 1, {}, due, 100});
    const auto near =
        demo::AddStation(dbconn, {"Weir Lane", "CWGFC-AGA3", "BSAP", "", 5, 16, "", 1, {"AGA3"}, due, 100});
    support::ChildProcess program({NORWEN_PROGRAM, "--directory", scratch.path.string(), "--unattended"});
    std::size_t collected = 0;
    for (int seconds = 0; seconds < 130 && collected < 2; ++seconds) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        collected = dbconn.Query("select * from configdata_master where sampledtoday").size();
    }
    EXPECT_EQ(collected, 2U) << support::FileText(scratch.path / "RTU_Err.log")
                             << support::FileText(dialled.Trace()).substr(0, 9000)
                             << support::FileText(direct.Trace()).substr(0, 9000);
    ExpectCollected(dbconn, far, dialled, 250);
    ExpectCollected(dbconn, near, direct, 150);
    const std::string state = dialled.State();
    EXPECT_EQ(dbconn.First("select json_extract(?, '$.dialled[0]') n", {state})->Text("n"), "5550142");
    EXPECT_GE(support::PeerNumber(dbconn, state, "$.hangUps"), 1);
    program.Signal(SIGTERM);
    EXPECT_EQ(program.Wait(), 0);
}

}  // namespace
