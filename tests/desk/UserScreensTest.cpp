#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QToolButton>

#include "core/UserRegister.h"
#include "desk/kit/Grid.h"
#include "desk/shell/frmnewuser.h"
#include "desk/shell/frmuser.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using testing::ElementsAre;

struct UserScreensTest : testing::Test {
    ScreenDesk desk;

    UserScreensTest() { desk.shared.currentuser = "operator"; }

    ::desk::Page& Front() {
        QCoreApplication::processEvents();
        return *desk.window.Front();
    }
    std::vector<std::string> Listed(const QWidget& form) {
        const auto& grid = The<::desk::Grid>(form, "Grid");
        std::vector<std::string> users;
        for (int row = 0; row < grid.Rows(); ++row) {
            users.push_back(grid.TextMatrix(row, 0).toStdString());
        }
        return users;
    }
    std::string Audit() { return desk.logs.ReadAudit().text; }
    core::UserRecord AddUser(const std::string& userid) {
        core::UserRecord user;
        user.firstname = user.lastname = user.userid = userid;
        user.password = "Gate7";
        user.readsec = 3;
        user.writesec = 2;
        EXPECT_FALSE(core::SaveUser(desk.dbconn, desk.shared, desk.logs, user, "Gate7", ""));
        desk.logs.ClearAudit();
        return user;
    }
};

// Each case is typed over what the one before it left.
TEST_F(UserScreensTest, SaysWhatIsWrongWithAUserAndWhereToMendIt) {
    auto& form = desk.Open<::desk::frmnewuser>();
    struct Case {
        const char* field;
        QString text;
        const char* box;
        const char* focus;
    };
    const QString longText(10000, 'a');
    const char* const notStored =
        "The password cannot be stored: it is too long or holds a character that is out of range";
    for (const Case& c :
         {Case{"txtfirstname", "", "Fistname should not be Blank", "txtfirstname"},
          Case{"txtfirstname", "O'Neil", "Lastname should not be Blank", "txtlastname"},
          Case{"txtlastname", "100%", "UserId should not be Blank", "txtuser"},
          Case{"txtuser", "operator", "Password should not be Blank", "txtpassword"},
          Case{"txtpassword", "Gate7ÿ", "Password and Confirm Password must be same.", "txtconfirmpassword"},
          Case{"txtconfirmpassword", "Gate7ÿ", "Please Select Read Security Level for the user.", "cmbreadsec"},
          Case{"cmbreadsec", "6", "Please Select Write Security Level for the user.", "cmbwritesec"},
          Case{"cmbwritesec", "1", "User Already Exists", "txtuser"},
          Case{"txtuser", longText, notStored, "txtpassword"}}) {
        if (auto* list = qobject_cast<QComboBox*>(&The(form, c.field))) {
            QTest::keyClicks(list, c.text);
        } else {
            The<QLineEdit>(form, c.field).setText(c.text);
        }
        Click(form, "cmdsave");
        EXPECT_EQ(Answer(form), c.box);
        EXPECT_EQ(Focus(form), c.focus) << c.box;
    }
    EXPECT_THAT(core::ListUsers(desk.dbconn), ElementsAre("operator"));
    EXPECT_EQ(desk.window.Front(), &form);
}

