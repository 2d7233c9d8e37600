#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <vector>

#include "fieldsim/BsapFrame.h"
#include "fieldsim/LineFaults.h"
#include "fieldsim/ModbusSlave.h"
#include "fieldsim/QuantumUnit.h"
#include "protocols/FieldTalk.h"
#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapLink.h"
#include "protocols/modbus/ModbusFraming.h"
#include "protocols/modbus/ModbusTransact.h"
#include "protocols/quantum/Quantum.h"
#include "support/Hex.h"

using namespace protocols;
using core::Pacing;
using support::Bytes;

namespace {

constexpr int address = 1;

// Register 2n - 1 is a float n + 0.5, coil n is on where n is odd.
fieldsim::ModbusSlave Slave(fieldsim::Framing framing) {
    std::vector<fieldsim::Signal> floats;
    std::vector<fieldsim::Signal> coils;
    for (int n = 1; n <= 62; ++n) {
        floats.push_back({.position = 2 * n - 1, .description = std::to_string(n), .value = n + 0.5});
        coils.push_back({.position = n, .kind = fieldsim::Kind::Logical, .value = static_cast<double>(n % 2)});
    }
    return {address, framing, fieldsim::MakeModbusMap(std::move(floats), std::move(coils))};
}

struct Paced : support::SimulatedTalk {
    Paced(fieldsim::Device& device, Pacing pacing) {
        ports.Attach(1, device);
        line.PortOpen(true);
        talk.station.slaveaddress = address;
        talk.station.phoneno = "";
        talk.station.pacing = pacing;
    }
    // The values of one read; nothing: it failed.
    std::optional<std::vector<double>> Read(int command, int first, int count, const TransactOptions& options) {
        talk.modbus.floatread = command == 3;
        const ModbusReply reply = ModbusTransact(talk, first, count, command, options);
        const auto* values = talk.modbus.mbvalues.data() + 1;
        return reply.kind == ModbusReply::Kind::Values
                   ? std::optional(std::vector<double>(values, values + (command == 3 ? count / 2 : count)))
                   : std::nullopt;
    }
};

}  // namespace

TEST(Pacing, PromptModbusTakesTheTimeOfItsReplies) {
    const struct {
        fieldsim::Framing framing;
        const char* settings;
        const char* ip;
        std::uint64_t silence;  // in whole milliseconds
    } cases[] = {
        {fieldsim::Framing::Rtu, "9600,N,8,1", "", 5},   {fieldsim::Framing::Rtu, "1200,E,8,1", "", 33},
        {fieldsim::Framing::Rtu, "38400,N,8,1", "", 2},  {fieldsim::Framing::Rtu, "9600,n,8,1", "h:1", 0},
        {fieldsim::Framing::Ascii, "9600,N,8,1", "", 0}, {fieldsim::Framing::Tcp, "", "h:502", 0},
    };
    for (const auto& test : cases) {
        std::vector<std::optional<std::vector<double>>> read[2];
        for (const auto pacing : {Pacing::Stated, Pacing::Prompt}) {
            auto slave = Slave(test.framing);
            Paced paced(slave, pacing);
            paced.talk.station.framing = test.framing;
            paced.talk.station.settings = test.settings;
            paced.talk.station.ip = test.ip;
            auto& values = read[static_cast<int>(pacing)];
            values.push_back(paced.Read(1, 0, 62, scheduledTransact));
            values.push_back(paced.Read(3, 0, 124, scheduledTransact));
            EXPECT_EQ(paced.desk.clock.Elapsed(), pacing == Pacing::Stated ? 20000 : 2 * (50 + test.silence))
                << static_cast<int>(test.framing) << " " << test.settings;
            EXPECT_EQ(values[1]->at(61), 62.5);
            const bool wrote =
                ModbusWrite(paced.talk, core::ValueKind::Logical, 3, 1, onlineWrite) == WriteOutcome::Done;
            EXPECT_TRUE(wrote);
            EXPECT_EQ(paced.desk.clock.Elapsed(), pacing == Pacing::Stated ? 22000 : 3 * (50 + test.silence));
        }
        EXPECT_EQ(read[0], read[1]);
    }
}

