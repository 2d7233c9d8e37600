// A session on a real serial port with BSAP stations that another program plays, in both layouts: what is shown is what
// the station holds, and what is written reaches the signal that it was meant for.

#include <gmock/gmock.h>

#include <QTimer>
#include <cmath>
#include <string>
#include <vector>

#include "archive/bsap/Collecting.h"
#include "core/Text.h"
#include "protocols/bsap/BsapLink.h"
#include "session/Session.h"
#include "session/StationLine.h"
#include "signals/calibration/Calibration.h"
#include "signals/lists/SignalAccess.h"
#include "signals/lists/SignalFetch.h"
#include "support/BsapPeer.h"
#include "support/Downloads.h"
#include "support/PortDesk.h"
#include "support/Script.h"
#include "support/SessionDesk.h"

namespace {

using archive::ArchiveKind;
using testing::IsEmpty;

struct Manner {
    const char* layout;
    const char* modelno;
    const char* address;
    signals::Transmitter transmitter;
    signals::CalibrationCommand command;
    const char* habit;  // one more option of the station
};

struct Fetched final : signals::FetchView {
    std::vector<signals::Signal> rows;
    void Signals(const std::vector<signals::Signal>& more) override {
        rows.insert(rows.end(), more.begin(), more.end());
    }
    bool Stopped() const override { return false; }
};

struct Told final : signals::CalibrationView {
    std::vector<std::string> messages;
    void Changed() override {}
    void Message(const std::string& text) override { messages.push_back(text); }
    void Progress(int, int) override {}
};

double Rounded(double value, double places) {
    return std::round(value * places) / places;
}

// Days after 31 December 1976 and a time of day.
std::string Shown(std::int64_t day, std::int64_t seconds) {
    const auto at = core::FromSeconds(core::ToSeconds({1976, 12, 31, 0, 0, 0}) + day * 86400 + seconds);
    char text[48];
    std::snprintf(text, sizeof text, "%02d/%02d/%04d   %d:%d:%d", at.day, at.month, at.year, at.hour, at.minute,
                  at.second);
    return text;
}

std::string Plain(double value) {
    char text[48];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

class BsapPeerTest : public testing::TestWithParam<Manner> {
  public:
    void SetUp() override {
        session.Connect();
        support::TurnUntil([this] { return session.GetState() != session::State::Connecting; });
    }
    void TearDown() override {
        session.Disconnect();
        support::TurnUntil([this] { return desk.clock.Conversations() == 0; });
    }

    support::BsapPeer peer{{"--layout", GetParam().layout, "--address", GetParam().address, "--not-ready", "0.25",
                            "--noise", "0.25", "--seed", "9", "--analogs", "120", "--logicals", "50", "--version",
                            "1034", GetParam().habit}};
    support::PortDesk desk{peer.Path()};
    std::int64_t locationID = demo::AddStation(
        desk.dbconn,
        {"Weir Lane", GetParam().modelno, "BSAP", "", 1, std::stoi(GetParam().address), "", 1, {"AGA3"}, "00:00", 50});
    support::RecordingView view;
    session::Session session{desk.place, view, locationID};

    std::vector<support::PeerSignal> Held(const std::string& place) {
        return support::PeerSignals(desk.dbconn, peer.State(), place);
    }
    support::PeerSignal Held(const std::string& place, const std::string& name) {
        for (const auto& signal : Held(place)) {
            if (signal.name == name) {
                return signal;
            }
        }
        ADD_FAILURE() << "no signal " << name;
        return {};
    }
    // The rows of the grid for the records of a file, the oldest first.
    std::vector<std::vector<std::string>> Records(int file) {
        std::vector<std::vector<std::string>> rows;
        const std::string state = peer.State();
        const std::string place = "$.archives." + std::to_string(file) + ".records";
        for (const core::Row& record : desk.dbconn.Query(
                 "select value->>'day' day, value->>'seconds' seconds, value->>'global' g, value->>'local' l,"
                 " value->'values' v from json_each(?, ?)",
                 {state, place})) {
            rows.push_back({Shown(record.Long("day"), record.Long("seconds")), record.Text("g"), record.Text("l")});
            for (const core::Row& value : desk.dbconn.Query("select value v from json_each(?)", {record.Text("v")})) {
                rows.back().push_back(Plain(Rounded(value.Number("v"), 100)));
            }
        }
        return rows;
    }
    support::RecordingRun Collect(protocols::Conversation& talk, const archive::Wish& wish) {
        support::RecordingRun run;
        const auto end = archive::Collect(desk.dbconn, talk, wish, run);
        EXPECT_EQ(end.end, archive::RunEnd::Whole) << end.message;
        return run;
    }
    // Makes the steps while work goes on, which is ended after 40 s.
    static void During(support::Script& script, const std::function<void()>& end, const std::function<void()>& work) {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] { script.Turn(); });
        timer.start(10);
        QTimer::singleShot(40000, &timer, end);
        work();
        support::TurnUntil([&] { return script.Missing().empty(); });
    }
    // Work on the session's line behind a sign-on with the screens' password.
    void Do(const std::function<void(protocols::Conversation&)>& work) {
        ASSERT_EQ(session.GetState(), session::State::Connected) << support::FileText(peer.Trace());
        bool over = false;
        session::OnStationLine(desk.place, &session, session::WayOfSignals(true), locationID, work,
                               [&] { over = true; });
        support::TurnUntil([&] { return over; });
    }
};

