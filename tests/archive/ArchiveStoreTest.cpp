#include <gmock/gmock.h>

#include "archive/store/ArchiveStore.h"
#include "support/ScratchDesk.h"

using namespace archive;

namespace {

using Texts = std::vector<std::string>;

constexpr ArchiveKey hourly{7, 1, 2};

core::DateTime Hour(int day, int hour) {
    return {2026, 3, day, hour, 0, 0};
}

ArchiveDownload Download(std::vector<std::string> fields, std::vector<ArchiveRecord> records) {
    return {std::move(fields), std::move(records)};
}

struct ArchiveStoreTest : testing::Test {
    support::ScratchDesk desk;

    SaveOutcome Save(const ArchiveDownload& download, const ArchiveKey& key = hourly) {
        return SaveArchive(desk.dbconn, key, download);
    }

    // What is stored, a line a value in order of time: "2026-03-09 06:00:00 PRESSURE 1.5".
    Texts Stored(const ArchiveKey& key = hourly) {
        return desk.dbconn.Texts(
            "select t.Time1 || ' ' || rtrim(c.ColumnName) || ' ' || d.value1 from tArchiveTimeStamp t "
            "join tArchiveData d on d.TimeStampId=t.TimeStampId and d.HistoryTypeId=t.HistoryTypeId "
            "join tArchiveColumnHeader c on c.ColumnId=d.ColumnId "
            "where t.NodeId=?1 and t.StreamNo=?2 and t.HistoryTypeId=?3 and c.NodeId=?1 and c.StreamNo=?2 and "
            "c.HistoryTypeId=?3 order by t.Time1, c.ColumnId",
            {key.locationID, key.streamno, key.historyType});
    }
    std::int64_t Count(const std::string& table) {
        return desk.dbconn.First("select count(*) from " + table).value()[0].Long();
    }
};

void Expect(const SaveOutcome& outcome, int added, int known, int values) {
    EXPECT_EQ(outcome.added, added);
    EXPECT_EQ(outcome.known, known);
    EXPECT_EQ(outcome.values, values);
}

TEST_F(ArchiveStoreTest, NoRecordIsThereTwiceAndWhatLacksIsAdded) {
    const Texts fields{"PRESSURE         ", "FLOW             "};
    const ArchiveDownload first = Download(fields, {{Hour(9, 6), 1, 1, {1.5, 10}}, {Hour(9, 7), 2, 2, {2.5}}});
    Expect(Save(first), 2, 0, 3);
    Expect(Save(first), 0, 2, 0);
    // Newest first, over the end of the former: one is new, one gets what it lacked, a corrected value is not taken
    // over, and the record that this download holds twice counts once.
    Expect(Save(Download(fields, {{Hour(9, 8), 3, 3, {3.5, 30}},
                                  {Hour(9, 8), 3, 3, {99, 99}},
                                  {Hour(9, 7), 2, 2, {99, 20}},
                                  {Hour(9, 6), 1, 1, {99, 99}}})),
           1, 3, 3);
    EXPECT_EQ(Stored(), (Texts{"2026-03-09 06:00:00 PRESSURE 1.5", "2026-03-09 06:00:00 FLOW 10.0",
                               "2026-03-09 07:00:00 PRESSURE 2.5", "2026-03-09 07:00:00 FLOW 20.0",
                               "2026-03-09 08:00:00 PRESSURE 3.5", "2026-03-09 08:00:00 FLOW 30.0"}));
    // A value that is none keeps the place free; more values than fields have no name to stand under.
    Expect(Save(Download(fields, {{Hour(9, 9), 4, 4, {std::nan(""), 40, 41}}})), 1, 0, 1);
    Expect(Save(Download(fields, {{Hour(9, 9), 4, 4, {4.5, 99}}})), 0, 1, 1);
    EXPECT_THAT(Stored(), testing::IsSupersetOf({"2026-03-09 09:00:00 PRESSURE 4.5", "2026-03-09 09:00:00 FLOW 40.0"}));
    Expect(Save({}), 0, 0, 0);
}

TEST_F(ArchiveStoreTest, AFieldIsKnownByItsWholeName) {
    Save(Download({"ENERGY 'NET'     ", "ENERGY           "}, {{Hour(9, 6), 1, 1, {1, 2}}}));
    // The list has changed: one field went, one came, one stands elsewhere. "ENERGY" without its blanks is another.
    Save(Download({"TEMP             ", "ENERGY 'NET'     ", "ENERGY"}, {{Hour(9, 6), 1, 1, {3, 9, 4}}}));
    EXPECT_EQ(desk.dbconn.Texts("select ColumnName from tArchiveColumnHeader order by ColumnId"),
              (Texts{"ENERGY 'NET'     ", "ENERGY           ", "TEMP             ", "ENERGY"}));
    EXPECT_EQ(Stored(), (Texts{"2026-03-09 06:00:00 ENERGY 'NET' 1.0", "2026-03-09 06:00:00 ENERGY 2.0",
                               "2026-03-09 06:00:00 TEMP 3.0", "2026-03-09 06:00:00 ENERGY 4.0"}));
    // Of two fields of one name the first has the column.
    Save(Download({"TEMP             ", "TEMP             "}, {{Hour(9, 7), 1, 1, {5, 6}}}));
    EXPECT_THAT(Stored(), testing::Contains("2026-03-09 07:00:00 TEMP 5.0"));
    EXPECT_EQ(Count("tArchiveColumnHeader"), 4);
}

TEST_F(ArchiveStoreTest, ATimeThatIsNoneIsATimeStampLikeAnother) {
    const ArchiveDownload nonsense =
        Download({"FLOW             "},
                 {{{1976, 12, 31, 0, 0, 0}, 1, 1, {1}}, {{2026, 3, 9, 25, 0, 0}, 1, 1, {2}}, {Hour(10, 0), 1, 1, {3}}});
    Save(nonsense);
    Expect(Save(nonsense), 0, 3, 0);
    EXPECT_EQ(Stored(),
              (Texts{"1976-12-31 00:00:00 FLOW 1.0", "2026-03-09 25:00:00 FLOW 2.0", "2026-03-10 00:00:00 FLOW 3.0"}));
}

TEST_F(ArchiveStoreTest, AFailureLeavesNothingOfTheDownload) {
    desk.dbconn.Execute(
        "create trigger broken before insert on tArchiveData when new.value1=2 begin select raise(abort, 'disk'); end");
    const ArchiveDownload download =
        Download({"FLOW             "}, {{Hour(9, 6), 1, 1, {1}}, {Hour(9, 7), 1, 1, {2}}});
    EXPECT_THROW(Save(download), core::DatabaseError);
    EXPECT_EQ(Count("tArchiveTimeStamp") + Count("tArchiveColumnHeader") + Count("tArchiveData"), 0);
    desk.dbconn.Execute("drop trigger broken");
    Expect(Save(download), 2, 0, 2);
}

}  // namespace
