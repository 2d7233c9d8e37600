// Who may work here, and what is noted of it: the login, the users, the logs.

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSignalSpy>

#include "core/UserRegister.h"
#include "desk/kit/Boxes.h"
#include "desk/kit/LogView.h"
#include "desk/shell/frmLogin.h"
#include "desk/shell/frmlog.h"
#include "desk/shell/frmnewuser.h"
#include "desk/shell/frmtts.h"
#include "desk/shell/frmuser.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using testing::ElementsAre;

struct LoginTest : testing::Test {
    ScratchDesk desk;
    ::desk::frmLogin form{desk.dbconn, desk.shared, desk.logs,
                          [this](const QString& text, const QString& title) { ::desk::ShowBox(&form, text, title); }};
    QSignalSpy done{&form, &::desk::frmLogin::LoginDone};
    QSignalSpy abandoned{&form, &::desk::frmLogin::Abandoned};

    LoginTest() {
        form.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&form));
    }
    void Enter(const char* field, const QString& text) { The<QLineEdit>(form, field).setText(text); }
    // What is said to a name and a password.
    std::string Try(const QString& user, const QString& password) {
        Enter("txtuser", user);
        Enter("txtpassword", password);
        Click(form, "cmdOk");
        return Answer(form);
    }
};

TEST_F(LoginTest, SaysWhatIsWrongAndWhereToMendIt) {
    desk.dbconn.Execute("insert into users(userid, password, logon) values('kim','y',true)");  // "x" is stored as y
    for (const auto& [user, password] : {std::pair<QString, QString>{"operator", "wrong"},
                                         {"", ""},
                                         {"' or ''='", "' or ''='"},
                                         {QString(10000, 'a'), QString(10000, 'b')}}) {
        EXPECT_EQ(Try(user, password), "Invalid UserName or Password , try again!");
        EXPECT_EQ(Focus(form), "txtuser");
        EXPECT_EQ(The<QLineEdit>(form, "txtuser").selectedText(), user);
    }
    EXPECT_EQ(Try("kim", "x"), "User Already Logged On..");
    EXPECT_EQ(Focus(form), "txtpassword");
    EXPECT_FALSE(form.LoggedIn());
    EXPECT_EQ(done.count(), 0);
    EXPECT_EQ(Try("Warden", "panelgrove"), "");
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(desk.shared.currentuser, "WARDEN");
}

// As on a bare X server: keys come, but no window manager has made the window the active one.
TEST_F(LoginTest, KeysAloneLogInWithoutAWindowManager) {
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    ASSERT_FALSE(form.isActiveWindow());
    for (const char* field : {"txtuser", "txtpassword"}) {
        EXPECT_EQ(Focus(form), field);
        QTest::keyClicks(form.focusWidget(), "operator");
        Key(form, Qt::Key_Return);
    }
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(desk.shared.currentuser, "operator");
    EXPECT_TRUE(desk.shared.rights.rightScheduler);
}

TEST_F(LoginTest, EscapeAndCloseEndTheProgramWhileNobodyIsLoggedIn) {
    Key(form, Qt::Key_Escape);
    EXPECT_EQ(abandoned.count(), 1);
    Try("operator", "operator");
    form.close();
    EXPECT_EQ(abandoned.count(), 1);
}