// What comes in pieces, is damaged, or is not for this request is no end of the wait.
TEST(Pacing, APromptReplyThatIsNotWholeCostsTheStatedWait) {
    struct Pieces final : fieldsim::Device {
        std::vector<fieldsim::Answer> answers;
        std::vector<fieldsim::Answer> Receive(std::string_view, const fieldsim::Moment&) override { return answers; }
    };
    const std::string reply = Bytes("01 03 04 42 C8 00 00 6F B5");
    const std::string ascii = ":01030442C80000EE\r\n";
    const struct {
        const char* name;
        core::Framing framing;
        std::vector<fieldsim::Answer> answers;
        std::uint64_t elapsed;
        bool answered;
    } cases[] = {
        {"two pieces", core::Framing::Rtu, {{reply.substr(0, 5), 50}, {reply.substr(5), 90}}, 95, true},
        {"the last byte late", core::Framing::Rtu, {{reply.substr(0, 8), 50}, {reply.substr(8), 1500}}, 1505, true},
        {"more within the silence", core::Framing::Rtu, {{reply, 50}, {"x", 53}}, 2000, false},
        {"whole at the very end", core::Framing::Rtu, {{reply, 1999}}, 2000, true},
        {"cut", core::Framing::Rtu, {{reply.substr(0, 8), 50}}, 2000, false},
        {"a wrong bit", core::Framing::Rtu, {{Bytes("01 03 04 42 C9 00 00 6F B5"), 50}}, 2000, false},
        {"noise in front", core::Framing::Rtu, {{"x" + reply, 50}}, 2000, false},
        {"another slave",
         core::Framing::Rtu,
         {{fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes("02 03 04 42 C8 00 00")), 50}},
         2000,
         true},
        {"an exception", core::Framing::Rtu, {{Bytes("01 83 02 C0 F1"), 50}}, 55, false},
        {"two pieces", core::Framing::Ascii, {{ascii.substr(0, 16), 50}, {ascii.substr(16), 90}}, 90, true},
        {"no line feed", core::Framing::Ascii, {{ascii.substr(0, 18), 50}}, 2000, true},
        {"cut in front of the end", core::Framing::Ascii, {{":01030442C8\r\n", 50}}, 2000, false},
    };
    for (const auto& test : cases) {
        for (const auto pacing : {Pacing::Stated, Pacing::Prompt}) {
            Pieces pieces;
            pieces.answers = test.answers;
            Paced paced(pieces, pacing);
            paced.talk.station.settings = "9600,N,8,1";
            paced.talk.station.framing = test.framing;
            constexpr TransactOptions once = {FailureReport::Box, 1, "", "", "", 0, 1, 0};
            paced.desk.clock.Start([&] {
                EXPECT_EQ(paced.Read(3, 100, 2, once), test.answered ? std::optional(std::vector{100.0}) : std::nullopt)
                    << static_cast<int>(test.framing) << ": " << test.name;
                EXPECT_EQ(paced.desk.clock.Elapsed(), pacing == Pacing::Prompt ? test.elapsed : 2000)
                    << static_cast<int>(test.framing) << ": " << test.name;
            });
            paced.desk.clock.Run(3000);
            EXPECT_EQ(paced.desk.clock.Conversations(), 0U);
        }
    }
    // The check of ASCII framing counts where it is looked at.
    core::Station station;
    station.framing = core::Framing::Ascii;
    const std::string request =
        ":010300640002"
        "96\r\n";
    const std::string wrong = ":01030442C80000EF\r\n";
    EXPECT_TRUE(WholeModbusReply(station, request).judge(wrong));
    station.standardFraming = true;
    EXPECT_FALSE(WholeModbusReply(station, request).judge(wrong));
    EXPECT_TRUE(WholeModbusReply(station, request).judge(ascii));
}

