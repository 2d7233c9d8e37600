#include "archive/store/ArchiveStore.h"

#include <algorithm>
#include <cmath>

namespace archive {

namespace {

const std::string addTimeStamp =
    "insert into tArchiveTimeStamp (Time1,HistoryTypeId,NodeId,StreamNo) values(?,?,?,?) on conflict do nothing";
const std::string findTimeStamp =
    "select TimeStampId from tArchiveTimeStamp where NodeId=? and StreamNo=? and HistoryTypeId=? and Time1=?";
const std::string addColumn =
    "insert into tArchiveColumnHeader (ColumnName,HistoryTypeId,NodeId,StreamNo) values(?,?,?,?) on conflict do "
    "nothing";
const std::string findColumn =
    "select ColumnId from tArchiveColumnHeader where NodeId=? and StreamNo=? and HistoryTypeId=? and ColumnName=?";
const std::string addValue =
    "insert into tArchiveData (ColumnId,TimeStampId,HistoryTypeId,value1) values(?,?,?,?) on conflict do nothing";

std::int64_t Found(core::Database& dbconn, const std::string& statement, const ArchiveKey& key,
                   const std::string& what) {
    std::int64_t id = 0;
    dbconn.Each(statement, {key.locationID, key.streamno, key.historyType, what},
                [&id](const core::RowInHand& row) { id = row.Long(0); });
    return id;
}

std::vector<std::int64_t> ColumnIds(core::Database& dbconn, const ArchiveKey& key,
                                    const std::vector<std::string>& fields) {
    std::vector<std::int64_t> ids;
    for (const std::string& field : fields) {
        dbconn.Execute(addColumn, {field, key.historyType, key.locationID, key.streamno});
        ids.push_back(Found(dbconn, findColumn, key, field));
    }
    return ids;
}

}  // namespace

SaveOutcome SaveArchive(core::Database& dbconn, const ArchiveKey& key, const ArchiveDownload& download) {
    SaveOutcome outcome;
    dbconn.InTransaction([&] {
        const std::vector<std::int64_t> columns = ColumnIds(dbconn, key, download.fields);
        for (const ArchiveRecord& record : download.records) {
            const std::string time = core::IsoText(record.at);
            const int added = dbconn.Execute(addTimeStamp, {time, key.historyType, key.locationID, key.streamno});
            outcome.added += added;
            outcome.known += 1 - added;
            const std::int64_t timeStamp = Found(dbconn, findTimeStamp, key, time);
            const std::size_t count = std::min(columns.size(), record.values.size());
            for (std::size_t n = 0; n < count; ++n) {
                // What is no number would be stored as null and keep a good value of the next download out.
                if (!std::isnan(record.values[n])) {
                    outcome.values +=
                        dbconn.Execute(addValue, {columns[n], timeStamp, key.historyType, record.values[n]});
                }
            }
        }
    });
    return outcome;
}

ArchiveKeeper::ArchiveKeeper(core::Database& dbconn, const ArchiveKey& key) : dbconn_(dbconn), key_(key) {
    try {
        dbconn.Each("select recordnumber, Time1 from tArchiveMark where NodeId=? and StreamNo=? and HistoryTypeId=?",
                    {key.locationID, key.streamno, key.historyType},
                    [this](const core::RowInHand& row) { mark_.emplace(static_cast<int>(row.Long(0)), row.Text(1)); });
    } catch (const core::DatabaseError& failure) {
        failure_ = failure.what();
    }
}

bool ArchiveKeeper::Add(const std::vector<std::string>& fields, const std::vector<ArchiveRecord>& records) {
    try {
        const SaveOutcome added = SaveArchive(dbconn_, key_, {fields, records});
        outcome_.added += added.added;
        outcome_.known += added.known;
        outcome_.values += added.values;
        return added.added == 0 && added.values == 0;
    } catch (const core::DatabaseError& failure) {
        failure_ = failure_.empty() ? failure.what() : failure_;
        return false;
    }
}

bool ArchiveKeeper::IsMark(int number, const core::DateTime& at) const {
    return mark_ && mark_->first == number && mark_->second == core::IsoText(at);
}

void ArchiveKeeper::Mark(int number, const core::DateTime& at) {
    if (!failure_.empty()) {
        return;
    }
    try {
        dbconn_.Execute("insert or replace into tArchiveMark values(?,?,?,?,?)",
                        {key_.locationID, key_.streamno, key_.historyType, number, core::IsoText(at)});
    } catch (const core::DatabaseError& failure) {
        failure_ = failure.what();
    }
}

}  // namespace archive