TEST_F(UserScreensTest, KeysAloneAddAUser) {
    auto& list = desk.Open<::desk::frmuser>();
    QTest::keyClick(&list, Qt::Key_A, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return &Front() != &list; }));
    auto& form = Front();
    EXPECT_EQ(form.windowTitle(), "New User - v10.3");
    for (const auto& [field, text] : {std::pair{"txtfirstname", "Pat"},
                                      {"txtlastname", "O'Neil"},
                                      {"txtuser", "pat"},
                                      {"txtpassword", "Gate7"},
                                      {"cmdreveal", ""},
                                      {"txtconfirmpassword", "Gate7"},
                                      {"cmbreadsec", "4"},
                                      {"cmbwritesec", "3"},
                                      {"chkconfig", ""},
                                      {"chktts", " "}}) {
        ASSERT_EQ(Focus(form), field);
        QTest::keyClicks(form.focusWidget(), text);
        QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
    }
    QTest::keyClick(&form, Qt::Key_S, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return &Front() == &list; }));
    EXPECT_THAT(Listed(list), ElementsAre("operator", "pat"));
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30 :operator created user pat.\r\n");
    const auto pat = core::ReadUser(desk.dbconn, "pat").value();
    EXPECT_EQ(pat.firstname + " " + pat.lastname + " " + pat.password, "Pat O'Neil Gate7");
    EXPECT_EQ(pat.readsec, 4);
    EXPECT_EQ(pat.writesec, 3);
    EXPECT_TRUE(pat.tts);
    EXPECT_FALSE(pat.configstation);
}

TEST_F(UserScreensTest, AnEditShowsTheUserAndChangesWhatWasChanged) {
    AddUser("o'neil");
    auto& list = desk.Open<::desk::frmuser>();
    EXPECT_EQ(list.windowTitle(), "User Management - v10.3");
    The<::desk::Grid>(list, "Grid").SelectRow(0);
    Click(list, "cmdedit");
    {
        auto& form = Front();
        EXPECT_EQ(The<QLineEdit>(form, "txtpassword").text(), "Gate7");
        EXPECT_EQ(The<QComboBox>(form, "cmbwritesec").currentText(), "2");
        EXPECT_FALSE(The<QComboBox>(form, "cmbreadsec").isEditable());
        Type(form, "txtuser", "Operator");
        Click(form, "cmdsave");
        EXPECT_EQ(Answer(form), "User Already Exists");
        EXPECT_EQ(Audit(), "");
        Type(form, "txtuser", "zoe");
        QTest::keyClick(&The(form, "chkhistorical"), Qt::Key_Space);
        QTest::keyClick(&The(form, "txtuser"), Qt::Key_Return);
    }
    EXPECT_EQ(&Front(), &list);
    EXPECT_THAT(Listed(list), ElementsAre("operator", "zoe"));
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30 :operator edited user zoe.\r\n");
    EXPECT_TRUE(core::ReadUser(desk.dbconn, "zoe")->historicaldata);
    EXPECT_EQ(core::ReadUser(desk.dbconn, "zoe")->writesec, 2);

    // Escape leaves a user as it was.
    Click(list, "cmdedit");
    Type(Front(), "txtuser", "abc");
    QTest::keyClick(&Front(), Qt::Key_Escape);
    EXPECT_THAT(Listed(Front()), ElementsAre("operator", "zoe"));
}

TEST_F(UserScreensTest, EachBoxIsTheRightOfItsColumn) {
    AddUser("kim");
    desk.Open<::desk::frmuser>();
    const std::vector<std::pair<const char*, const char*>> boxes = {
        {"chkconfig", "configstation"}, {"chktts", "tts"},
        {"chkgas", "gascomposition"},   {"chkutility", "utility"},
        {"chkscheduler", "scheduler"},  {"chkuser", "usermanager"},
        {"chkarchive", "Archive"},      {"chkdailyreport", "Dailyreport"},
        {"chktrends", "trends"},        {"chkhistorical", "historicaldata"},
        {"chkChangeRight", "change"}};
    for (std::size_t given = 0; given < boxes.size(); ++given) {
        auto& form = desk.Open<::desk::frmnewuser>("kim");
        for (std::size_t at = 0; at < boxes.size(); ++at) {
            auto& box = The<QCheckBox>(form, boxes[at].first);
            EXPECT_EQ(box.isChecked(), given > 0 && at == given - 1) << boxes[at].first;
            box.setChecked(at == given);
        }
        Click(form, "cmdsave");
        const auto kim = desk.dbconn.First("select * from users where userid='kim'").value();
        for (std::size_t at = 0; at < boxes.size(); ++at) {
            EXPECT_EQ(kim.Bool(boxes[at].second), at == given) << boxes[given].first << " " << boxes[at].second;
        }
    }
}

