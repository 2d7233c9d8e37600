// The register map of a station as it is laid out by hand: who sees which rows, what is said to an address, what is
// stored.

#include <gmock/gmock.h>

#include <set>

#include "demo/DemoRegister.h"
#include "session/editor/AddressTable.h"
#include "session/editor/RegisterEditor.h"
#include "support/ScratchDesk.h"

namespace session {
namespace {

using Kind = AddressVerdict::Kind;

constexpr const char* coil = "Coil(Boolean)";

std::size_t Group(const char* aga) {
    return GroupOf(aga).value();
}

struct RegisterEditorTest : testing::Test {
    support::ScratchDesk desk;
    const std::size_t aga3 = Group("AGA3");

    static EditedStation New(std::int64_t id = 1) {
        EditedStation station;
        station.choices.locationID = id;
        station.choices.groupno = 2;
        station.choices.modelno = "TeleFlow";
        station.choices.protocol = core::Protocol::Modbus;
        station.choices.optAga3 = true;
        station.choices.MB_CONFIG = true;
        return station;
    }
    static EditedStation Stored(std::int64_t id = 1) {
        EditedStation station = New(id);
        station.choices.isNewStation = false;
        return station;
    }
    RegisterEditor Edit(const EditedStation& station, const std::string& user = "WARDEN") {
        return {desk.dbconn, station, user};
    }
    std::size_t Seen(const RegisterEditor& editor) {
        std::size_t rows = 0;
        for (std::size_t group = 0; group < groupCount; ++group) {
            rows += editor.Rows(group).size();
        }
        return rows;
    }
    static AddressVerdict Give(RegisterEditor& editor, std::size_t row, const std::string& address,
                               const std::string& type, bool evenIfTaken = false) {
        editor.TakeOut(GroupOf("AGA3").value(), row);
        const AddressVerdict verdict = editor.Enter(address, type, evenIfTaken);
        if (verdict.kind != Kind::Taken) {
            editor.PutBack();
        }
        return verdict;
    }
    std::vector<core::Row> Detail(const std::string& condition = "1") {
        return desk.dbconn.Query("select * from configdata_detail where locationID=1 and " + condition +
                                 " order by srno");
    }
    std::int64_t InRegisterTable() {
        return desk.dbconn.First("select count(*) from mdbus_table where locationID=1").value()[0].Long();
    }
    void AddUser(const char* name, int readsec) {
        desk.dbconn.Execute(
            "insert into users (userid,firstname,lastname,password,readsec,writesec) values(?,?,?,'',?,0)",
            {name, name, name, readsec});
    }
};

TEST_F(RegisterEditorTest, ANewMapIsStoredWholeWithWhatTheUserMayNotSee) {
    AddUser("reader", 1);
    RegisterEditor editor = Edit(New(), "reader");
    const auto all = static_cast<std::size_t>(InRegisterTable());
    ASSERT_GT(all, 200U);
    EXPECT_LT(Seen(editor), all - 7) << "a few have a level of 2 or more, and no grid shows what sets the clock";
    EXPECT_GT(Seen(editor), 100U);
    EXPECT_EQ(editor.Rows(aga3)[0].address, "");
    EXPECT_EQ(editor.Rows(aga3)[0].type, "");
    EXPECT_THAT(Edit(New(), "nobody").Rows(aga3), testing::IsEmpty());

    EXPECT_EQ(Give(editor, 0, " 0021 ", "float").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 1, "40", "Integer").kind, Kind::Taken);
    EXPECT_THAT(Detail(), testing::IsEmpty());
    editor.Store();
    const auto rows = Detail();
    ASSERT_EQ(rows.size(), all);
    EXPECT_EQ(rows[0].Text("startaddress"), "21");
    EXPECT_EQ(rows[0].Text("type"), "Float");
    EXPECT_EQ(rows[1].Text("startaddress"), "40");
    EXPECT_EQ(rows[1].Text("type"), "Integer");
    std::int64_t srno = 0;
    std::set<std::string> types;
    for (const core::Row& row : rows) {
        const auto source =
            desk.dbconn.First("select * from parameter where protocol='Modbus' and Description=? and aga=?",
                              {row.Text("description"), row.Text("aga")});
        ASSERT_TRUE(source) << row.Text("description");
        EXPECT_EQ(row.Long("srno"), ++srno);
        EXPECT_EQ(row.Long("groupno"), 2);
        EXPECT_EQ(row.Long("MSD"), 0);
        EXPECT_EQ(row.Long("StreamNo"), 1);
        EXPECT_EQ(row.Text("unit"), source->Text("unit"));
        EXPECT_EQ(row.Bool("CFP"), source->Bool("CFP"));
        EXPECT_EQ(row.Long("RS"), source->Long("RS"));
        EXPECT_EQ(row.Long("WS"), source->Long("WS"));
        if (srno > 2) {
            EXPECT_EQ(row.Text("startaddress"), "0");
            EXPECT_EQ(row.Text("type"), source->Text("datatype") == "Boolean" ? coil : "Float");
        }
    }
}

TEST_F(RegisterEditorTest, ASecondPassOffersWhatWasStoredAndReplacesIt) {
    RegisterEditor first = Edit(New());
    EXPECT_EQ(Give(first, 0, "21", "Float").kind, Kind::Taken);
    first.Store();
    const auto all = Detail().size();
    EditedStation again = New();
    again.laidOut = true;
    RegisterEditor second = Edit(again);
    EXPECT_EQ(second.Rows(aga3)[0].address, "21");
    EXPECT_EQ(Give(second, 1, "22", "Integer").kind, Kind::Question);
    EXPECT_EQ(Give(second, 1, "23", "Integer").kind, Kind::Taken);
    second.Store();
    EXPECT_EQ(Detail().size(), all);
    EXPECT_EQ(Detail("startaddress<>'0'").size(), 2U);
    RegisterEditor anew = Edit(New());
    EXPECT_EQ(anew.Rows(aga3)[0].address, "") << "of another model, say";
}

TEST_F(RegisterEditorTest, WhatTheDialogSays) {
    RegisterEditor editor = Edit(New());
    EXPECT_EQ(Give(editor, 0, "50", "Float").kind, Kind::Taken);
    constexpr const char* overlap = "Address is overlapping\nPlease Choose another address";
    constexpr const char* noType = "Invalid Datatype";
    constexpr const char* noAddress = "Invalid Statraddress";
    constexpr const char* tooLarge = "StartAddress must be less than 65536";
    constexpr const char* beyond = "The table of addresses ends at 10099";
    const struct {
        const char* address;
        const char* type;
        const char* message;
    } cases[] = {{"50", "Integer", overlap},       {"51", "Integer", overlap},
                 {"49", "Float", overlap},         {"50", "Word", overlap},
                 {"abc", "Word", noType},          {"60", "", noType},
                 {"abc", "Integer", noAddress},    {"", "Float", noAddress},
                 {"-5", "Float", noAddress},       {"12.5", "Float", noAddress},
                 {"1' or '1", "Float", noAddress}, {"65536", coil, tooLarge},
                 {"65536", "Integer", tooLarge},   {"99999999999999999999999999", "Float", tooLarge},
                 {"65535", "Integer", beyond},     {"10100", "Float", beyond}};
    for (const auto& c : cases) {
        const AddressVerdict verdict = Give(editor, 1, c.address, c.type);
        EXPECT_EQ(verdict.kind, c.message == overlap ? Kind::Question : Kind::Refused) << c.address << " " << c.type;
        EXPECT_EQ(verdict.message, c.message) << c.address << " " << c.type;
        EXPECT_EQ(verdict.control, c.message == noType ? "cmbdatatype" : "txtstartaddress");
        EXPECT_EQ(editor.Rows(aga3)[1].address, "");
    }
    EXPECT_EQ(Give(editor, 1, "50", "Word", true).message, noType);
    // What was refused holds no address, neither as a coil nor as a register.
    EXPECT_EQ(Give(editor, 1, "60", "Integer").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 2, "65535", coil).kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 3, "0", "Float").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 4, "0", "Float").kind, Kind::Taken);
}

