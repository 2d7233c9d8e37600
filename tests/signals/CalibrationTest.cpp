// The calibration in front of simulated transmitters, on the virtual clock.

#include <gmock/gmock.h>

#include <cmath>

#include "signals/CalibrationBench.h"

namespace signals {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

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
    const struct {
        Transmitter transmitter;
        std::string name;
        std::string prefix;
        std::string command;
        const char* unit;
        const char* otherLive;  // which none of it moves
    } cases[] = {{DP, "DP", "DP", "#CAL.DP", "INH2O", "SP.LIVE."},
                 {Transmitter::SP, "SP", "SP", "#CAL.SP", "KG/CM2", "DP.LIVE."},
                 {Transmitter::Temp, "Temp", "TEMP", "#CAL.TMP", "DEG.C", "DP.LIVE."}};
    for (const bool isCW : {false, true}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(c.name + (isCW ? " CW" : ""));
            const std::string& name = c.name;
            const std::string live = c.prefix + ".LIVE.";
            CalibrationBench bench(isCW);
            const double other = bench.Live(c.otherLive);
            Of(bench, c.transmitter).process = 0.5;
            bench.Give(c.transmitter, Zero);
            EXPECT_THAT(bench.messages,
                        ElementsAre(name + ":-Signal Write Success", name + " Calibration Completed", "Stopped"));
            EXPECT_EQ(bench.calibration->Of(c.transmitter).result, "Success");
            EXPECT_TRUE(bench.calibration->Of(c.transmitter).old);  // it was read before the command
            EXPECT_EQ(bench.Live(live.c_str()), 0);
            Of(bench, c.transmitter).process = 102;
            bench.Give(c.transmitter, Span, " 100 ");
            EXPECT_THAT(bench.messages, ElementsAre(name + ":-Calibrate Span... Please Wait...",
                                                    name + " Calibration Completed", "Stopped"));
            EXPECT_NEAR(bench.Live(live.c_str()), 100, 1e-4);
            bench.Give(c.transmitter, Restore);
            EXPECT_EQ(bench.messages.front(), name + ":-Signal Write Success");
            EXPECT_EQ(bench.calibration->Of(c.transmitter).result, "Success");
            EXPECT_EQ(bench.Live(live.c_str()), 102);
            EXPECT_EQ(bench.Live(c.otherLive), other);
            EXPECT_THAT(bench.Writes(), ElementsAre(c.command + "ZERO.=1", c.prefix + ".APPLIED.=100",
                                                    c.command + "SPAN.=1", c.command + "REST.=1"));
            const std::string rest = " for " + name + " of RTU O'Brien's Works, ";
            const std::string end = std::string(" ") + c.unit + ": Success, status 0.";
            EXPECT_THAT(bench.Trail(),
                        ElementsAre("User WARDEN gave Calibrate Zero" + rest + "live 0.5" + end,
                                    "User WARDEN gave Calibrate Span" + rest + "applied 100, live 101.5" + end,
                                    "User WARDEN gave Restore" + rest + "live 100" + end));
        }
    }
}

