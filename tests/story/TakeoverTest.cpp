#include <gtest/gtest.h>

#include "protocols/modbus/ModbusTransact.h"
#include "support/CollectionDesk.h"

namespace {

// A session that reads its station in a loop, as the operator's screen does, while the schedule runs.
struct TakeoverTest : testing::Test {
    support::CollectionDesk desk{{2026, 3, 9, 7, 59, 0}};
};

TEST_F(TakeoverTest, AScheduledRunTakesTheLineAndNothingOfTheSessionReachesItsStation) {
    demo::DemoStation due{"Due", "TeleFlow", "Modbus", "RTU", 1, 1};
    due.contracthour = "08:00";
    demo::DemoStation watched{"Watched", "TeleFlow", "Modbus", "RTU", 2, 1};
    watched.contracthour = "20:00";
    const auto dueLocation = demo::AddStation(desk.dbconn, due);
    const auto watchedLocation = demo::AddStation(desk.dbconn, watched);
    const auto& field = desk.OpenField();
    desk.StartTicking();

    auto lease = desk.Line().TakeIfFree();
    ASSERT_TRUE(lease);
    EXPECT_FALSE(desk.Line().TakeIfFree());
    protocols::Conversation session{lease,     desk.clock,    desk.feedback,
                                    desk.logs, desk.counters, core::ReadStation(desk.dbconn, watchedLocation).value(),
                                    "operator"};
    session.modbus.floatread = true;
    lease->CommPort(2);
    ASSERT_TRUE(lease->PortOpen(true));
    int good = 0;
    while (ModbusTransact(session, 0, 124, 3, protocols::onlineTransact).Answered()) {
        ++good;
    }
    EXPECT_GT(good, 10);  // until the tick of 08:00
    EXPECT_TRUE(session.Ended());
    EXPECT_EQ(lease->Reason(), "A scheduled collection has taken the line");
    EXPECT_FALSE(lease->PortOpen());
    EXPECT_FALSE(lease->PortOpen(true));
    EXPECT_TRUE(desk.feedback.boxes.empty());  // the end of a session is no silent station

    EXPECT_TRUE(desk.Master(dueLocation).Bool("sampledtoday")) << desk.RtuErr();
    const auto row = desk.dbconn.First("select lastvalue from configdata_detail where locationID=? and description=?",
                                       {dueLocation, "Volume Today"});
    EXPECT_TRUE(field.WasServed(dueLocation, 1, "Volume Today", row->Number("lastvalue")));
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_TRUE(desk.Line().TakeIfFree());
}

}  // namespace
