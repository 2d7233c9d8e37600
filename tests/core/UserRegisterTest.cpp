#include <gmock/gmock.h>

#include "core/UserRegister.h"
#include "core/Users.h"
#include "support/ScratchDesk.h"

using namespace core;
using testing::ElementsAre;

namespace {

UserRecord Kim() {
    UserRecord kim;
    kim.firstname = "Kim";
    kim.lastname = "Lee";
    kim.userid = "kim";
    kim.password = "Gate7";
    kim.readsec = 3;
    kim.writesec = 2;
    return kim;
}

struct UserRegisterTest : testing::Test {
    support::ScratchDesk desk;

    UserRegisterTest() { desk.shared.currentuser = "operator"; }

    // The message of what is wrong; empty when the user is saved.
    std::string Save(const UserRecord& user, const std::string& editedId = "") {
        const auto fault = SaveUser(desk.dbconn, desk.shared, desk.logs, user, user.password, editedId);
        return fault ? fault->message : "";
    }
    LoginOutcome Try(const std::string& userid, const std::string& password) {
        return Login(desk.dbconn, desk.shared, desk.logs, userid, password);
    }
};

TEST(ScramblePassword, ReversesAndRaisesEachCodeByItsPosition) {
    EXPECT_EQ(ScramblePassword("abc"), "fdb");       // c+3, b+2, a+1
    EXPECT_EQ(ScramblePassword("þ"), "ÿ");           // 254 + 1
    EXPECT_EQ(ScramblePassword("ÿ"), std::nullopt);  // 255 + 1 leaves the code page
    EXPECT_EQ(UnscramblePassword("zvzfvhrp"), "operator");
    EXPECT_EQ(UnscramblePassword("\x02\x01"), std::nullopt);  // no character has the code 0
    EXPECT_EQ(UnscramblePassword("日"), std::nullopt);
    for (const std::string plain : {"", " ' % ", "Straße", "€uro", "~~~~~~~~~~"}) {
        EXPECT_EQ(UnscramblePassword(ScramblePassword(plain).value()), plain);
    }
}

// Each case corrects one thing more than the one before it.
TEST_F(UserRegisterTest, TellsTheFirstThingThatIsWrong) {
    UserRecord user;
    std::string confirm;
    const auto wrong = [&] {
        const auto fault = CheckUser(desk.dbconn, user, confirm, "");
        return fault ? fault->control + ": " + fault->message : "";
    };
    user.firstname = "  ";
    EXPECT_EQ(wrong(), "txtfirstname: Fistname should not be Blank");
    user.firstname = "O'Neil";
    EXPECT_EQ(wrong(), "txtlastname: Lastname should not be Blank");
    user.lastname = "100%";
    EXPECT_EQ(wrong(), "txtuser: UserId should not be Blank");
    user.userid = " Operator ";
    EXPECT_EQ(wrong(), "txtpassword: Password should not be Blank");
    user.password = "日";
    EXPECT_EQ(wrong(), "txtconfirmpassword: Password and Confirm Password must be same.");
    confirm = "日";
    user.readsec = 7;
    EXPECT_EQ(wrong(), "cmbreadsec: Please Select Read Security Level for the user.");
    user.readsec = 1;
    EXPECT_EQ(wrong(), "cmbwritesec: Please Select Write Security Level for the user.");
    user.writesec = 6;
    for (const char* taken : {" Operator ", "warden"}) {  // built in, though it has no row
        user.userid = taken;
        EXPECT_EQ(wrong(), "txtuser: User Already Exists");
    }
    user.userid = "O'Neil";
    for (const std::string& password : {std::string("日"), std::string(10000, 'a')}) {
        user.password = confirm = password;
        EXPECT_EQ(wrong(),
                  "txtpassword: The password cannot be stored: it is too long or holds a character that is out of "
                  "range");
    }
    user.password = confirm = "Gate7";
    EXPECT_EQ(wrong(), "");
}

TEST_F(UserRegisterTest, AUserIsAddedEditedAndDeletedWithAnAuditLineEach) {
    UserRecord kim = Kim();
    kim.userid = " O'Neil 100% ";
    EXPECT_EQ(Save(kim), "");
    EXPECT_EQ(Try("o'neil 100%", "Gate7"), LoginOutcome::LoggedIn);
    desk.shared.currentuser = "operator";

    auto read = ReadUser(desk.dbconn, "O'Neil 100%").value();
    EXPECT_EQ(read.password, "Gate7");
    EXPECT_EQ(read.readsec, 3);
    EXPECT_EQ(read.writesec, 2);
    read.userid = "pat";
    read.password = "Door9";
    read.writesec = 5;
    EXPECT_EQ(Save(read, "O'Neil 100%"), "");
    EXPECT_THAT(ListUsers(desk.dbconn), ElementsAre("operator", "pat"));
    EXPECT_EQ(ReadUser(desk.dbconn, "pat")->writesec, 5);
    EXPECT_EQ(CheckPassword(desk.dbconn, "pat", "Door9"), LoginOutcome::LoggedIn);

    DeleteUser(desk.dbconn, desk.shared, desk.logs, "pat");
    EXPECT_EQ(CheckPassword(desk.dbconn, "pat", "Door9"), LoginOutcome::Refused);
    EXPECT_EQ(desk.logs.ReadAudit().text,
              "09/03/2026 07:59:30 :operator created user O'Neil 100%.\r\n"
              "09/03/2026 07:59:30:  user o'neil 100% logged in.\r\n"
              "09/03/2026 07:59:30 :operator edited user pat.\r\n"
              "09/03/2026 07:59:30 :operator deleted user pat.\r\n");
}

TEST_F(UserRegisterTest, NoSaveOverwritesAnotherUser) {
    UserRecord kim = Kim();
    ASSERT_EQ(Save(kim), "");
    EXPECT_EQ(Save(kim), "User Already Exists");
    for (const std::string taken : {"OPERATOR ", "Warden"}) {
        kim.userid = taken;
        EXPECT_EQ(Save(kim, "kim"), "User Already Exists") << taken;
    }
    kim.userid = "gone";
    EXPECT_EQ(Save(kim, "gone"), "The user gone is not there any more");
    EXPECT_EQ(CheckPassword(desk.dbconn, "operator", "operator"), LoginOutcome::LoggedIn);
    kim.userid = "KIM";  // the same user, spelled otherwise
    EXPECT_EQ(Save(kim, "kim"), "");
    EXPECT_THAT(ListUsers(desk.dbconn), ElementsAre("KIM", "operator"));
    UserRecord administrator = Kim();
    administrator.userid = "Administrator";
    administrator.firstname = "Ada";
    EXPECT_EQ(Save(administrator), "");
    EXPECT_EQ(Try("administrator", "Gate7"), LoginOutcome::LoggedIn) << "and is not listed";
    EXPECT_THAT(ListUsers(desk.dbconn), ElementsAre("KIM", "operator"));
}

// Levels are found by the first name, under the user id.
TEST_F(UserRegisterTest, NobodyGetsTheLevelsOfAnother) {
    UserRecord kim = Kim();
    ASSERT_EQ(Save(kim), "");
    kim.firstname = "Operator";
    EXPECT_THAT(Save(kim, "kim"), testing::HasSubstr("The first name is the user id of operator"));
    UserRecord ann = Kim();
    ann.userid = "ann";
    ann.firstname = "kim";
    EXPECT_THAT(Save(ann), testing::HasSubstr("The first name is the user id of kim"));
    ann.firstname = "Bea";
    EXPECT_EQ(Save(ann), "");
    UserRecord bea = Kim();
    bea.userid = "bea";
    bea.firstname = "B.";
    EXPECT_THAT(Save(bea), testing::HasSubstr("The user id is the first name of ann"));
    ann.lastname = "Other";  // nothing of the kind: her own row, her names as they were
    EXPECT_EQ(Save(ann, "ann"), "");
}

TEST_F(UserRegisterTest, WithoutItsAuditLineNothingIsSavedOrDeleted) {
    desk.dbconn.Execute("drop table TTS_table");
    EXPECT_THROW(Save(Kim()), DatabaseError);
    EXPECT_THROW(DeleteUser(desk.dbconn, desk.shared, desk.logs, "operator"), DatabaseError);
    EXPECT_THAT(ListUsers(desk.dbconn), ElementsAre("operator"));
}

TEST_F(UserRegisterTest, ADamagedRowIsReadAsFarAsItGoes) {
    desk.dbconn.Execute("insert into users(userid, password, readsec, writesec, tts) values('kim','日',9,'abc','yes')");
    const auto kim = ReadUser(desk.dbconn, "kim").value();
    EXPECT_EQ(kim.firstname + kim.password, "");
    EXPECT_EQ(kim.readsec + kim.writesec, 0);
    EXPECT_FALSE(kim.tts);
}

// One right at a time: saved, read, and given at the login, and no other with it.
TEST_F(UserRegisterTest, EachRightHasAColumnAndAFlagOfItsOwn) {
    struct Case {
        bool UserRecord::*right;
        const char* column;
        bool Rights::*flag;
    };
    const std::vector<Case> cases = {
        {&UserRecord::configstation, "configstation", &Rights::rightConfigStation},
        {&UserRecord::tts, "tts", &Rights::rightTts},
        {&UserRecord::gascomposition, "gascomposition", &Rights::rightGasComposition},
        {&UserRecord::utility, "utility", &Rights::rightUtility},
        {&UserRecord::scheduler, "scheduler", &Rights::rightScheduler},
        {&UserRecord::usermanager, "usermanager", &Rights::rightUserManager},
        {&UserRecord::Archive, "Archive", &Rights::rightArchive},
        {&UserRecord::Dailyreport, "Dailyreport", &Rights::rightDailyReport},
        {&UserRecord::trends, "trends", &Rights::rightTrends},
        {&UserRecord::historicaldata, "historicaldata", &Rights::rightHistorical},
        {&UserRecord::change, "change", nullptr},
    };
    ASSERT_EQ(Save(Kim()), "");
    for (const Case& given : cases) {
        UserRecord kim = Kim();
        kim.*given.right = true;
        ASSERT_EQ(Save(kim, "kim"), "");
        const auto row = desk.dbconn.First("select * from users where userid='kim'").value();
        const auto read = ReadUser(desk.dbconn, "kim").value();
        ASSERT_EQ(Try("kim", "Gate7"), LoginOutcome::LoggedIn);
        for (const Case& other : cases) {
            const bool expected = &other == &given;
            EXPECT_EQ(row.Bool(other.column), expected) << given.column << " " << other.column;
            EXPECT_EQ(read.*other.right, expected) << given.column << " " << other.column;
            if (other.flag != nullptr) {
                EXPECT_EQ(desk.shared.rights.*other.flag, expected) << given.column << " " << other.column;
            }
        }
        EXPECT_TRUE(desk.shared.rights.rightOnline && desk.shared.rights.rightSetup);
    }
}

TEST_F(UserRegisterTest, NoLogHoldsAPassword) {
    desk.shared.logGenflag = true;
    UserRecord kim = Kim();
    kim.password = "Qx'9%zz";
    ASSERT_EQ(Save(kim), "");
    EXPECT_EQ(Try("kim", kim.password + "0"), LoginOutcome::Refused);
    EXPECT_TRUE(ChangePassword(desk.dbconn, "kim", " Qx'9%zzNew "));
    EXPECT_EQ(Try("kim", "Qx'9%zz"), LoginOutcome::Refused);
    EXPECT_EQ(Try("kim", "Qx'9%zzNew"), LoginOutcome::LoggedIn);
    desk.dbconn.Execute("create trigger full before update on users begin select raise(abort, 'disk full'); end");
    try {
        Save(kim, "kim");
        FAIL();
    } catch (const DatabaseError& failure) {
        desk.logs.WriteRtuErr(failure.what());
    }
    const std::string logs = desk.logs.ReadAudit().text + desk.RtuErr() + support::FileText(desk.shared.logpath);
    EXPECT_THAT(logs, testing::HasSubstr("disk full"));
    EXPECT_THAT(logs, testing::Not(testing::HasSubstr("Qx'9")));
    EXPECT_THAT(logs, testing::Not(testing::HasSubstr(ScramblePassword(kim.password).value())));
}

}  // namespace
