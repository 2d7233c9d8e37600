// The calibration in front of simulated transmitters, on the virtual clock.

#include <gmock/gmock.h>

#include <cmath>

#include "signals/CalibrationBench.h"

namespace signals {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using Texts = std::vector<std::string>;

fieldsim::TransmitterManner& Of(CalibrationBench& bench, Transmitter transmitter) {
    return bench.simulated.Manner(static_cast<fieldsim::Transmitter>(transmitter));
}

constexpr auto DP = Transmitter::DP;
constexpr auto Zero = CalibrationCommand::Zero;
constexpr auto Span = CalibrationCommand::Span;
constexpr auto Restore = CalibrationCommand::Restore;
const std::string audited = "User WARDEN gave Calibrate Span for DP of RTU O'Brien's Works, applied 100, live ";

TEST(Calibration, TheLimitIsFivePercentOfTheAppliedValue) {
    struct Case {
        double applied;
        double live;
        bool passes;
    };
    const std::vector<Case> cases = {{100, 95, true},      {100, 105, true},      {100, 94.99, false},
                                     {100, 105.01, false}, {-100, -100, false},   {-100, -96, false},
                                     {0, 0, true},         {0, 0.000001, false},  {0.3, 0.315, true},
                                     {0.3, 0.285, true},   {0.3, 0.315001, false}};
    for (const Case& c : cases) {
        EXPECT_EQ(WithinSpanLimit(c.applied, c.live), c.passes) << c.applied << " " << c.live;
    }
    EXPECT_FALSE(WithinSpanLimit(100, std::nan("")));
}

TEST(Calibration, EachTransmitterByItsOwnSignals) {
    struct Case {
        Transmitter transmitter;
        const char* name;
        const char* live;
        const char* unit;
        Texts writes;
        const char* otherLive;  // which none of it moves
    };
    const std::vector<Case> cases = {{Transmitter::DP,
                                      "DP",
                                      "DP.LIVE.",
                                      "INH2O",
                                      {"#CAL.DPZERO.=1", "DP.APPLIED.=100", "#CAL.DPSPAN.=1", "#CAL.DPREST.=1"},
                                      "SP.LIVE."},
                                     {Transmitter::SP,
                                      "SP",
                                      "SP.LIVE.",
                                      "KG/CM2",
                                      {"#CAL.SPZERO.=1", "SP.APPLIED.=100", "#CAL.SPSPAN.=1", "#CAL.SPREST.=1"},
                                      "DP.LIVE."},
                                     {Transmitter::Temp,
                                      "Temp",
                                      "TEMP.LIVE.",
                                      "DEG.C",
                                      {"#CAL.TMPZERO.=1", "TEMP.APPLIED.=100", "#CAL.TMPSPAN.=1", "#CAL.TMPREST.=1"},
                                      "DP.LIVE."}};
    for (const bool isCW : {false, true}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.name) + (isCW ? " CW" : ""));
            const std::string name = c.name;
            CalibrationBench bench(isCW);
            const double other = bench.Live(c.otherLive);
            Of(bench, c.transmitter).process = 0.5;
            bench.Give(c.transmitter, Zero);
            EXPECT_THAT(bench.messages,
                        ElementsAre(name + ":-Signal Write Success", name + " Calibration Completed", "Stopped"));
            EXPECT_EQ(bench.calibration->Of(c.transmitter).result, "Success");
            EXPECT_TRUE(bench.calibration->Of(c.transmitter).old);  // it was read before the command
            EXPECT_EQ(bench.Live(c.live), 0);
            Of(bench, c.transmitter).process = 102;
            bench.Give(c.transmitter, Span, " 100 ");
            EXPECT_THAT(bench.messages, ElementsAre(name + ":-Calibrate Span... Please Wait...",
                                                    name + " Calibration Completed", "Stopped"));
            EXPECT_NEAR(bench.Live(c.live), 100, 1e-4);
            bench.Give(c.transmitter, Restore);
            EXPECT_EQ(bench.messages.front(), name + ":-Signal Write Success");
            EXPECT_EQ(bench.calibration->Of(c.transmitter).result, "Success");
            EXPECT_EQ(bench.Live(c.live), 102);
            EXPECT_EQ(bench.Live(c.otherLive), other);
            EXPECT_EQ(bench.Writes(), c.writes);
            const std::string rest = " for " + name + " of RTU O'Brien's Works, ";
            const std::string end = std::string(" ") + c.unit + ": Success, status 0.";
            EXPECT_THAT(bench.Trail(),
                        ElementsAre("User WARDEN gave Calibrate Zero" + rest + "live 0.5" + end,
                                    "User WARDEN gave Calibrate Span" + rest + "applied 100, live 101.5" + end,
                                    "User WARDEN gave Restore" + rest + "live 100" + end));
        }
    }
}