TEST_F(LoginTest, ChangesAPasswordOnceTheOldOneIsRight) {
    Enter("txtuser", "operator");
    Enter("txtpassword", "wrong");
    Click(form, "cmdchange");
    EXPECT_NE(Answer(form), "");
    EXPECT_FALSE(Seen(form, "txtnewpass"));
    Enter("txtpassword", "operator");
    Click(form, "cmdchange");
    EXPECT_EQ(Focus(form), "txtnewpass");
    struct Case {
        const char *password, *again, *box, *focus;
    };
    for (const Case& c : {Case{"", "", "Please Enter New Password", "txtnewpass"},
                          Case{"  ", "  ", "Please Enter New Password", "txtnewpass"},  // would be stored as nothing
                          Case{"gate7", "gate8", "Please Confirm Password", "txtconfirmpass"},
                          Case{"日", "日", "The new password holds a character that cannot be stored", "txtnewpass"}}) {
        Enter("txtnewpass", c.password);
        Enter("txtconfirmpass", c.again);
        Click(form, "cmdsave");
        EXPECT_EQ(Answer(form), c.box);
        EXPECT_EQ(Focus(form), c.focus) << c.box;
    }
    Enter("txtnewpass", "gate7");
    Enter("txtconfirmpass", "gate7");
    The(form, "txtconfirmpass").setFocus();
    Key(form, Qt::Key_Return);  // on to the command that is next
    EXPECT_EQ(Focus(form), "cmdsave");
    Key(form, Qt::Key_Return);
    EXPECT_EQ(Answer(form), "Password Changed");
    EXPECT_FALSE(Seen(form, "txtnewpass"));
    EXPECT_NE(Try("operator", "operator"), "");
    EXPECT_EQ(Try("operator", "gate7"), "");
    EXPECT_EQ(done.count(), 1);
}

// The command that shows what is typed, which every form with a password has.
TEST_F(LoginTest, PasswordsAreInSightOnlyWhileTheirCommandIsDown) {
    Enter("txtuser", "operator");
    Enter("txtpassword", "operator");
    auto& reveal = The(form, "cmdreveal");
    const auto inSight = [this](const char* field) {
        return The<QLineEdit>(form, field).echoMode() == QLineEdit::Normal;
    };
    QTest::mousePress(&reveal, Qt::LeftButton);
    EXPECT_TRUE(inSight("txtpassword"));
    QTest::mouseRelease(&reveal, Qt::LeftButton);
    EXPECT_FALSE(inSight("txtpassword"));
    reveal.setFocus(Qt::TabFocusReason);
    QTest::keyPress(&reveal, Qt::Key_Space);
    EXPECT_TRUE(inSight("txtpassword"));
    QTest::keyClick(&reveal, Qt::Key_Tab);  // the focus goes on while the key is down
    EXPECT_FALSE(inSight("txtpassword"));
    Click(form, "cmdchange");
    QTest::mousePress(&The(form, "cmdrevealnew"), Qt::LeftButton);
    EXPECT_TRUE(inSight("txtnewpass") && inSight("txtconfirmpass"));
    EXPECT_FALSE(inSight("txtpassword"));
    form.hide();
    EXPECT_FALSE(inSight("txtnewpass") || inSight("txtconfirmpass"));
}

struct UserScreensTest : testing::Test {
    ScreenDesk desk;

    UserScreensTest() { desk.shared.currentuser = "operator"; }

    void AddUser(const std::string& userid) {
        core::UserRecord user;
        user.firstname = user.lastname = user.userid = userid;
        user.password = "Gate7";
        user.readsec = 3;
        user.writesec = 2;
        EXPECT_FALSE(core::SaveUser(desk.dbconn, desk.shared, desk.logs, user, "Gate7", ""));
        desk.logs.ClearAudit();
    }
    std::string Audit() { return desk.logs.ReadAudit().text; }
};

std::vector<std::string> Listed(const QWidget& form) {
    std::vector<std::string> users = Lines(form, "Grid");
    users.erase(users.begin());
    return users;
}

TEST_F(UserScreensTest, KeysAloneAddAUser) {
    auto& list = desk.Open<::desk::frmuser>();
    QTest::keyClick(&list, Qt::Key_A, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.window.Front() != &list; }));
    auto& form = desk.Front<::desk::frmnewuser>();
    const auto save = [&form] { QTest::keyClick(&form, Qt::Key_S, Qt::AltModifier); };
    save();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Box(form) != nullptr; }));
    EXPECT_EQ(Answer(form), "Fistname should not be Blank");
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
        Key(form, Qt::Key_Tab);
    }
    save();
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.window.Front() == &list; }));
    EXPECT_THAT(Listed(list), ElementsAre("operator", "pat"));
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30 :operator created user pat.\r\n");
    const auto pat = core::ReadUser(desk.dbconn, "pat").value();
    EXPECT_EQ(pat.firstname + " " + pat.lastname + " " + pat.password, "Pat O'Neil Gate7");
    EXPECT_EQ(std::pair(pat.readsec, pat.writesec), std::pair(4, 3));
    EXPECT_TRUE(pat.tts);
    EXPECT_FALSE(pat.configstation);
}

