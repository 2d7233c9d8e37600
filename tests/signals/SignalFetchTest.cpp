// Signals read with their names, by list, search, address and name, from a simulated station.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/Users.h"
#include "fieldsim/BsapStation.h"
#include "fieldsim/LineFaults.h"
#include "protocols/FieldTalk.h"
#include "protocols/bsap/BsapLink.h"
#include "signals/lists/SignalAccess.h"
#include "signals/lists/SignalFetch.h"
#include "signals/lists/SignalWriting.h"
#include "support/Hex.h"

namespace {

using namespace signals;
using fieldsim::DataAnswer;
using fieldsim::Fault;
using fieldsim::Kind;
using support::Bytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr int kinds = 10;  // the list with a signal of each kind
constexpr int many = 11;   // the list with as many numbers as a test wants

fieldsim::Signal Number(int position) {
    return {position, "S" + std::to_string(position) + ".N.V", "M3", Kind::Float, position + 0.5};
}

fieldsim::SignalLists Program(int numbers) {
    std::vector<fieldsim::Signal> list;
    for (int position = 1; position <= numbers; ++position) {
        list.push_back(Number(position));
    }
    return {{kinds, std::make_shared<fieldsim::SignalList>(
                        std::vector<fieldsim::Signal>{{1, "M1.FLOW.RATE", "SCMH", Kind::Float, 1.5},
                                                      {2, "Tap Type", "", Kind::Logical, 1},
                                                      {3, "PUMP.RUN.", "", Kind::Logical, 0, 68},
                                                      {4, "Low Battery Alarm", "", Kind::Logical, 1, 4},
                                                      {5, "M1.DP.HI", "INH2O", Kind::Float, -2, 6},
                                                      {6, "#CLOCK.SEC.", "S", Kind::Float, 16, 50},
                                                      {7, "M1.ODD.", "", Kind::Float, 0.1, 33},
                                                      {8, "SITE.NAME.", "", Kind::Text, 0, -1, "KOLMAR"}})},
            {many, std::make_shared<fieldsim::SignalList>(list)}};
}

struct Reading final : FetchView {
    std::vector<Signal> rows;
    std::function<void()> onRows;
    bool stop = false;

    void Signals(const std::vector<Signal>& signals) override {
        rows.insert(rows.end(), signals.begin(), signals.end());
        if (onRows) {
            onRows();
        }
    }
    bool Stopped() const override { return stop; }
};

// A station that is signed on, behind a line with faults.
struct Signals : testing::Test, support::SimulatedTalk {
    std::unique_ptr<fieldsim::BsapStation> station;
    std::unique_ptr<fieldsim::LineFaults> faults;
    Reading view;

    // The coming answers of the station.
    void Meet(const std::deque<Fault>& script) {
        fieldsim::LineFaults::Options options;
        options.script = script;
        faults = std::make_unique<fieldsim::LineFaults>(*station, options);
        ports.Attach(1, *faults);
    }
    void Open(bool isCW, int numbers = 0, DataAnswer answers = DataAnswer::AtOnce, std::deque<Fault> script = {}) {
        fieldsim::BsapOptions options;
        options.shortLayout = isCW;
        options.answers = answers;
        options.notReadyOneIn = script.empty() ? options.notReadyOneIn : 0;  // a script counts exchanges
        station = std::make_unique<fieldsim::BsapStation>(5, Program(numbers), options);
        Meet({});
        talk.station.slaveaddress = 5;
        talk.station.isCW = isCW;
        talk.station.phoneno.clear();
        talk.station.consumer = "O'Neill";
        talk.currentuser = "WARDEN";
        line.CommPort(1);
        ASSERT_TRUE(line.PortOpen(true));
        ASSERT_TRUE(protocols::SignOn(talk));
        Meet(script);
        view = {};
    }
    fieldsim::SignalList& List(int number) { return *station->Lists().at(number); }
    std::vector<std::string> Trail() { return desk.dbconn.Texts("select * from TTS_table"); }