TEST_F(UserScreensTest, AUserIsDeletedOnceTheAnswerIsYes) {
    AddUser("administrator");
    AddUser("o'neil 100%");
    auto& list = desk.Open<::desk::frmuser>();
    EXPECT_THAT(Listed(list), ElementsAre("o'neil 100%", "operator"));
    The<::desk::Grid>(list, "Grid").SelectRow(0);
    Click(list, "cmddelete");
    EXPECT_EQ(Answer(list, QMessageBox::No), "Are You Sure?");
    EXPECT_THAT(Listed(list), ElementsAre("o'neil 100%", "operator"));
    EXPECT_EQ(Audit(), "");
    Click(list, "cmddelete");
    EXPECT_EQ(Answer(list, QMessageBox::Yes), "Are You Sure?");
    EXPECT_EQ(Answer(list), "User Deleted..");
    EXPECT_THAT(Listed(list), ElementsAre("operator"));
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30 :operator deleted user o'neil 100%.\r\n");
    EXPECT_EQ(Focus(list), "Grid");
    Click(list, "cmddelete");
    Answer(list, QMessageBox::Yes);
    Answer(list);
    EXPECT_FALSE(The(list, "cmdedit").isEnabled() || The(list, "cmddelete").isEnabled());
    EXPECT_TRUE(core::ReadUser(desk.dbconn, "administrator"));
}

TEST_F(UserScreensTest, AFailureLeavesTheFormAndIsToldWithoutThePassword) {
    AddUser("kim");
    auto& form = desk.Open<::desk::frmnewuser>("kim");
    desk.dbconn.Execute("drop table TTS_table");
    Type(form, "txtlastname", "Changed");
    Click(form, "cmdsave");
    EXPECT_EQ(Front().windowTitle(), "New User - v10.3");
    EXPECT_EQ(The<QLineEdit>(form, "txtlastname").text(), "Changed");
    EXPECT_EQ(core::ReadUser(desk.dbconn, "kim")->lastname, "kim");
    ASSERT_FALSE(desk.feedback.status.empty());
    EXPECT_THAT(desk.feedback.status.back(), testing::HasSubstr("TTS_table"));
    EXPECT_THAT(desk.RtuErr(), testing::Not(testing::HasSubstr("Gate7")));
}

TEST_F(UserScreensTest, APasswordIsInSightOnlyWhileTheButtonIsDown) {
    AddUser("kim");
    auto& form = desk.Open<::desk::frmnewuser>("kim");
    auto& button = The(form, "cmdreveal");
    const auto echo = [&form] {
        const auto mode = The<QLineEdit>(form, "txtpassword").echoMode();
        EXPECT_EQ(The<QLineEdit>(form, "txtconfirmpassword").echoMode(), mode);
        return mode;
    };
    EXPECT_EQ(echo(), QLineEdit::Password);
    QTest::mousePress(&button, Qt::LeftButton);
    EXPECT_EQ(echo(), QLineEdit::Normal);
    QTest::mouseRelease(&button, Qt::LeftButton);
    EXPECT_EQ(echo(), QLineEdit::Password);
    button.setFocus(Qt::TabFocusReason);
    QTest::keyPress(&button, Qt::Key_Space);
    EXPECT_EQ(echo(), QLineEdit::Normal);
    QTest::keyClick(&button, Qt::Key_Tab);  // the focus goes on while the key is down
    EXPECT_EQ(echo(), QLineEdit::Password);
    QTest::mousePress(&button, Qt::LeftButton);
    form.hide();
    EXPECT_EQ(echo(), QLineEdit::Password);
}

}  // namespace
