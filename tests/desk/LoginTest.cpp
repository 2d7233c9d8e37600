#include <gtest/gtest.h>

#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include "desk/kit/Boxes.h"
#include "desk/shell/frmLogin.h"
#include "support/ScratchDesk.h"

namespace {

struct LoginTest : testing::Test {
    support::ScratchDesk desk;
    std::vector<std::string> boxes;
    ::desk::frmLogin form{desk.dbconn, desk.shared, desk.logs,
                          [this](const QString& text, const QString&) { boxes.push_back(text.toStdString()); }};
    QSignalSpy done{&form, &::desk::frmLogin::LoginDone};
    QSignalSpy abandoned{&form, &::desk::frmLogin::Abandoned};
    QLineEdit* txtuser = form.findChild<QLineEdit*>("txtuser");
    QLineEdit* txtpassword = form.findChild<QLineEdit*>("txtpassword");
    QLineEdit* txtnewpass = form.findChild<QLineEdit*>("txtnewpass");
    QLineEdit* txtconfirmpass = form.findChild<QLineEdit*>("txtconfirmpass");

    LoginTest() {
        form.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&form));
    }
    void Type(const QString& user, const QString& password) {
        txtuser->setText(user);
        txtpassword->setText(password);
    }
    void Click(const char* command) { form.findChild<QPushButton*>(command)->click(); }
};

TEST_F(LoginTest, SaysWhatIsWrongAndWhereToMendIt) {
    desk.dbconn.Execute("insert into users(userid, password, logon) values('kim','y',true)");  // "x" is stored as y
    struct Case {
        QString user, password;
        const char* box;
        QLineEdit* focus;
    };
    const char* const invalid = "Invalid UserName or Password , try again!";
    for (const Case& c :
         {Case{"operator", "wrong", invalid, txtuser}, Case{"", "", invalid, txtuser},
          Case{"' or ''='", "' or ''='", invalid, txtuser},
          Case{QString(10000, 'a'), QString(10000, 'b'), invalid, txtuser},
          Case{"WARDEN", "Panelgrove", invalid, txtuser}, Case{"kim", "x", "User Already Logged On..", txtpassword}}) {
        boxes.clear();
        Type(c.user, c.password);
        Click("cmdOk");
        EXPECT_EQ(boxes, std::vector<std::string>{c.box}) << c.user.left(20).toStdString();
        EXPECT_TRUE(c.focus->hasFocus());
        EXPECT_EQ(c.focus->selectedText(), c.focus->text());
        EXPECT_FALSE(form.LoggedIn());
    }
    EXPECT_EQ(done.count(), 0);
}

TEST_F(LoginTest, KeysAloneLogIn) {
    EXPECT_TRUE(txtuser->hasFocus());
    QTest::keyClicks(txtuser, "operator");
    QTest::keyClick(txtuser, Qt::Key_Return);
    EXPECT_TRUE(txtpassword->hasFocus());
    QTest::keyClicks(txtpassword, "operator");
    QTest::keyClick(txtpassword, Qt::Key_Return);
    EXPECT_EQ(done.count(), 1);
    EXPECT_TRUE(form.LoggedIn());
    EXPECT_EQ(desk.shared.currentuser, "operator");
    EXPECT_TRUE(desk.shared.rights.rightScheduler);
}

// As on a bare X server: keys come, but no window manager has made the window the active one.
TEST_F(LoginTest, KeysAloneLogInWithoutAWindowManager) {
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    ASSERT_FALSE(form.isActiveWindow());
    for (const char* word : {"operator", "operator"}) {
        QTest::keyClicks(form.focusWidget(), word);
        QTest::keyClick(form.focusWidget(), Qt::Key_Return);
    }
    EXPECT_EQ(done.count(), 1);
}

TEST_F(LoginTest, TheSuperUserLogsInWithoutARow) {
    Type("Warden", "panelgrove");
    Click("cmdOk");
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(desk.shared.currentuser, "WARDEN");
}

TEST_F(LoginTest, EscapeAndCloseEndTheProgramOnlyWhileNobodyIsLoggedIn) {
    QTest::keyClick(&form, Qt::Key_Escape);
    EXPECT_EQ(abandoned.count(), 1);
    form.close();
    EXPECT_EQ(abandoned.count(), 2);
    EXPECT_TRUE(form.isVisible()) << "the end is asked for over it";
    Type("operator", "operator");
    Click("cmdOk");
    form.close();
    EXPECT_EQ(abandoned.count(), 2);
}

