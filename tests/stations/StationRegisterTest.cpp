#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stations/Records.h"
#include "stations/StationRegister.h"
#include "support/ScratchDesk.h"

namespace {

using stations::StationRecord;
using testing::ElementsAre;
using testing::IsEmpty;

struct StationRegisterTest : testing::Test {
    support::ScratchDesk desk;

    void Save(const StationRecord& record, bool isNewStation = true) {
        stations::SaveStation(desk.dbconn, record, {.isNewStation = isNewStation});
    }
    StationRecord Read(std::int64_t locationId) { return stations::ReadRecord(desk.dbconn, locationId).value(); }
    std::string Cell(const std::string& column, std::int64_t locationId = 1) {
        return tables::Texts(desk.dbconn, "select " + column + " from configdata_master where locationID=?",
                             {locationId})
            .at(0);
    }
    std::int64_t Count(const std::string& from) { return tables::Count(desk.dbconn, from); }
};

// Every field differs from what an empty record has.
StationRecord Full() {
    StationRecord record = records::Filled(1, "O'Brien's \"Works\"; drop table x --");
    record.presentallocation = "24000.25";
    record.rtumake = "Bristol Babcock";
    record.modelno = "CWEFM-MultiStream";
    record.comtype = "GSM Modem";
    record.systemtype = "6   VDC";
    record.voltlimit = "-11.5";
    record.delaytime = "6000";
    record.comport = "COM7";
    record.baudrate = "19200,E,7,1.5";
    record.phoneno = "+91 555'0142";
    record.protocol = "Modbus";
    record.slaveaddress = "247";
    record.groupno = "3";
    record.aga3_7 = true;
    record.gasauto = true;
    record.Mgo_Qty = "20000";
    record.Cont_Pr = "8.5";
    record.No_Stream = "3";
    record.stream = {"AGA7", "AGA3", "AGA9", "AGA11"};
    record.Mode = "ASCII";
    record.standardFraming = true;
    record.pacing = core::Pacing::Prompt;
    record.wordOrder = core::WordOrder::LowFirst;
    record.duration = "Weekly";
    record.weekday = 7;
    record.contracthour = "17:05";
    record.rtubits = true;
    record.emailto = "a@x";
    record.emailcc = "b@x";
    record.emailbcc = "c@x";
    record.emailsubject = "It's here";
    record.MB_CONFIG = true;
    return record;
}

TEST_F(StationRegisterTest, WhatIsSavedIsRead) {
    EXPECT_THAT(stations::ListStations(desk.dbconn), IsEmpty());
    EXPECT_EQ(stations::NextLocation(desk.dbconn), 1);
    EXPECT_FALSE(stations::ReadRecord(desk.dbconn, 1));
    Save(Full());
    EXPECT_EQ(Read(1), Full());

    StationRecord other = records::Filled(9, std::string(10000, 'x') + "'");
    other.presentallocation = other.voltlimit = other.Mgo_Qty = other.Cont_Pr = "0";
    other.comtype = "IP";
    other.ip = "10.0.0.1";
    other.comport = other.baudrate = "";
    other.aga8_fpv = other.Gross_Detail = true;
    other.duration = "Monthly";
    other.monthday = 31;
    other.contracthour = "00:30";
    Save(other);
    EXPECT_EQ(Read(9), other);
    EXPECT_EQ(Read(1), Full());

    const auto list = stations::ListStations(desk.dbconn);
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].consumer, Full().consumer);
    EXPECT_EQ(list[1].locationId, 9);
    EXPECT_EQ(stations::NextLocation(desk.dbconn), 10);
}

TEST_F(StationRegisterTest, ARowOfNullsIsShownEmptyAndAForeignScheduleAsFarAsItGoes) {
    desk.dbconn.Execute("insert into configdata_master(locationID) values(1)");
    StationRecord empty;
    empty.locationId = 1;
    empty.delaytime = "";
    empty.aga8_fpv = false;
    EXPECT_EQ(Read(1), empty);
    desk.dbconn.Execute(
        "update configdata_master set duration='daily', day='x', contracthour='8:05 PM', No_Stream='many'");
    EXPECT_EQ(Read(1).duration + Read(1).contracthour, "Daily20:05");
    desk.dbconn.Execute("update configdata_master set duration='Monthly', day='99', contracthour='noon'");
    EXPECT_EQ(Read(1).monthday, 31);
    EXPECT_EQ(Read(1).contracthour, "00:00");
}

