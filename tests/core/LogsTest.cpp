#include <gtest/gtest.h>

#include "core/Logs.h"
#include "support/ScratchDesk.h"

namespace {

struct LogsTest : testing::Test {
    support::ScratchDesk desk;
};

TEST_F(LogsTest, ErrorLinesCarryTheirMoment) {
    EXPECT_TRUE(desk.logs.WriteRtuErr("RTU Dead[3]"));
    EXPECT_TRUE(desk.logs.WriteRtuErr("O'Brien's gate"));
    EXPECT_EQ(desk.RtuErr(), "09/03/2026 07:59:30--:RTU Dead[3]\n09/03/2026 07:59:30--:O'Brien's gate\n");
}

TEST_F(LogsTest, ALogThatCannotBeWrittenStopsNobody) {
    std::filesystem::create_symlink("/dev/full", desk.shared.rtuErrPath);
    EXPECT_FALSE(desk.logs.WriteRtuErr("lost"));
    desk.shared.rtuErrPath = desk.shared.directory / "no" / "such" / "place.log";
    EXPECT_FALSE(desk.logs.WriteRtuErr("lost"));
}

TEST_F(LogsTest, TheTrafficIsRecordedOnlyWhenTheDatabaseSaysSo) {
    desk.logs.WriteLogLine("Polling RTU Msg");
    EXPECT_FALSE(std::filesystem::exists(desk.shared.logpath));
    desk.shared.logGenflag = true;
    desk.logs.WriteLogLine("Polling RTU Msg");
    desk.logs.WriteLogLine("10 2 1 ");
    EXPECT_EQ(support::FileText(desk.shared.logpath), "\rPolling RTU Msg\n\r10 2 1 \n");
}

TEST_F(LogsTest, AuditLinesHoldAnyName) {
    desk.logs.WriteAudit("User O'Neil connected to RTU L'Usine.");
    EXPECT_EQ(desk.dbconn.First("select LOG from TTS_table")->Text("LOG"), "User O'Neil connected to RTU L'Usine.");
}

TEST_F(LogsTest, TheParameterPrintoutIsWrittenWhole) {
    EXPECT_TRUE(desk.logs.WriteConfParams("long text"));
    EXPECT_TRUE(desk.logs.WriteConfParams("new"));
    EXPECT_EQ(support::FileText(desk.shared.confparamspath), "new");
}

}  // namespace
