// The comparison before and after a change, and its workbook as another program reads it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <fstream>

#include "signals/change/ChangeStore.h"
#include "signals/change/Verification.h"
#include "signals/change/VerificationBook.h"
#include "support/BookCells.h"
#include "support/ScratchDesk.h"

namespace {

using signals::Side;
using signals::VerifiedRow;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Verification, TheAfterValueDecidesHowTwoAreCompared) {
    const char* none = "-";
    struct Case {
        const char* before;
        const char* after;
        const char* difference;
        bool differs;
    };
    for (const Case& c : {
             Case{"100.25", "100.5", "0.25000", true},
             {"100.5", "100.25", "-0.25000", true},
             {"7", "7", "0.00000", false},
             {"7", "7.0", "0.00000", false},
             {"0", "0.000001", "0.00000", true},  // no tolerance
             {"0.000001", "0", "0.00000", true},
             {"0.1", "0.3", "0.20000", true},
             {"1e-05", "2e-05", "0.00001", true},
             {"-3.5", "+4", "7.50000", true},
             {"OPEN", "OPEN", none, false},
             {"OPEN", "CLOSE", none, true},
             {"OPEN", "open", none, true},
             {"1", "OPEN", none, true},
             {"OPEN", "1", "#VALUE!", true},
             {"", "1", "#VALUE!", true},
             {"1", "", none, true},
             {"", "", none, false},
             {"inf", "nan", none, true},
             {"5", "12 kg", none, true},
             {"-1.7e308", "1.7e308", "#VALUE!", true},  // is no number either
         }) {
        const VerifiedRow row = signals::CompareValues(c.before, c.after);
        EXPECT_EQ(row.difference.value_or(none), c.difference) << c.before << " " << c.after;
        EXPECT_EQ(row.differs, c.differs) << c.before << " " << c.after;
        EXPECT_EQ(signals::VerifiedCells(row).size(), row.difference ? 7U : 6U);
    }
}

TEST(Verification, RowsArePairedByTheirPlaces) {
    support::ScratchDesk desk;
    using NamesAndValues = std::vector<std::pair<std::string, std::string>>;
    const auto store = [&](Side side, int list, const NamesAndValues& signals) {
        std::vector<signals::ChangeRow> rows;
        for (const auto& [name, value] : signals) {
            rows.push_back({"", name, value, side == Side::Before ? "bar" : "kPa"});
        }
        signals::StoreChange(desk.dbconn, side, 7, list, rows, {2026, 3, 9, 8, 0, 0});
    };
    EXPECT_EQ(signals::Verification(desk.dbconn, 7).Total(), 0U);
    store(Side::Before, 55, {{"X", "1"}, {"Y", "2"}, {"Z", "3"}});
    store(Side::After, 55, {{"X", "1"}, {"NEW", "9"}});
    store(Side::Before, 9, {{"A", "OPEN"}});
    store(Side::After, 9, {{"A", "OPEN"}, {"B", "1"}});
    store(Side::Before, 20, {{"ONLY BEFORE", "1"}});
    store(Side::After, 30, {{"ONLY AFTER", "1"}});
    signals::StoreChange(desk.dbconn, Side::Before, 8, 9, {{"", "OTHER STATION", "1", ""}}, {2026, 3, 9, 8, 0, 0});
    signals::Verification verification(desk.dbconn, 7);
    EXPECT_EQ(verification.Total(), 4U);
    std::vector<std::string> cells;
    while (verification.Done() < verification.Total()) {
        for (const VerifiedRow& row : verification.Next()) {
            std::string line = row.differs ? "!" : "";
            for (const std::string& cell : signals::VerifiedCells(row)) {
                line += cell + "|";
            }
            cells.push_back(line);
        }
    }
    EXPECT_THAT(cells, ElementsAre("1|9|A|bar|OPEN|OPEN|", "2|55|X|bar|1|1|0.00000|", "!3|55|Y|bar|2|9|7.00000|"));
    // As a text its rows are lines, whatever stands in their fields.
    VerifiedRow broken = signals::CompareValues("1\t2", "O\r\nN");
    broken.name = "A B";
    EXPECT_THAT(signals::VerificationText({broken}), HasSubstr("\tA B\t\t1 2\tO  N\t"));
    std::string uneven;
    for (const auto& list : verification.Uneven()) {
        uneven +=
            std::to_string(list.list) + ":" + std::to_string(list.before) + "/" + std::to_string(list.after) + " ";
    }
    EXPECT_EQ(uneven, "9:1/2 20:1/0 30:0/1 55:3/2 ");
}