TEST_F(LoginTest, ChangesAPasswordOnceTheOldOneIsRight) {
    Type("operator", "wrong");
    Click("cmdchange");
    EXPECT_FALSE(txtnewpass->isVisible());
    Type("operator", "operator");
    Click("cmdchange");
    EXPECT_TRUE(txtnewpass->hasFocus());
    boxes.clear();
    Click("cmdsave");
    txtnewpass->setText("  ");  // would be stored as nothing
    txtconfirmpass->setText("  ");
    Click("cmdsave");
    EXPECT_TRUE(txtnewpass->hasFocus());
    txtnewpass->setText("gate7");
    txtconfirmpass->setText("gate8");
    Click("cmdsave");
    EXPECT_TRUE(txtconfirmpass->hasFocus());
    txtnewpass->setText("日");
    txtconfirmpass->setText("日");
    Click("cmdsave");
    txtnewpass->setText("gate7");
    txtconfirmpass->setText("gate7");
    txtconfirmpass->setFocus();
    QTest::keyClick(txtconfirmpass, Qt::Key_Return);  // on to the command that is next
    EXPECT_TRUE(form.findChild<QPushButton*>("cmdsave")->hasFocus());
    QTest::keyClick(&form, Qt::Key_Return);
    EXPECT_EQ(boxes, (std::vector<std::string>{
                         "Please Enter New Password", "Please Enter New Password", "Please Confirm Password",
                         "The new password holds a character that cannot be stored", "Password Changed"}));
    EXPECT_FALSE(txtnewpass->isVisible());
    EXPECT_EQ(done.count(), 0);
    Type("operator", "operator");
    Click("cmdOk");
    EXPECT_EQ(done.count(), 0);
    Type("operator", "gate7");
    Click("cmdOk");
    EXPECT_EQ(done.count(), 1);
}

TEST_F(LoginTest, AWrongUserAThousandTimesStaysOutAndTheRightOneGetsIn) {
    for (int i = 0; i < 1000; ++i) {
        Type("o'neil" + QString::number(i), "operator");
        Click("cmdOk");
    }
    EXPECT_EQ(boxes.size(), 1000U);
    EXPECT_EQ(done.count(), 0);
    EXPECT_FALSE(form.LoggedIn());
    Type("operator", "operator");
    Click("cmdOk");
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(desk.RtuErr(), "");
}

TEST_F(LoginTest, PasswordsAreInSightOnlyWhileTheirButtonIsDown) {
    Type("operator", "operator");
    auto* reveal = form.findChild<QToolButton*>("cmdreveal");
    auto* revealNew = form.findChild<QToolButton*>("cmdrevealnew");
    QTest::mousePress(reveal, Qt::LeftButton);
    EXPECT_EQ(txtpassword->echoMode(), QLineEdit::Normal);
    QTest::mouseRelease(reveal, Qt::LeftButton);
    EXPECT_EQ(txtpassword->echoMode(), QLineEdit::Password);
    Click("cmdchange");
    QTest::mousePress(revealNew, Qt::LeftButton);
    EXPECT_EQ(txtnewpass->echoMode(), QLineEdit::Normal);
    EXPECT_EQ(txtconfirmpass->echoMode(), QLineEdit::Normal);
    EXPECT_EQ(txtpassword->echoMode(), QLineEdit::Password);
    form.hide();
    EXPECT_EQ(txtnewpass->echoMode(), QLineEdit::Password);
}

TEST_F(LoginTest, BehindTheMessageTheMistakeIsSelected) {
    ::desk::frmLogin login(desk.dbconn, desk.shared, desk.logs, [&login](const QString& text, const QString& title) {
        ::desk::ShowBox(&login, text, title);
    });
    login.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&login));
    auto* user = login.findChild<QLineEdit*>("txtuser");
    user->setText("nobody");
    login.findChild<QPushButton*>("cmdOk")->click();
    auto* box = login.findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), "Invalid UserName or Password , try again!");
    ASSERT_TRUE(QTest::qWaitForWindowActive(box));
    QTest::keyClick(box, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&login));
    EXPECT_TRUE(user->hasFocus());
    EXPECT_EQ(user->selectedText(), "nobody");
}

}  // namespace
