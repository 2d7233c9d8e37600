// The station form with its dialogs, and stations of every model from the form to the last row that they leave.

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QTabWidget>
#include <QTimeEdit>

#include "desk/session/frmdata.h"
#include "desk/stations/frmconfigstation.h"
#include "desk/stations/frmportsetting.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;

struct StationKind {
    const char* modelno;
    const char* protocol;
    const char* mode = "";
    int streams = 1;
    bool MB_CONFIG = false;  // its registers are laid out by hand
};

struct StationScreens : testing::Test {
    ScreenDesk desk{{2026, 3, 9, 7, 58, 30}};
    ::desk::frmconfigstation& form = Form();

    ::desk::frmconfigstation& Form() {
        desk.shared.currentuser = "operator";
        return desk.Open<::desk::frmconfigstation>();
    }
    // Types into a field and leaves it. Gives what is said then.
    static std::string Enter(const QWidget& page, const char* field, const QString& text) {
        Type(page, field, text);
        QTest::keyClick(&The(page, field), Qt::Key_Tab);
        QCoreApplication::processEvents();
        return Answer(page);
    }
    void Fill(const std::vector<std::pair<const char*, QString>>& fields) {
        for (const auto& [field, text] : fields) {
            EXPECT_EQ(Enter(form, field, text), "") << field << " " << text.toStdString();
        }
    }
    // All but Save, at eight each day.
    void AddByKeys(const StationKind& kind) {
        const bool scheduled = std::string(kind.modelno) != "CW_Micro";
        Click(form, "cmdadd");
        if (kind.MB_CONFIG) {  // the model fixes the box as it is
            Fill({{"cmbprotocol", kind.protocol}});
            Click(form, "chk_MBConfig");
        }
        Fill({{"cmbgroupno", "2"},
              {"txtconsumer", "O'Brien's Works"},
              {"cmbrtumake", "BB"},
              {"cmbmodelno", kind.modelno},
              {"cmbcommtype", "Direct Comport"},
              {"cmbcommport", "COM4"},
              {"cmbbaudrate", "19200,N,8,1"},
              {"txtdelay", "100"},
              {"cmbsysvolttype", "12 VDC"}});
        if (scheduled && !kind.MB_CONFIG) {
            Fill({{"cmbprotocol", kind.protocol}});
        }
        if (*kind.mode != '\0') {
            Fill({{"cmbMode", kind.mode}});
        }
        Fill({{"txtslaveaddres", "6"}});
        if (kind.streams > 1) {
            Fill({{"cmb_MultiNO", QString::number(kind.streams)}, {"cmb_stm2", "AGA7"}});
        }
        if (scheduled) {
            Fill({{"cmb_sel", "Daily"}});
            The<QTimeEdit>(form, "DT_time").setTime(QTime(8, 0));
        }
    }
    void Save() {
        Click(form, "cmdsave");
        EXPECT_EQ(Answer(form), "");
        EXPECT_TRUE(Enabled(form, "cmdadd"));
    }
    QWidget& SetRegister() {
        Click(form, "cmdsetregister");
        return *desk.window.Front();
    }
    // The dialog over a page; null when there is none.
    template <class Dialog>
    static Dialog* Over(const QWidget& page) {
        for (auto* dialog : page.findChildren<Dialog*>()) {
            if (dialog->isVisible() && QTest::qWaitForWindowActive(dialog)) {
                return dialog;
            }
        }
        return nullptr;
    }
    // Types an address over the one of a row. Gives what is said.
    static std::string GiveAddress(const QWidget& editor, const char* grid, int row, const QString& address) {
        if (Over<::desk::frmdata>(editor) == nullptr) {
            ChooseRow(editor, grid, row);
        }
        const QPointer<::desk::frmdata> dialog = Over<::desk::frmdata>(editor);
        QTest::keyClicks(&The(*dialog, "txtstartaddress"), address);
        QTest::keyClick(&The(*dialog, "txtstartaddress"), Qt::Key_Return);
        QCoreApplication::processEvents();
        const QMessageBox* box = dialog.isNull() ? nullptr : Box(*dialog);
        if (box == nullptr) {
            EXPECT_EQ(Over<::desk::frmdata>(editor), nullptr);
            Return(editor);
            return {};
        }
        return Answer(*dialog, box->button(QMessageBox::Yes) != nullptr ? QMessageBox::Yes : QMessageBox::Ok);
    }
    std::string Commands() const {
        return Usable(form, {"cmdadd", "cmdedit", "cmddelete", "cmdsave", "cmdCancel", "cmdClose", "Grid"});
    }
};