TEST_F(UserScreensTest, AnEditShowsTheUserAndSaysWhatIsWrongWhereItIs) {
    AddUser("kim");
    auto& list = desk.Open<::desk::frmuser>();
    The<::desk::Grid>(list, "Grid").SelectRow(0);
    Click(list, "cmdedit");
    auto& form = desk.Front<::desk::frmnewuser>();
    EXPECT_EQ(Text(form, "txtpassword") + Text(form, "cmbreadsec") + Text(form, "cmbwritesec"), "Gate732");
    struct Case {
        const char *field, *text, *box, *focus;
    };
    for (const Case& c :
         {Case{"txtpassword", "Gate7ÿ", "Password and Confirm Password must be same.", "txtconfirmpassword"},
          Case{"txtconfirmpassword", "Gate7ÿ",
               "The password cannot be stored: it is too long or holds a character that is out of range",
               "txtpassword"},
          Case{"txtuser", "Operator", "User Already Exists", "txtuser"},
          Case{"txtlastname", "", "Lastname should not be Blank", "txtlastname"}}) {
        Type(form, c.field, c.text);
        Click(form, "cmdsave");
        EXPECT_EQ(Answer(form), c.box);
        EXPECT_EQ(Focus(form), c.focus) << c.box;
    }
    EXPECT_EQ(Audit(), "");
    Type(form, "txtlastname", "Kim");
    Type(form, "txtuser", "zoe");
    Type(form, "txtpassword", "Gate7");
    Type(form, "txtconfirmpassword", "Gate7");
    QTest::keyClick(&The(form, "chkhistorical"), Qt::Key_Space);
    QTest::keyClick(&The(form, "txtuser"), Qt::Key_Return);
    QCoreApplication::processEvents();
    ASSERT_EQ(desk.window.Front(), &list);
    EXPECT_THAT(Listed(list), ElementsAre("operator", "zoe"));
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30 :operator edited user zoe.\r\n");
    EXPECT_TRUE(core::ReadUser(desk.dbconn, "zoe")->historicaldata);
}

TEST_F(UserScreensTest, EachBoxIsTheRightOfItsColumn) {
    AddUser("kim");
    desk.Open<::desk::frmuser>();
    for (const auto& [box, column] : {std::pair{"chkconfig", "configstation"},
                                      {"chktts", "tts"},
                                      {"chkgas", "gascomposition"},
                                      {"chkutility", "utility"},
                                      {"chkscheduler", "scheduler"},
                                      {"chkuser", "usermanager"},
                                      {"chkarchive", "Archive"},
                                      {"chkdailyreport", "Dailyreport"},
                                      {"chktrends", "trends"},
                                      {"chkhistorical", "historicaldata"},
                                      {"chkChangeRight", "change"}}) {
        for (const bool given : {true, false}) {
            auto& form = desk.Open<::desk::frmnewuser>("kim");
            EXPECT_EQ(The<QCheckBox>(form, box).isChecked(), !given) << box;
            The<QCheckBox>(form, box).setChecked(given);
            Click(form, "cmdsave");
            EXPECT_EQ(desk.Count(std::string("users where userid='kim' and ") + column), given ? 1 : 0) << box;
        }
    }
}

TEST_F(UserScreensTest, AUserIsDeletedOnceTheAnswerIsYes) {
    AddUser("administrator");
    AddUser("o'neil 100%");
    auto& list = desk.Open<::desk::frmuser>();
    The<::desk::Grid>(list, "Grid").SelectRow(0);
    Click(list, "cmddelete");
    EXPECT_EQ(Answer(list, QMessageBox::No), "Are You Sure?");
    EXPECT_THAT(Listed(list), ElementsAre("o'neil 100%", "operator"));
    for (const char* user : {"o'neil 100%", "operator"}) {
        Click(list, "cmddelete");
        Answer(list, QMessageBox::Yes);
        EXPECT_EQ(Answer(list), "User Deleted..");
        EXPECT_THAT(Listed(list), testing::Not(testing::Contains(user)));
    }
    EXPECT_EQ(Usable(list, {"cmdadd", "cmdedit", "cmddelete"}), "cmdadd ");
    EXPECT_TRUE(core::ReadUser(desk.dbconn, "administrator"));
}