VerifiedRow Row(std::size_t number, const std::string& name, const std::string& before, const std::string& after) {
    VerifiedRow row = signals::CompareValues(before, after);
    row.number = number;
    row.list = 54;
    row.name = name;
    row.unit = "5";
    return row;
}

TEST(VerificationBook, AnotherProgramReadsWhatWasCompared) {
    const support::ScratchDirectory scratch;
    const auto file = scratch.path / "O'Brien's.xlsx";
    std::ofstream(file) << "what stood there";
    EXPECT_EQ(
        signals::WriteVerificationBook(file, {Row(1, "FLOW (Analog)", "1.5", "1.5"), Row(2, "=1+1", "1e-05", "2"),
                                              Row(3, "12", "OPEN", "1"), Row(4, "<&\"\xC2\xB0\x01", "OPEN", "CLOSE"),
                                              Row(5, "DOOR", "007", "007"), Row(6, "SMALL", "0", "0.000001")}),
        "");
    EXPECT_THAT(
        support::BookCells(file),
        ElementsAre("sheet Data Varification Report",
                    "FF000000|s  Sr. No.     |s List No|s  Signal Name                                 |s  Units    "
                    "             |s  Before Value              |s  After Value              |s Difference         ",
                    "FF000000|n 1 General|n 54 General|s FLOW (Analog)|s 5|n 1.5 General|n 1.5 General|n 0 0.00000",
                    "FFFF0000|n 2 General|n 54 General|s =1+1|s 5|n 1e-05 General|n 2 General|n 1.99999 0.00000",
                    "FFFF0000|n 3 General|n 54 General|s 12|s 5|s OPEN|n 1 General|s #VALUE!",
                    "FFFF0000|n 4 General|n 54 General|s <&\"\xC2\xB0_x0001_|s 5|s OPEN|s CLOSE",
                    "FF000000|n 5 General|n 54 General|s DOOR|s 5|s 007|s 007|n 0 0.00000",
                    "FFFF0000|n 6 General|n 54 General|s SMALL|s 5|n 0 General|n 1e-06 General|n 0 0.00000"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(scratch.path), {}), 1);
}

// Files may grow to so many bytes, as on a disk that is full. Holds for the whole program.
void LimitFiles(rlim_t bytes) {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = std::min(bytes, limit.rlim_max);
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST(VerificationBook, IsWrittenWholeOrWhatStoodThereStays) {
    const support::ScratchDirectory scratch;
    const auto file = scratch.path / "report.xlsx";
    std::vector<VerifiedRow> rows;
    for (std::size_t n = 1; n <= 3000; ++n) {
        rows.push_back(Row(n, "SIGNAL." + std::to_string(n * n), std::to_string(n), std::to_string(n * 7)));
    }
    ASSERT_EQ(signals::WriteVerificationBook(file, rows), "");
    const std::string whole = support::FileText(file);
    rows.pop_back();
    // From no room at all to room for the book, but not for what it is put together from.
    for (const rlim_t bytes : {0UL, 4096UL, 40000UL, whole.size() + 1000, 300000UL}) {
        LimitFiles(bytes);
        const std::string failure = signals::WriteVerificationBook(file, rows);
        LimitFiles(RLIM_INFINITY);
        EXPECT_THAT(failure, HasSubstr("report.xlsx: ")) << bytes;
        EXPECT_EQ(support::FileText(file), whole) << bytes;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(scratch.path), {}), 1) << bytes;
    }
    EXPECT_THAT(signals::WriteVerificationBook(scratch.path / "none" / "report.xlsx", rows),
                HasSubstr("report.xlsx: "));
    std::filesystem::create_directory(scratch.path / "folder.xlsx");
    EXPECT_THAT(signals::WriteVerificationBook(scratch.path / "folder.xlsx", rows), HasSubstr("folder.xlsx: "));
}

}  // namespace
