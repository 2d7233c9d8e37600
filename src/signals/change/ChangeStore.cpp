#include "signals/change/ChangeStore.h"

#include <cstdio>

#include "core/Database.h"

namespace signals {

namespace {

// A date that stands for "not yet collected", just as it is written here.
constexpr const char* notYet = "1/1/1990";

std::string TableOf(Side side) {
    return side == Side::Before ? "tblBeforeChange" : "tblAfterChange";
}

std::optional<std::string> Shown(const std::string& stored) {
    core::DateTime day;
    if (stored == notYet || stored.empty()) {
        return std::nullopt;
    }
    // A date that was not stored by this program stands as it is.
    return std::sscanf(stored.c_str(), "%4d-%2d-%2d", &day.year, &day.month, &day.day) == 3 ? core::DateText(day)
                                                                                            : stored;
}

void StoreDate(core::Database& dbconn, Side side, std::int64_t locationID, const core::DateTime& now) {
    const std::string today = core::IsoText(now).substr(0, 10);
    const char* insert = "insert into tbldatetime (fk_node_id,before_date,after_date) values(?,?,?)";
    if (side == Side::Before) {
        dbconn.Execute("delete from tblDateTime where fk_node_id=?", {locationID});
        dbconn.Execute(insert, {locationID, today, notYet});
    } else if (dbconn.Execute("update tbldatetime set after_date=? where fk_node_id=?", {today, locationID}) == 0) {
        dbconn.Execute(insert, {locationID, notYet, today});
    }
}

}  // namespace

ChangeDates ReadChangeDates(core::Database& dbconn, std::int64_t locationID) {
    const auto row = dbconn.First("select * from tblDateTime where fk_node_id=?", {locationID});
    return row ? ChangeDates{Shown(row->Text("before_date")), Shown(row->Text("after_date"))} : ChangeDates{};
}

std::vector<int> CollectedLists(core::Database& dbconn, std::int64_t locationID) {
    std::vector<int> lists;
    dbconn.Each("select distinct list_no from tbllistno where fk_node_id=? order by list_no", {locationID},
                [&](const core::RowInHand& row) { lists.push_back(static_cast<int>(row.Long(0))); });
    return lists;
}

void StoreChange(core::Database& dbconn, Side side, std::int64_t locationID, int listNumber,
                 const std::vector<ChangeRow>& rows, const core::DateTime& now) {
    dbconn.InTransaction([&] {
        if (!dbconn.First("select list_no from tbllistno where fk_node_id=? and list_no=?", {locationID, listNumber})) {
            dbconn.Execute("insert into tblListNo (list_no,fk_node_id) values(?,?)", {listNumber, locationID});
        }
        StoreDate(dbconn, side, locationID, now);
        dbconn.Execute("delete from " + TableOf(side) + " where fk_node_id=? and list_no=?", {locationID, listNumber});
        const std::string insert = "insert into " + TableOf(side) +
                                   "(fk_node_id,sr_no,list_no,parameter_name,para_value,unit) values(?,?,?,?,?,?)";
        int number = 0;
        for (const ChangeRow& row : rows) {
            dbconn.Execute(insert, {locationID, ++number, listNumber, row.at(1), row.at(2), row.at(3)});
        }
    });
}

std::vector<ChangeRow> StoredChange(core::Database& dbconn, Side side, std::int64_t locationID, int listNumber) {
    std::vector<ChangeRow> rows;
    dbconn.Each("select sr_no,parameter_name,para_value,unit from " + TableOf(side) +
                    " where fk_node_id=? and list_no=? order by sr_no",
                {locationID, listNumber}, [&](const core::RowInHand& row) {
                    rows.push_back({row.Text(0), row.Text(1), row.Text(2), row.Text(3)});
                });
    return rows;
}

}  // namespace signals
