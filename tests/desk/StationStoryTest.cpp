#include <gmock/gmock.h>

#include <QComboBox>
#include <QLineEdit>
#include <QTimeEdit>

#include "RegisterKeys.h"
#include "desk/stations/frmconfigstation.h"

using support::Answer;
using support::Click;
using support::The;
using support::Type;

namespace {

// What a row holds that no collection has touched.
constexpr double untouched = -999999;

struct StationKind {
    const char* modelno;
    const char* protocol;
    const char* mode = "";
    int streams = 1;
    bool MB_CONFIG = false;  // its registers are laid out by hand
};

std::string NameOf(const testing::TestParamInfo<StationKind>& info) {
    std::string name = std::string(info.param.modelno) + "_" + info.param.protocol + info.param.mode +
                       (info.param.MB_CONFIG ? "_ByHand" : "");
    for (char& letter : name) {
        letter = std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : letter == '+' ? 'P' : '_';
    }
    return name;
}

// A station of every model and protocol, from the form to the last row.
struct StationStory : testing::TestWithParam<StationKind> {
    support::ScreenDesk desk{{2026, 3, 9, 7, 58, 30}};
    ::desk::frmconfigstation& form = Form();
    const std::int64_t location = 1;

    ::desk::frmconfigstation& Form() {
        desk.shared.currentuser = "operator";
        return desk.Open<::desk::frmconfigstation>();
    }
    bool IsScheduled() const { return std::string(GetParam().modelno) != "CW_Micro"; }