// 99.5 was shown before.
TEST(Calibration, ASpanIsWrittenOnlyWithinTheLimitOfAFreshLiveValue) {
    for (const auto& [process, passes] : {std::pair(105.0, true), {105.01, false}}) {
        CalibrationBench bench;
        bench.Give(DP, Span, "100", [&, fresh = process] { Of(bench, DP).process = fresh; });
        EXPECT_THAT(bench.Writes(), SizeIs(passes ? 2 : 0));
        if (!passes) {
            EXPECT_EQ(bench.messages.front(), "DP:-Limit exceeds from +(-) 5%");
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

TEST(Calibration, ATransmitterThatRefusesOrIsSlow) {
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
    // A station that is never ready at the first poll.
    CalibrationBench busy;
    busy.station.Options().notReadyOneIn = 1;
    busy.Give(DP, Span, "100");
    EXPECT_EQ(busy.calibration->Of(DP).result, "Success");
    EXPECT_THAT(busy.Writes(), SizeIs(2));
    // A station that does not show the span value is not spanned to it.
    CalibrationBench deaf;
    deaf.station.Manners().otherwise = fieldsim::WriteFault::Refuse;  // its answer does not tell
    deaf.Give(DP, Span, "100");
    EXPECT_THAT(deaf.Writes(), ElementsAre("DP.APPLIED.=100"));
    EXPECT_THAT(deaf.Trail(),
                ElementsAre(EndsWith("The station has not taken the span value, it has 0: no command was sent.")));
}

constexpr const char* nothing = "nothing was written.";
constexpr const char* noAnswer = ": no answer to the span value, no command was sent.";
constexpr const char* spanOnly = ": the span value was sent, no command was sent.";
constexpr const char* noCommand = "no command was sent.";
constexpr const char* unknown = ", whether the station has done it is not known.";

// The exchanges of a span with a station that acknowledges writes, how many writes the station has when it dies at one
// and when somebody ends the calibration behind its sending, and what the trail then says.
constexpr struct {
    const char* what;
    std::size_t writesAtDeath;
    const char* death;
    std::size_t writesAtEnd;
    const char* end;
} exchanges[] = {{"live read", 0, nothing, 0, nothing},      {"span value", 0, noAnswer, 1, noCommand},
                 {"poll for it", 1, noAnswer, 1, noCommand}, {"its acknowledgement", 1, spanOnly, 1, noCommand},
                 {"read back", 1, spanOnly, 1, noCommand},   {"command", 1, unknown, 2, unknown},
                 {"poll for that", 2, unknown, 2, unknown},  {"its acknowledgement", 2, unknown, 2, unknown},
                 {"status", 2, unknown, 2, unknown}};

TEST(Calibration, AStationThatDiesLeavesAClearStateAndALine) {
    for (const bool cuts : {false, true}) {
        int number = 0;
        for (const auto& exchange : exchanges) {
            ++number;
            SCOPED_TRACE(testing::Message() << exchange.what << (cuts ? " cut" : " silent"));
            CalibrationBench bench;
            bench.Give(DP, Span, "100", [&] {
                bench.gate.onRequest = [&](int request) {
                    bench.gate.cuts = cuts && request >= number;
                    bench.gate.dead = !cuts && request >= number;
                };
            });
            // A station whose replies are cut gets the requests all the same.
            if (!cuts) {
                EXPECT_THAT(bench.Writes(), SizeIs(exchange.writesAtDeath));
            }
            const bool isUnknown = exchange.death == unknown;
            EXPECT_THAT(bench.Trail(),
                        ElementsAre(AllOf(StartsWith(audited), HasSubstr("Error Occured in Communication"),
                                          EndsWith(exchange.death))));
            EXPECT_THAT(bench.messages, testing::Contains(StartsWith("Error Occured in Communication")));
            EXPECT_EQ(bench.calibration->Of(DP).result, isUnknown ? "Unknown" : "");
            EXPECT_TRUE(bench.calibration->Of(DP).old);
        }
    }
}

TEST(Calibration, AStopOrATakeoverAtEachExchange) {
    for (const bool takeover : {false, true}) {
        int number = 0;
        for (const auto& exchange : exchanges) {
            ++number;
            SCOPED_TRACE(testing::Message() << exchange.what << (takeover ? " takeover" : " stop"));
            CalibrationBench bench;
            std::uint64_t sent = 0;
            std::shared_ptr<protocols::LineLease> taker;
            bench.Run({{"read", [&] { return bench.Reading() && bench.calibration->Of(DP).status; },
                        [&] {
                            bench.gate.requests = 0;
                            bench.gate.onRequest = [&](int request) {
                                if (request == number) {
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
            // A stop while the status is on its way comes behind the answer.
            const bool answered = number == std::ssize(exchanges) && !takeover;
            EXPECT_THAT(bench.Trail(), ElementsAre(AllOf(StartsWith(audited),
                                                         EndsWith(answered ? "Success, status 0." : exchange.end))));
            EXPECT_THAT(bench.Writes(), SizeIs(exchange.writesAtEnd));
            EXPECT_THAT(bench.Told(), StartsWith(takeover ? "The line is gone: A run has it" : "Stopped"));
            EXPECT_TRUE(!takeover || bench.line.BytesSent() == sent);
        }
    }
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
    const auto told = [](const std::function<void(CalibrationBench&)>& without) {
        CalibrationBench bench;
        without(bench);
        bench.Run({});
        EXPECT_THAT(bench.Writes(), IsEmpty());
        return bench.Told();
    };
    EXPECT_EQ(told([](auto& bench) { bench.simulated.List()->Remove("#CAL.TMPREST."); }),
              "Error: System Signal #CAL.TMPREST. Not Found");
    EXPECT_EQ(told([](auto& bench) { bench.simulated.List()->Remove("TEMP.CALSTAT."); }),
              "Error: Signal TEMP.CALSTAT. Not Found");
    EXPECT_EQ(told([](auto& bench) {
                  bench.simulated.List()->Replace(
                      "SP.LIVE.", {.description = "SP.LIVE.", .kind = fieldsim::Kind::Text, .text = "x"});
              }),
              "Error: Signal SP.LIVE. has no number");
    EXPECT_THAT(told([](auto& bench) {
                    bench.desk.dbconn.Execute("update calibration set name = ' ' where srno = 7");
                    bench.gate.dead = true;  // nobody is asked
                }),
                HasSubstr("status of DP"));
    for (const int at : {1, 9, 17}) {
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
        EXPECT_EQ(stopped.progress.back(), std::pair(at, 17));
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