TEST_F(StationRegisterTest, NumbersTakeTheirNumericValueAndTextsLoseTheirBlanks) {
    StationRecord record = records::Filled(1, "  Mill\t");
    record.presentallocation = "abc";
    record.voltlimit = "12.5 V";
    record.slaveaddress = "";
    record.Mgo_Qty = "1e999";
    record.Cont_Pr = "-3'";
    Save(record);
    EXPECT_EQ(Cell("consumer||'|'||presentallocation||'|'||voltlimit||'|'||slaveaddress||'|'||MGO_Qty||'|'||Cont_Pr"),
              "Mill|0.0|12.5|0|0.0|-3.0");
}

TEST_F(StationRegisterTest, ColumnsThatFollowOtherChoices) {
    const std::string ip = "ip||'|'||comport||'|'||baudrate||'|'||phoneno";
    const std::string gas = "aga8_fpv||ifnull(Gross_Detail,'-')||ifnull(gasauto,'-')";
    const std::string hour = "duration||' '||day||' '||contracthour";
    const struct {
        void (*choose)(StationRecord&);
        std::string columns;
        const char* stored;
    } cases[] = {
        {[](StationRecord& r) { r.modelno = "TeleRTU"; }, "drs", "1"},
        {[](StationRecord& r) { r.modelno = "TeleRTU(M)"; }, "drs", "2"},
        {[](StationRecord& r) { r.No_Stream = "4"; }, "drs||' '||No_Stream", "0 1"},
        {[](StationRecord& r) { r.modelno = "CWGFC-MultiStream", r.No_Stream = "2"; }, "No_Stream", "2"},
        {[](StationRecord& r) { r.comtype = "IP", r.ip = " 10.0.0.1 ", r.phoneno = "1"; }, ip, "10.0.0.1|||"},
        {[](StationRecord& r) { r.ip = "10.0.0.1"; }, ip, "|COM1|9600,N,8,1|"},
        {[](StationRecord& r) { r.Mode = "ASCII", r.standardFraming = true; }, "mode||framing", "required"},
        {[](StationRecord& r) { r.protocol = "Modbus", r.Mode = "RTU", r.standardFraming = true; }, "mode||framing",
         "RTUrequired"},
        {[](StationRecord& r) { r.wordOrder = core::WordOrder::LowFirst; }, "wordorder", "high"},  // of BSAP
        {[](StationRecord& r) { r.aga8_fpv = false, r.Gross_Detail = r.gasauto = true; }, gas, "0--"},
        {[](StationRecord& r) { r.Gross_Detail = r.gasauto = true; }, gas, "11-"},
        {[](StationRecord& r) { r.gasauto = true; }, gas, "101"},
        {[](StationRecord& r) { r.contracthour = "08:00"; }, hour, "NO 100 00:00"},
        {[](StationRecord& r) { r.duration = "Daily", r.contracthour = "08:00"; }, hour, "Daily 0 08:00"},
        {[](StationRecord& r) { r.duration = "Weekly", r.weekday = 1, r.contracthour = "23:59"; }, hour,
         "Weekly 1 23:59"},
        {[](StationRecord& r) { r.duration = "Monthly", r.monthday = 31; }, hour, "Monthly 31 00:00"},
        {[](StationRecord&) {}, "sampledtoday||sampleddate", "00"},
    };
    std::int64_t locationId = 0;
    for (const auto& c : cases) {
        ++locationId;
        StationRecord record = records::Filled(locationId, std::to_string(locationId));
        c.choose(record);
        Save(record);
        EXPECT_EQ(Cell(c.columns, locationId), c.stored) << c.columns;
    }
}

