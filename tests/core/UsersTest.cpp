#include <gtest/gtest.h>

#include "core/Users.h"
#include "support/ScratchDesk.h"

using namespace core;

namespace {

struct UsersTest : testing::Test {
    support::ScratchDesk desk;

    void AddUser(const std::string& userid, const std::string& firstname, const std::string& password, int readsec,
                 int writesec) {
        desk.dbconn.Execute(
            "insert into users(userid, firstname, password, readsec, writesec, tts, logon) "
            "values(?,?,?,?,?,true,false)",
            {userid, firstname, ScramblePassword(password).value(), readsec, writesec});
    }
    LoginOutcome Try(const std::string& userid, const std::string& password) {
        return Login(desk.dbconn, desk.shared, desk.logs, userid, password);
    }
};

TEST_F(UsersTest, LoginLetsInWhoHasTheRightPasswordAndNobodyElse) {
    AddUser("o'neil", "Pat", "Gate7", 3, 2);
    desk.dbconn.Execute("insert into users(userid, firstname) values('kim', 'kim')");  // without a password
    const std::string longest(10000, '\'');
    const std::pair<std::string, std::string> refused[] = {
        {"o'neil", "gate7"},
        {"o'neil", ""},
        {"", ""},
        {"' or '1'='1", "' or '1'='1"},
        {"%", "Gate7"},
        {"o_neil", "Gate7"},
        {"kim", ""},
        {"WARDEN", "PANELGROVE"},
        {" warden", "panelgrove"},
        {longest, longest},
        {"o'neil", "日"},
        {"o'neil", ScramblePassword("Gate7").value()},
    };
    for (const auto& [userid, password] : refused) {
        EXPECT_EQ(Try(userid, password), LoginOutcome::Refused) << userid;
        EXPECT_EQ(desk.shared.currentuser, "");
    }
    EXPECT_EQ(Try(" O'Neil ", "Gate7"), LoginOutcome::LoggedIn);
    EXPECT_EQ(desk.shared.currentuser, " O'Neil ");  // as typed
    EXPECT_EQ(desk.dbconn.First("select LOG from TTS_table")->Text("LOG"),
              "09/03/2026 07:59:30:  user  O'Neil  logged in.");
}

TEST_F(UsersTest, TheSuperUserNeedsNoRowAndLeavesNoAuditLine) {
    EXPECT_EQ(Try("wArDeN", "panelgrove"), LoginOutcome::LoggedIn);
    EXPECT_EQ(desk.shared.currentuser, "WARDEN");
    EXPECT_TRUE(desk.shared.rights.rightUserManager && desk.shared.rights.rightHistorical);
    EXPECT_FALSE(desk.dbconn.First("select * from TTS_table"));
    EXPECT_NO_THROW(ClearLogon(desk.dbconn, "WARDEN"));
}

TEST_F(UsersTest, AUserSetAsLoggedOnOutsideTheProgramIsKeptOut) {
    AddUser("kim", "Kim", "x", 1, 1);
    desk.dbconn.Execute("update users set logon = true where userid='kim'");
    EXPECT_EQ(Try("kim", "y"), LoginOutcome::Refused);
    EXPECT_EQ(Try("kim", "x"), LoginOutcome::AlreadyLoggedOn);
    ClearLogon(desk.dbconn, "kim");
    EXPECT_EQ(Try("kim", "x"), LoginOutcome::LoggedIn);
}

TEST_F(UsersTest, LevelsAreLookedUpByFirstName) {
    AddUser("kim", "kim", "x", 4, 2);
    AddUser("lee", "Lena", "x", 6, 6);
    struct Case {
        int RS, WS;
        const char* user;
        AccessLevel level;
    };
    for (const Case& c : {Case{4, 2, "kim", AccessLevel::ReadWrite}, Case{4, 3, "kim", AccessLevel::Read},
                          Case{5, 2, "kim", AccessLevel::Hidden}, Case{5, 3, "kim", AccessLevel::Hidden},
                          Case{1, 1, "lee", AccessLevel::Hidden}, Case{0, 0, "lee", AccessLevel::ReadWrite},
                          Case{9, 9, "WARDEN", AccessLevel::ReadWrite}}) {
        EXPECT_EQ(CheckWriteLevel(desk.dbconn, "Pipe Material", c.RS, c.WS, c.user), c.level) << c.user << c.RS << c.WS;
    }
}

}  // namespace