// Blocks of one size differ in nothing but their values: a reply that comes late must not pass for the next block's.
TEST(Pacing, APromptReadNeverTakesAnotherBlocksValues) {
    using enum fieldsim::Fault;
    for (const auto framing : {fieldsim::Framing::Rtu, fieldsim::Framing::Ascii, fieldsim::Framing::Tcp}) {
        for (const std::uint32_t lateMs : {1990U, 2010U, 2040U, 2060U, 2110U, 4020U}) {
            for (const auto fault : {Late, Cut, Silence, BadCheck, NoiseBefore, NoiseAfter, Exception}) {
                if (framing == fieldsim::Framing::Tcp && fault == BadCheck) {
                    continue;  // it has none
                }
                auto slave = Slave(framing);
                fieldsim::LineFaults faults(slave, {{None, fault, None, None, None, fault}, {}, 1, lateMs});
                Paced paced(faults, Pacing::Prompt);
                paced.talk.station.framing = framing;
                paced.talk.station.settings = "9600,N,8,1";
                paced.talk.station.standardFraming = true;
                int answered = 0;
                for (int block = 0; block < 12; ++block) {
                    const auto values = paced.Read(3, 4 * block, 4, onlineTransact);
                    answered += values ? 1 : 0;
                    if (values) {
                        EXPECT_EQ(*values, (std::vector{2 * block + 1.5, 2 * block + 2.5}))
                            << static_cast<int>(framing) << " " << static_cast<int>(fault) << " " << lateMs;
                    }
                }
                EXPECT_GE(answered, 11);
                EXPECT_LT(paced.desk.clock.Elapsed(), 60000U) << "prompt again";
            }
        }
    }
}

namespace {

// Station 1 of the short layout: each message is acknowledged until its answer is ready.
struct SlowStation final : fieldsim::Device {
    std::uint64_t readyMs = 0;  // after the first message
    std::optional<std::uint64_t> first{};

    std::vector<fieldsim::Answer> Receive(std::string_view bytes, const fieldsim::Moment& now) override {
        first = first.value_or(now.milliseconds);
        const bool isAcknowledgement = bytes.find('\x8B') == 4;
        const bool ready = now.milliseconds - *first >= readyMs;
        const char* const reply =
            isAcknowledgement || !ready ? "00 01 86 01 00 01 00" : "00 02 0B 00 00 A0 00 00 00 00 12 34 23";
        return {{fieldsim::BsapFrame(Bytes(reply)), 50}};
    }
};

}  // namespace

// An acknowledgement ends the wait too, but not the time that a station gets to have its answer ready.
TEST(Pacing, PromptBsapPollsAtOnceAndGivesASlowStationItsTime) {
    const struct {
        std::uint64_t readyMs;
        std::uint64_t prompt;  // with the acknowledgement of the answer
    } cases[] = {{0, 50}, {40, 150}, {1500, 2200}, {3500, 4250}, {5900, 6300}};
    for (const auto& [readyMs, prompt] : cases) {
        for (const auto pacing : {Pacing::Stated, Pacing::Prompt}) {
            SlowStation station;
            station.readyMs = readyMs;
            Paced paced(station, pacing);
            paced.talk.station.isCW = true;
            paced.talk.bsap.echoes = false;
            const StationReply reply =
                AskStation(paced.talk, Bsap(paced.talk.counters, paced.talk.bsap, true).GetVersion_RTU(address));
            EXPECT_TRUE(reply.answer) << readyMs;
            if (pacing == Pacing::Prompt) {
                EXPECT_EQ(paced.desk.clock.Elapsed(), prompt) << readyMs;
            }
        }
    }
}

TEST(Pacing, PromptQuantumEndsWithTheWholeReply) {
    const auto values = std::make_shared<fieldsim::SignalList>();
    for (const bool echo : {false, true}) {
        fieldsim::QuantumUnit unit(7, values, {.echo = echo});
        Paced paced(unit, Pacing::Prompt);
        for (int message = 1; message <= quantum::messages; ++message) {
            const std::string request = BuildQuantumRequest(7, "A", message);
            const std::string reply = Exchange(paced.talk, request, 5000, WholeQuantumReply(request));
            EXPECT_EQ(CutQuantumEcho(reply, request).size(), quantum::replyLength);
            const WholeReply whole = WholeQuantumReply(request);
            std::string cut = reply.substr(0, reply.size() - 1);
            cut.back() = '\x03';  // the check byte may look like the end
            EXPECT_FALSE(whole.judge(cut));
            EXPECT_FALSE(whole.judge("x" + CutQuantumEcho(reply, request)));
        }
        EXPECT_EQ(paced.desk.clock.Elapsed(), 3 * 120U);
        unit.Receive("\x02", {});  // spoils the next request
        Exchange(paced.talk, "no request", 5000, WholeQuantumReply("no request"));
        EXPECT_EQ(paced.desk.clock.Elapsed(), 3 * 120U + 5000);
    }
}
