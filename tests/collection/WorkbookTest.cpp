#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <set>

#include "collection/SchedulerData.h"
#include "collection/Workbook.h"
#include "support/ScratchDesk.h"

using testing::HasSubstr;

namespace {

struct WorkbookTest : testing::Test {
    support::ScratchDesk desk{{2026, 3, 5, 8, 0, 7}};

    void Write(const std::string& consumer) {
        collection::WriteSchedulerFile(desk.dbconn, desk.shared, desk.clock, desk.feedback, desk.logs, consumer, 2,
                                       "AGA7");
    }
    std::string Book(const std::string& consumer) {
        return support::FileText(collection::WorkbookPath(desk.shared, consumer, desk.clock.Now()));
    }
};

// Without values the heading stands alone. A text stays in its column.
TEST_F(WorkbookTest, AppendsABlockARun) {
    const std::string heading = "Sr. No\tDescription\tValue  \tUnit\r\n";
    Write("Mill\n9");
    EXPECT_EQ(Book("Mill\n9"), heading);
    desk.dbconn.Execute("insert into sched_temp values('Flow \"A\"', 12.5, 'SCMH'),('Volume', null, ''),(?, 1, ?)",
                        {"Flow\t99\r\n2", "m\n3"});
    Write("Mill\n9");
    const std::string block =
        "Schedule Date:-  05/03/2026  Schedule Time:-   08:00:07\r\n"
        "RTU Name:- Mill 9\r\n"
        "Stream:- 2\r\n"
        "Model Name:- AGA7\r\n" +
        heading +
        "1\tFlow \"A\"\t12.5\tSCMH\r\n"
        "2\tVolume\t\t\r\n"
        "3\tFlow 99  2\t1\tm 3\r\n";
    EXPECT_EQ(Book("Mill\n9"), heading + block);
    EXPECT_TRUE(std::filesystem::exists(desk.shared.schedulerDirectory / "Mill%0A9_532026.xls"));
}

TEST_F(WorkbookTest, EveryNameIsOneFileInsideTheDirectory) {
    const std::string longName(10000, 'x');
    const std::string noCharacters(300, '\x80');  // of UTF-8
    const std::vector<std::string> names = {"../../etc/x",  "a/b",
                                            "a\\b",         "..",
                                            ".hidden",      "O'Brien's",
                                            "a%2Fb",        "Süd",
                                            "line\nbreak",  std::string("nul\0", 4),
                                            longName + "1", longName + "2",
                                            noCharacters,   ""};
    for (const std::string& name : names) {
        Write(name);
    }
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(desk.shared.directory)) {
        files += entry.path().extension() == ".xls" ? 1 : 0;
        EXPECT_TRUE(entry.path().extension() != ".xls" || entry.path().parent_path() == desk.shared.schedulerDirectory);
    }
    EXPECT_EQ(files, names.size());
    EXPECT_EQ(desk.RtuErr(), "");
}

// A file system that gets full in the middle of a block, played by the limit of this process.
TEST_F(WorkbookTest, ABlockThatDoesNotFitIsTakenBack) {
    Write("Mill");
    const std::string before = Book("Mill");
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit full{before.size() + 10, limit.rlim_max};
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    Write("Mill");
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(Book("Mill"), before);
    EXPECT_THAT(desk.feedback.status, testing::ElementsAre("Error in creating Excel"));
    Write("Mill");
    EXPECT_EQ(Book("Mill"), before + before);
}

TEST_F(WorkbookTest, AFailureIsToldAndTheRunGoesOn) {
    std::filesystem::create_symlink("/dev/full", collection::WorkbookPath(desk.shared, "Full", desk.clock.Now()));
    Write("Full");
    std::filesystem::remove_all(desk.shared.schedulerDirectory);
    std::ofstream(desk.shared.schedulerDirectory) << "in the way";
    Write("Mill");
    EXPECT_THAT(desk.feedback.status, testing::ElementsAre("Error in creating Excel", "Error in creating Excel"));
    EXPECT_THAT(desk.RtuErr(), HasSubstr("No space left on device"));
    EXPECT_THAT(desk.RtuErr(), HasSubstr("Not a directory"));
    std::filesystem::remove(desk.shared.schedulerDirectory);
    Write("Mill");  // the directory is made
    EXPECT_NE(Book("Mill"), "");
}

TEST_F(WorkbookTest, EachDayOfAYearHasAFileOfItsOwn) {
    std::set<std::filesystem::path> books;
    const std::int64_t newYear = core::ToSeconds({2028, 1, 1, 0, 0, 0});
    for (std::int64_t day = 0; day < 366; ++day) {
        books.insert(collection::WorkbookPath(desk.shared, "Mill", core::FromSeconds(newYear + day * 86400)));
    }
    EXPECT_EQ(books.size(), 366U);
    const auto name = [&](const core::DateTime& day) {
        return collection::WorkbookPath(desk.shared, "Mill", day).filename().string();
    };
    EXPECT_EQ(name({2026, 1, 11, 0, 0, 0}), "Mill_1112026.xls");
    EXPECT_EQ(name({2026, 11, 1, 0, 0, 0}), "Mill_1-112026.xls");
    EXPECT_EQ(name({2026, 12, 3, 0, 0, 0}), "Mill_3122026.xls");  // February has no 31st
    // What an earlier version wrote is found.
    std::ofstream(desk.shared.schedulerDirectory / "Mill_1112026.xls") << "older";
    const auto found = [&](const char* date) {
        const auto file = collection::ScheduledWorkbook(desk.shared, "Mill", date);
        return file ? file->filename().string() : "";
    };
    EXPECT_EQ(found("01/11/2026"), "Mill_1112026.xls");
    EXPECT_EQ(found("5/3/2026"), "Mill_532026.xls");
    EXPECT_EQ(found(" 29/02/2024 "), "Mill_2922024.xls");
    for (const char* const none :
         {"29/02/2026", "03/25/2026", "2026-03-05", "5/3", "5/3/2026x", "5/3/99999999999", "-5/3/2026", ""}) {
        EXPECT_EQ(found(none), "") << none;
    }
}

}  // namespace
