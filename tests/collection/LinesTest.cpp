// Lines side by side: each has its turns, and none waits for another.
#include <gmock/gmock.h>

#include "support/CollectionDesk.h"

using testing::ElementsAre;

namespace {

constexpr std::uint32_t minute = 60000;

struct LinesTest : testing::Test {
    support::CollectionDesk desk{{2026, 3, 9, 7, 59, 30}};

    std::int64_t Add(const std::string& consumer, int port, int address, const std::string& phoneno = "",
                     const std::string& contracthour = "08:00") {
        demo::DemoStation station{consumer, "TeleFlow", "Modbus", "RTU", port, address, phoneno};
        station.contracthour = contracthour;
        return demo::AddStation(desk.dbconn, station);
    }
    // "Farm collected 1", in the order in which they ended; the number is that of attempts or dials.
    std::vector<std::string> Ended() {
        return desk.dbconn.Texts(
            "select consumer || ' ' || result || ' ' || attempts from outcome join configdata_master using "
            "(locationID) "
            "order by outcome.rowid");
    }
    std::vector<std::string> Moments() {
        return desk.dbconn.Texts("select begun || ended from outcome order by locationID");
    }
};

TEST_F(LinesTest, ASilentLineHoldsNobodyElseUp) {
    const auto silent = Add("Silent", 1, 1);
    Add("Behind it", 1, 2);
    Add("Farm", 2, 1);
    Add("Mill", 3, 1);
    desk.dbconn.Execute("update configdata_master set delaytime=20000 where locationID=?", {silent});
    desk.OpenField({.silent = {silent}});
    desk.clock.Run(30000);
    desk.scheduler.Tick();
    EXPECT_EQ(desk.scheduler.InHand().size(), 3U);
    desk.clock.Run(minute);
    EXPECT_THAT(Ended(), testing::UnorderedElementsAre("Farm collected 1", "Mill collected 1"));
    EXPECT_EQ(desk.scheduler.StandOf(silent), collection::InQueue::Collecting);
    EXPECT_EQ(desk.scheduler.StandOf(silent + 1), collection::InQueue::Queued);
    desk.clock.Finish();
    const auto ended = Ended();
    ASSERT_EQ(ended.size(), 4U);
    EXPECT_EQ(ended[2], "Silent no answer 3");
    EXPECT_EQ(ended[3], "Behind it collected 1") << "the stations of a line, in their order";
}

// What a line would have left alone, it leaves with three others at work.
TEST_F(LinesTest, ALineLeavesWhatItWouldLeaveAlone) {
    std::vector<std::string> alone;
    for (const bool others : {false, true}) {
        support::CollectionDesk two{{2026, 3, 9, 7, 59, 30}};
        for (int port = 1; port <= (others ? 4 : 1); ++port) {
            for (int address = 1; address <= 3; ++address) {
                demo::AddStation(two.dbconn, {"S" + std::to_string(port) + std::to_string(address),
                                              "TeleFlow",
                                              "Modbus",
                                              "RTU",
                                              port,
                                              address,
                                              "",
                                              1,
                                              {},
                                              "08:00"});
            }
        }
        two.OpenField();
        two.clock.Run(30000);
        two.Tick();
        const auto left = two.dbconn.Texts(
            "select consumer || begun || ended || asked || received || result from outcome join configdata_master "
            "using "
            "(locationID) where consumer like 'S1%' order by outcome.rowid");
        EXPECT_EQ(left.size(), 3U);
        if (!others) {
            alone = left;
        }
        EXPECT_EQ(left, alone);
    }
}

TEST_F(LinesTest, StationsBehindOneNumberAreReadInOneCall) {
    Add("A", 1, 1, "5550100");
    Add("B", 1, 1, "5550200");
    Add("C", 1, 2, "5550100");
    auto& field = desk.OpenField();
    desk.clock.Run(30000);
    desk.Tick();
    EXPECT_THAT(Ended(), ElementsAre("A collected 1", "C collected 1", "B collected 1"));
    EXPECT_THAT(field.Modem(1)->Dialled(), ElementsAre("5550100", "5550200"));
    EXPECT_FALSE(desk.ports.PortOpen());
}

// Its answer is read only as far as a server waits that says nothing.
struct SilentServer final : mail::MailTransport {
    int asked = 0;
    mail::MailOutcome Send(const mail::MailMessage&, const mail::MailServer&, core::Clock& clock,
                           const std::function<bool()>& ended) override {
        ++asked;
        clock.WaitMs(2 * minute, ended);
        return {false, "no answer"};
    }
};

TEST_F(LinesTest, AMailServerThatSaysNothingHoldsNoStationUp) {
    Add("Farm", 1, 1);
    const auto next = Add("Mill", 1, 2, "", "08:01");
    desk.dbconn.Execute("insert into email_settings values('a@x','','','','')");
    desk.OpenField();
    SilentServer server;
    reports::ReportMail mail(desk.place, server);
    collection::Scheduler scheduler(desk.place, mail);
    desk.clock.Every(minute, [&] { scheduler.Tick(); });
    desk.clock.Run(2 * minute + 30000);
    EXPECT_EQ(server.asked, 1) << "behind the last station of 08:00";
    EXPECT_TRUE(desk.Master(next).Bool("sampledtoday"));
    scheduler.Leave();
    desk.clock.Run(1);
    EXPECT_FALSE(scheduler.Busy());
}

// A session on one line is not touched by collections on another, and keeps a due one of its own waiting only if it
// holds the line as kept.
TEST_F(LinesTest, ASessionLosesItsLineToItsOwnStationsOnly) {
    Add("Farm", 1, 1);
    Add("Mill", 2, 1, "", "08:02");
    desk.OpenField();
    auto session = desk.Line(2).TakeIfFree();
    desk.clock.Run(30000);
    desk.scheduler.Tick();
    EXPECT_EQ(desk.Line(1).TakeIfFree(), nullptr) << "no session between two stations";
    desk.clock.Finish();
    EXPECT_TRUE(session->Held());
    EXPECT_NE(desk.Line(1).TakeIfFree(), nullptr);

    auto kept = std::make_unique<protocols::KeptLine>(session);
    desk.lines.WhenReleased([this] { desk.scheduler.Serve(); });
    desk.clock.Run(2 * minute + 30000 - desk.clock.Elapsed());  // 08:02
    desk.scheduler.Tick();
    desk.clock.Run(minute);
    EXPECT_TRUE(session->Held());
    kept.reset();
    desk.clock.Finish();
    EXPECT_FALSE(session->Held());
    EXPECT_THAT(Ended(), ElementsAre("Farm collected 1", "Mill collected 1"));
}

// An operator puts a station on another line while it waits: it is collected there, and the two lines do not meet.
TEST_F(LinesTest, AStationThatMovedIsCollectedOnItsNewLine) {
    const auto silent = Add("Silent", 1, 1);
    const auto moved = Add("Farm", 1, 2);
    desk.dbconn.Execute("update configdata_master set delaytime=20000 where locationID=?", {silent});
    desk.OpenField({.silent = {silent}});
    desk.clock.Run(30000);
    desk.scheduler.Tick();
    desk.dbconn.Execute("update configdata_master set comport='COM9' where locationID=?", {moved});
    desk.clock.Finish();
    EXPECT_THAT(Ended(), ElementsAre("Silent no answer 3", "Farm not reached 3"));
    EXPECT_EQ(desk.dbconn.Texts("select line from outcome order by rowid")[1], "COM9");
}

}  // namespace
