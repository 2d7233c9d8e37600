#include <array>

#include "stations/StationRegister.h"

namespace stations {

namespace {

// The statements in the operators' order, each with the location behind it. The schedule rows go by name between them.
constexpr std::array beforeSchedule = {
    "delete from configdata_Master where locationID= ?",
    "delete from configdata_Detail where locationID= ?",
    "delete from LogParam where locationID= ?",
};

// The mark of the archive and the last three go too: a location is used again, and the next station there must not
// inherit a gas composition, an outcome or a day.
constexpr std::array afterSchedule = {
    "delete from mdbus_table where locationID= ?",
    "delete from SummaryPara where LocationID= ?",
    "delete from tblBeforeChange where fk_node_id= ?",
    "delete from tblAfterChange where fk_node_id= ?",
    "delete from tblDateTime where fk_node_id= ?",
    "delete from tbllistno where fk_node_id= ?",
    "delete from tArchiveData where TimeStampId in(select timestampid from tArchiveTimeStamp where nodeid = ?1) and "
    "columnid in (select columnid from tarchivecolumnheader where nodeid = ?1)",
    "delete from tArchiveTimeStamp where NodeId = ?",
    "delete from tArchiveColumnHeader where NodeId = ?",
    "delete from tArchiveMark where NodeId = ?",
    "delete from write_gc where locationid = ?",
    "delete from outcome where locationID = ?",
    "delete from gasday where locationID = ?",
};

}  // namespace

void CancelNew(core::Database& dbconn, std::int64_t locationId) {
    // The register table stays: the next map of this location makes it anew.
    dbconn.Execute("delete from configdata_detail where locationid=?", {locationId});
}

void DeleteStation(core::Database& dbconn, std::int64_t locationId, const std::string& consumer) {
    dbconn.InTransaction([&] {
        for (const char* statement : beforeSchedule) {
            dbconn.Execute(statement, {locationId});
        }
        // A station that was renamed leaves the rows of its old name.
        dbconn.Execute("delete from Scheduler where RTUName= ?", {consumer});
        for (const char* statement : afterSchedule) {
            dbconn.Execute(statement, {locationId});
        }
    });
}

void ResetAllocation(core::Database& dbconn, std::int64_t locationId) {
    // Nothing stands behind "type =", so the database refuses the statement and the allocation stays as it is. That is
    // what the operators know of a Yes to this question.
    dbconn.Execute(
        "update configdata_detail set startaddress = '0' ,lastvalue = 0 ,type =  where startaddress <> ''  and "
        "locationid=?",
        {locationId});
}

}  // namespace stations