TEST_F(UserScreensTest, AFailureLeavesTheFormAndIsToldWithoutThePassword) {
    AddUser("kim");
    auto& form = desk.Open<::desk::frmnewuser>("kim");
    desk.dbconn.Execute("drop table TTS_table");
    Type(form, "txtlastname", "Changed");
    Click(form, "cmdsave");
    EXPECT_EQ(desk.window.Front(), &form);
    EXPECT_EQ(Text(form, "txtlastname"), "Changed");
    EXPECT_EQ(core::ReadUser(desk.dbconn, "kim")->lastname, "kim");
    EXPECT_THAT(desk.feedback.status, ElementsAre(testing::HasSubstr("TTS_table")));
    EXPECT_THAT(desk.RtuErr(), testing::Not(testing::HasSubstr("Gate7")));
}

struct LogScreensTest : testing::Test {
    ScreenDesk desk;
};

TEST_F(LogScreensTest, TheAuditTrailIsShownWhenAskedForSavedAndCleared) {
    desk.logs.WriteAudit("operator created user O'Neil 100%.");
    auto& below = desk.Open<::desk::frmlog>();
    auto& form = desk.Open<::desk::frmtts>();
    EXPECT_EQ(Text(form, "rtb_tts"), "");
    Key(form, Qt::Key_Return);  // the command that is next
    EXPECT_EQ(Text(form, "rtb_tts"), "operator created user O'Neil 100%.\n");
    desk.logs.WriteAudit("Straße");
    Click(form, "cmd_view");
    QTest::keyClick(&The(form, "rtb_tts"), 'x');
    EXPECT_EQ(Text(form, "rtb_tts"), "operator created user O'Neil 100%.\nStraße\n");
    const auto file = desk.shared.directory / "saved.txt";
    EXPECT_EQ(The<::desk::LogView>(form, "rtb_tts").Save(QString::fromStdString(file.string())), "");
    EXPECT_EQ(FileText(file), "operator created user O'Neil 100%.\r\nStraße\r\n");
    Click(form, "cmd_clear");
    EXPECT_EQ(Text(form, "rtb_tts"), "");
    EXPECT_EQ(desk.Count("TTS_table"), 0);
    desk.dbconn.Execute("drop table TTS_table");
    Click(form, "cmd_view");
    EXPECT_THAT(desk.feedback.status.back(), testing::HasSubstr("TTS_table"));
    Key(form, Qt::Key_Escape);
    EXPECT_EQ(desk.window.Front(), &below);
}

TEST_F(LogScreensTest, TheErrorLogIsShownClearedAndMissed) {
    desk.logs.WriteRtuErr("RTU Dead[3]");
    auto& form = desk.Open<::desk::frmlog>();
    EXPECT_EQ(Text(form, "Text1"), "09/03/2026 07:59:30--:RTU Dead[3]\n");
    EXPECT_FALSE(Seen(form, "lblpart"));
    Click(form, "cmdclear");
    EXPECT_EQ(Text(form, "Text1"), "");
    EXPECT_FALSE(std::filesystem::exists(desk.shared.rtuErrPath));
    Click(form, "cmdclear");
    EXPECT_THAT(desk.feedback.status, testing::ElementsAre("RTU_Err.log: No such file or directory"));
}

// Of a long log the end is shown.
TEST_F(LogScreensTest, OfALogOfYearsTheEndIsShownAndTold) {
    std::ofstream(desk.shared.rtuErrPath) << std::string(2'000'000, 'x') << "\nlast\n";
    auto& form = desk.Open<::desk::frmlog>();
    EXPECT_TRUE(Seen(form, "lblpart"));
    EXPECT_EQ(Text(form, "lblpart"), "The log is long: only its last lines are shown.");
    EXPECT_EQ(Text(form, "Text1"), "last\n");
}

}  // namespace