TEST_F(StationScreens, AStationIsAddedEditedAndDeletedByTheCommandsOfEachState) {
    EXPECT_EQ(Commands(), "cmdadd cmdClose Grid ");
    Click(form, "cmdadd");
    EXPECT_EQ(Commands(), "cmdsave cmdCancel ");
    EXPECT_EQ(Focus(form), "cmbgroupno");
    Key(form, Qt::Key_Return);  // as Tab does
    EXPECT_EQ(Focus(form), "txtconsumer");
    Click(form, "cmdCancel");
    AddByKeys({"TeleFlow", "Modbus", "ASCII"});
    Fill({{"txtconsumer", "  "}});
    Click(form, "cmdsave");
    EXPECT_EQ(Answer(form), "Consumer Should not be blank");
    Fill({{"txtconsumer", "Mill"}});
    Click(form, "chkframing");
    Save();
    EXPECT_EQ(Commands(), "cmdadd cmdedit cmddelete cmdClose Grid ");
    EXPECT_EQ(desk.Master(1).Text("framing"), "standard");
    EXPECT_TRUE(The<QCheckBox>(form, "chkframing").isChecked());

    Click(form, "cmdedit");
    EXPECT_EQ(Commands(), "cmdsave cmdCancel ");
    EXPECT_EQ(Focus(form), "txtconsumer");
    EXPECT_EQ(Usable(form, {"cmbmodelno", "cmbgroupno", "optint", "optf1"}), "");
    Type(form, "cmbprotocol", "BSAP");
    EXPECT_EQ(Text(form, "cmbprotocol"), "Modbus");  // locked
    Fill({{"txtconsumer", "Mill 2"}});
    Click(form, "cmdCancel");
    EXPECT_EQ(Text(form, "txtconsumer"), "Mill");
    Click(form, "cmdedit");
    Fill({{"cmbMode", "RTU"}});
    EXPECT_FALSE(Seen(form, "chkframing"));  // that belongs to Modbus ASCII
    Save();
    EXPECT_EQ(desk.Master(1).Text("framing"), "required");
    QTest::keyClick(&form, Qt::Key_Escape);  // resets the line and leaves the form open
    QCoreApplication::processEvents();
    EXPECT_EQ(desk.window.Front(), &form);

    Click(form, "cmddelete");
    EXPECT_EQ(Answer(form, QMessageBox::No), "Are You Sure?");
    // It becomes due behind the question.
    Click(form, "cmddelete");
    ASSERT_TRUE(desk.scheduler.CollectNow(1));
    Answer(form, QMessageBox::Yes);
    EXPECT_EQ(Answer(form), "Mill waits to be collected. Delete it after that.");
    EXPECT_EQ(desk.Count("configdata_master"), 1);
}

