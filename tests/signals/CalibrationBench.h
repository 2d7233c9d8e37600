#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/Text.h"
#include "fieldsim/BsapStation.h"
#include "fieldsim/SimLine.h"
#include "fieldsim/Transmitters.h"
#include "signals/calibration/Calibration.h"
#include "support/ScratchDesk.h"
#include "support/Script.h"

namespace signals {

// Stands in front of a station and counts its requests.
struct Gate final : fieldsim::Device {
    explicit Gate(fieldsim::Device& device) : device(device) {}

    std::vector<fieldsim::Answer> Receive(std::string_view bytes, const fieldsim::Moment& now) override {
        ++requests;
        if (onRequest) {
            onRequest(requests);
        }
        const bool lost = dead || (losesWrites && bytes.find("\x84\xFF\x01") != std::string_view::npos);
        auto answers = lost ? std::vector<fieldsim::Answer>() : device.Receive(bytes, now);
        for (auto& answer : answers) {
            answer.delayMs += lateMs;
            answer.bytes.resize(cuts ? answer.bytes.size() / 2 : answer.bytes.size());
        }
        return answers;
    }

    fieldsim::Device& device;
    int requests = 0;
    std::function<void(int request)> onRequest;
    bool dead = false;
    bool cuts = false;
    bool losesWrites = false;  // those by name
    std::uint32_t lateMs = 0;
};

// A station with transmitters, signed on to, and the calibration of it. Its differential pressure is 99.5.
class CalibrationBench : public CalibrationView {
  public:
    explicit CalibrationBench(bool isCW = false)
        : station(1, {{fieldsim::kTransmitterList, simulated.List()}}, Options(isCW)) {
        station.WhenTaken([this](const fieldsim::Write& write) { simulated.Taken(write); });
        ports.Attach(1, gate);
        talk.station.consumer = "O'Brien's Works";
        talk.station.slaveaddress = 1;
        talk.station.isCW = isCW;
        talk.station.commtimeout = 1000;
        talk.line->CommPort(1);
        talk.line->PortOpen(true);
    }

    void Changed() override {}
    void Message(const std::string& text) override {
        if (!text.empty()) {
            messages.push_back(text);
        }
    }
    void Progress(int done, int total) override { progress.emplace_back(done, total); }

    // Runs a calibration of its own with what the operator does in it.
    void Run(std::vector<support::Script::Step> steps) {
        messages.clear();
        calibration = std::make_unique<Calibration>(desk.dbconn, ReadCalibrationSignals(desk.dbconn), *this);
        const auto script = std::make_shared<support::Script>(std::move(steps));
        desk.clock.Every(10, [script] { script->Turn(); });
        bool over = false;
        desk.clock.After(600'000, [&] {
            if (!over) {
                ADD_FAILURE() << "still running, " << Told();
                calibration->Stop();
            }
        });
        calibration->Run(talk);
        over = true;
        EXPECT_EQ(script->Missing(), "");
        EXPECT_EQ(calibration->GetState(), CalibrationState::Stopped);
        EXPECT_FALSE(calibration->BusyWith());
    }
    // Gives one command when all is read, and stops behind it unless that has ended by itself. `asked` is called at the
    // command.
    void Give(Transmitter transmitter, CalibrationCommand command, const std::string& applied = {},
              const std::function<void()>& asked = {}) {
        Run({{"read", [&] { return Reading() && calibration->Of(Transmitter::Temp).status.has_value(); },
              [&] {
                  messages.clear();
                  gate.requests = 0;
                  if (asked) {
                      asked();
                  }
                  refusal = calibration->Ask(transmitter, command, applied);
              }},
             {"over", [&] { return !calibration->BusyWith(); },
              [&] {
                  if (!gate.dead) {
                      calibration->Stop();
                  }
              }}});
    }
    // What the operator was told last.
    std::string Told() const { return messages.empty() ? "" : messages.back(); }
    double Live(const char* name) const {
        return simulated.List()->ValueAt(*simulated.List()->Find(name), desk.clock.Now());
    }
    bool Reading() const { return calibration->GetState() == CalibrationState::Reading; }

    // "DP.APPLIED.=100", ... as the station took them.
    std::vector<std::string> Writes() const {
        std::vector<std::string> writes;
        for (const auto& write : station.Writes()) {
            writes.push_back(write.description + "=" + core::NumberText(write.value));
        }
        return writes;
    }
    // The lines of the audit trail without their stamps.
    std::vector<std::string> Trail() {
        auto trail = desk.dbconn.Texts("select * from TTS_table");
        for (std::string& entry : trail) {
            entry = entry.substr(entry.find(": ") + 2);
        }
        return trail;
    }

    support::ScratchDesk desk;
    fieldsim::Transmitters simulated;
    fieldsim::BsapStation station;
    Gate gate{station};
    fieldsim::SimPorts ports{desk.clock};
    fieldsim::SimLine line{ports};
    protocols::FieldLine field{line, desk.clock};
    protocols::BsapCounters counters;
    protocols::Conversation talk{
        field.TakeOver(""), desk.clock, desk.feedback, desk.logs, counters, {}, "WARDEN", 1, {}, {}};
    std::unique_ptr<Calibration> calibration;
    std::vector<std::string> messages;
    std::vector<std::pair<int, int>> progress;
    std::string refusal;

  private:
    static fieldsim::BsapOptions Options(bool isCW) {
        fieldsim::BsapOptions options;
        options.shortLayout = isCW;
        options.notReadyOneIn = 0;  // the exchanges are counted
        return options;
    }
};

}  // namespace signals
