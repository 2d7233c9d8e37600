// The stored lists before and after a change.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "signals/change/ChangeStore.h"
#include "support/ScratchDesk.h"

namespace {

using signals::ChangeRow;
using signals::Side;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t station = 7;
constexpr core::DateTime ninth{2026, 3, 9, 8, 0, 0};
constexpr core::DateTime tenth{2026, 3, 10, 23, 59, 59};

std::vector<ChangeRow> Rows(const std::vector<std::string>& values) {
    std::vector<ChangeRow> rows;
    for (const std::string& value : values) {
        const std::string number = std::to_string(rows.size() + 1);
        rows.push_back({number, "O'Brien's." + number + " (Analog)", value, "m3'/h"});
    }
    return rows;
}

struct ChangeStoreTest : testing::Test {
    support::ScratchDesk desk;

    void Store(Side side, int list, const std::vector<ChangeRow>& rows, const core::DateTime& at = ninth,
               std::int64_t locationID = station) {
        signals::StoreChange(desk.dbconn, side, locationID, list, rows, at);
    }
    std::vector<ChangeRow> Stored(Side side, int list, std::int64_t locationID = station) {
        return signals::StoredChange(desk.dbconn, side, locationID, list);
    }
    std::string Dates() {
        const auto dates = signals::ReadChangeDates(desk.dbconn, station);
        return dates.before.value_or("-") + " " + dates.after.value_or("-");
    }
};

TEST_F(ChangeStoreTest, AListReplacesItselfAndNoOther) {
    Store(Side::Before, 54, Rows({"1.5", "OPEN", "1e-05"}));
    Store(Side::Before, 9, Rows({"9"}));
    Store(Side::After, 54, Rows({"2"}));
    Store(Side::Before, 54, Rows({"8"}), ninth, 8);
    EXPECT_EQ(Stored(Side::Before, 54), Rows({"1.5", "OPEN", "1e-05"}));
    Store(Side::Before, 54, Rows({"3", "4"}));  // shorter than it was
    EXPECT_EQ(Stored(Side::Before, 54), Rows({"3", "4"}));
    EXPECT_EQ(Stored(Side::Before, 9), Rows({"9"}));
    EXPECT_EQ(Stored(Side::After, 54), Rows({"2"}));
    EXPECT_EQ(Stored(Side::Before, 54, 8), Rows({"8"}));
    EXPECT_THAT(Stored(Side::After, 9), IsEmpty());
    EXPECT_THAT(signals::CollectedLists(desk.dbconn, station), ElementsAre(9, 54));
    EXPECT_EQ(desk.dbconn.Query("select * from tblListNo").size(), 3U);
}

TEST_F(ChangeStoreTest, TheDates) {
    EXPECT_EQ(Dates(), "- -");
    Store(Side::After, 54, Rows({"1"}));  // of a station that was not collected before
    EXPECT_EQ(Dates(), "- 09/03/2026");
    Store(Side::Before, 54, Rows({"1"}), tenth);
    EXPECT_EQ(Dates(), "10/03/2026 -");
    const auto row = desk.dbconn.First("select * from tblDateTime where fk_node_id=7").value();
    EXPECT_EQ(row.Text("before_date"), "2026-03-10");
    EXPECT_EQ(row.Text("after_date"), "1/1/1990");
    Store(Side::After, 54, Rows({"1"}), tenth);
    EXPECT_EQ(Dates(), "10/03/2026 10/03/2026");
    Store(Side::Before, 55, Rows({"1"}), {2026, 3, 11, 0, 0, 0});
    EXPECT_EQ(Dates(), "11/03/2026 -");
    EXPECT_EQ(desk.dbconn.Query("select * from tblDateTime").size(), 1U);
    desk.dbconn.Execute("update tblDateTime set before_date='12/31/2025'");  // another program's
    EXPECT_EQ(Dates(), "12/31/2025 -");
}

TEST_F(ChangeStoreTest, AListThatCannotBeStoredLeavesWhatWasThere) {
    Store(Side::Before, 54, Rows({"1", "2"}));
    desk.dbconn.Execute(
        "create trigger full before insert on tblBeforeChange when new.sr_no=2 begin select raise(abort,'full'); end");
    EXPECT_THROW(Store(Side::Before, 54, Rows({"3", "4"}), tenth), core::DatabaseError);
    EXPECT_THROW(Store(Side::Before, 55, Rows({"3", "4"}), tenth), core::DatabaseError);
    EXPECT_EQ(Stored(Side::Before, 54), Rows({"1", "2"}));
    EXPECT_EQ(Dates(), "09/03/2026 -");
    EXPECT_THAT(signals::CollectedLists(desk.dbconn, station), ElementsAre(54));
}

}  // namespace
