// A station whose registers are laid out by hand, from the station form over the editor to the values that come in.

#include <QCheckBox>
#include <QComboBox>
#include <QTabWidget>
#include <QTimeEdit>

#include "RegisterKeys.h"
#include "desk/session/frmparalist.h"
#include "desk/stations/frmconfigstation.h"

using support::Answer;
using support::Box;
using support::Click;
using support::Dialog;
using support::EnterAddress;
using support::Focus;
using support::GiveAddress;
using support::OpenRow;
using support::Return;
using support::The;
using support::Type;

namespace {

struct RegisterEditorScreen : testing::Test {
    support::ScreenDesk desk{{2026, 3, 9, 7, 58, 30}};
    ::desk::frmconfigstation* form = nullptr;
    QWidget* editor = nullptr;  // the window with the grids, while it is open

    RegisterEditorScreen() {
        desk.shared.currentuser = "operator";
        form = &desk.Open<::desk::frmconfigstation>();
    }
    void Enter(const char* field, const QString& text) {
        Type(*form, field, text);
        QTest::keyClick(&The(*form, field), Qt::Key_Tab);
        QCoreApplication::processEvents();
        EXPECT_EQ(Answer(*form), "") << field;
    }
    // The box is ticked before the model fixes it.
    void AddByKeys(const char* modelno = "TeleFlow") {
        Click(*form, "cmdadd");
        Enter("cmbprotocol", "Modbus");
        auto& box = The<QCheckBox>(*form, "chk_MBConfig");
        box.setFocus();
        QTest::keyClick(&box, Qt::Key_Space);
        for (const auto& [field, text] :
             std::initializer_list<std::pair<const char*, QString>>{{"cmbgroupno", "2"},
                                                                    {"txtconsumer", "Mill"},
                                                                    {"cmbrtumake", "BB"},
                                                                    {"cmbmodelno", modelno},
                                                                    {"cmbcommtype", "Direct Comport"},
                                                                    {"cmbcommport", "COM4"},
                                                                    {"cmbbaudrate", "19200,N,8,1"},
                                                                    {"txtdelay", "100"},
                                                                    {"cmbsysvolttype", "12 VDC"},
                                                                    {"txtslaveaddres", "6"},
                                                                    {"cmb_sel", "Daily"}}) {
            Enter(field, text);
        }
        auto& time = The<QTimeEdit>(*form, "DT_time");
        time.setTime(QTime(8, 0));
    }
    void SetRegister() {
        Click(*form, "cmdsetregister");
        editor = desk.window.Front();
        ASSERT_NE(editor, form);
    }
    QString Cell(const char* grid, int row, int column) {
        return The<::desk::Grid>(*editor, grid).TextMatrix(row, column);
    }
    bool CanSave() { return The(*form, "cmdsave").isEnabled(); }
    core::Row Row(int srno) {
        return desk.dbconn.First("select * from configdata_detail where locationID=1 and srno=?", {srno}).value();
    }
};

TEST_F(RegisterEditorScreen, ANewMapIsLaidOutStoredEditedAndCollected) {
    AddByKeys();
    EXPECT_FALSE(CanSave());
    SetRegister();
    EXPECT_EQ(editor->windowTitle(), "Parameter Information   - v10.3");
    EXPECT_EQ(Focus(*editor), "aga3grid");
    EXPECT_EQ(Cell("aga3grid", 0, 1), "Differential Pressure");
    EXPECT_EQ(Cell("aga3grid", 0, 2), "");
    ::desk::frmdata* dialog = &OpenRow(*editor, "aga3grid", 0);
    EXPECT_EQ(dialog->windowTitle(), "Enter Data - v10.3");
    EXPECT_EQ(The<QComboBox>(*dialog, "cmbdatatype").currentText(), "Float");
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_EQ(Dialog(*editor), nullptr);
    Return(*editor);

    GiveAddress(*editor, "aga3grid", 0, "21");
    EXPECT_EQ(Cell("aga3grid", 0, 2), "21");
    EXPECT_EQ(Cell("aga3grid", 0, 3), "Float");
    GiveAddress(*editor, "aga3grid", 1, "23");

    // The second register of the first: asked, mended, asked again and taken.
    dialog = &OpenRow(*editor, "aga3grid", 2);
    EnterAddress(*dialog, "22");
    EXPECT_EQ(Answer(*dialog, QMessageBox::Yes), "Address is overlapping\nPlease Choose another address");
    auto& address = The<QLineEdit>(*dialog, "txtstartaddress");
    EXPECT_TRUE(address.hasFocus());
    EXPECT_EQ(address.selectedText(), "22");
    for (const auto& [text, message] : std::initializer_list<std::pair<const char*, const char*>>{
             {"abc", "Invalid Statraddress"},
             {"65536", "StartAddress must be less than 65536"},
             {"65535", "The table of addresses ends at 10099"},
             {"10100", "The table of addresses ends at 10099"}}) {
        EnterAddress(*dialog, text);
        EXPECT_EQ(Answer(*dialog), message) << text;
        EXPECT_EQ(address.selectedText(), text);
    }
    Type(*dialog, "cmbdatatype", "Word");
    QTest::keyClick(&The(*dialog, "cmbdatatype"), Qt::Key_Tab);
    QCoreApplication::processEvents();
    EXPECT_EQ(Answer(*dialog), "Invalid Datatype");
    EXPECT_EQ(Focus(*dialog), "cmbdatatype");
    EXPECT_EQ(The<QComboBox>(*dialog, "cmbdatatype").currentText(), "");
    Type(*dialog, "cmbdatatype", "integer");
    Type(*dialog, "txtstartaddress", "24");
    Click(*dialog, "cmdOk");
    QMessageBox* box = Box(*dialog);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::Yes));
    QTest::mouseClick(box->button(QMessageBox::No), Qt::LeftButton);  // and the dialog goes
    EXPECT_EQ(Dialog(*editor), nullptr);
    Return(*editor);
    EXPECT_EQ(Cell("aga3grid", 2, 2), "24");
    EXPECT_EQ(Cell("aga3grid", 2, 3), "Integer");
    GiveAddress(*editor, "aga3grid", 2, "31");
    EXPECT_EQ(desk.Count("configdata_detail"), 0);

    Click(*editor, "cmdOk");
    ASSERT_EQ(desk.window.Front(), form);
    EXPECT_EQ(Focus(*form), "cmdsave");
    EXPECT_TRUE(CanSave());
    const auto rows = desk.Count("configdata_detail where locationID=1");
    EXPECT_GT(rows, 200);
    // Another meter would need another map.
    The(*form, "cmbmodelno").setFocus();
    Enter("cmbmodelno", "TeleCorrector");
    EXPECT_FALSE(CanSave());
    Enter("cmbmodelno", "TeleFlow");
    EXPECT_TRUE(CanSave());
    Click(*form, "cmdsave");
    EXPECT_EQ(Answer(*form), "");
    EXPECT_EQ(desk.Count("configdata_detail where locationID=1"), rows);

    Click(*form, "cmdedit");
    EXPECT_TRUE(CanSave());
    SetRegister();
    EXPECT_EQ(Cell("aga3grid", 1, 2), "23");
    GiveAddress(*editor, "aga3grid", 1, "33");
    Click(*editor, "cmdClose");
    EXPECT_NE(Answer(*editor, QMessageBox::Yes), "");
    ASSERT_EQ(desk.window.Front(), form);
    EXPECT_EQ(Row(2).Text("startaddress"), "23");
    SetRegister();
    GiveAddress(*editor, "aga3grid", 1, "25");
    Click(*editor, "cmdOk");
    EXPECT_EQ(Row(2).Text("startaddress"), "25");
    Click(*form, "cmdsave");

    desk.StartTicking();
    const auto& field = desk.OpenField();
    desk.clock.Run(15 * 60000);
    EXPECT_TRUE(desk.Master(1).Bool("sampledtoday")) << desk.RtuErr();
    for (const int srno : {1, 2, 3}) {
        EXPECT_TRUE(field.WasServed(1, 1, Row(srno).Text("description"), Row(srno).Number("lastvalue"))) << srno;
        EXPECT_NE(Row(srno).Number("lastvalue"), 0) << srno;
    }
    EXPECT_EQ(desk.Count("configdata_detail where lastvalue<>0"), 3) << desk.RtuErr();
}

TEST_F(RegisterEditorScreen, AnAddThatIsCancelledLeavesNoRow) {
    AddByKeys("TeleRTU");
    SetRegister();
    EXPECT_EQ(The<QTabWidget>(*editor, "gridtab").currentIndex(), 9);
    GiveAddress(*editor, "DRSgrid", 0, "5");
    QTest::keyClick(editor, Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_NE(Answer(*editor, QMessageBox::No), "") << "what was typed is not lost by a key";
    ASSERT_EQ(desk.window.Front(), editor);
    Click(*editor, "cmdOk");
    EXPECT_GT(desk.Count("configdata_detail"), 200);
    SetRegister();
    EXPECT_EQ(Cell("DRSgrid", 0, 2), "5") << "offered again";
    QTest::keyClick(editor, Qt::Key_Escape);
    QCoreApplication::processEvents();
    ASSERT_EQ(desk.window.Front(), form);
    Click(*form, "cmdCancel");
    EXPECT_EQ(desk.Count("configdata_detail"), 0);
    EXPECT_EQ(desk.Count("configdata_master"), 0);
}

}  // namespace