TEST(Calibration, ASpanIsWrittenOnlyWithinTheLimitOfAFreshLiveValue) {
    struct Case {
        double process;  // when the command is given; 99.5 was shown before
        const char* applied;
        bool passes;
    };
    for (const Case& c : std::vector<Case>{{105, "100", true},
                                           {95, "100", true},
                                           {105.01, "100", false},
                                           {94.99, "100", false},
                                           {-100, "-100", false}}) {
        SCOPED_TRACE(c.process);
        CalibrationBench bench;
        bench.Give(DP, Span, c.applied, [&] { Of(bench, DP).process = c.process; });
        if (c.passes) {
            EXPECT_THAT(bench.Writes(), SizeIs(2));
        } else {
            EXPECT_EQ(bench.messages.front(), "DP:-Limit exceeds from +(-) 5%");
            EXPECT_THAT(bench.Writes(), IsEmpty());
            EXPECT_THAT(bench.Trail(), ElementsAre(EndsWith(" INH2O: DP:-Limit exceeds from +(-) 5%.")));
            EXPECT_EQ(bench.calibration->Of(DP).result, "");
        }
    }
    CalibrationBench bench;
    Of(bench, Transmitter::SP).process = 1;
    bench.Give(Transmitter::SP, Span, "100");
    EXPECT_EQ(bench.messages.front(), "SP Limit exceeds from +(-) 5%");
}

TEST(Calibration, WhatIsNoCommand) {
    for (const char* applied : {"", "x", "1e39", "100,5", "nan"}) {
        CalibrationBench bench;
        bench.Give(DP, Span, applied);
        EXPECT_EQ(bench.refusal, "Enter Proper Data") << applied;
        EXPECT_THAT(bench.Writes(), IsEmpty());
    }
    CalibrationBench bench;
    bench.talk.currentuser = "reader";
    bench.Give(DP, Zero);
    EXPECT_EQ(bench.refusal, "Could not set. Lower user level.");
    EXPECT_THAT(bench.Writes(), IsEmpty());
    EXPECT_THAT(bench.Trail(), ElementsAre(EndsWith("live 99.5 INH2O: Could not set. Lower user level.")));
    // One at a time, and none before the start or behind the end.
    CalibrationBench another;
    another.Give(DP, Zero, {}, [&] {
        another.gate.onRequest = [&](int) {
            if (another.calibration->BusyWith()) {
                EXPECT_EQ(another.calibration->Ask(Transmitter::SP, Zero), "");
                EXPECT_EQ(another.calibration->BusyWith(), DP);
            }
        };
    });
    another.calibration->Ask(DP, Zero);
    EXPECT_THAT(another.Writes(), ElementsAre("#CAL.DPZERO.=1"));
}