TEST_F(RegisterEditorTest, ARowDoesNotCollideWithItself) {
    RegisterEditor editor = Edit(New());
    Give(editor, 0, "50", "Float");
    EXPECT_EQ(Give(editor, 0, "51", "Float").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 1, "50", "Integer").kind, Kind::Taken);
    editor.TakeOut(aga3, 0);
    editor.PutBack();
    EXPECT_EQ(Give(editor, 2, "52", "Integer").kind, Kind::Question) << "put back, it has its two registers again";
    // Shared by the operator's will: the table is as before the row was taken in hand, so 50 is not free.
    EXPECT_EQ(Give(editor, 1, "52", "Integer", true).kind, Kind::Taken);
    EXPECT_EQ(editor.Rows(aga3)[1].address, "52");
    EXPECT_EQ(Give(editor, 3, "50", "Integer").kind, Kind::Question);
    // Of two that share an address one moves away: the other still has it, put back as well.
    EXPECT_EQ(Give(editor, 0, "80", "Float").kind, Kind::Taken);
    editor.TakeOut(aga3, 1);
    editor.PutBack();
    EXPECT_EQ(Give(editor, 4, "52", "Integer").kind, Kind::Question);
    EXPECT_EQ(Give(editor, 1, "84", "Integer").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 4, "52", "Integer").kind, Kind::Taken);
}