    // Each row is that of the list's place, with its own name, value and address.
    void ExpectRows(std::size_t count) {
        ASSERT_EQ(view.rows.size(), count);
        for (std::size_t row = 0; row < count; ++row) {
            const auto position = static_cast<int>(row) + 1;
            const fieldsim::Signal& signal = *List(many).At(position);
            EXPECT_EQ(view.rows[row].name, Number(position).description);
            EXPECT_EQ(view.rows[row].value, position + 0.5);
            EXPECT_EQ(view.rows[row].MSD, List(many).Msd(signal));
        }
    }
};

TEST_F(Signals, OfEveryKindWithTheirNamesAndSuffixes) {
    for (const bool isCW : {false, true}) {
        Open(isCW);
        EXPECT_EQ(FetchList(talk, kinds, view), FetchEnd::Whole);
        std::vector<std::vector<std::string>> rows;
        for (const Signal& signal : view.rows) {
            rows.push_back(SignalRow(rows.size() + 1, signal));
        }
        EXPECT_THAT(rows, ElementsAre(ElementsAre("1", "M1.FLOW.RATE (Analog)", "1.5", "SCMH"),
                                      ElementsAre("2", "Tap Type (Logical)", "PIPE", ""),
                                      ElementsAre("3", "PUMP.RUN. (Logical)", "0", ""),
                                      ElementsAre("4", "Low Battery Alarm (Logical Alarm)", "ENABLE", ""),
                                      ElementsAre("5", "M1.DP.HI (Analog Alarm)", "-2", "INH2O"),
                                      ElementsAre("6", "#CLOCK.SEC. (System Signal)", "16", "S"),
                                      ElementsAre("7", "M1.ODD. (Unknown)", "0.1", ""),
                                      ElementsAre("8", "SITE.NAME.", "KOLMAR", "")));
    }
}

// 15 and 16 signals are one reply and two; 1500 have addresses and continuations of every kind.
TEST_F(Signals, ListsOfAnyLengthHoweverTheStationAnswers) {
    for (const bool isCW : {false, true}) {
        for (const DataAnswer answers : {DataAnswer::AtOnce, DataAnswer::AcknowledgeFirst, DataAnswer::Alternate}) {
            for (const int count : {1, 15, 16, 1500}) {
                SCOPED_TRACE(testing::Message() << isCW << " " << count);
                Open(isCW, count, answers);
                EXPECT_EQ(FetchList(talk, many, view), FetchEnd::Whole);
                ExpectRows(static_cast<std::size_t>(count));
            }
        }
    }
}

TEST_F(Signals, EachFaultAtEachReplyLosesNoSignal) {
    constexpr int count = 40;
    for (const Fault fault : {Fault::Silence, Fault::NoiseBefore, Fault::NoiseAfter, Fault::BadCheck, Fault::Cut,
                              Fault::Echo, Fault::NoCarrier}) {
        for (std::size_t reply = 0; reply < 4; ++reply) {
            for (const std::size_t times : {1U, 4U}) {
                SCOPED_TRACE(testing::Message() << static_cast<int>(fault) << " " << reply << " " << times);
                std::deque<Fault> script(reply, Fault::None);
                script.insert(script.end(), times, fault);
                Open(false, count, DataAnswer::AtOnce, script);
                const FetchEnd end = FetchList(talk, many, view);
                // What stands around an answer costs nothing.
                const bool around = fault == Fault::NoiseBefore || fault == Fault::NoiseAfter || fault == Fault::Echo;
                EXPECT_EQ(end, times == 1 || around ? FetchEnd::Whole : FetchEnd::Failed);
                ExpectRows(times == 1 || around ? count : view.rows.size());
                EXPECT_FALSE(talk.bsap.listnames);  // the next one to read a list asks for values again
            }
        }
    }
}

// The others keep their own names and values.
TEST_F(Signals, ASignalThatVanishesBetweenTwoReplies) {
    for (const bool isCW : {false, true}) {
        Open(isCW, 30);
        view.onRows = [&] { List(many).Vacate("S20.N.V"); };
        EXPECT_EQ(FetchList(talk, many, view), FetchEnd::Whole);
        ASSERT_THAT(view.rows, SizeIs(30));
        for (std::size_t row = 0; row < 30; ++row) {
            EXPECT_EQ(NameText(view.rows[row]),
                      row == 19 ? "Signal Not Found" : "S" + std::to_string(row + 1) + ".N.V (Analog)");
        }
        EXPECT_THAT(SignalRow(20, view.rows[19]), ElementsAre("20", "Signal Not Found", "", ""));
    }
}

TEST_F(Signals, AFetchIsStoppedOrLosesItsLine) {
    Open(false, 40);
    view.onRows = [&] { view.stop = true; };
    EXPECT_EQ(FetchList(talk, many, view), FetchEnd::Stopped);
    const std::size_t first = view.rows.size();
    ExpectRows(first);
    EXPECT_EQ(FetchMessage(FetchEnd::Stopped, first, ""),
              "List Fetched up to the stop: " + std::to_string(first) + " signals");

    // A stop also ends the tries of a station that is silent.
    Open(false, 40, DataAnswer::AtOnce, {4, Fault::Silence});
    desk.clock.After(100, [&] { view.stop = true; });
    EXPECT_EQ(FetchList(talk, many, view), FetchEnd::Stopped);
    EXPECT_EQ(faults->Exchanges().size(), 1U);

    Open(false, 40);
    view.onRows = [&] { field.EndConversation("The program ends"); };
    EXPECT_EQ(FetchList(talk, many, view), FetchEnd::Ended);
    ExpectRows(first);
}

TEST_F(Signals, ASearchGoesOnOverItsReplies) {
    for (const bool isCW : {false, true}) {
        Open(isCW, 60, DataAnswer::Alternate);
        EXPECT_EQ(SearchSignals(talk, "s", SearchKind::Name, view), FetchEnd::Whole);
        ASSERT_THAT(view.rows, SizeIs(61));  // SITE.NAME. of the other list first
        EXPECT_EQ(view.rows[0].text, "KOLMAR");
        view.rows.erase(view.rows.begin());
        ExpectRows(60);

        view = {};
        EXPECT_EQ(SearchSignals(talk, "rate", SearchKind::Attribute, view), FetchEnd::Whole);
        ASSERT_THAT(view.rows, SizeIs(1));
        EXPECT_EQ(view.rows[0].name, "M1.FLOW.RATE");

        view = {};
        EXPECT_EQ(SearchSignals(talk, "NONE*", SearchKind::Name, view), FetchEnd::Whole);
        EXPECT_THAT(view.rows, SizeIs(0));
    }
    Open(false, 60, DataAnswer::AtOnce, {Fault::None, Fault::Cut, Fault::Silence, Fault::BadCheck, Fault::Silence});
    EXPECT_EQ(SearchSignals(talk, "S", SearchKind::Name, view), FetchEnd::Failed);
    EXPECT_EQ(view.rows.size(), 10U);  // those of the first reply stay
}

// What is written to a signal, by its row in a list of every kind.
TEST_F(Signals, AreWrittenAndReadBack) {
    const struct {
        const char* what;
        std::size_t row;
        const char* entered;
        const char* shown;
        const char* taken;  // as the station notes it
    } cases[] = {
        {"a number", 0, " 16.25 ", "16.25", "10-1 M1.FLOW.RATE = 16.25"},
        {"the first word", 1, "PIPE", "PIPE", "10-2 Tap Type = 1"},
        {"the other word", 1, "FLANGE", "FLANGE", "10-2 Tap Type = 0"},
        {"a switch without words", 2, "1", "1", "10-3 PUMP.RUN. = 1"},
        {"a text", 7, "HILL", "HILL", "10-8 SITE.NAME. = \"HILL\""},
    };
    for (const bool isCW : {false, true}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(c.what);
            Open(isCW);
            FetchList(talk, kinds, view);
            const auto write = CheckEntry(view.rows.at(c.row), c.entered);
            ASSERT_TRUE(write);
            const WriteResult result = pending_request(talk, *write);
            EXPECT_EQ(result.end, WriteEnd::Taken) << result.message;
            EXPECT_EQ(result.message, "");
            EXPECT_EQ(ValueText(result.signal), c.shown);
            EXPECT_EQ(result.signal.name, view.rows[c.row].name);
            EXPECT_THAT(station->WritesText(), ElementsAre(c.taken));
            EXPECT_THAT(Trail().back(), HasSubstr(": User WARDEN changed value of signal " + write->signal.name +
                                                  " of RTU O'Neill from "));
        }
    }
    for (const char* entered : {"", "   ", "\xE2\x82\xACuro\xE6\x97\xA5"}) {
        EXPECT_FALSE(CheckEntry(view.rows[0], entered)) << entered;
    }
    EXPECT_EQ(CheckEntry(view.rows[0], "1e300")->text, "1e300");  // no number of a station
}