TEST(Calibration, ATransmitterThatRefusesOrDrifts) {
    CalibrationBench bench;
    Of(bench, DP).refuses = true;
    bench.Give(DP, Span, "100");
    EXPECT_EQ(bench.calibration->Of(DP).result, "Failure");
    EXPECT_THAT(bench.Trail(), ElementsAre(audited + "99.5 INH2O: Failure, status 2."));
    EXPECT_EQ(bench.Live("DP.LIVE."), 99.5);
    // Differential and static pressure have one status.
    Of(bench, Transmitter::SP).refuses = true;
    bench.Give(Transmitter::SP, Zero);
    EXPECT_EQ(bench.calibration->Of(Transmitter::SP).result, "Failure");
    // Its work takes longer than the exchanges of a quick line: a zero waits for it.
    CalibrationBench quick;
    quick.talk.station.commtimeout = 200;
    quick.Give(DP, Zero);
    EXPECT_EQ(quick.calibration->Of(DP).result, "Success");
    CalibrationBench drifting;
    Of(drifting, DP).driftPerMinute = 60;
    drifting.Give(DP, Span, "100");
    EXPECT_EQ(drifting.messages.front(), "DP:-Limit exceeds from +(-) 5%");
    EXPECT_THAT(drifting.Writes(), IsEmpty());
}

// The exchanges of a span with a station that acknowledges writes.
enum Exchange {
    LiveRead = 1,
    SpanValue,
    SpanPoll,
    SpanAcknowledged,
    ReadBack,
    Command,
    CommandPoll,
    CommandAcknowledged,
    Status
};

const char* const noneWritten = ", nothing was written.";
const char* const noSpanAnswer = ": no answer to the span value, no command was sent.";
const char* const spanOnly = ": the span value was sent, no command was sent.";
const char* const unknown = ", whether the station has done it is not known.";

TEST(Calibration, AStationThatDiesLeavesAClearStateAndALine) {
    struct Case {
        Exchange dies;
        const char* end;
        std::size_t writes;
    };
    const std::vector<Case> cases = {
        {LiveRead, noneWritten, 0},      {SpanValue, noSpanAnswer, 0},      {SpanPoll, noSpanAnswer, 1},
        {SpanAcknowledged, spanOnly, 1}, {ReadBack, spanOnly, 1},           {Command, unknown, 1},
        {CommandPoll, unknown, 2},       {CommandAcknowledged, unknown, 2}, {Status, unknown, 2}};
    for (const bool cuts : {false, true}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << c.dies << (cuts ? " cut" : " silent"));
            CalibrationBench bench;
            bench.Give(DP, Span, "100", [&] {
                bench.gate.onRequest = [&](int request) {
                    bench.gate.cuts = cuts && request >= c.dies;
                    bench.gate.dead = !cuts && request >= c.dies;
                };
            });
            // A station whose replies are cut gets the requests all the same.
            if (!cuts) {
                EXPECT_THAT(bench.Writes(), SizeIs(c.writes));
            }
            const std::string end = c.end;
            EXPECT_THAT(bench.Trail(), ElementsAre(StartsWith(audited)));
            EXPECT_THAT(bench.Trail(), ElementsAre(EndsWith("Error Occured in Communication" + end)));
            EXPECT_THAT(bench.messages, testing::Contains(StartsWith("Error Occured in Communication")));
            EXPECT_EQ(bench.calibration->Of(DP).result, end == unknown ? "Unknown" : "");
            EXPECT_EQ(bench.Writes().size() > 1, end == unknown && (cuts || c.dies > Command));
            EXPECT_TRUE(bench.calibration->Of(DP).old);
        }
    }
}

TEST(Calibration, AStationThatIsNeverReadyAtTheFirstPollIsCalibrated) {
    CalibrationBench bench;
    bench.station.Options().notReadyOneIn = 1;
    bench.Give(DP, Span, "100");
    EXPECT_EQ(bench.calibration->Of(DP).result, "Success");
    EXPECT_THAT(bench.Writes(), SizeIs(2));
}

