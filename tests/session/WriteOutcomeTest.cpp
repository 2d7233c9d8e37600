// Each kind of write before stations of each behaviour: what the audit trail, the operator and the map then say.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/Text.h"
#include "support/Script.h"
#include "support/SessionDesk.h"

namespace {

using fieldsim::WriteFault;
using session::State;
using support::SessionDesk;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const demo::DemoStation modbus{"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5};
const demo::DemoStation bsap{"O'Neill", "TeleCorrector", "BSAP", "", 1, 5};

struct WriteDesk : SessionDesk {
    fieldsim::FieldOptions options{};

    void Begin(const demo::DemoStation& station, WriteFault fault = WriteFault::None) {
        options.writes[1].otherwise = fault;
        options.writes[1].slowMs = 8000;
        Open(station, options);
        Connect();
    }

    // Each step as soon as it can be made; then the session is left.
    void Run(std::vector<support::Script::Step> steps) {
        auto script = std::make_shared<support::Script>(std::move(steps));
        const auto alive = std::make_shared<bool>(true);
        clock.Every(50, [this, script, alive] {
            if (*alive) {
                script->Turn();
            }
        });
        clock.After(1200000, [this, alive] {
            if (*alive) {
                session->Disconnect();
            }
        });
        GetData();
        *alive = false;
        EXPECT_EQ(script->Missing(), "") << testing::PrintToString(view.ends) << testing::PrintToString(view.boxes);
    }
    support::Script::Step Ask(const char* aga, const char* description, std::string text) {
        return {std::string("ask for ") + description,
                [this, aga, description] { return Idle() && session->Parameters().At(Place(aga, description)).read; },
                [this, aga, description, text = std::move(text)] {
                    EXPECT_EQ(session->AskWrite(Place(aga, description), text), "");
                    EXPECT_EQ(Quality(description), "not confirmed") << "not yet";
                }};
    }
    support::Script::Step Leave() {
        return {"leave", [this] { return Idle(); }, [this] { session->Disconnect(); }};
    }
    bool Idle() const { return session->ValuesAt().has_value() && !session->WritePending() && !session->TimePending(); }

    std::string Quality(const char* description) {
        return dbconn
            .First("select quality from configdata_detail where locationID=? and description=?",
                   {locationID, description})
            .value()[0]
            .Text();
    }
    std::vector<std::string> Lines(const char* with) {
        std::vector<std::string> lines = Trail();
        std::erase_if(lines, [&](const std::string& line) { return line.find(with) == std::string::npos; });
        return lines;
    }
    double AtStation(const char* description) {
        auto* list = field->Values(locationID, 1, description);
        return list->ValueAt(*list->Find(description), clock.Now());
    }
    std::vector<std::string> Writes() const { return field->Station(locationID)->written->WritesText(); }
};

TEST(WriteOutcomeTest, EveryWriteHasAnAnswer) {
    enum class Told { Confirmed, Refused, NotConfirmed };
    const struct {
        WriteFault fault;
        Told overModbus;
        Told overBsap;
    } behaviours[] = {{WriteFault::None, Told::Confirmed, Told::Confirmed},
                      {WriteFault::Ignore, Told::NotConfirmed, Told::NotConfirmed},
                      {WriteFault::Refuse, Told::Refused, Told::NotConfirmed},
                      {WriteFault::Limit, Told::NotConfirmed, Told::NotConfirmed},
                      {WriteFault::Slow, Told::Confirmed, Told::Confirmed},
                      {WriteFault::Late, Told::Confirmed, Told::Confirmed},
                      {WriteFault::LostBefore, Told::NotConfirmed, Told::NotConfirmed},
                      {WriteFault::LostAfter, Told::Confirmed, Told::Confirmed}};
    const demo::DemoStation ascii{"Lane", "TeleFlow", "Modbus", "ASCII", 1, 5};
    for (const demo::DemoStation& station : {modbus, ascii, bsap}) {
        for (const auto& behaviour : behaviours) {
            for (const bool isSwitch : {false, true}) {
                const bool noFloats = station.mode == "ASCII";
                if (isSwitch ? behaviour.fault == WriteFault::Limit : noFloats) {
                    continue;
                }
                SCOPED_TRACE(station.consumer + " " + std::to_string(static_cast<int>(behaviour.fault)) +
                             (isSwitch ? " switch" : " number"));
                const char* aga = isSwitch ? "HEALTH" : "KEYPAD";
                const char* name = isSwitch ? "Time Sync" : "Keypad N2";
                WriteDesk desk;
                desk.Begin(station, behaviour.fault);
                const double before = desk.AtStation(name);
                const std::string text = !isSwitch ? "1.25" : before == 0 ? "1" : "0";
                desk.Run({desk.Ask(aga, name, text), desk.Leave()});
                const Told told = station.protocol == "Modbus" ? behaviour.overModbus : behaviour.overBsap;
                const bool confirmed = told == Told::Confirmed;
                const std::string expected = confirmed               ? ": confirmed"
                                             : told == Told::Refused ? ": refused by the station, Modbus exception 4"
                                                                     : ": not confirmed";
                const std::size_t sends = station.protocol == "Modbus" && behaviour.fault >= WriteFault::Late &&
                                                  behaviour.fault <= WriteFault::LostAfter
                                              ? 3
                                              : 1;
                EXPECT_THAT(desk.Writes(), testing::SizeIs(sends));
                EXPECT_THAT(desk.Writes(), Each(HasSubstr(std::string(name) + " = " + text)));
                EXPECT_THAT(desk.view.requests.back(), HasSubstr(name + expected));
                EXPECT_THAT(desk.Lines(": User WARDEN asked to change parameter "),
                            ElementsAre(HasSubstr(std::string(name) + " of RTU " + station.consumer + " from ")));
                EXPECT_EQ(desk.Lines("changed value of parameter").size(), confirmed ? 1U : 0U);
                EXPECT_EQ(
                    desk.Lines(told == Told::Refused ? " was refused by RTU " : " was not confirmed by RTU ").size(),
                    confirmed ? 0U : 1U);
                EXPECT_EQ(desk.view.boxes.size(), confirmed ? 0U : 1U);
                EXPECT_EQ(desk.Stored(name), core::RoundTo(desk.AtStation(name), 4)) << "what the station has";
                EXPECT_EQ(desk.Quality(name), "good");
                EXPECT_FALSE(desk.session->Parameters().At(desk.Place(aga, name)).pending);
            }
        }
    }
}

TEST(WriteOutcomeTest, AValueThatIsNotReadBackStaysUnconfirmed) {
    for (const demo::DemoStation& station : {modbus, bsap}) {
        WriteDesk desk;
        desk.Begin(station);
        desk.Run({{"the station dies of it", [&] { return desk.Idle(); },
                   [&] {
                       desk.field->Station(desk.locationID)->written->Manners().diesAt = 1;
                       EXPECT_EQ(desk.session->AskWrite(desk.Place("KEYPAD", "Keypad N2"), "1.25"), "");
                       EXPECT_TRUE(desk.session->Parameters().At(desk.Place("KEYPAD", "Keypad N2")).pending);
                       EXPECT_EQ(desk.session->AskWrite(desk.Place("KEYPAD", "Keypad CO2"), "7"),
                                 "Write Request Pending.....")
                           << "one at a time";
                   }}});
        EXPECT_EQ(desk.Quality("Keypad N2"), "not confirmed");
        EXPECT_THAT(desk.Lines("changed value"), IsEmpty());
        EXPECT_THAT(desk.Lines("Keypad N2 was not confirmed by RTU "), testing::SizeIs(1));
        EXPECT_THAT(desk.view.ends, ElementsAre("Remote Station not Responding"));
        EXPECT_FALSE(desk.Master(desk.locationID).Bool("sampledtoday"));
        EXPECT_GT(desk.session->Requests().failed, 0);
    }
}

TEST(WriteOutcomeTest, WhatNoFrameCarriesIsNotSent) {
    WriteDesk desk;
    desk.Begin({"Lane", "TeleFlow", "Modbus", "ASCII", 1, 5});
    const double before = desk.AtStation("Keypad N2");
    desk.Run({desk.Ask("KEYPAD", "Keypad N2", "1.25"), desk.Leave()});
    EXPECT_THAT(desk.view.requests.back(), HasSubstr("Keypad N2: not sent, "));
    EXPECT_THAT(desk.Lines("value 1.25 of parameter Keypad N2 was not sent to RTU Lane"), testing::SizeIs(1));
    EXPECT_THAT(desk.Writes(), IsEmpty());
    EXPECT_EQ(desk.Stored("Keypad N2"), core::RoundTo(before, 4));
}

TEST(WriteOutcomeTest, AMultipleWriteStopsAtTheFirstValueThatIsNotTaken) {
    for (const WriteFault fault : {WriteFault::None, WriteFault::LostBefore, WriteFault::Ignore, WriteFault::Refuse}) {
        SCOPED_TRACE(static_cast<int>(fault));
        WriteDesk desk;
        desk.options.writes[1].script = {WriteFault::None};
        desk.Begin(modbus, fault);
        desk.Run({{"ask for all", [&] { return desk.Idle(); },
                   [&] {
                       std::vector<session::Session::Entry> entries;
                       const std::size_t gc = *session::GroupOf("GC");
                       for (std::size_t row = 0; row < desk.session->Parameters().Of(gc).size(); ++row) {
                           entries.push_back({{gc, row}, std::to_string(row + 1)});
                       }
                       ASSERT_EQ(entries.size(), 21U);
                       auto wrong = entries;
                       wrong.back().text = "x";
                       EXPECT_EQ(desk.session->AskMultipleWrite(wrong), "Enter Proper Data");
                       EXPECT_FALSE(desk.session->WritePending());
                       EXPECT_EQ(desk.session->AskMultipleWrite(entries), "");
                   }},
                  desk.Leave()});
        if (fault == WriteFault::None) {
            EXPECT_EQ(desk.Writes().size(), 21U);
            EXPECT_EQ(desk.Lines("changed value of parameter").size(), 21U);
            EXPECT_EQ(desk.Stored("Nitrogen"), 2);
            continue;
        }
        EXPECT_EQ(desk.Writes().size(), fault == WriteFault::LostBefore ? 4U : 2U);
        EXPECT_LE(desk.view.boxes.size(), 2U);
        EXPECT_THAT(desk.Lines("changed value of parameter"), ElementsAre(HasSubstr("Methane from")));
        EXPECT_EQ(desk.Lines(" was not sent to RTU Hill Farm: Nitrogen was not taken.").size(), 19U);
        EXPECT_THAT(desk.view.requests.back(),
                    testing::AllOf(HasSubstr("Confirmed: Methane. Nitrogen: "), HasSubstr("Not sent: Carbon Dioxide")));
        EXPECT_EQ(desk.Stored("Carbon Dioxide"), core::RoundTo(desk.AtStation("Carbon Dioxide"), 4));
    }
}

// Another program gives the addresses of the signals to others.
TEST(WriteOutcomeTest, NothingIsWrittenByWhatAnEarlierConnectionRead) {
    WriteDesk desk;
    desk.Begin(bsap);
    const auto keypad = [&] { return desk.Place("KEYPAD", "Keypad N2"); };
    desk.Run({desk.Leave()});
    desk.field->Station(desk.locationID)->bsap->LoadProgram();
    desk.Connect();
    bool early = false;
    const auto lists = [&] { return desk.session->Requests().good; };
    const int before = lists();
    desk.Run({{"in the first poll", [&] { return desk.session->PollingActive() && lists() > before; },
               [&] {
                   early = !desk.session->Parameters().At(keypad()).read;
                   EXPECT_EQ(desk.session->AskWrite(keypad(), "1.25"),
                             "The value has not been read in this connection: it takes no write");
                   desk.session->AskTime();
               }},
              desk.Ask("KEYPAD", "Keypad N2", "1.25"),
              desk.Leave()});
    EXPECT_TRUE(early);
    EXPECT_THAT(desk.Writes(), ElementsAre("54-187 Keypad N2 = 1.25"));
    EXPECT_EQ(desk.AtStation("Keypad N2"), 1.25);
    EXPECT_THAT(desk.Lines("set the time of RTU O'Neill"), Contains(HasSubstr(": not sent")));
}

TEST(WriteOutcomeTest, TheClockIsSetToTheSecondAndToldWhenItShowsIt) {
    const demo::DemoStation twin{"Twin", "CWEFM-MultiStream", "BSAP", "", 1, 5, "", 2, {"AGA3", "AGA7"}};
    for (const demo::DemoStation& station : {modbus, bsap, twin}) {
        for (const WriteFault fault : {WriteFault::None, WriteFault::Ignore}) {
            SCOPED_TRACE(station.protocol + std::to_string(static_cast<int>(fault)));
            WriteDesk desk;
            demo::DemoStation slow = station;
            slow.delaytime = 2000;
            desk.Begin(slow, fault);
            auto* written = desk.field->Station(desk.locationID)->written;
            std::int64_t ahead = 0;
            written->WhenTaken([&](const fieldsim::Write& write) {
                if (write.description == "Set Time & Date") {
                    ahead = core::ToSeconds(written->ClockSays(desk.clock.Now())) - core::ToSeconds(desk.clock.Now());
                }
            });
            desk.Run({{"ask", [&] { return desk.Idle(); },
                       [&] {
                           // A clock that is an hour behind.
                           if (fault == WriteFault::Ignore) {
                               const std::string hour = station.No_Stream > 1 ? "System Time Hour" : "RTU Time - Hour";
                               EXPECT_TRUE(desk.field->Values(desk.locationID, 1, hour)->Fix(hour, 3));
                           }
                           desk.session->AskTime();
                       }},
                      desk.Leave()});
            const bool set = fault == WriteFault::None;
            EXPECT_EQ(ahead, 0);
            EXPECT_THAT(desk.Writes(),
                        ElementsAre(HasSubstr("Set Year = 2026"), HasSubstr("Set Month = 3"), HasSubstr("Set Date = 9"),
                                    HasSubstr("Set Hour"), HasSubstr("Set Minute"), HasSubstr("Set Second"),
                                    HasSubstr("Set Time & Date = 1")));
            EXPECT_EQ(desk.Lines("WARDEN set the time of RTU ").size(), set ? 1U : 0U);
            EXPECT_EQ(desk.Lines("asked to set the time of RTU ").size(), set ? 1U : 2U);
            EXPECT_THAT(desk.view.requests.back(),
                        HasSubstr(set ? "The clock of the station is set" : "not confirmed: its clock shows "));
        }
    }
}

TEST(WriteOutcomeTest, ATrailThatTakesNoLineEndsNoSession) {
    WriteDesk desk;
    desk.Begin(modbus);
    desk.Run({{"the trail is full", [&] { return desk.Idle(); },
               [&] {
                   desk.dbconn.Execute(
                       "create temp trigger full before insert on TTS_table begin "
                       "select raise(abort,'disk full'); end");
                   desk.session->AskTime();
               }},
              {"it goes on", [&] { return desk.Idle(); },
               [&] {
                   EXPECT_EQ(desk.session->GetState(), State::Polling);
                   desk.session->Disconnect();
               }}});
    EXPECT_THAT(desk.RtuErr(), HasSubstr("User WARDEN set the time of RTU Hill Farm. Not in the audit trail: "));
}

// The box that tells of the silence comes with the end; while the session goes on, the count tells.
TEST(WriteOutcomeTest, ASessionSurvivesAsManyFailedPollsAsTheSettingSays) {
    const demo::DemoStation quantum{"Quay", "TeleFlow", "Quantum", "", 1, 5};
    const struct {
        const demo::DemoStation& station;
        int survived;
        const char* box;
    } cases[] = {
        {modbus, 3, "There was No Response from the controller!\rCheck Settings and try again!"},
        {modbus, 0, "There was No Response from the controller!\rCheck Settings and try again!"},
        {quantum, 3, "Quantum Not Responding"},
        {quantum, 0, "Quantum Not Responding"},
    };
    for (const auto& [station, survived, box] : cases) {
        support::Silence silence;
        WriteDesk desk;
        desk.dbconn.Execute("update settings set value=? where name='failedpolls'", {survived});
        desk.Begin(station);
        std::vector<support::Script::Step> steps = {
            {"silence", [&] { return desk.Idle(); }, [&] { desk.ports.Attach(1, silence); }}};
        if (survived > 0) {
            steps.push_back({"the count", [&] { return desk.view.requests.size() > 1; },
                             [&] {
                                 EXPECT_EQ(desk.view.requests.back(),
                                           "Failed polls in a row: 2. The session ends at 4.");
                                 desk.ports.Attach(1, *desk.field->Station(desk.locationID)->device);
                             }});
            steps.push_back(
                {"back again", [&] { return desk.view.requests.back().empty(); }, [&] { desk.session->Disconnect(); }});
        }
        desk.Run(steps);
        EXPECT_THAT(desk.view.ends, ElementsAre(survived == 0 ? "Remote Station not Responding" : ""));
        EXPECT_THAT(desk.view.boxes, ElementsAreArray(std::vector<std::string>(survived == 0 ? 1 : 0, box)));
        const auto polls = std::count_if(desk.view.requests.begin(), desk.view.requests.end(),
                                         [](const auto& text) { return text.starts_with("Failed polls in a row"); });
        EXPECT_EQ(polls > 0, survived > 0);
    }
}

}  // namespace