TEST_F(Signals, AWriteThatIsNotSeenAtOnceSaysWhatIsKnown) {
    const auto write = [&](std::deque<Fault> script, const std::function<void()>& before) {
        Open(false);
        FetchList(talk, kinds, view);
        Meet(script);
        before();
        return pending_request(talk, *CheckEntry(view.rows[0], "7"));
    };
    // The station acknowledges a write, is polled and acknowledged: three exchanges; the reading back is the fourth.
    WriteResult result = write({}, [&] { station->Manners().otherwise = fieldsim::WriteFault::Refuse; });
    EXPECT_EQ(result.end, WriteEnd::NotTaken);
    EXPECT_EQ(result.message, "Not confirmed: the station has 1.5");
    EXPECT_THAT(
        Trail().back(),
        HasSubstr(": User WARDEN: value 7 of signal M1.FLOW.RATE of RTU O'Neill: Not confirmed: the station has 1.5."));

    result = write({}, [&] { List(kinds).Remove("M1.FLOW.RATE"); });
    EXPECT_EQ(result.end, WriteEnd::Gone);
    EXPECT_EQ(NameText(result.signal), "Signal Not Found");

    result = write(std::deque<Fault>(10, Fault::Silence), [] {});
    EXPECT_EQ(result.end, WriteEnd::Unknown);
    EXPECT_EQ(result.message, "Error Occured in Communication: whether the station has the value is not known");
    EXPECT_EQ(ValueText(result.signal), "1.5");

    // A station that shows a value a moment after it took it is asked again.
    result = write({}, [&] {
        station->Manners().otherwise = fieldsim::WriteFault::Slow;
        station->Manners().slowMs = 1500;
    });
    EXPECT_EQ(result.end, WriteEnd::Taken);
    EXPECT_THAT(Trail().back(), HasSubstr("changed value of signal M1.FLOW.RATE of RTU O'Neill from 1.5 to 7."));

    result = write({}, [&] { desk.clock.After(100, [&] { field.TakeOver("A scheduled collection"); }); });
    EXPECT_EQ(result.end, WriteEnd::Unknown);
    EXPECT_THAT(Trail().back(), HasSubstr("The line is gone"));
}

