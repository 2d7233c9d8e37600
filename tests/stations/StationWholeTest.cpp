#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "stations/Records.h"
#include "support/ScratchDesk.h"

// A station is in the database with all that belongs to it, or not at all.
namespace {

using stations::StationRecord;
using testing::UnorderedElementsAre;

struct StationWholeTest : testing::Test {
    support::ScratchDesk desk;

    // Does `work` once for each way in which a table can fail it, and tells the ways in which it did fail. Then nothing
    // at all may have changed.
    std::set<std::string> FailuresOf(const std::function<void()>& work) {
        std::set<std::string> failures;
        const auto before = records::Snapshot(desk.dbconn);
        for (const std::string& table : records::AllTables(desk.dbconn)) {
            for (const std::string operation : {"insert", "update", "delete"}) {
                desk.dbconn.Execute("create trigger broken before " + operation + " on " + table +
                                    " begin select raise(abort, 'disk'); end");
                if (Fails(work)) {
                    failures.insert(operation + " " + table);
                    EXPECT_THROW(work(), core::DatabaseError);
                    EXPECT_EQ(records::Snapshot(desk.dbconn), before) << operation << " " << table;
                }
                desk.dbconn.Execute("drop trigger broken");
            }
        }
        return failures;
    }

    // Whether `work` fails; what it does is taken back in any case.
    bool Fails(const std::function<void()>& work) {
        bool done = false;
        try {
            desk.dbconn.InTransaction([&] {
                work();
                done = true;
                throw core::DatabaseError("taken back");
            });
        } catch (const core::DatabaseError&) {
        }
        return !done;
    }
};

// The columns of the schema that still know a location, "table.column" each.
std::string Traces(core::Database& dbconn, std::int64_t locationId) {
    std::string traces;
    for (const std::string& table : records::AllTables(dbconn)) {
        for (const std::string& column : tables::Texts(dbconn, "select name from pragma_table_info(?)", {table})) {
            if (tables::Sorted({"LOCATIONID", "NODEID", "FK_NODE_ID"}).count(core::UpperText(column)) != 0 &&
                tables::Count(dbconn, table + " where " + column + "=" + std::to_string(locationId)) != 0) {
                traces += table + "." + column + " ";
            }
        }
    }
    return traces;
}

// A row in every table that knows a location, and the archive that hangs on it.
void FillEveryTable(core::Database& dbconn, std::int64_t locationId, const std::string& consumer) {
    const std::string id = std::to_string(locationId);
    for (const std::string& table : records::AllTables(dbconn)) {
        for (const std::string& column : tables::Texts(dbconn, "select name from pragma_table_info(?)", {table})) {
            if (table != "configdata_master" &&
                tables::Sorted({"LOCATIONID", "NODEID", "FK_NODE_ID"}).count(core::UpperText(column)) != 0) {
                dbconn.Execute("insert into " + table + "(" + column + ") values(?)", {locationId});
            }
        }
    }
    dbconn.Execute(
        "insert into tArchiveData select ColumnId, TimeStampId, 1, 5 from tArchiveTimeStamp t, tArchiveColumnHeader c "
        "where t.NodeId=?1 and c.NodeId=?1",
        {locationId});
    dbconn.Execute("insert into Scheduler(RTUName) values(?)", {consumer});
}

TEST_F(StationWholeTest, NoFailureLeavesHalfASave) {
    StationRecord modbus = records::Filled(1);
    modbus.protocol = "Modbus";
    EXPECT_THAT(FailuresOf([&] { stations::SaveStation(desk.dbconn, modbus, {}); }),
                UnorderedElementsAre("insert configdata_master", "update configdata_master", "insert mdbus_table",
                                     "insert configdata_detail", "insert SummaryPara"));
    stations::SaveStation(desk.dbconn, modbus, {});
    desk.dbconn.Execute("delete from SummaryPara");
    EXPECT_THAT(FailuresOf([&] { stations::SaveStation(desk.dbconn, modbus, {.isNewStation = false}); }),
                UnorderedElementsAre("update configdata_master", "insert SummaryPara"));
}

TEST_F(StationWholeTest, NoFailureLeavesHalfADeletion) {
    stations::SaveStation(desk.dbconn, records::Filled(1), {});
    FillEveryTable(desk.dbconn, 1, "Mill");
    EXPECT_EQ(FailuresOf([&] { stations::DeleteStation(desk.dbconn, 1, "Mill"); }).size(), 17U);
}

TEST_F(StationWholeTest, ADeletedStationLeavesNoTraceAndItsNeighbourKeepsAll) {
    const std::string works = "O'Brien's Works";
    stations::SaveStation(desk.dbconn, records::Filled(2, "Mill"), {});
    FillEveryTable(desk.dbconn, 2, "Mill");
    const auto before = records::Snapshot(desk.dbconn);
    StationRecord record = records::Filled(3, works);
    record.groupno = "2";
    record.protocol = "Modbus";
    stations::SaveStation(desk.dbconn, record, {});
    FillEveryTable(desk.dbconn, 3, works);
    ASSERT_NE(Traces(desk.dbconn, 3), "");
    stations::DeleteStation(desk.dbconn, 3, works);
    EXPECT_EQ(Traces(desk.dbconn, 3), "");
    EXPECT_EQ(records::Snapshot(desk.dbconn), before) << "its archive and its schedule rows are gone too";
    EXPECT_EQ(stations::NextLocation(desk.dbconn), 3) << "the highest location is used again";
}

}  // namespace