TEST_F(StationRegisterTest, AnEditKeepsWhatFixesTheMapAndWhatItDoesNotShow) {
    StationRecord record = Full();
    Save(record);
    desk.dbconn.Execute("update configdata_master set sampledtoday=1, sampleddate=9");
    desk.dbconn.Execute("update configdata_detail set lastvalue=12.5 where srno=1");
    desk.dbconn.Execute("update SummaryPara set lastvalue=7");
    const auto before = records::Snapshot(desk.dbconn);

    StationRecord edited = records::Filled(1, "Renamed");
    edited.modelno = "TeleRTU";
    edited.protocol = "BSAP";
    edited.groupno = "1";
    edited.Mode = "RTU";
    edited.Gross_Detail = true;
    Save(edited, false);
    const StationRecord now = Read(1);
    EXPECT_EQ(now.consumer + now.comtype, "RenamedDirect Comport");
    EXPECT_EQ(now.Mode, "RTU") << "the station is on Modbus still";
    EXPECT_EQ(now.modelno + now.protocol + now.groupno + now.No_Stream, "CWEFM-MultiStreamModbus33");
    EXPECT_EQ(now.stream, Full().stream);
    EXPECT_TRUE(now.rtubits);
    EXPECT_TRUE(now.gasauto) << "not written under Gross";
    EXPECT_EQ(Cell("drs||sampledtoday||sampleddate||groupcnt"), "0191");
    auto after = records::Snapshot(desk.dbconn);
    after["configdata_master"] = before.at("configdata_master");
    EXPECT_EQ(after, before);
    EXPECT_EQ(Count("SummaryPara"), 3);
}

TEST_F(StationRegisterTest, AnEditOfAStationThatIsGoneIsRefusedAndALocationIsGivenOnce) {
    Save(records::Filled(1));
    const auto before = records::Snapshot(desk.dbconn);
    EXPECT_THROW(Save(records::Filled(2), false), core::DatabaseError);
    EXPECT_THROW(Save(records::Filled(1, "Second")), core::DatabaseError);
    EXPECT_THROW(stations::ResetAllocation(desk.dbconn, 1), core::DatabaseError);
    EXPECT_EQ(records::Snapshot(desk.dbconn), before);
}

TEST_F(StationRegisterTest, EverySaveNumbersItsGroupInStoredOrder) {
    for (int i = 1; i <= 5; ++i) {
        StationRecord record = records::Filled(i, "Station " + std::to_string(i));
        record.groupno = i == 3 ? "2" : i == 5 ? "0" : "1";
        Save(record);
    }
    const auto numbers = [&] {
        return tables::Texts(desk.dbconn, "select groupno||':'||groupcnt from configdata_master order by rowid");
    };
    EXPECT_THAT(numbers(), ElementsAre("1:1", "1:2", "2:1", "1:3", "0:1"));
    stations::DeleteStation(desk.dbconn, 1, "Station 1");
    Save(Read(4), false);
    EXPECT_THAT(numbers(), ElementsAre("1:1", "2:1", "1:2", "0:1"));
}

TEST_F(StationRegisterTest, SetRegisterFixesTheSizeOfAValueUntilSaveOrCancel) {
    StationRecord record = records::Filled(1);
    record.protocol = "Modbus";
    record.rtubits = true;
    const stations::SaveChoices one{.isNewStation = true, .registers = stations::TypeFloatOneRegister()};
    const auto highest = [&] {
        return Count("(select 1 from configdata_detail where type='Float' and cast(startaddress as integer) > 300)");
    };
    stations::SetRegister(desk.dbconn, record, {});
    EXPECT_GT(highest(), 0) << "two registers a value";
    stations::SetRegister(desk.dbconn, record, one);
    EXPECT_EQ(highest(), 0);
    const auto rows = Count("configdata_detail");
    stations::SaveStation(desk.dbconn, record, one);
    EXPECT_EQ(Count("configdata_detail"), rows);
    EXPECT_EQ(highest(), 0);

    stations::SetRegister(desk.dbconn, records::Filled(2, "Given up"), {});
    stations::CancelNew(desk.dbconn, 2);
    EXPECT_EQ(Count("configdata_detail"), rows);
}

}  // namespace