TEST_F(StationScreens, TheModelTheLineAndTheProtocolSetWhatFitsThem) {
    Click(form, "cmdadd");
    for (const auto& [comtype, delay, dialled] :
         {std::tuple{"DialUp Modem", "4000", true}, {"GSM Modem", "6000", true}, {"Direct Comport", "500", false}}) {
        Fill({{"cmbcommtype", comtype}});
        EXPECT_EQ(Text(form, "txtdelay"), delay);
        EXPECT_EQ(Seen(form, "txtphoneno"), dialled) << comtype;
    }
    EXPECT_EQ(Enter(form, "cmbcommtype", "nonsense"), "Invalid Communication Type");
    EXPECT_EQ(Focus(form), "cmbcommtype");
    Fill({{"cmbrtumake", "BB"}});
    struct Case {
        const char *modelno, *protocol, *stream1;
        bool streams, schedule;
    };
    for (const Case& c :
         {Case{"TeleCorrector+", "Modbus", "AGA7", false, true}, Case{"CWEFM-AGA9", "BSAP", "AGA9", false, true},
          Case{"CW_Micro", "BSAP", "AGA9", false, false}, Case{"CWGFC-MultiStream", "BSAP", "AGA3", true, true}}) {
        Fill({{"cmbprotocol", "Modbus"}, {"cmbmodelno", c.modelno}});
        EXPECT_EQ(Text(form, "cmbprotocol") + Text(form, "cmb_stm1"), std::string(c.protocol) + c.stream1);
        EXPECT_EQ(Seen(form, "fr_Mstream"), c.streams) << c.modelno;
        EXPECT_EQ(Enabled(form, "frm_shed"), c.schedule) << c.modelno;
    }
    Fill({{"cmbprotocol", "Modbus"}});
    EXPECT_TRUE(Seen(form, "cmbMode") && Seen(form, "cmdsetregister"));
    Fill({{"cmbprotocol", "BSAP"}});
    EXPECT_FALSE(Seen(form, "cmbMode") || Seen(form, "cmdsetregister"));
}

TEST_F(StationScreens, AStationOnTheNetworkIsAddedAndEditedByKeys) {
    Click(form, "cmdadd");
    Fill({{"cmbgroupno", "1"},
          {"txtconsumer", "River"},
          {"cmbrtumake", "BB"},
          {"cmbmodelno", "TeleFlow"},
          {"cmbcommtype", "IP"},
          {"cmbsysvolttype", "12 VDC"},
          {"cmbprotocol", "Modbus"},
          {"cmbMode", "TCP"},
          {"txtslaveaddres", "6"}});
    EXPECT_TRUE(Seen(form, "txtIPAdr") && !Seen(form, "txtphoneno"));
    EXPECT_EQ(form.minimumSizeHint().boundedTo(form.size()), form.minimumSizeHint()) << "nothing is cut off";
    Click(form, "cmdsave");
    EXPECT_EQ(Answer(form), "IP address should not be blank");
    for (const auto key : {Qt::Key_X, Qt::Key_W, Qt::Key_H}) {
        AltKey(form, key);
    }
    EXPECT_EQ(Focus(form), "txtIPAdr");
    Fill({{"txtIPAdr", "10.0.0.7"}});
    Save();
    EXPECT_FALSE(Seen(form, "cmbcommport") || Seen(form, "cmbbaudrate"));
    auto station = core::ReadStation(desk.dbconn, 1).value();
    EXPECT_TRUE(station.ip == "10.0.0.7" && station.framing == core::Framing::Tcp);
    EXPECT_TRUE(station.pacing == core::Pacing::Prompt && station.wordOrder == core::WordOrder::LowFirst);
    EXPECT_TRUE(The<QCheckBox>(form, "chkpacing").isChecked() && The<QCheckBox>(form, "chkwordorder").isChecked());

    // Its serial framing needs the port of the terminal server.
    Click(form, "cmdedit");
    Fill({{"cmbMode", "RTU"}});
    Click(form, "chkpacing");
    Click(form, "cmdsave");
    EXPECT_EQ(Answer(form), "Enter the IP address with its port, such as 10.0.0.7:4001");
    Fill({{"txtIPAdr", "[fd00::7]:4001"}});
    Save();
    station = core::ReadStation(desk.dbconn, 1).value();
    EXPECT_TRUE(station.ip == "[fd00::7]:4001" && station.framing == core::Framing::Rtu);
    EXPECT_TRUE(station.pacing == core::Pacing::Stated && station.wordOrder == core::WordOrder::LowFirst);

    Click(form, "cmdedit");
    Fill({{"cmbMode", "TCP"}, {"cmbcommtype", "Direct Comport"}});
    EXPECT_FALSE(Seen(form, "txtIPAdr"));
    Fill({{"cmbcommport", "COM4"}, {"cmbbaudrate", "9600,N,8,1"}});
    Click(form, "cmdsave");
    EXPECT_EQ(Answer(form), "Mode TCP needs the Communication Type IP");
    EXPECT_EQ(Focus(form), "cmbcommtype");
}

