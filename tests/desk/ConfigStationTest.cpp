#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include "desk/kit/Grid.h"
#include "desk/stations/frmconfigstation.h"
#include "desk/stations/frmportsetting.h"
#include "support/ScreenDesk.h"

using support::Answer;
using support::Click;
using support::Focus;
using support::The;
using support::Type;

namespace {

using Fields = std::vector<std::pair<const char*, QString>>;

// A dialled Modbus station, field by field as an operator types it.
const Fields dialledMill{{"cmbgroupno", "2"},           {"txtconsumer", "Mill"},         {"cmbrtumake", "BB"},
                         {"cmbmodelno", "TeleFlow"},    {"cmbcommtype", "DialUp Modem"}, {"cmbcommport", "COM4"},
                         {"cmbbaudrate", "9600,N,8,1"}, {"txtphoneno", "5550142"},       {"cmbsysvolttype", "12 VDC"},
                         {"cmbprotocol", "Modbus"},     {"txtslaveaddres", "6"}};

struct ConfigStationTest : testing::Test {
    support::ScreenDesk desk;
    ::desk::frmconfigstation* form = nullptr;

    void OpenForm() { form = &desk.Open<::desk::frmconfigstation>(); }
    void Enter(const char* field, const QString& text) {
        Type(*form, field, text);
        QTest::keyClick(&The(*form, field), Qt::Key_Tab);
        QCoreApplication::processEvents();
    }
    void AddTyped(const Fields& fields) {
        Click(*form, "cmdadd");
        for (const auto& [field, text] : fields) {
            Enter(field, text);
        }
    }
    std::string Text(const char* field) {
        if (auto* combo = form->findChild<QComboBox*>(field)) {
            return combo->currentText().toStdString();
        }
        return The<QLineEdit>(*form, field).text().toStdString();
    }
    bool Shown(const char* control) { return The(*form, control).isVisible(); }
    bool Enabled(const char* control) { return The(*form, control).isEnabled(); }
    // The commands that can be given now.
    std::string Commands() {
        std::string commands;
        for (const char* command : {"cmdadd", "cmdedit", "cmddelete", "cmdsave", "cmdCancel", "cmdClose"}) {
            commands += Enabled(command) ? std::string(command + 3) + " " : "";
        }
        return commands + (Enabled("Grid") ? "Grid" : "");
    }
};

TEST_F(ConfigStationTest, SaysWhatIsMissingAndPutsTheCursorThere) {
    demo::AddStation(desk.dbconn, {"River", "TeleFlow", "Modbus", "RTU"});
    for (int i = 0; i < 10; ++i) {
        demo::DemoStation station{"Full " + std::to_string(i), "TeleFlow", "Modbus", "RTU"};
        station.groupno = 3;
        demo::AddStation(desk.dbconn, station);
    }
    OpenForm();
    struct Case {
        const char* field;
        QString text;
        const char* message;
        const char* focus;
    };
    for (const Case& c : {Case{"cmbgroupno", "", "Select proper group", "cmbgroupno"},
                          Case{"cmbgroupno", "44", "Select proper group", "cmbgroupno"},
                          Case{"txtconsumer", "  ", "Consumer Should not be blank", "txtconsumer"},
                          Case{"cmbrtumake", "", "RTU Make Should not be blank", "cmbrtumake"},
                          Case{"cmbmodelno", "", "Model no. Should not be blank", "cmbmodelno"},
                          Case{"cmbcommtype", "", "Communication Type Should not be blank", "cmbcommtype"},
                          Case{"cmbcommport", "", "Communication port Should not be blank", "cmbcommport"},
                          Case{"cmbprotocol", "", "Protocol Should not be blank", "cmbprotocol"},
                          Case{"txtslaveaddres", "", "SlaveAddress Should not be blank", "txtslaveaddres"},
                          Case{"txtslaveaddres", "abc", "SlaveAddress Should not be blank", "txtslaveaddres"},
                          Case{"cmbbaudrate", "", "Comport Setting Should not be blank", "cmdportsetting"},
                          Case{"txtphoneno", "", "Phone no. Should not be blank", "txtphoneno"},
                          Case{"txtconsumer", "river", "Consumer Name Exists", "txtconsumer"},
                          Case{"cmbgroupno", "3", "You can't add more station in this group", "cmbgroupno"},
                          Case{"cmbsysvolttype", "", "System Type Should not be blank", "cmbsysvolttype"}}) {
        AddTyped(dialledMill);
        Enter(c.field, c.text);
        Click(*form, "cmdsave");
        EXPECT_EQ(Answer(*form), c.message) << c.field;
        EXPECT_EQ(Focus(*form), c.focus) << c.message;
        EXPECT_EQ(desk.Count("configdata_master"), 11);
        Click(*form, "cmdCancel");
    }
    AddTyped(dialledMill);
    Enter("txtdelay", "99");
    Click(*form, "cmdsave");
    EXPECT_EQ(Answer(*form), "Select proper Delay Time");
    EXPECT_EQ(Focus(*form), "txtdelay");
    Enter("txtdelay", "100");
    Enter("cmbgroupno", "0");
    Click(*form, "cmdsave");
    EXPECT_EQ(Answer(*form), "");
    EXPECT_EQ(desk.Count("configdata_master where consumer='Mill' and groupno=0 and delaytime=100"), 1);
}

TEST_F(ConfigStationTest, StandardFramingBelongsToModbusAscii) {
    OpenForm();
    AddTyped(dialledMill);
    EXPECT_FALSE(Shown("chkframing"));
    Enter("cmbMode", "ASCII");
    EXPECT_TRUE(Shown("chkframing"));
    EXPECT_FALSE(The<QCheckBox>(*form, "chkframing").isChecked());
    Click(*form, "cmdsave");
    const auto id = desk.Count("configdata_master");
    EXPECT_EQ(desk.Master(id).Text("framing"), "required");
    EXPECT_FALSE(core::ReadStation(desk.dbconn, id)->standardFraming);

    Click(*form, "cmdedit");
    The<QCheckBox>(*form, "chkframing").click();
    Click(*form, "cmdsave");
    EXPECT_EQ(desk.Master(id).Text("framing"), "standard");
    EXPECT_TRUE(core::ReadStation(desk.dbconn, id)->standardFraming);
    EXPECT_TRUE(Shown("chkframing") && The<QCheckBox>(*form, "chkframing").isChecked()) << "shown again";

    Click(*form, "cmdedit");
    Enter("cmbMode", "RTU");
    EXPECT_FALSE(Shown("chkframing"));
    Click(*form, "cmdsave");
    EXPECT_EQ(desk.Master(id).Text("framing"), "required");
    EXPECT_FALSE(Shown("chkframing"));
}

TEST_F(ConfigStationTest, AStationOnTheNetworkIsAddedAndEditedByKeys) {
    OpenForm();
    AddTyped({{"cmbgroupno", "1"},
              {"txtconsumer", "River"},
              {"cmbrtumake", "BB"},
              {"cmbmodelno", "TeleFlow"},
              {"cmbcommtype", "IP"},
              {"cmbsysvolttype", "12 VDC"},
              {"cmbprotocol", "Modbus"},
              {"cmbMode", "TCP"},
              {"txtslaveaddres", "6"}});
    EXPECT_TRUE(Shown("txtIPAdr") && !Shown("txtphoneno"));
    EXPECT_EQ(form->minimumSizeHint().boundedTo(form->size()), form->minimumSizeHint()) << "nothing is cut off";
    Click(*form, "cmdsave");
    EXPECT_EQ(Answer(*form), "IP address should not be blank");
    for (const auto key : {Qt::Key_X, Qt::Key_W, Qt::Key_H}) {
        support::AltKey(*form, key);
    }
    EXPECT_EQ(Focus(*form), "txtIPAdr");
    Enter("txtIPAdr", "10.0.0.7");
    Click(*form, "cmdsave");
    EXPECT_EQ(Answer(*form), "");
    EXPECT_FALSE(Shown("cmbcommport") || Shown("cmbbaudrate"));
    auto station = core::ReadStation(desk.dbconn, 1).value();
    EXPECT_EQ(station.ip + " " + station.mode, "10.0.0.7 TCP");
    EXPECT_TRUE(station.pacing == core::Pacing::Prompt && station.wordOrder == core::WordOrder::LowFirst);
    EXPECT_TRUE(The<QCheckBox>(*form, "chkpacing").isChecked() && The<QCheckBox>(*form, "chkwordorder").isChecked());

    // Its serial framing needs the port of the terminal server.
    Click(*form, "cmdedit");
    Enter("cmbMode", "RTU");
    Click(*form, "chkpacing");
    Click(*form, "cmdsave");
    EXPECT_EQ(Answer(*form), "Enter the IP address with its port, such as 10.0.0.7:4001");
    Enter("txtIPAdr", "[fd00::7]:4001");
    Click(*form, "cmdsave");
    EXPECT_EQ(Answer(*form), "");
    station = core::ReadStation(desk.dbconn, 1).value();
    EXPECT_EQ(station.ip + " " + station.mode, "[fd00::7]:4001 RTU");
    EXPECT_TRUE(station.pacing == core::Pacing::Stated && station.wordOrder == core::WordOrder::LowFirst);

    Click(*form, "cmdedit");
    Enter("cmbMode", "TCP");
    Enter("cmbcommtype", "Direct Comport");
    EXPECT_FALSE(Shown("txtIPAdr"));
    Enter("cmbcommport", "COM4");
    Enter("cmbbaudrate", "9600,N,8,1");
    Click(*form, "cmdsave");
    EXPECT_EQ(Answer(*form), "Mode TCP needs the Communication Type IP");
    EXPECT_EQ(Focus(*form), "cmbcommtype");
}

TEST_F(ConfigStationTest, ATextThatIsInNoListIsRefusedWhenItsFieldIsLeft) {
    struct Case {
        const char* field;
        const char* message;
        const char* left;  // what is in the field then
    };
    OpenForm();
    for (const Case& c :
         {Case{"cmbrtumake", "Invalid RTU", "nonsense"}, Case{"cmbmodelno", "Invalid Model", "nonsense"},
          Case{"cmbcommtype", "Invalid Communication Type", ""}, Case{"cmbcommport", "Invalid Comport", ""},
          Case{"cmbprotocol", "Invalid Protocol", ""}}) {
        AddTyped({{"cmbrtumake", "BB"}});
        Enter(c.field, "nonsense");
        EXPECT_EQ(Answer(*form), c.message);
        EXPECT_EQ(Focus(*form), c.field);
        EXPECT_EQ(Text(c.field), c.left);
        Click(*form, "cmdCancel");
        EXPECT_EQ(Answer(*form), "") << "whoever cancels is not asked";
    }
    Click(*form, "cmdadd");
    Enter("cmbprotocol", "quantum");
    EXPECT_EQ(Answer(*form), "");
}

TEST_F(ConfigStationTest, TheLineSetsPhoneSettingsAndDelay) {
    OpenForm();
    Click(*form, "cmdadd");
    EXPECT_EQ(Text("txtdelay"), "500");
    struct Case {
        const char* comtype;
        const char* delay;
        bool phone;
    };
    for (const Case& c :
         {Case{"DialUp Modem", "4000", true}, Case{"GSM Modem", "6000", true}, Case{"Direct Comport", "500", false}}) {
        if (The(*form, "txtphoneno").isVisible()) {
            Enter("txtphoneno", "555");
        }
        Enter("cmbcommtype", c.comtype);
        EXPECT_EQ(Text("txtdelay"), c.delay);
        EXPECT_EQ(Shown("txtphoneno"), c.phone);
        EXPECT_EQ(Text("txtphoneno"), "");
        EXPECT_TRUE(Enabled("cmdportsetting"));
    }
}

TEST_F(ConfigStationTest, TheModelAndTheProtocolSetWhatFitsThem) {
    struct Case {
        const char* modelno;
        const char* protocol;  // text of cmbprotocol behind it, when it was Modbus
        const char* stream1;
        bool streams;   // fr_Mstream shown
        bool schedule;  // frm_shed enabled
    };
    OpenForm();
    Click(*form, "cmdadd");
    Enter("cmbrtumake", "BB");
    for (const Case& c :
         {Case{"TeleFlow", "Modbus", "AGA3", false, true}, Case{"TeleCorrector+", "Modbus", "AGA7", false, true},
          Case{"CWEFM-AGA3", "Modbus", "AGA3", false, true}, Case{"CWGFC-AGA7", "Modbus", "AGA7", false, true},
          Case{"CWEFM-AGA9", "BSAP", "AGA9", false, true}, Case{"CWEPAC-AGA11", "BSAP", "AGA11", false, true},
          Case{"CWGFC-MultiStream", "BSAP", "AGA3", true, true}, Case{"CW_Micro", "BSAP", "AGA3", false, false}}) {
        Enter("cmbprotocol", "Modbus");
        Enter("cmbmodelno", c.modelno);
        EXPECT_EQ(Text("cmbprotocol"), c.protocol) << c.modelno;
        EXPECT_EQ(Text("cmb_stm1"), c.stream1) << c.modelno;
        EXPECT_EQ(Shown("fr_Mstream"), c.streams) << c.modelno;
        EXPECT_EQ(Enabled("frm_shed"), c.schedule) << c.modelno;
    }
    Click(*form, "cmdCancel");
    Click(*form, "cmdadd");
    Enter("cmbprotocol", "Modbus");
    EXPECT_TRUE(Shown("cmbMode"));
    EXPECT_EQ(Text("cmbMode"), "RTU");
    EXPECT_TRUE(Shown("cmdsetregister"));
    EXPECT_TRUE(The<QRadioButton>(*form, "optf2").isChecked());
    The<QCheckBox>(*form, "chk_MBConfig").setChecked(true);
    EXPECT_FALSE(Enabled("cmdsave"));
    Click(*form, "cmdsetregister");
    Click(*desk.window.Front(), "cmdClose");
    EXPECT_EQ(desk.window.Front(), form);
    EXPECT_FALSE(Enabled("cmdsave"));
    The<QCheckBox>(*form, "chk_MBConfig").setChecked(false);
    EXPECT_TRUE(Enabled("cmdsave"));
    Enter("cmbprotocol", "BSAP");
    EXPECT_FALSE(Shown("cmbMode"));
    EXPECT_FALSE(Shown("cmdsetregister"));
}

TEST_F(ConfigStationTest, StreamsAreShownUpToTheirNumber) {
    OpenForm();
    Click(*form, "cmdadd");
    Enter("cmbrtumake", "BB");
    Enter("cmbmodelno", "CWEFM-MultiStream");
    for (const int count : {1, 3, 4, 2}) {
        Enter("cmb_MultiNO", QString::number(count));
        for (int stream = 1; stream <= 4; ++stream) {
            EXPECT_EQ(Shown(("fr_Stm" + std::to_string(stream)).c_str()), stream <= count) << count << " " << stream;
        }
    }
}

TEST_F(ConfigStationTest, BrowsesAddsAndEditsWithTheCommandsOfEach) {
    OpenForm();
    EXPECT_EQ(Commands(), "add Close Grid");
    Click(*form, "cmdadd");
    EXPECT_EQ(Commands(), "save Cancel ");
    EXPECT_EQ(Focus(*form), "cmbgroupno");
    EXPECT_EQ(The<QLabel>(*form, "lbllocation").text(), "1");
    Click(*form, "cmdCancel");
    AddTyped(dialledMill);
    Click(*form, "cmdsave");
    EXPECT_EQ(Commands(), "add edit delete Close Grid");
    Click(*form, "cmdedit");
    EXPECT_EQ(Commands(), "save Cancel ");
    EXPECT_EQ(Focus(*form), "txtconsumer");
    for (const char* fixed : {"cmbmodelno", "cmbgroupno", "optint", "optf1"}) {
        EXPECT_FALSE(Enabled(fixed)) << fixed;
    }
    Type(*form, "cmbprotocol", "BSAP");
    EXPECT_EQ(Text("cmbprotocol"), "Modbus");  // locked
    Enter("txtconsumer", "Mill 2");
    Click(*form, "cmdCancel");
    EXPECT_EQ(Text("txtconsumer"), "Mill");
    QTest::keyClick(form, Qt::Key_Escape);  // resets the line and leaves the form open
    QCoreApplication::processEvents();
    EXPECT_EQ(desk.window.Front(), form);
    Click(*form, "cmddelete");
    EXPECT_EQ(Answer(*form, QMessageBox::No), "Are You Sure?");
    EXPECT_EQ(desk.Count("configdata_master"), 1);

    // It becomes due behind the question.
    Click(*form, "cmddelete");
    ASSERT_TRUE(desk.scheduler.CollectNow(1));
    EXPECT_EQ(Answer(*form, QMessageBox::Yes), "Are You Sure?");
    EXPECT_EQ(Answer(*form), "Mill waits to be collected. Delete it after that.");
    desk.OpenField();
    std::string refusal;
    desk.clock.After(1000, [&] {
        Click(*form, "cmddelete");
        refusal = Answer(*form);
    });
    desk.scheduler.Serve();
    EXPECT_EQ(refusal, "Mill is being collected. Delete it when that is over.");
    EXPECT_EQ(desk.Count("configdata_master"), 1);
}

TEST_F(ConfigStationTest, EnterMovesOnAsTabDoes) {
    OpenForm();
    Click(*form, "cmdadd");
    QTest::keyClick(form->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(Focus(*form), "txtconsumer");
    QTest::keyClick(form->focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(Focus(*form), "cmbrtumake");
}

TEST_F(ConfigStationTest, TheResetOfAddressesIsAskedAndTheRowsStay) {
    demo::AddStation(desk.dbconn, {"River", "TeleFlow", "Modbus", "RTU"});
    desk.dbconn.Execute("update configdata_master set rtubits=true");
    OpenForm();
    Click(*form, "cmdedit");
    auto& box = The<QCheckBox>(*form, "chkrtubits");
    box.setChecked(true);
    box.click();
    EXPECT_EQ(Answer(*form, QMessageBox::Yes),
              "Changes will Reset your present alllocation of addresses \nDo you want to continue?");
    EXPECT_EQ(Answer(*form), "");
    EXPECT_EQ(desk.Count("configdata_detail where startaddress='0' or startaddress=''"), 0);
}

struct PortSettingTest : ConfigStationTest {
    ::desk::frmportsetting* dialog = nullptr;

    void OpenDialog() {
        OpenForm();
        Click(*form, "cmdadd");
        Enter("cmbcommtype", "Direct Comport");
        Enter("cmbbaudrate", "19200,E,7,2");
        Click(*form, "cmdportsetting");
        dialog = form->findChild<::desk::frmportsetting*>();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), "Port Setting - v10.3");
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    }
    void Type(const char* field, const QString& text) {
        support::Type(*dialog, field, text);
        QTest::keyClick(&The(*dialog, field), Qt::Key_Tab);
        QCoreApplication::processEvents();
    }
    std::string Choices() {
        std::string choices;
        for (const char* field : {"cmbbautrate", "cmbdatabits", "cmbparity", "cmbstopbits"}) {
            choices += The<QComboBox>(*dialog, field).currentText().toStdString() + " ";
        }
        return choices;
    }
};

TEST_F(PortSettingTest, ComposesTheSettingsFromWhatTheyWere) {
    OpenDialog();
    EXPECT_EQ(Choices(), "19200 7 Even 2 ");
    Click(*dialog, "cmdRestore");
    EXPECT_EQ(Choices(), "9600 8 None 1 ");
    Type("cmbparity", "Odd");
    Type("cmbstopbits", "1.5");
    Click(*dialog, "cmdOk");
    EXPECT_EQ(Text("cmbbaudrate"), "9600,O,8,1.5");
}

TEST_F(PortSettingTest, SaysWhatIsBlankAndWhatIsInNoList) {
    OpenDialog();
    struct Case {
        const char* field;
        const char* blank;
        const char* invalid;
    };
    for (const Case& c : {Case{"cmbbautrate", "Baudrate should not be Blank", "Invalid Baudrate"},
                          Case{"cmbdatabits", "Databits should not be Blank", "Invlaid Databits"},
                          Case{"cmbparity", "Parity should not be Blank", "Invalid Parity"},
                          Case{"cmbstopbits", "Stopbits should not be Blank", "Invalid Stopbits"}}) {
        Click(*dialog, "cmdRestore");
        Type(c.field, "");
        Click(*dialog, "cmdOk");
        EXPECT_EQ(Answer(*dialog), c.blank);
        EXPECT_EQ(Focus(*dialog), c.field);
        Type(c.field, "13x");
        EXPECT_EQ(Answer(*dialog), c.invalid);
        EXPECT_EQ(Focus(*dialog), c.field);
    }
    Click(*dialog, "cmdCancel");
    EXPECT_EQ(Text("cmbbaudrate"), "19200,E,7,2");
}

}  // namespace