    void Enter(const char* field, const QString& text) {
        Type(form, field, text);
        QTest::keyClick(&The(form, field), Qt::Key_Tab);
        QCoreApplication::processEvents();
        EXPECT_EQ(Answer(form), "") << field << " " << text.toStdString();
    }
    void AddByKeys(const QString& consumer) {
        const StationKind& kind = GetParam();
        Click(form, "cmdadd");
        if (kind.MB_CONFIG) {  // the model fixes the box as it is
            Enter("cmbprotocol", kind.protocol);
            Click(form, "chk_MBConfig");
        }
        Enter("cmbgroupno", "2");
        Enter("txtconsumer", consumer);
        Enter("cmbrtumake", "BB");
        Enter("cmbmodelno", kind.modelno);
        Enter("cmbcommtype", "Direct Comport");
        Enter("cmbcommport", "COM4");
        Enter("cmbbaudrate", "19200,N,8,1");
        Enter("txtdelay", "100");
        Enter("cmbsysvolttype", "12 VDC");
        if (IsScheduled() && !kind.MB_CONFIG) {
            Enter("cmbprotocol", kind.protocol);
        }
        if (*kind.mode != '\0') {
            Enter("cmbMode", kind.mode);
        }
        Enter("txtslaveaddres", "6");
        if (kind.streams > 1) {
            Enter("cmb_MultiNO", QString::number(kind.streams));
            Enter("cmb_stm2", "AGA7");
        }
        if (IsScheduled()) {
            Enter("cmb_sel", "Daily");
            auto& time = The<QTimeEdit>(form, "DT_time");
            time.setFocus();
            QTest::keyClick(&time, Qt::Key_Home);
            for (int hour = 0; hour < 8; ++hour) {
                QTest::keyClick(&time, Qt::Key_Up);
            }
        }
        if (kind.MB_CONFIG) {
            LayOut();
        }
        Save();
    }
    void LayOut() {
        Click(form, "cmdsetregister");
        const QWidget& editor = *desk.window.Front();
        for (int row = 0; row < 24; ++row) {
            support::GiveAddress(editor, "aga3grid", row, QString::number(2 * row + 1));
        }
        Click(editor, "cmdOk");
    }
    void Save() {
        Click(form, "cmdsave");
        EXPECT_EQ(Answer(form), "");
        EXPECT_TRUE(The(form, "cmdadd").isEnabled());
    }
    core::Row Row() { return desk.Master(location); }
    // Every row of the map whose value came from the station; none holds a value of another name.
    int Collected(const fieldsim::Field& field) {
        int stored = 0;
        for (const core::Row& row :
             desk.dbconn.Query("select * from configdata_detail where locationID=?", {location})) {
            const double value = row.Number("lastvalue");
            const bool served =
                field.WasServed(location, static_cast<int>(row.Long("StreamNo")), row.Text("description"), value);
            EXPECT_TRUE(value == untouched || served) << row.Text("description") << " = " << value;
            stored += served ? 1 : 0;
        }
        return stored;
    }
    // The tables in which a location has a row, by whatever name they call it.
    std::vector<std::string> TablesWith(std::int64_t id) {
        std::vector<std::string> tables;
        for (const core::Row& table : desk.dbconn.Query("select name from sqlite_master where type='table'")) {
            for (const core::Row& column : desk.dbconn.Query("select name from pragma_table_info(?)", {table[0]})) {
                for (const char* key : {"locationID", "NodeId", "fk_node_id"}) {
                    if (QString::fromStdString(column[0].Text()).compare(key, Qt::CaseInsensitive) == 0 &&
                        desk.Count(table[0].Text() + " where " + key + "=?", {id}) > 0) {
                        tables.push_back(table[0].Text());
                    }
                }
            }
        }
        return tables;
    }
};

TEST_P(StationStory, IsAddedCollectedRenamedAndDeletedWithoutARowLeft) {
    AddByKeys("O'Brien's Works");
    EXPECT_EQ(Row().Text("consumer"), "O'Brien's Works");
    EXPECT_EQ(Row().Text("modelno"), GetParam().modelno);
    EXPECT_EQ(Row().Long("groupcnt"), 1);
    EXPECT_EQ(desk.Count("SummaryPara where LocationID=?", {location}), 3);
    // An orifice meter's map has no turbine's rows, and the other way round: they would be values of another name.
    if (const std::string model = GetParam().modelno; model.starts_with("TeleFlow") || model.ends_with("AGA3")) {
        EXPECT_TRUE(Row().Bool("aga3_7"));
        EXPECT_EQ(desk.Count("configdata_detail where aga='AGA7'"), 0);
    } else if (model.starts_with("TeleCorrector") || model.ends_with("AGA7")) {
        EXPECT_FALSE(Row().Bool("aga3_7"));
        EXPECT_EQ(desk.Count("configdata_detail where aga='AGA3'"), 0);
    }

    desk.dbconn.Execute("update configdata_detail set lastvalue=?", {untouched});
    desk.StartTicking();
    const auto& field = desk.OpenField();
    desk.clock.Run(15 * 60000);
    if (IsScheduled()) {
        EXPECT_EQ(Row().Text("contracthour"), "08:00");
        EXPECT_TRUE(Row().Bool("sampledtoday")) << desk.RtuErr();
        EXPECT_GT(Collected(field), 20);
        EXPECT_EQ(desk.Count("LogParam where LocationId=?", {location}), 1);
    }

    Click(form, "cmdedit");
    EXPECT_FALSE(The(form, "cmbmodelno").isEnabled());
    Enter("txtconsumer", "Mill & Sons");
    Enter("txtdelay", "150");
    Save();
    EXPECT_EQ(Row().Text("consumer"), "Mill & Sons");
    EXPECT_EQ(Row().Long("delaytime"), 150);
    if (IsScheduled()) {
        desk.dbconn.Execute("update configdata_detail set lastvalue=?", {untouched});
        const auto& sameField = desk.OpenField();
        desk.clock.Run(24ULL * 3600000);
        EXPECT_TRUE(Row().Bool("sampledtoday")) << desk.RtuErr();
        EXPECT_GT(Collected(sameField), 20);
        EXPECT_EQ(desk.Count("LogParam where LocationId=?", {location}), 2);
    }

    desk.dbconn.Execute("insert into write_gc values(?,'Methane','183',90)", {location});
    const auto underOldName = desk.Count("Scheduler where RTUName=?", {"O'Brien's Works"});
    Click(form, "cmddelete");
    EXPECT_EQ(Answer(form, QMessageBox::Yes), "Are You Sure?");
    EXPECT_EQ(Answer(form), "Record Deleted..");
    EXPECT_THAT(TablesWith(location), testing::IsEmpty());
    EXPECT_EQ(The<::desk::Grid>(form, "Grid").Rows(), 0);
    // The schedule's rows are kept by name: those from before the renaming stay.
    EXPECT_EQ(desk.Count("Scheduler"), underOldName);
}

INSTANTIATE_TEST_SUITE_P(
    EveryModelAndProtocol, StationStory,
    testing::Values(StationKind{"TeleFlow", "BSAP"}, StationKind{"TeleFlow", "Modbus", "RTU"},
                    StationKind{"TeleFlow", "Modbus", "ASCII"}, StationKind{"TeleFlow", "Modbus", "RTU", 1, true},
                    StationKind{"TeleFlow", "Quantum"}, StationKind{"TeleFlow+", "BSAP"},
                    StationKind{"TeleFlow+", "Modbus", "RTU"}, StationKind{"TeleFlow+", "Modbus", "ASCII"},
                    StationKind{"TeleCorrector", "BSAP"}, StationKind{"TeleCorrector", "Modbus", "RTU"},
                    StationKind{"TeleCorrector", "Modbus", "ASCII"}, StationKind{"TeleCorrector+", "BSAP"},
                    StationKind{"TeleCorrector+", "Modbus", "RTU"}, StationKind{"TeleCorrector+", "Modbus", "ASCII"},
                    StationKind{"TeleRTU", "BSAP"}, StationKind{"TeleRTU", "Modbus", "RTU"},
                    StationKind{"TeleRTU(M)", "BSAP"}, StationKind{"TeleRTU(M)", "Modbus", "RTU"},
                    StationKind{"CWEFM-AGA3", "BSAP"}, StationKind{"CWEFM-AGA3", "Modbus", "RTU"},
                    StationKind{"CWGFC-AGA3", "BSAP"}, StationKind{"CWGFC-AGA3", "Modbus", "RTU"},
                    StationKind{"CWEFM-AGA7", "BSAP"}, StationKind{"CWEFM-AGA7", "Modbus", "RTU"},
                    StationKind{"CWGFC-AGA7", "BSAP"}, StationKind{"CWGFC-AGA7", "Modbus", "RTU"},
                    StationKind{"CWEFM-AGA9", "BSAP"}, StationKind{"CWGFC-AGA9", "BSAP"},
                    StationKind{"CWEPAC-AGA11", "BSAP"}, StationKind{"CWEFM-MultiStream", "BSAP", "", 4},
                    StationKind{"CWEFM-MultiStream", "Modbus", "RTU", 2},
                    StationKind{"CWGFC-MultiStream", "BSAP", "", 2}, StationKind{"CW_Micro", "BSAP"}),
    NameOf);

}  // namespace
