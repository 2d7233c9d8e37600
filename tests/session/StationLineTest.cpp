// How the archive screens come to their station, on the virtual clock.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "archive/bsap/Collecting.h"
#include "protocols/bsap/BsapLink.h"
#include "session/StationLine.h"
#include "support/Downloads.h"
#include "support/SessionDesk.h"

namespace {

using archive::Screen;
using session::State;
using support::SessionDesk;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

const demo::DemoStation corrector{"O'Neill", "TeleCorrector", "BSAP", "", 1, 5};
const demo::DemoStation dialled{"Hill Farm", "TeleFlow+", "BSAP", "", 1, 1, "5550142"};
const demo::DemoStation twin{"Twin", "CWEFM-MultiStream", "BSAP", "", 1, 5, "", 2, {"AGA3", "AGA7"}};
const demo::DemoStation micro{"Micro", "CW_Micro", "BSAP", "", 1, 5};

// A desk on which an archive screen collects.
struct StationLineTest : testing::Test {
    SessionDesk desk;
    support::RecordingRun run;
    std::optional<archive::Collected> collected;
    int over = 0;

    void Collect(Screen screen, session::Session* session, bool newFirst = false) {
        archive::Wish wish;
        wish.screen = screen;
        wish.kind = archive::ArchiveKind::Daily;
        wish.file = 1;
        wish.newFirst = newFirst;
        session::OnStationLine(
            desk.place, session, session::WayOfArchive(screen), desk.locationID,
            [this, wish](protocols::Conversation& talk) { collected = archive::Collect(desk.dbconn, talk, wish, run); },
            [this] { ++over; });
    }
    void CollectAll(Screen screen, session::Session* session, bool newFirst = false) {
        const int before = over;
        Collect(screen, session, newFirst);
        desk.RunUntil([&] { return over > before; });
    }
    // The records of a file as the field holds them.
    std::size_t InField(int file) const {
        return desk.field->Station(desk.locationID)->bsap->Archives().at(file).records.size();
    }
    std::int64_t Stored(int streamno, int file) {
        return desk.Count("tArchiveTimeStamp where NodeId=? and StreamNo=? and HistoryTypeId=?",
                          {desk.locationID, streamno, file});
    }
    void ExpectCollected(int file) {
        ASSERT_TRUE(collected);
        EXPECT_EQ(collected->end, archive::RunEnd::Whole) << collected->message;
        EXPECT_EQ(run.rows.size(), InField(file));
        EXPECT_EQ(over, 1);
    }
};

// A station on the network has neither port nor settings.
TEST_F(StationLineTest, AStationOnTheNetworkIsReachedOrTheReasonIsTold) {
    desk.Open(corrector);
    desk.dbconn.Execute("update configdata_master set comtype='IP', ip='10.0.0.7:4001', comport='', baudrate=''");
    desk.Connect();
    EXPECT_EQ(desk.session->GetState(), State::Idle);
    EXPECT_THAT(desk.view.boxes, ElementsAre(testing::StartsWith("10.0.0.7:4001 cannot be reached: ")));
    desk.ports.Attach("10.0.0.7:4001", *desk.field->Station(desk.locationID)->device);
    desk.Connect();
    ASSERT_EQ(desk.session->GetState(), State::Connected);
    CollectAll(Screen::frmparaarchive, desk.session.get());
    ExpectCollected(1);
}

// A session signs on without the password that opens the archive of some stations.
TEST_F(StationLineTest, AConnectedSessionLendsItsLineAndGoesOn) {
    desk.Open(corrector);
    desk.Connect();
    fieldsim::BsapStation& station = *desk.field->Station(desk.locationID)->bsap;
    station.Options().password = protocols::screenPassword;
    station.LoadProgram();  // which leaves nobody signed on
    CollectAll(Screen::frmparaarchive, desk.session.get());
    ExpectCollected(1);
    EXPECT_TRUE(station.SignedOn());
    EXPECT_EQ(Stored(1, 1), 40);
    EXPECT_EQ(desk.session->GetState(), State::Connected);
    EXPECT_THAT(desk.feedback.status, Contains("Collecting Archive......."));  // the screen's own, not the session's
    desk.Behind({[] {}, [] {}});
    desk.GetData();
    EXPECT_EQ(desk.view.refreshed, 3);
}

TEST_F(StationLineTest, AMicroIsReadAsACw) {
    desk.Open(micro);
    desk.Connect();
    ASSERT_EQ(desk.session->GetState(), State::Connected);
    CollectAll(Screen::frmparaarchive, desk.session.get());
    ExpectCollected(1);
}

TEST_F(StationLineTest, APollingSessionLendsItBetweenTwoReads) {
    desk.Open(twin);
    desk.Connect();
    int refreshedAtEnd = 0;
    desk.Behind({[&] { desk.session->ChooseStream(2); },
                 [&] {
                     Collect(Screen::frmparaarchive, desk.session.get(), true);
                     EXPECT_EQ(over, 0);
                 },
                 [&] { refreshedAtEnd = over; }, [] {}});
    desk.GetData();
    ExpectCollected(4);  // the daily file of the second stream
    EXPECT_EQ(Stored(2, 4), 40);
    EXPECT_EQ(refreshedAtEnd, 1);
}

TEST_F(StationLineTest, ASessionThatEndsFirstLendsNothing) {
    desk.Open(corrector);
    desk.Connect();
    desk.Behind({[&] {
        Collect(Screen::frmparaarchive, desk.session.get());
        desk.session->Disconnect();
    }});
    desk.GetData();
    EXPECT_FALSE(collected);
    EXPECT_EQ(over, 1);
    EXPECT_THAT(desk.feedback.boxes, ElementsAre("The session ended before it could lend its line."));
    EXPECT_EQ(desk.session->GetState(), State::Idle);
}

TEST_F(StationLineTest, AScheduledRunTakesTheLineInTheMiddleAndWhatCameIsStored) {
    auto due = twin;
    due.contracthour = "08:00";
    desk.Open(due);
    desk.StartTicking();
    desk.Connect();
    desk.clock.Run(59000 - desk.clock.Elapsed());  // the tick comes a second later
    CollectAll(Screen::frmparaarchive, desk.session.get());
    ASSERT_TRUE(collected);
    EXPECT_EQ(collected->end, archive::RunEnd::LineLost);
    EXPECT_THAT(collected->message, testing::StartsWith("A scheduled collection has taken the line\r"));
    EXPECT_THAT(desk.feedback.status, Contains("A scheduled collection has taken the line"));  // at once
    EXPECT_EQ(over, 1);
    EXPECT_EQ(Stored(1, 1), static_cast<std::int64_t>(run.rows.size()));
    desk.Finish();
    EXPECT_TRUE(desk.Master(desk.locationID).Bool("sampledtoday")) << desk.RtuErr();
    EXPECT_EQ(desk.session->GetState(), State::Idle);
}

TEST_F(StationLineTest, TheOldScreenCallsAsksNodeOneAndHangsUp) {
    desk.Open(dialled);
    CollectAll(Screen::frmarchive, nullptr);
    ExpectCollected(1);
    EXPECT_EQ(desk.Count("Daily_tf"), 40);
    EXPECT_EQ(Stored(1, 1), 0);
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_TRUE(desk.Line().TakeIfFree());
    for (const char* text : {"Dialing 5550142", "Connected to Location ", "Polling Rtu.....[Hill Farm]",
                             "Collecting Archive.......", "Disconnecting....", "Disconnected"}) {
        EXPECT_THAT(desk.feedback.status, Contains(HasSubstr(text)));
    }
}

// On a line with several stations node 1 is another one.
TEST_F(StationLineTest, TheOldScreenAsksNoOtherStation) {
    desk.Open(corrector);
    CollectAll(Screen::frmarchive, nullptr);
    EXPECT_FALSE(collected);
    EXPECT_EQ(over, 1);
    EXPECT_EQ(desk.ports.BytesSent(), 0U);
    EXPECT_THAT(desk.feedback.boxes, ElementsAre(HasSubstr("O'Neill has the address 5")));
}

TEST_F(StationLineTest, TheScreenByFileNumberUsesALineThatStandsElseCalls) {
    desk.Open(twin);
    CollectAll(Screen::frmCW_archive, desk.session.get());
    ExpectCollected(1);
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_EQ(Stored(1, 1), 0);
    desk.Connect();
    const int opened = desk.ports.TimesOpened();
    over = 0;
    CollectAll(Screen::frmCW_archive, desk.session.get(), true);
    ExpectCollected(1);
    EXPECT_EQ(desk.ports.TimesOpened(), opened);
    EXPECT_EQ(desk.session->GetState(), State::Connected);
}

TEST_F(StationLineTest, WithoutALineTheOperatorIsTold) {
    desk.Open(corrector);
    CollectAll(Screen::frmparaarchive, desk.session.get());
    EXPECT_THAT(desk.feedback.boxes, ElementsAre(HasSubstr("There is no line to the station")));
    const auto held = desk.Line().TakeIfFree();
    desk.dbconn.Execute("update configdata_master set slaveaddress=1");
    CollectAll(Screen::frmarchive, nullptr);
    EXPECT_THAT(desk.feedback.boxes.back(), HasSubstr("The line is in use"));
    EXPECT_EQ(over, 2);
    EXPECT_FALSE(collected);
}

// A station that is not there, and the program's end in the middle: the line is down afterwards, and nobody waits.
TEST_F(StationLineTest, ACallThatFailsOrIsEnded) {
    desk.Open(dialled, {.modems = {{1, {{"NO CARRIER"}, {"NO CARRIER"}, {"NO CARRIER"}}}}});
    CollectAll(Screen::frmarchive, nullptr);
    EXPECT_FALSE(collected);
    EXPECT_THAT(desk.feedback.boxes, Contains("No Dialtone/Line Engaged/Remote Modem not Responding"));
    run.stopped = [this] {
        if (!run.rows.empty()) {
            desk.Line().EndConversation("The program ends");
        }
        return false;
    };
    CollectAll(Screen::frmarchive, nullptr);
    ASSERT_TRUE(collected);
    EXPECT_EQ(collected->end, archive::RunEnd::LineLost);
    EXPECT_EQ(over, 2);
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_TRUE(desk.Line().TakeIfFree());
}

}  // namespace