TEST_P(BsapPeerTest, ListsSearchesAndSingleSignalsShowWhatTheStationHolds) {
    Do([&](protocols::Conversation& talk) {
        for (const int list : {54, 55, 7}) {
            const auto held = Held("$.lists." + std::to_string(list));
            Fetched fetched;
            EXPECT_EQ(signals::FetchList(talk, list, fetched), signals::FetchEnd::Whole);
            ASSERT_EQ(fetched.rows.size(), held.size()) << list;
            for (std::size_t n = 0; n < held.size(); ++n) {
                const auto& row = fetched.rows[n];
                EXPECT_EQ(row.name, held[n].name);
                EXPECT_EQ(row.MSD, held[n].address);
                EXPECT_EQ(row.unit, held[n].units);
                if (row.text) {
                    EXPECT_EQ(*row.text, held[n].text);
                } else {
                    EXPECT_EQ(row.value, Rounded(held[n].value, 1e6)) << held[n].name;
                }
            }
        }
        Fetched found;
        EXPECT_EQ(signals::SearchSignals(talk, "AN0", signals::SearchKind::Name, found), signals::FetchEnd::Whole);
        EXPECT_EQ(found.rows.size(), 99U);

        const auto one = Held("$.lists.54", "AN005.VALUE.LIVE");
        EXPECT_EQ(signals::WriteNumber(talk, one.address, 16.0625, core::ValueKind::Float), signals::Answer::Good);
        EXPECT_EQ(signals::WriteByName(talk, "AN006.VALUE.LIVE", -7, core::ValueKind::Float), signals::Answer::Good);
        const auto text = Held("$.lists.7", "SITE.NAME.TEXT");
        EXPECT_EQ(signals::WriteText(talk, text.address, "NORTH"), signals::Answer::Good);
        const auto by = signals::ReadByAddress(talk, one.address);
        ASSERT_EQ(by.answer, signals::Answer::Good);
        EXPECT_EQ(by.signals[0].value, 16.0625);
        const std::vector<signals::NamedSignal> named = {{"AN006.VALUE.LIVE"}, {"AN007.VALUE.LIVE"}};
        const auto both = signals::ReadByName(talk, named);
        ASSERT_EQ(both.answer, signals::Answer::Good);
        EXPECT_EQ(both.signals[0].value, -7);
        EXPECT_EQ(both.signals[1].value, Rounded(Held("$.lists.54", "AN007.VALUE.LIVE").value, 1e6));
        EXPECT_EQ(Held("$.lists.54", "AN005.VALUE.LIVE").value, 16.0625);
        EXPECT_EQ(Held("$.lists.54", "AN006.VALUE.LIVE").value, -7);
        EXPECT_EQ(Held("$.lists.7", "SITE.NAME.TEXT").text, "NORTH");
    });
}

TEST_P(BsapPeerTest, ArchivesComeRecordByRecord) {
    Do([&](protocols::Conversation& talk) {
        // Newest first stops at what is stored already: it comes first.
        const auto expected = Records(archive::HistoryType(1, ArchiveKind::Hourly));
        const std::vector<std::vector<std::string>> newest(expected.rbegin(), expected.rend());
        EXPECT_EQ(Collect(talk, {archive::Screen::frmparaarchive, false, ArchiveKind::Hourly, 0, true}).rows, newest);
        EXPECT_EQ(Collect(talk, {archive::Screen::frmparaarchive, false, ArchiveKind::Hourly}).rows, expected);
    });
}

