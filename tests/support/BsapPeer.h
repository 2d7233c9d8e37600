#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/Database.h"
#include "support/ChildProcess.h"
#include "support/ScratchDesk.h"

namespace support {

// The BSAP station of tests/support/bsap_station, a program of its own with the device that a master opens.
class BsapPeer {
    ScratchDirectory scratch_;
    ChildProcess program_;
    int dumps_ = 1;

    std::vector<std::string> CommandLine(std::vector<std::string> options) const {
        std::vector<std::string> line{"/usr/bin/python3", BSAP_STATION, "--state", StateFile(),
                                      "--link",           Path(),       "--trace", Trace().string()};
        line.insert(line.end(), options.begin(), options.end());
        return line;
    }
    std::string StateFile() const { return (scratch_.path / "state.json").string(); }

  public:
    explicit BsapPeer(std::vector<std::string> options) : program_(CommandLine(std::move(options))) {
        EXPECT_TRUE(program_.Printed("ready ")) << program_.Said();
    }

    std::string Path() const { return (scratch_.path / "line").string(); }
    // What went over the line.
    std::filesystem::path Trace() const { return scratch_.path / "trace"; }

    // What it holds now, as JSON.
    std::string State() {
        program_.Signal(SIGUSR1);
        ++dumps_;
        for (int tries = 0; tries < 200; ++tries) {
            const std::string text = FileText(StateFile());
            if (text.find("\"dumps\": " + std::to_string(dumps_) + ",") != std::string::npos) {
                return text;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        ADD_FAILURE() << "no state of the station: " << program_.Said();
        return "{}";
    }
};

// A signal that it holds.
struct PeerSignal {
    std::string name;
    int kind = 0;
    std::string text;
    double value = 0;
    std::string units;
    int address = 0;
};

// The elements of a place such as "$.lists.54", which are signals.
inline std::vector<PeerSignal> PeerSignals(core::Database& dbconn, const std::string& state, const std::string& place) {
    std::vector<PeerSignal> signals;
    for (const core::Row& row :
         dbconn.Query("select value->>'name' name, value->>'kind' kind, value->>'value' held, value->>'units' units,"
                      " value->>'address' address from json_each(?, ?)",
                      {state, place})) {
        signals.push_back({row.Text("name"), static_cast<int>(row.Long("kind")), row.Text("held"), row.Number("held"),
                           row.Text("units"), static_cast<int>(row.Long("address"))});
    }
    return signals;
}

inline double PeerNumber(core::Database& dbconn, const std::string& state, const std::string& place) {
    return dbconn.First("select json_extract(?, ?) n", {state, place})->Number("n");
}

}  // namespace support