TEST_F(StationScreens, TheSettingsOfThePortAreTakenApartAndJoined) {
    Click(form, "cmdadd");
    Fill({{"cmbcommtype", "Direct Comport"}, {"cmbbaudrate", "19200,E,7,2"}});
    Click(form, "cmdportsetting");
    auto* dialog = Over<::desk::frmportsetting>(form);
    ASSERT_NE(dialog, nullptr);
    const auto choices = [&dialog] {
        return Text(*dialog, "cmbbautrate") + " " + Text(*dialog, "cmbdatabits") + " " + Text(*dialog, "cmbparity") +
               " " + Text(*dialog, "cmbstopbits");
    };
    EXPECT_EQ(choices(), "19200 7 Even 2");
    Click(*dialog, "cmdRestore");
    EXPECT_EQ(choices(), "9600 8 None 1");
    EXPECT_EQ(Enter(*dialog, "cmbparity", ""), "");
    Click(*dialog, "cmdOk");
    EXPECT_EQ(Answer(*dialog), "Parity should not be Blank");
    EXPECT_EQ(Enter(*dialog, "cmbparity", "13x"), "Invalid Parity");
    EXPECT_EQ(Focus(*dialog), "cmbparity");
    Enter(*dialog, "cmbparity", "Odd");
    Enter(*dialog, "cmbstopbits", "1.5");
    Click(*dialog, "cmdOk");
    EXPECT_EQ(Text(form, "cmbbaudrate"), "9600,O,8,1.5");
}

