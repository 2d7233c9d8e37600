#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/Logs.h"
#include "support/ScratchDesk.h"

namespace {

struct LogsTest : testing::Test {
    support::ScratchDesk desk;
};

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

TEST_F(LogsTest, TheErrorLogIsReadWithItsLineEndsAndCleared) {
    EXPECT_EQ(desk.logs.ReadRtuErr().text, "");
    EXPECT_EQ(desk.logs.ClearRtuErr(), std::errc::no_such_file_or_directory);
    struct Case {
        std::string file, shown;
    };
    for (const Case& c :
         {Case{"", ""}, Case{"one\ntwo\n", "one\r\ntwo\r\n"}, Case{"one\r\n\r\ntwo", "one\r\n\r\ntwo\r\n"},
          Case{"\n", "\r\n"}, Case{std::string("a\0b\n", 4), std::string("a\0b\r\n", 5)}}) {
        std::ofstream(desk.shared.rtuErrPath, std::ios::binary) << c.file;
        EXPECT_EQ(desk.logs.ReadRtuErr().text, c.shown);
        EXPECT_TRUE(desk.logs.ReadRtuErr().whole);
    }
    std::filesystem::remove(desk.shared.rtuErrPath);
    std::filesystem::create_directory(desk.shared.rtuErrPath);
    EXPECT_THROW(desk.logs.ReadRtuErr(), std::system_error);
}

// Nothing that was written down is lost by Clear.
TEST_F(LogsTest, ClearKeepsTheLinesInAFileOfItsDay) {
    const auto kept = [&](const std::string& name) { return support::FileText(desk.shared.directory / name); };
    EXPECT_EQ(desk.logs.ClearAudit(), "");
    desk.logs.WriteAudit("one O'Neil");
    desk.logs.WriteAudit("two");
    EXPECT_EQ(desk.logs.ReadAudit().text, "one O'Neil\r\ntwo\r\n");
    EXPECT_TRUE(desk.logs.ReadAudit(17).whole);
    EXPECT_EQ(desk.logs.ClearAudit(), "TTS_2026-03-09_075930.txt");
    EXPECT_EQ(kept("TTS_2026-03-09_075930.txt"), "one O'Neil\r\ntwo\r\n");
    EXPECT_EQ(desk.logs.ReadAudit().text, "");
    desk.logs.WriteAudit("three");
    EXPECT_EQ(desk.logs.ClearAudit(), "TTS_2026-03-09_075930_2.txt");
    EXPECT_EQ(kept("TTS_2026-03-09_075930.txt"), "one O'Neil\r\ntwo\r\n");
    for (const char* name : {"RTU_Err_2026-03-09_075930.log", "RTU_Err_2026-03-09_075930_2.log"}) {
        desk.logs.WriteRtuErr(name);
        EXPECT_FALSE(desk.logs.ClearRtuErr());
        EXPECT_THAT(kept(name), testing::HasSubstr(std::string("--:") + name));
    }
    // Where the file cannot be written nothing is cleared.
    desk.logs.WriteAudit("four");
    desk.shared.directory = "/no/such/place";
    EXPECT_THROW(desk.logs.ClearAudit(), std::system_error);
    EXPECT_EQ(desk.logs.ReadAudit().text, "four\r\n");
}

TEST_F(LogsTest, OfALongLogTheLastWholeLinesAreRead) {
    struct Case {
        std::vector<std::string> lines;
        std::size_t limit;
        std::string audit, file;
    };
    for (const Case& c : {Case{{"first", "second", "third"}, 17, "second\r\nthird\r\n", "second\r\nthird\r\n"},
                          Case{{"first", "second", "third"}, 13, "third\r\n", "second\r\nthird\r\n"},
                          Case{{"first", "second", "third"}, 8, "third\r\n", "third\r\n"},
                          Case{{"first", "äää"}, 6, "ää\r\n", "ää\r\n"},  // a line too long for itself, cut at a letter
                          Case{{std::string(10000, 'x')}, 4, "xx\r\n", "xxx\r\n"}}) {
        desk.logs.ClearAudit();
        std::ofstream file(desk.shared.rtuErrPath, std::ios::binary);
        for (const std::string& line : c.lines) {
            desk.logs.WriteAudit(line);
            file << line << "\n";
        }
        file.close();
        EXPECT_EQ(desk.logs.ReadAudit(c.limit).text, c.audit) << c.limit;
        EXPECT_FALSE(desk.logs.ReadAudit(c.limit).whole);
        EXPECT_EQ(desk.logs.ReadRtuErr(c.limit).text, c.file) << c.limit;
        EXPECT_FALSE(desk.logs.ReadRtuErr(c.limit).whole);
    }
}

TEST_F(LogsTest, AFullErrorLogIsSetAsideAndNothingIsLost) {
    const std::string full(5'000'000, 'x');
    std::ofstream(desk.shared.rtuErrPath) << full;
    desk.logs.WriteRtuErr("first");
    desk.logs.WriteRtuErr("second");
    EXPECT_EQ(desk.RtuErr(), "09/03/2026 07:59:30--:first\n09/03/2026 07:59:30--:second\n");
    std::ofstream(desk.shared.rtuErrPath) << full << "y";  // full again within the second
    desk.logs.WriteRtuErr("third");
    EXPECT_EQ(support::FileText(desk.shared.directory / "RTU_Err_2026-03-09_075930.log"), full);
    EXPECT_EQ(support::FileText(desk.shared.directory / "RTU_Err_2026-03-09_075930_2.log"), full + "y");
}

}  // namespace