TEST_P(BsapPeerTest, ATransmitterIsCalibrated) {
    const std::string prefix = GetParam().transmitter == signals::Transmitter::DP ? "DP" : "TEMP";
    const bool span = GetParam().command == signals::CalibrationCommand::Span;
    Told told;
    signals::Calibration calibration(desk.dbconn, signals::ReadCalibrationSignals(desk.dbconn), told);
    const auto reading = [&] {
        return calibration.GetState() == signals::CalibrationState::Reading &&
               calibration.Of(GetParam().transmitter).live.has_value();
    };
    const auto live = [&] { return calibration.Of(GetParam().transmitter).live; };
    support::Script script({
        {"command", reading,
         [&] { EXPECT_EQ(calibration.Ask(GetParam().transmitter, GetParam().command, "100"), ""); }},
        {"end",
         [&] {
             return reading() && !calibration.Of(GetParam().transmitter).result.empty() && *live() == (span ? 100 : 0);
         },
         [&] { calibration.Stop(); }},
    });
    During(
        script, [&] { calibration.Stop(); },
        [&] { Do([&](protocols::Conversation& talk) { calibration.Run(talk); }); });
    EXPECT_EQ(calibration.Of(GetParam().transmitter).result, "Success");
    EXPECT_EQ(Held("$.signals", prefix + ".LIVE.").value, span ? 100 : 0);
    EXPECT_EQ(desk.dbconn.Texts("select value from json_each(?, '$.commands')", {peer.State()}),
              std::vector<std::string>{span ? "#CAL.DPSPAN." : "#CAL.TMPZERO."});
}

TEST_P(BsapPeerTest, ASessionShowsAndWritesTheSignalsOfItsRows) {
    const auto row = [&](const char* which) {
        return desk.dbconn
            .First(std::string("select aga, description, startaddress from configdata_detail where locationID=? and ") +
                       which,
                   {locationID})
            .value();
    };
    const core::Row analog = row("startaddress like '54-%' and CFP and aga in ('AGA3','CONFIG') order by srno");
    const core::Row logical = row("description='Tap Type'");
    const auto place = [&](const core::Row& of) {
        return session.Parameters().Find(of.Text("aga"), of.Text("description")).value();
    };
    const auto held = [&](const core::Row& of) {
        const std::string at = of.Text("startaddress");
        return Held("$.lists." + at.substr(0, 2)).at(std::stoul(at.substr(3)) - 1).value;
    };
    const auto polled = [&] { return session.ValuesAt().has_value() && !session.WritePending(); };
    const bool on = held(logical) != 0;  // pipe, on the CW models flange
    support::Script script({
        {"values", polled,
         [&] {
             EXPECT_EQ(session.Parameters().At(place(analog)).lastvalue, Rounded(held(analog), 1e6));
             EXPECT_EQ(session.Parameters().At(place(logical)).lastvalue, held(logical));
             EXPECT_EQ(session.AskWrite(place(analog), "16.0625"), "");
         }},
        {"a switch", polled,
         [&] {
             EXPECT_EQ(session.AskWrite(place(logical), on == session.GetStation().isCW ? "PIPE" : "FLANGE"), "")
                 << logical.Text("description");
         }},
        {"written", polled, [&] { EXPECT_EQ(held(analog), 16.0625); }},
        {"end", polled, [&] { session.Disconnect(); }},
    });
    During(
        script, [&] { session.Disconnect(); }, [&] { session.GetData(); });
    support::TurnUntil([this] { return session.GetState() == session::State::Idle; });
    EXPECT_THAT(view.boxes, IsEmpty());
    EXPECT_EQ(held(logical), on ? 0 : 1);
    EXPECT_EQ(desk.dbconn.Query("select 1 from json_each(?, '$.written') where value->>'error'", {peer.State()}).size(),
              0U);
}

INSTANTIATE_TEST_SUITE_P(Layouts, BsapPeerTest,
                         testing::Values(Manner{"long", "TeleFlow+", "1", signals::Transmitter::DP,
                                                signals::CalibrationCommand::Span, "--poll-serial"},
                                         Manner{"cw", "CWGFC-AGA3", "16", signals::Transmitter::Temp,
                                                signals::CalibrationCommand::Zero, "--names-in-singles"}),
                         [](const auto& info) { return std::string(info.param.layout); });

}  // namespace
