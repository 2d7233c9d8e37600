#include "archive/view/HistoryView.h"

#include <algorithm>
#include <cstdio>

#include "core/Text.h"

namespace archive {

namespace {

constexpr std::int64_t secondsOfADay = 24 * 3600;

const std::string valuesOfATimeStamp =
    "select ColumnId,value1 from tArchiveData where TimeStampId=? and value1 is not null order by ColumnId";

// What IsoText wrote; nothing when the text is another.
std::optional<core::DateTime> FromIso(const std::string& text) {
    core::DateTime at;
    if (std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &at.year, &at.month, &at.day, &at.hour, &at.minute,
                    &at.second) != 6) {
        return std::nullopt;
    }
    return at;
}

}  // namespace

int CountStreams(core::Database& dbconn, std::int64_t locationID) {
    int rows = 0;
    int streams = 0;
    for (const core::Row& row :
         dbconn.Query("select No_Stream from configdata_master where locationid=?", {locationID})) {
        ++rows;
        streams = std::max(streams, static_cast<int>(row.Long("No_Stream")));
    }
    return std::max(rows, streams);
}

std::string CheckChoice(const HistoryChoice& choice) {
    return choice.streamno < 1 ? "Select Stream " : "";
}

core::DateTime StartDay(const core::DateTime& from, const core::DateTime& to) {
    return from == to ? core::FromSeconds(core::ToSeconds(from) + secondsOfADay) : from;
}

int HistoryTypeOf(const HistoryChoice& choice, int former) {
    return choice.kind ? HistoryType(choice.streamno, *choice.kind) : former;
}

std::vector<std::string> ShownCells(const HistoryRow& row) {
    std::vector<std::string> cells;
    if (row.values.empty()) {
        return cells;
    }
    cells.reserve(row.values.size() + 1);
    cells.push_back(row.shown);
    for (const HistoryValue& value : row.values) {
        cells.push_back(core::NumberText(value.value));
    }
    return cells;
}

HistoryView::HistoryView(core::Database& dbconn, std::int64_t locationID, const HistoryChoice& choice, int historyType)
    : dbconn_(dbconn) {
    dbconn_.Each(
        "select ColumnId,ColumnName from tArchiveColumnHeader where NodeId=? and HistoryTypeId=? and streamno=? "
        "order by ColumnId",
        {locationID, historyType, choice.streamno}, [this](const core::RowInHand& row) {
            ids_.push_back(row.Long(0));
            names_.push_back(row.Text(1));
        });
    const auto keep = [this](const core::RowInHand& row) { timeStamps_.push_back({row.Long(0), row.Text(1)}); };
    const std::string ofArchive =
        "select TimeStampId,Time1 from tArchiveTimeStamp where NodeId=? and HistoryTypeId=? and streamno=?";
    if (choice.all) {
        dbconn_.Each(ofArchive + " order by time1", {locationID, historyType, choice.streamno}, keep);
    } else {
        dbconn_.Each(ofArchive + " and time1>=? and time1<=? order by time1",
                     {locationID, historyType, choice.streamno, core::IsoText(choice.from), core::IsoText(choice.to)},
                     keep);
    }
}

std::vector<HistoryRow> HistoryView::Next(std::size_t atMost) {
    const std::size_t end = std::min(Total(), done_ + atMost);
    std::vector<HistoryRow> rows;
    rows.reserve(end - done_);
    // One transaction a portion: by itself each of the small readings would lock the file and let it go.
    dbconn_.InTransaction([&] {
        for (; done_ < end; ++done_) {
            rows.push_back(Read(timeStamps_[done_]));
        }
    });
    return rows;
}

HistoryRow HistoryView::Read(const TimeStamp& timeStamp) {
    HistoryRow row;
    const auto at = FromIso(timeStamp.time);
    row.shown = at ? ShownTime(*at) : timeStamp.time;
    if (at && at->Valid()) {
        row.at = at;
    }
    row.values.reserve(ids_.size());
    dbconn_.Each(valuesOfATimeStamp, {timeStamp.id}, [&](const core::RowInHand& value) {
        const std::int64_t id = value.Long(0);
        const auto column = std::lower_bound(ids_.begin(), ids_.end(), id);
        if (column != ids_.end() && *column == id) {
            row.values.push_back({static_cast<std::size_t>(column - ids_.begin()), value.Number(1)});
        }
    });
    return row;
}

}  // namespace archive
