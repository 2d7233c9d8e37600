// The life of a session with a simulated station, on the virtual clock.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "support/OddDevices.h"
#include "support/SessionDesk.h"

namespace {

using session::State;
using support::SessionDesk;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const demo::DemoStation teleFlow{"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5};
const demo::DemoStation teleCorrector{"O'Neill", "TeleCorrector", "BSAP", "", 1, 5};
const demo::DemoStation multiStream{"Twin", "CWEFM-MultiStream", "BSAP", "", 1, 5, "", 2, {"AGA3", "AGA7"}};
const demo::DemoStation quantum{"Quay", "TeleFlow", "Quantum", "", 1, 5};

// Every value of the session's rows is one that the station gave.
void ExpectServed(const SessionDesk& desk, std::size_t rows) {
    std::size_t seen = 0;
    for (std::size_t group = 0; group < session::groupCount; ++group) {
        for (const session::ParameterRow& row : desk.session->Parameters().Of(group)) {
            if (row.read) {
                ++seen;
                EXPECT_TRUE(
                    desk.field->WasServed(desk.locationID, desk.session->StreamNo(), row.Description, row.lastvalue))
                    << row.Description << " " << row.lastvalue;
            }
        }
    }
    EXPECT_EQ(seen, rows);
}

std::vector<std::string> WritesOf(const SessionDesk& desk) {
    return desk.field->Station(desk.locationID)->written->WritesText();
}

TEST(SessionTest, EveryProtocolIsConnectedPolledAndDisconnected) {
    const struct {
        demo::DemoStation station;
        std::size_t rows;
        const char* stored;
    } cases[] = {{teleFlow, 263 + 75, "Flowing Pressure"},
                 {teleCorrector, 261 + 75, "Flowing Pressure"},
                 {multiStream, 179 + 43, "Flowing Pressure"},
                 {quantum, 24, "Pressure"}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.station.consumer);
        SessionDesk desk;
        desk.Open(test.station);
        desk.Connect();
        ASSERT_EQ(desk.session->GetState(), State::Connected);
        EXPECT_THAT(desk.view.status, Contains("Connected"));
        desk.Behind({{}, [&] {
                         EXPECT_EQ(desk.session->GetState(), State::Polling);
                         ExpectServed(desk, test.rows);
                         EXPECT_EQ(desk.view.progress.front(), std::pair(0, 0));
                         EXPECT_EQ(desk.view.progress.back().first, desk.view.progress.back().second);
                     }});
        desk.GetData();
        EXPECT_EQ(desk.session->GetState(), State::Idle);
        EXPECT_THAT(desk.view.ends, ElementsAre(""));
        EXPECT_THAT(desk.view.boxes, IsEmpty());
        EXPECT_TRUE(desk.field->WasServed(desk.locationID, 1, test.stored, desk.Stored(test.stored)));
        EXPECT_TRUE(desk.Master(desk.locationID).Bool("sampledtoday"));
        EXPECT_FALSE(desk.Line().InUse());
        for (const std::string text : {"connected to RTU ", "disconnected from RTU "}) {
            EXPECT_THAT(desk.Trail(), Contains(HasSubstr(": User WARDEN " + text + test.station.consumer + ".")));
        }
        EXPECT_EQ(desk.session->Requests().failed, 0);
        EXPECT_GT(desk.session->Requests().good, 2);
    }
}

TEST(SessionTest, APollLeavesEveryRowItsMomentAndHowItWasRead) {
    for (const demo::DemoStation& station : {teleFlow, teleCorrector, quantum}) {
        SCOPED_TRACE(station.consumer);
        const bool isBsap = station.protocol == "BSAP";
        SessionDesk desk;
        desk.Open(station);
        const auto rows = [&](const std::string& where) {
            return desk.Count("configdata_detail where locationID=" + std::to_string(desk.locationID) + " and " +
                              where);
        };
        // A row that the station's list does not have, and a unit that it leaves blank.
        desk.dbconn.Execute(
            "insert into configdata_detail(locationID,description,startaddress,type,srno,lastvalue,aga,StreamNo,readat,"
            "quality,unit) values(?,'Gone','54-300','Float',999,8.5,'KEYPAD',1,'2026-03-08 08:00:07','good','')",
            {desk.locationID});
        desk.dbconn.Execute("update configdata_detail set unit='bar' where locationID=? and unit=''",
                            {desk.locationID});
        if (!isBsap) {
            desk.dbconn.Execute("delete from configdata_detail where description='Gone'");
        }
        const auto blank = rows("unit='bar'");
        const bool floats = station.protocol != "Quantum";
        if (floats) {
            ASSERT_TRUE(desk.field->Values(desk.locationID, 1, "Keypad N2")->Fix("Keypad N2", 3e9));
        }
        desk.Reopen();
        desk.Connect();
        const std::string begun = core::IsoText(desk.clock.Now());
        desk.Behind({{}, [&] {
                         if (isBsap) {
                             EXPECT_GE(desk.session->Parameters().At(desk.Place("KEYPAD", "Gone")).missedPolls, 2);
                         }
                     }});
        desk.GetData();
        EXPECT_EQ(rows("quality='good' and readat>='" + begun + "'"),
                  rows("1=1") - (floats ? 1 : 0) - (isBsap ? 1 : 0));
        EXPECT_EQ(rows("quality='out of range' and lastvalue=0 and description='Keypad N2'"), floats ? 1 : 0);
        EXPECT_EQ(rows("quality='not received' and lastvalue=8.5 and readat='2026-03-08 08:00:07'"), isBsap ? 1 : 0);
        EXPECT_EQ(rows("unit='bar'"), blank);
    }
}

// A block that the station does not have is told once; the rest goes on.
TEST(SessionTest, ARefusedBlockIsMarkedAndThePollGoesOn) {
    SessionDesk desk;
    desk.Open(teleFlow);
    support::RefusingSlave refusing(*desk.field->Station(desk.locationID)->device, [](int reg) { return reg == 497; });
    desk.ports.Attach(1, refusing);
    desk.dbconn.Execute("update configdata_detail set lastvalue=7");
    desk.Connect();
    desk.Behind({{}, {}, {}});
    desk.GetData();
    EXPECT_THAT(desk.view.boxes, ElementsAre("Invalid Modbus Address Specified"));
    EXPECT_THAT(desk.view.ends, ElementsAre(""));
    const std::string inBlock = "type='Float' and cast(startaddress as integer) >= 497";
    EXPECT_GT(desk.Count("configdata_detail where " + inBlock), 0);
    EXPECT_EQ(desk.Count("configdata_detail where (quality='refused' and lastvalue=7) != (" + inBlock + ")"), 0);
    EXPECT_EQ(desk.Count("configdata_detail where (quality='good') = (" + inBlock + ")"), 0);
    // One that has nothing but refusals is no station to watch.
    refusing.refuses = [](int) { return true; };
    desk.view.onRefreshed = {};
    desk.Connect();
    desk.GetData();
    EXPECT_THAT(desk.view.ends, ElementsAre("", "Remote Station not Responding"));
}

TEST(SessionTest, WhatCannotBeWrittenIsRefusedAndChangesNothing) {
    SessionDesk desk;
    desk.dbconn.Execute(
        "insert into users(userid, firstname, readsec, writesec) values('ann','ann',6,1),('bob','bob',6,6)");
    desk.Open(teleFlow);
    desk.Connect();
    const struct {
        const char* user;
        const char* aga;
        const char* description;
        const char* text;
        const char* refusal;
    } cases[] = {
        {"bob", "KEYPAD", "Keypad N2", "", "Enter Proper Data"},
        {"bob", "KEYPAD", "Keypad N2", "1e39", "Enter Proper Data"},
        {"bob", "KEYPAD", "Keypad N2", "nan", "Enter Proper Data"},
        {"bob", "KEYPAD", "Keypad N2", "ENABLE", "Enter Proper Data"},
        {"bob", "HEALTH", "Time Sync", "2", "Enter Proper Data"},
        {"bob", "HEALTH", "Time Sync", "ENABLE", "Enter Proper Data"},
        {"ann", "KEYPAD", "Keypad N2", "1.5", "Could not set. Lower user level."},
        {"nobody", "KEYPAD", "Keypad N2", "1.5", "Could not set. Lower user level."},
        // What is measured is the super user's alone.
        {"bob", "TOTRND", "Total Volume Accumulated", "1", "Could not set. Lower user level."},
        {"bob", "TOTRND", "Volume Yesterday", "1", "Could not set. Lower user level."},
        {"bob", "HEALTH", "Main Battery Volt", "1", "Could not set. Lower user level."},
    };
    EXPECT_EQ(desk.session->AskWrite(desk.Place("KEYPAD", "Keypad N2"), "1"), "Not connected") << "before the poll";
    desk.Behind({[&] {
        for (const auto& test : cases) {
            desk.shared.currentuser = test.user;
            EXPECT_EQ(desk.session->AskWrite(desk.Place(test.aga, test.description), test.text), test.refusal)
                << test.user << " " << test.text;
        }
        desk.shared.currentuser = "bob";
        EXPECT_EQ(desk.session->Check(desk.Place("KEYPAD", "Keypad N2"), "1.5"), "");
        desk.shared.currentuser = "WARDEN";
        EXPECT_EQ(desk.session->Check(desk.Place("TOTRND", "Total Volume Accumulated"), "1"), "");
    }});
    desk.GetData();
    EXPECT_THAT(WritesOf(desk), IsEmpty());
    EXPECT_NE(desk.Stored("Keypad N2"), 1.5);
    EXPECT_THAT(desk.Trail(), Not(Contains(HasSubstr("changed value"))));
}

TEST(SessionTest, AnotherStreamIsReadUnderItsOwnNames) {
    SessionDesk desk;
    desk.Open(multiStream);
    desk.Connect();
    EXPECT_TRUE(desk.session->IsAga3());
    desk.Behind({[&] { desk.session->ChooseStream(2); },
                 [&] {
                     EXPECT_EQ(desk.session->StreamNo(), 2);
                     EXPECT_FALSE(desk.session->IsAga3());
                     EXPECT_EQ(desk.view.drawn, 2) << "at the connect, and now";
                     ExpectServed(desk, 204 + 41);
                     desk.session->ChooseStream(3);  // there is none
                 }});
    desk.GetData();
    EXPECT_EQ(desk.session->StreamNo(), 2);
}

// What is asked for is on the line within one wait, whatever the poll was at.
TEST(SessionTest, AWriteAStreamAndAStopAreServedWithinOneWait) {
    SessionDesk desk;
    demo::DemoStation slow = teleFlow;
    slow.delaytime = 2000;
    desk.Open(slow);
    desk.Connect();
    std::uint64_t asked = 0;
    std::uint64_t served = 0;
    desk.Behind({[&] {
                     // In the middle of the next poll: a request is on its way.
                     desk.clock.After(9100, [&] {
                         asked = desk.clock.Elapsed();
                         EXPECT_EQ(desk.session->AskWrite(desk.Place("KEYPAD", "Keypad N2"), "1.25"), "");
                         desk.view.onSent = [&] { served = served == 0 ? desk.clock.Elapsed() : served; };
                     });
                 },
                 {},
                 {}});
    desk.GetData();
    EXPECT_GT(served, 0U);
    EXPECT_LE(served - asked, 2000U);

    desk.Reopen();
    desk.Connect();
    desk.view.onRefreshed = {};
    desk.view.onSent = {};
    desk.clock.After(9100, [&] {
        asked = desk.clock.Elapsed();
        desk.session->Disconnect();
    });
    desk.GetData();
    EXPECT_LE(desk.clock.Elapsed() - asked, 2000U);
}

TEST(SessionTest, AScheduledRunEndsTheSessionAndItsPendingWriteIsNeverSent) {
    for (const bool sameStation : {true, false}) {
        SessionDesk desk;
        demo::DemoStation other = teleFlow;
        other.consumer = "Due";
        other.slaveaddress = 6;
        other.contracthour = "08:00";
        demo::DemoStation own = teleFlow;
        own.contracthour = sameStation ? "08:00" : "20:00";
        const auto due = demo::AddStation(desk.dbconn, other);
        desk.Open(own);
        desk.Connect();
        desk.StartTicking();
        // In the last moment before the run takes the line, half a second behind the tick: entered, and never on its
        // way.
        desk.clock.After(60499, [&] {
            EXPECT_EQ(desk.session->AskWrite(desk.Place("KEYPAD", "Keypad N2"), "1.25"), "");
            EXPECT_EQ(desk.Stored("Keypad N2"), 1.25);
            desk.session->AskTime();
        });
        desk.GetData();
        EXPECT_EQ(desk.session->GetState(), State::Idle);
        EXPECT_THAT(desk.view.boxes, IsEmpty()) << "nobody is there to answer";
        EXPECT_THAT(desk.view.ends, ElementsAre("A scheduled collection has taken the line"));
        desk.Finish();
        EXPECT_THAT(desk.view.requests, Contains(HasSubstr("Keypad N2: not sent, A scheduled")));
        EXPECT_THAT(desk.Trail(),
                    Contains(HasSubstr("value 1.25 of parameter Keypad N2 was not sent to RTU Hill Farm")));
        EXPECT_THAT(WritesOf(desk), IsEmpty());
        EXPECT_THAT(desk.field->Station(due)->written->WritesText(), IsEmpty());
        EXPECT_TRUE(desk.Master(due).Bool("sampledtoday"));
        EXPECT_EQ(desk.Master(desk.locationID).Bool("sampledtoday"), sameStation) << "the run's mark stays";
        EXPECT_NE(desk.Stored("Keypad N2"), 1.25);
    }
}

TEST(SessionTest, NoSessionBeginsWhileStationsAreCollected) {
    SessionDesk desk;
    demo::DemoStation due = teleFlow;
    due.contracthour = "08:00";
    desk.Open(due);
    desk.StartTicking();
    desk.clock.After(61000, [&] {
        ASSERT_TRUE(desk.scheduler.Busy());
        desk.session->Connect();
        EXPECT_EQ(desk.session->GetState(), State::Idle);
    });
    desk.clock.Run(120000);
    EXPECT_THAT(desk.view.boxes, ElementsAre(HasSubstr("The line is in use")));
    EXPECT_TRUE(desk.Master(desk.locationID).Bool("sampledtoday"));
}

// Answers whatever it is sent with the same text.
struct Parrot final : fieldsim::Device {
    explicit Parrot(std::string word) : answer(std::move(word)) {}
    std::string answer;
    std::vector<fieldsim::Answer> Receive(std::string_view, const fieldsim::Moment&) override {
        return answer.empty() ? std::vector<fieldsim::Answer>() : std::vector<fieldsim::Answer>{{answer, 100}};
    }
};

TEST(SessionTest, ConnectionsThatFailSayWhyAndGiveTheLineBack) {
    const demo::DemoStation far{"Far", "TeleFlow", "Modbus", "RTU", 1, 5, "4170253"};
    const fieldsim::DialOutcome noCarrier{"NO CARRIER", 3000};
    const struct {
        const char* what;
        demo::DemoStation station;
        std::vector<fieldsim::DialOutcome> dials;
        std::optional<std::string> answers;  // by what stands on the port in place of modem or station
        const char* box;
    } cases[] = {
        {"no sign-on", teleCorrector, {}, "", "RTU Dead"},
        {"no modem", far, {}, "", "Check if Modem is plugged-in and power is on"},
        {"a modem of another mind", far, {}, "ERROR\r\n", "Modem not Configured"},
        {"no carrier three times",
         far,
         {noCarrier, noCarrier, noCarrier},
         std::nullopt,
         "No Dialtone/Line Engaged/Remote Modem not Responding"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        Parrot parrot(test.answers.value_or(""));
        SessionDesk desk;
        fieldsim::FieldOptions options;
        options.modems[1] = {test.dials.begin(), test.dials.end()};
        desk.Open(test.station, options);
        if (test.answers) {
            desk.ports.Attach(1, parrot);
        }
        desk.Connect();
        EXPECT_EQ(desk.session->GetState(), State::Idle);
        EXPECT_THAT(desk.view.boxes, ElementsAre(test.box));
        EXPECT_EQ(desk.view.ends.size(), 1U);
        EXPECT_FALSE(desk.Line().InUse());
        EXPECT_FALSE(desk.ports.PortOpen());
        EXPECT_FALSE(desk.Master(desk.locationID).Bool("sampledtoday"));
    }
}

TEST(SessionTest, ADisconnectEndsADialAtAnyStep) {
    const std::string dial = "atx3dt4170253\r";
    const struct {
        std::uint32_t afterMs;
        std::vector<std::string> sent;
    } cases[] = {{600, {"at\r", "ATH\r"}},  // the modem is still being checked
                 {4000, {"at\r", dial, "+++", "ath\r"}}};
    for (const auto& test : cases) {
        SessionDesk desk;
        fieldsim::FieldOptions options;
        options.modems[1] = {{"CONNECT 9600", 60000}};
        desk.Open({"Far", "TeleFlow", "Modbus", "RTU", 1, 5, "4170253"}, options);
        desk.clock.After(test.afterMs, [&] { desk.session->Disconnect(); });
        desk.Connect();
        EXPECT_THAT(desk.view.sent, testing::ElementsAreArray(test.sent));
        EXPECT_EQ(desk.session->GetState(), State::Idle);
        EXPECT_THAT(desk.view.ends, ElementsAre(""));
        EXPECT_FALSE(desk.ports.PortOpen());
    }
}

// With its page, at any wait: the call is hung up, the line is free, and nobody is told.
TEST(SessionTest, ASessionMayGoAtAnyWait) {
    for (const demo::DemoStation& station : {teleFlow, teleCorrector, quantum}) {
        for (std::uint32_t afterMs = 0; afterMs < 12000; afterMs += 130) {
            SCOPED_TRACE(station.consumer + " " + std::to_string(afterMs));
            SessionDesk desk;
            demo::DemoStation dialled = station;
            dialled.phoneno = "4170253";
            fieldsim::FieldOptions options;
            options.modems[1] = {{"CONNECT 9600", 3000}};
            desk.Open(dialled, options);
            desk.view.onSent = [&] { desk.session->GetData(); };
            desk.session->Connect();
            desk.clock.Run(afterMs);
            desk.session.reset();
            const auto told = desk.view.status.size() + desk.view.sent.size();
            desk.Finish();
            EXPECT_EQ(desk.view.status.size() + desk.view.sent.size(), told);
            EXPECT_THAT(desk.view.ends, IsEmpty());
            EXPECT_FALSE(desk.ports.PortOpen());
            EXPECT_TRUE(desk.Line().TakeIfFree());
            EXPECT_FALSE(desk.field->Modem(1)->Connected());
        }
    }
}

// Nobody reads faster, and a request does not wait for it.
TEST(SessionTest, APromptStationIsPolledOnceASecond) {
    SessionDesk desk;
    desk.Open(teleFlow);
    desk.dbconn.Execute("update configdata_master set pacing='prompt'");
    desk.Connect();
    desk.session->GetData();
    desk.RunUntil([&] { return desk.view.refreshed == 1; });
    const auto begun = desk.clock.Elapsed();
    desk.RunUntil([&] { return desk.view.refreshed == 6; });
    EXPECT_GE(desk.clock.Elapsed() - begun, 5000U);
    EXPECT_LE(desk.clock.Elapsed() - begun, 5500U);
    const auto sent = desk.view.sent.size();
    EXPECT_EQ(desk.session->AskWrite(desk.Place("KEYPAD", "Keypad N2"), "1.25"), "");
    desk.clock.Run(1);
    EXPECT_EQ(desk.view.sent.size(), sent + 1);
}

TEST(SessionTest, AModbusStationWithoutAddressesIsNotPolled) {
    SessionDesk desk;
    desk.Open(teleFlow);
    desk.dbconn.Execute("update configdata_master set MB_CONFIG = true");
    desk.dbconn.Execute("update configdata_detail set startaddress = '0'");
    desk.Connect();
    desk.GetData();
    EXPECT_THAT(desk.view.boxes, ElementsAre("No Modbus Address Found"));
    EXPECT_EQ(desk.session->GetState(), State::Idle);
}

TEST(SessionTest, ADialIsToldStepByStepAndTheProgramsEndHangsUp) {
    SessionDesk desk;
    fieldsim::FieldOptions options;
    options.modems[1] = {{"NO CARRIER", 3000}, {"CONNECT 9600", 3000}};
    desk.Open({"Far", "TeleFlow", "Modbus", "RTU", 1, 5, "4170253"}, options);
    desk.Connect();
    for (const char* text : {"Redial Count:0", "Dialing 4170253", "Response From Modem:", "Redial Count:1",
                             "Connected to Location ", "Connected"}) {
        EXPECT_THAT(desk.view.status, Contains(HasSubstr(text)));
    }
    ASSERT_EQ(desk.session->GetState(), State::Connected);
    desk.scheduler.Leave();
    desk.Finish();
    EXPECT_EQ(desk.session->GetState(), State::Idle);
    EXPECT_EQ(desk.view.status.back(), "Disconnected");
    EXPECT_FALSE(desk.ports.PortOpen());
}

}  // namespace