TEST_F(StationScreens, AMapIsLaidOutByHandStoredEditedAndGivenUp) {
    const auto cell = [this](int row, int column) { return Cell(*desk.window.Front(), "aga3grid", row, column); };
    AddByKeys({"TeleFlow", "Modbus", "", 1, true});
    EXPECT_FALSE(Enabled(form, "cmdsave"));
    auto* editor = &SetRegister();
    EXPECT_EQ(Focus(*editor), "aga3grid");
    EXPECT_EQ(cell(0, 1) + cell(0, 2), "Differential Pressure");
    EXPECT_EQ(GiveAddress(*editor, "aga3grid", 0, "21"), "");
    EXPECT_EQ(cell(0, 2) + cell(0, 3), "21Float");
    // The second register of the first: asked, mended and taken.
    EXPECT_EQ(GiveAddress(*editor, "aga3grid", 1, "22"), "Address is overlapping\nPlease Choose another address");
    auto& address = The<QLineEdit>(*Over<::desk::frmdata>(*editor), "txtstartaddress");
    EXPECT_EQ(address.selectedText(), "22");
    EXPECT_EQ(GiveAddress(*editor, "aga3grid", 1, "abc"), "Invalid Statraddress");
    EXPECT_EQ(address.selectedText(), "abc");
    EXPECT_EQ(GiveAddress(*editor, "aga3grid", 1, "23"), "");
    EXPECT_EQ(desk.Count("configdata_detail"), 0);
    Click(*editor, "cmdOk");
    ASSERT_EQ(desk.window.Front(), &form);
    EXPECT_EQ(Focus(form), "cmdsave");
    Save();
    EXPECT_GT(desk.Count("configdata_detail where locationID=1"), 200);

    Click(form, "cmdedit");
    editor = &SetRegister();
    EXPECT_EQ(cell(1, 2), "23");
    GiveAddress(*editor, "aga3grid", 1, "33");
    QTest::keyClick(editor, Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_NE(Answer(*editor, QMessageBox::No), "") << "what was typed is not lost by a key";
    ASSERT_EQ(desk.window.Front(), editor);
    Click(*editor, "cmdClose");
    Answer(*editor, QMessageBox::Yes);
    EXPECT_EQ(desk.Count("configdata_detail where srno=2 and startaddress='23'"), 1);
    Click(form, "cmdCancel");

    // An add that is cancelled leaves no row.
    const auto rows = desk.Count("configdata_detail");
    AddByKeys({"TeleRTU", "Modbus", "", 1, true});
    editor = &SetRegister();
    EXPECT_EQ(The<QTabWidget>(*editor, "gridtab").currentIndex(), 9);
    GiveAddress(*editor, "DRSgrid", 0, "5");
    Click(*editor, "cmdOk");
    EXPECT_GT(desk.Count("configdata_detail"), rows);
    Click(form, "cmdCancel");
    EXPECT_EQ(desk.Count("configdata_detail"), rows);
}

// What a row holds that no collection has touched.
constexpr double untouched = -999999;

// A station of every model and protocol, from the form to the last row.
struct StationStory : StationScreens, testing::WithParamInterface<StationKind> {
    const std::int64_t location = 1;

    bool IsScheduled() const { return std::string(GetParam().modelno) != "CW_Micro"; }
    void LayOut() {
        const QWidget& editor = SetRegister();
        for (int row = 0; row < 24; ++row) {
            EXPECT_EQ(GiveAddress(editor, "aga3grid", row, QString::number(2 * row + 1)), "");
        }
        Click(editor, "cmdOk");
    }
    // Every row of the map whose value came from the station; none holds a value of another name.
    void ExpectCollected(std::uint64_t time, int days) {
        desk.dbconn.Execute("update configdata_detail set lastvalue=?", {untouched});
        const auto& field = desk.OpenField();
        desk.clock.Run(time);
        EXPECT_TRUE(desk.Master(location).Bool("sampledtoday")) << desk.RtuErr();
        int stored = 0;
        for (const core::Row& row :
             desk.dbconn.Query("select * from configdata_detail where locationID=?", {location})) {
            const double value = row.Number("lastvalue");
            const bool served =
                field.WasServed(location, static_cast<int>(row.Long("StreamNo")), row.Text("description"), value);
            EXPECT_TRUE(value == untouched || served) << row.Text("description") << " = " << value;
            stored += served ? 1 : 0;
        }
        EXPECT_GT(stored, 20);
        EXPECT_EQ(desk.Count("LogParam where LocationId=?", {location}), days);
    }
};

TEST_P(StationStory, IsAddedCollectedRenamedAndDeleted) {
    AddByKeys(GetParam());
    if (GetParam().MB_CONFIG) {
        LayOut();
    }
    Save();
    desk.StartTicking();
    if (IsScheduled()) {
        ExpectCollected(15ULL * 60000, 1);
    }
    Click(form, "cmdedit");
    Fill({{"txtconsumer", "Mill & Sons"}});
    Save();
    if (IsScheduled()) {
        ExpectCollected(24ULL * 3600000, 2);
    }
    Click(form, "cmddelete");
    EXPECT_EQ(Answer(form, QMessageBox::Yes), "Are You Sure?");
    EXPECT_EQ(Answer(form), "Record Deleted..");
    EXPECT_EQ(desk.Count("configdata_master") + desk.Count("configdata_detail"), 0);
    EXPECT_EQ(Rows(form, "Grid"), 0);
}

std::string NameOf(const testing::TestParamInfo<StationKind>& info) {
    std::string name = std::string(info.param.modelno) + "_" + info.param.protocol + info.param.mode +
                       (info.param.MB_CONFIG ? "_ByHand" : "");
    for (char& letter : name) {
        letter = std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : letter == '+' ? 'P' : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(
    EveryModelAndProtocol, StationStory,
    testing::Values(StationKind{"TeleFlow", "BSAP"}, StationKind{"TeleFlow", "Modbus", "RTU"},
                    StationKind{"TeleFlow", "Modbus", "RTU", 1, true}, StationKind{"TeleFlow", "Quantum"},
                    StationKind{"TeleFlow+", "Modbus", "ASCII"}, StationKind{"TeleCorrector", "BSAP"},
                    StationKind{"TeleCorrector+", "Modbus", "RTU"}, StationKind{"TeleRTU", "BSAP"},
                    StationKind{"TeleRTU(M)", "Modbus", "RTU"}, StationKind{"CWEFM-AGA3", "Modbus", "RTU"},
                    StationKind{"CWGFC-AGA7", "BSAP"}, StationKind{"CWEFM-AGA9", "BSAP"},
                    StationKind{"CWEPAC-AGA11", "BSAP"}, StationKind{"CWEFM-MultiStream", "BSAP", "", 4},
                    StationKind{"CWGFC-MultiStream", "Modbus", "RTU", 2}, StationKind{"CW_Micro", "BSAP"}),
    NameOf);

}  // namespace