TEST(Calibration, AStopOrATakeoverAtEachExchange) {
    struct Case {
        Exchange at;
        const char* end;
        std::size_t writes;
    };
    const std::vector<Case> cases = {{LiveRead, "nothing was written.", 0},
                                     {SpanValue, "no command was sent.", 1},
                                     {SpanPoll, "no command was sent.", 1},
                                     {SpanAcknowledged, "no command was sent.", 1},
                                     {ReadBack, "no command was sent.", 1},
                                     {Command, unknown, 2},
                                     {CommandPoll, unknown, 2},
                                     {CommandAcknowledged, unknown, 2},
                                     {Status, "", 2}};
    for (const bool takeover : {false, true}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << c.at << (takeover ? " takeover" : " stop"));
            CalibrationBench bench;
            std::uint64_t sent = 0;
            std::shared_ptr<protocols::LineLease> taker;
            bench.Run({{"read", [&] { return bench.Reading() && bench.calibration->Of(DP).status; },
                        [&] {
                            bench.gate.requests = 0;
                            bench.gate.onRequest = [&](int request) {
                                if (request == c.at) {
                                    bench.desk.clock.After(1, [&] {
                                        taker = takeover ? bench.field.TakeOver("A run has it") : nullptr;
                                        sent = bench.line.BytesSent();
                                        if (!takeover) {
                                            bench.calibration->Stop();
                                        }
                                    });
                                }
                            };
                            bench.calibration->Ask(DP, Span, "100");
                        }}});
            EXPECT_THAT(bench.Trail(), ElementsAre(StartsWith(audited)));
            EXPECT_THAT(bench.Writes(), SizeIs(c.writes));
            // A stop while the status is on its way comes behind the answer.
            const bool answered = c.at == Status && !takeover;
            EXPECT_THAT(bench.Trail().back(), EndsWith(answered                     ? "Success, status 0."
                                                       : takeover && c.at == Status ? unknown
                                                                                    : c.end));
            EXPECT_THAT(bench.Told(), StartsWith(takeover ? "The line is gone: A run has it" : "Stopped"));
            EXPECT_TRUE(!takeover || bench.line.BytesSent() == sent);
        }
    }
}

TEST(Calibration, WhatIsNotInTheStationIsNotSpannedTo) {
    CalibrationBench bench;
    bench.station.Manners().otherwise = fieldsim::WriteFault::Refuse;  // its answer does not tell
    bench.Give(DP, Span, "100");
    EXPECT_THAT(bench.Writes(), ElementsAre("DP.APPLIED.=100"));
    EXPECT_THAT(bench.Trail(),
                ElementsAre(EndsWith("The station has not taken the span value, it has 0: no command was sent.")));
}

// Each answer comes when its read has been given up: it is no answer to the command that is then lost.
TEST(Calibration, ALateAnswerToAReadIsNoneToACommand) {
    CalibrationBench bench;
    bench.Run({{"read", [&] { return bench.Reading() && bench.calibration->Of(DP).status; },
                [&] { bench.gate.lateMs = 1400; }},
               {"late", [&] { return bench.calibration->Of(DP).old; }, [] {}},
               {"taken", [&] { return !bench.calibration->Of(DP).old; },
                [&] {
                    bench.gate.losesWrites = true;
                    bench.gate.lateMs = 0;
                    bench.calibration->Ask(DP, Zero);
                }},
               {"over", [&] { return !bench.calibration->BusyWith(); }, [&] { bench.calibration->Stop(); }}});
    EXPECT_EQ(bench.calibration->Of(DP).result, "Unknown");
    EXPECT_THAT(bench.Writes(), IsEmpty());
}