// The answer holds no names: one that comes late is known by its address.
TEST_F(Signals, ByNameAreKnownByTheirAddresses) {
    Open(false, 3);
    std::vector<NamedSignal> named = {{"s2.n.v"}, {"SITE.NAME."}, {"M1.FLOW.RATE"}};
    ReadAnswer answer = ReadByName(talk, named);
    ASSERT_EQ(answer.answer, Answer::Good);
    EXPECT_EQ(answer.signals[0].value, 2.5);
    EXPECT_EQ(answer.signals[1].text, "KOLMAR");
    EXPECT_EQ(answer.signals[2].value, 1.5);
    named[0].address = answer.signals[2].MSD;
    EXPECT_EQ(ReadByName(talk, named).answer, Answer::None);
    named[0] = {"S9.N.V"};
    EXPECT_EQ(ReadByName(talk, named).answer, Answer::NoSignal);
    EXPECT_EQ(ReadByAddress(talk, 1).answer, Answer::NoSignal);
}

TEST(SignalRights, AreThoseOfTheSettings) {
    support::ScratchDesk desk;
    desk.dbconn.Execute(
        "insert into users (userid,firstname,readsec,writesec) values ('three','three',6,3), ('four','four',6,4), "
        "('five','five',6,5), ('bert','Bertram',6,6)");
    const auto rights = [&](const std::string& user) {
        return std::pair(MayWriteSignals(desk.dbconn, user), MayCalibrate(desk.dbconn, user));
    };
    for (const auto& [user, writes, calibrates] : {std::tuple("WARDEN", true, true),
                                                   {"three", false, false},
                                                   {"four", true, false},
                                                   {"five", true, true},
                                                   {"bert", false, false},
                                                   {"nobody", false, false}}) {
        EXPECT_EQ(rights(user), std::pair(writes, calibrates)) << user;
    }
    desk.dbconn.Execute("update settings set value='1' where name in ('signalwritelevel','calibrationlevel')");
    EXPECT_EQ(rights("three"), std::pair(true, true));
    // What the map knows as a total.
    desk.dbconn.Execute(
        "insert into configdata_detail(locationID, StreamNo, description, aga, MSD) values(7,1,'Volume "
        "Today','TOTRND',9),"
        "(7,1,'Keypad N2','KEYPAD',10)");
    core::Station station;
    station.locationID = 7;
    Signal signal;
    signal.MSD = 9;
    EXPECT_FALSE(MayWriteSignal(desk.dbconn, station, signal, "five"));
    EXPECT_TRUE(MayWriteSignal(desk.dbconn, station, signal, "WARDEN"));
    signal.MSD = 10;
    EXPECT_TRUE(MayWriteSignal(desk.dbconn, station, signal, "five"));
}

}  // namespace