// As operators know the table: the second register of a float is sought in the hundred of its first, and there is room
// for a hundred and one coils.
TEST_F(RegisterEditorTest, TheTableOfAddressesHasItsLimits) {
    RegisterEditor editor = Edit(New());
    EXPECT_EQ(Give(editor, 0, "199", "Float").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 1, "200", "Integer").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 2, "199", "Integer").kind, Kind::Question);
    EXPECT_EQ(Give(editor, 2, "10099", "Float").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 0, "300", "Float").kind, Kind::Taken);
    EXPECT_EQ(Give(editor, 3, "199", "Float").kind, Kind::Taken) << "free again";
    AddressTable table(false);
    for (int address = 1; address <= 101; ++address) {
        EXPECT_EQ(table.Hash(address, coil), AddressOutcome::Free) << address;
    }
    EXPECT_EQ(table.Hash(102, "coil(boolean)"), AddressOutcome::Beyond);
    EXPECT_EQ(table.Hash(50, "Integer"), AddressOutcome::Free) << "coils and registers are two things";
    table.DeleteHash(50, coil);
    EXPECT_EQ(table.Hash(102, coil), AddressOutcome::Free);
}

TEST_F(RegisterEditorTest, AStoredMapChangesOnlyWhereItWasEdited) {
    RegisterEditor made = Edit(New());
    Give(made, 0, "50", "Float");
    Give(made, 1, "60", "Float");
    made.Store();
    // A hidden row, a row of the same name in another group, another station's, and an address beyond the table.
    desk.dbconn.Execute("update configdata_detail set RS=9, startaddress='70' where srno=3");
    desk.dbconn.Execute(
        "update configdata_detail set description=(select description from configdata_detail where "
        "srno=1) where srno=30");
    desk.dbconn.Execute("update configdata_detail set startaddress='20000', lastvalue=7 where srno=5");
    desk.dbconn.Execute(
        "insert into configdata_detail select 2,description,startaddress,type,srno,lastvalue,groupno,"
        "unit,aga,MSD,CFP,RS,WS,StreamNo,readat,quality from configdata_detail");
    desk.dbconn.Execute("update configdata_detail set startaddress='60', type='Float' where srno=6");  // shared
    AddUser("chief", 6);
    const auto before = desk.dbconn.Query("select * from configdata_detail order by locationID,srno");

    RegisterEditor editor = Edit(Stored(), "chief");
    EXPECT_EQ(editor.Rows(aga3)[0].address, "50");
    EXPECT_EQ(editor.Rows(aga3)[0].type, "Float");
    EXPECT_EQ(editor.Rows(aga3)[2].description, made.Rows(aga3)[3].description) << "the third is hidden";
    EXPECT_EQ(Give(editor, 1, "70", "Integer").kind, Kind::Question) << "and keeps its address";
    editor.TakeOut(aga3, 1);
    EXPECT_EQ(editor.Enter("61", "Integer", false).kind, Kind::Question) << "the other of the two has it";
    editor.PutBack();
    EXPECT_EQ(Give(editor, 0, "80", "Integer").kind, Kind::Taken);
    editor.Store();

    const auto after = desk.dbconn.Query("select * from configdata_detail order by locationID,srno");
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t row = 0; row < after.size(); ++row) {
        for (std::size_t column = 0; column < after[row].Size(); ++column) {
            const bool edited = row == 0 && (column == 2 || column == 3);
            EXPECT_EQ(after[row][column].Text(), edited ? (column == 2 ? "80" : "Integer") : before[row][column].Text())
                << row << " " << column;
        }
    }
    Give(editor, 0, "81", "Integer");
    desk.dbconn.Execute("delete from configdata_detail where locationID=1");
    EXPECT_THROW(editor.Store(), core::DatabaseError);
}

TEST_F(RegisterEditorTest, OffersTheTypesOfItsRegistersAndRefusesAMapThatOverflows) {
    EditedStation station = New();
    EXPECT_THAT(Edit(station).DataTypes(), testing::ElementsAre(coil, "Integer", "Float"));
    station.choices.registers = stations::TypeFloatOneRegister();
    RegisterEditor oneRegister = Edit(station);
    Give(oneRegister, 0, "50", "Float");
    EXPECT_EQ(Give(oneRegister, 1, "51", "Float").kind, Kind::Taken);
    station.choices.registers = stations::TypeInteger();
    RegisterEditor integers = Edit(station);
    EXPECT_THAT(integers.DataTypes(), testing::ElementsAre(coil, "Integer"));
    EXPECT_EQ(integers.TakeOut(aga3, 0).type, "Integer");
    integers.PutBack();
    EXPECT_EQ(Give(integers, 0, "50", "Float").message, "Invalid Datatype");
    for (int row = 0; row < 130; ++row) {
        desk.dbconn.Execute(
            "insert into parameter (protocol,srno,Description,datatype,aga,MBUS,RS,WS) "
            "values('Modbus',?,?,'Float','AGA3',1,1,1)",
            {1000 + row, "More " + std::to_string(row)});
    }
    EXPECT_THROW(Edit(New()), std::length_error);
}

}  // namespace
}  // namespace session
