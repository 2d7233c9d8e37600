// Modbus ASCII on a serial port, against a slave of another make.

#include <gtest/gtest.h>

#include "collection/CollectionRun.h"
#include "core/Text.h"
#include "protocols/modbus/ModbusTransact.h"
#include "session/OwnCall.h"
#include "support/ChildProcess.h"
#include "support/PortDesk.h"

namespace {

// At address 1 the request for registers 125 to 248 has the LRC 04, and that to switch coil 251 on has 01.
struct AsciiSlaveTest : testing::Test {
    support::ChildProcess slave{{"/usr/bin/python3", ASCII_SLAVE, "1"}};
    support::PortDesk desk{Path()};
    std::int64_t locationID = desk.AddStation();

    std::string Path() {
        EXPECT_TRUE(slave.Printed("\n")) << slave.Said();
        return slave.Said().substr(0, slave.Said().find('\n'));
    }
    void SetUp() override {
        desk.dbconn.Execute("update configdata_master set mode='ASCII', slaveaddress=1");
        desk.dbconn.Execute("update configdata_detail set lastvalue=-1");
    }
    reading::RunState Collect() {
        reading::RunState state;
        collection::collectiong_Data(desk.place, locationID, state);
        return state;
    }
    // The floats of the first two blocks by their numbers.
    std::map<int, double> Floats() {
        std::map<int, double> floats;
        for (const core::Row& row :
             desk.dbconn.Query("select startaddress, lastvalue from configdata_detail where type like 'Float%' and "
                               "cast(startaddress as integer) between 1 and 248")) {
            floats[(static_cast<int>(core::Val(row[0].Text())) + 1) / 2] = row[1].Number();
        }
        return floats;
    }
    protocols::WriteOutcome SwitchOn(int coil) {
        auto outcome = protocols::WriteOutcome::NotBuilt;
        session::OwnCall(desk.place, desk.scheduler, core::ReadStation(desk.dbconn, locationID).value(), {},
                         [&](protocols::Conversation& talk) {
                             outcome = protocols::ModbusWrite(talk, core::ValueKind::Logical, coil - 1, 1,
                                                              protocols::onlineWrite);
                         });
        return outcome;
    }
};

TEST_F(AsciiSlaveTest, RefusesARequiredCheckOfOneDigit) {
    EXPECT_TRUE(Collect().runfailed);
    for (const auto& [number, value] : Floats()) {
        EXPECT_EQ(value, -1) << number;
    }
    EXPECT_EQ(SwitchOn(251), protocols::WriteOutcome::Failed);
    EXPECT_EQ(SwitchOn(12), protocols::WriteOutcome::Done);
}

TEST_F(AsciiSlaveTest, IsReadWholeAndWrittenInStandardFraming) {
    desk.dbconn.Execute("update configdata_master set framing='standard'");
    EXPECT_FALSE(Collect().runfailed) << desk.scratch.RtuErr();
    const auto floats = Floats();
    EXPECT_GT(floats.size(), 100U);
    EXPECT_TRUE(floats.rbegin()->first > 62) << "the second block";
    for (const auto& [number, value] : floats) {
        EXPECT_EQ(value, number + 0.25);
    }
    EXPECT_EQ(SwitchOn(251), protocols::WriteOutcome::Done);
}

}  // namespace