TEST(Calibration, TheStartAsksForEachSignal) {
    struct Case {
        const char* lost;
        const char* message;
    };
    for (const Case& c : std::vector<Case>{{"#CAL.TMPREST.", "Error: System Signal #CAL.TMPREST. Not Found"},
                                           {"TEMP.CALSTAT.", "Error: Signal TEMP.CALSTAT. Not Found"}}) {
        CalibrationBench bench;
        bench.simulated.List()->Remove(c.lost);
        bench.Run({});
        EXPECT_EQ(bench.Told(), c.message);
        EXPECT_THAT(bench.Writes(), IsEmpty());
    }
    CalibrationBench text;
    text.simulated.List()->Replace("SP.LIVE.", {.description = "SP.LIVE.", .kind = fieldsim::Kind::Text, .text = "x"});
    text.Run({});
    EXPECT_EQ(text.Told(), "Error: Signal SP.LIVE. has no number");
    CalibrationBench unnamed;
    unnamed.desk.dbconn.Execute("update calibration set name = ' ' where srno = 7");
    unnamed.Run({});
    EXPECT_THAT(unnamed.Told(), HasSubstr("status of DP"));
    EXPECT_EQ(unnamed.gate.requests, 0);
    for (int at = 1; at <= 17; at += 4) {
        CalibrationBench bench;
        bench.gate.onRequest = [&](int request) { bench.gate.dead = request >= at; };
        bench.Run({});
        EXPECT_EQ(bench.Told(), "Error Occured in Communication");
        EXPECT_EQ(bench.gate.requests, at + 3);
        CalibrationBench stopped;
        stopped.gate.onRequest = [&](int request) { request == at ? stopped.calibration->Stop() : void(); };
        stopped.Run({});
        EXPECT_EQ(stopped.Told(), "Stopped");
        EXPECT_EQ(stopped.gate.requests, at);
    }
}

TEST(Calibration, ALostReadIsShownAsOldAndFourInARowEndIt) {
    CalibrationBench bench;
    bool wasOld = false;
    core::DateTime at;
    bench.Run({{"read", [&] { return bench.calibration->Of(DP).live.has_value(); }, [&] { bench.gate.dead = true; }},
               {"old", [&] { return bench.calibration->Of(DP).old; },
                [&] {
                    wasOld = bench.Reading() && bench.calibration->Of(DP).live == 99.5;
                    bench.gate.dead = false;
                }},
               {"fresh", [&] { return !bench.calibration->Of(DP).old; },
                [&] {
                    bench.gate.requests = 0;
                    bench.gate.dead = true;
                }}});
    EXPECT_TRUE(wasOld);
    EXPECT_EQ(bench.gate.requests, 4);
    EXPECT_EQ(bench.Told(), "Error Occured in Communication");
    EXPECT_EQ(bench.calibration->Of(DP).live, 99.5);
    EXPECT_TRUE(bench.calibration->Of(DP).old);
}

TEST(Calibration, ATrailThatCannotBeWrittenIsInTheErrorLog) {
    CalibrationBench bench;
    bench.Give(DP, Zero, {}, [&] { bench.desk.dbconn.Execute("drop table TTS_table"); });
    EXPECT_EQ(bench.calibration->Of(DP).result, "Success");
    EXPECT_THAT(bench.messages, testing::Contains(StartsWith("DP Calibration Completed (not in the audit trail")));
    EXPECT_THAT(bench.desk.RtuErr(), HasSubstr("gave Calibrate Zero for DP of RTU O'Brien's Works"));
}

TEST(Calibration, NamesAreSavedTogetherAndInTheirOrder) {
    CalibrationBench bench;
    CalibrationSignals names = ReadCalibrationSignals(bench.desk.dbconn);
    EXPECT_EQ(MissingName(names), "");
    std::swap(names.signals[0], names.signals[7]);
    names.systemSignals[8] = "O'BRIEN..";
    SaveCalibrationSignals(bench.desk.dbconn, names);
    EXPECT_EQ(ReadCalibrationSignals(bench.desk.dbconn).signals, names.signals);
    EXPECT_EQ(ReadCalibrationSignals(bench.desk.dbconn).Of(Transmitter::Temp, CalibrationPart::Restore), "O'BRIEN..");
    bench.desk.dbconn.Execute("drop table calibSystemSignals");
    EXPECT_THROW(SaveCalibrationSignals(bench.desk.dbconn, {}), core::DatabaseError);
    EXPECT_EQ(bench.desk.dbconn.Texts("select name from calibration").size(), 8U);
    EXPECT_EQ(bench.desk.dbconn.Texts("select name from calibration").front(), "TEMP.CALSTAT.");
}

}  // namespace
}  // namespace signals
