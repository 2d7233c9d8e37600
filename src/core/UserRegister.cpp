#include "core/UserRegister.h"

#include "core/Database.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Text.h"
#include "core/Users.h"

namespace core {

namespace {

constexpr int highestLevel = 6;

bool IsLevel(std::int64_t level) {
    return level >= 1 && level <= highestLevel;
}

int Level(const Row& row, const char* column) {
    const auto level = row.Long(column);
    return IsLevel(level) ? static_cast<int>(level) : 0;
}

bool IsTaken(Database& dbconn, const std::string& userid, const std::string& editedId) {
    if (!editedId.empty() && SameText(userid, editedId)) {
        return false;
    }
    return IsSuperUser(userid) || dbconn.First("select userid from users where userid = ?", {userid});
}

// Levels are found by the first name, under the user id of whoever asks. So a first name that is another's user id
// gives that one these levels, and a user id that is another's first name takes that one's.
std::optional<UserFault> LevelsFault(Database& dbconn, const UserRecord& user, const std::string& editedId) {
    const auto edited = editedId.empty() ? std::nullopt : ReadUser(dbconn, editedId);
    if (!editedId.empty() && !edited) {
        return std::nullopt;
    }
    const auto others = [&](const char* column, const std::string& name) {
        return dbconn.First(std::string("select userid from users where userid <> ? and ") + column + " = ?",
                            {editedId, name});
    };
    const std::string userid = Trim(user.userid);
    if (!edited || !SameText(edited->firstname, user.firstname)) {
        if (const auto other = others("userid", user.firstname)) {
            return UserFault{"The first name is the user id of " + other->Text("userid") +
                                 ", who would have the levels of this user",
                             "txtfirstname"};
        }
    }
    if (!edited || !SameText(edited->userid, userid)) {
        if (const auto other = others("firstname", userid)) {
            return UserFault{
                "The user id is the first name of " + other->Text("userid") + ": this user would have those levels",
                "txtuser"};
        }
    }
    return std::nullopt;
}

// The values of a row in the order of the statements below.
std::vector<Value> Values(const UserRecord& user) {
    return {user.firstname,      user.lastname,    Trim(user.userid),  ScramblePassword(user.password).value(),
            user.readsec,        user.writesec,    user.configstation, user.tts,
            user.gascomposition, user.utility,     user.scheduler,     user.usermanager,
            user.Archive,        user.Dailyreport, user.trends,        user.historicaldata,
            user.change};
}

constexpr const char* insertUser =
    "insert into users(firstname, lastname, userid, password, readsec, writesec, configstation, tts, gascomposition,"
    " utility, scheduler, usermanager, Archive, Dailyreport, trends, historicaldata, change, logon)"
    " values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,false)";

constexpr const char* updateUser =
    "update users set firstname=?, lastname=?, userid=?, password=?, readsec=?, writesec=?, configstation=?, tts=?,"
    " gascomposition=?, utility=?, scheduler=?, usermanager=?, Archive=?, Dailyreport=?, trends=?, historicaldata=?,"
    " change=? where userid=?";

}  // namespace

std::vector<std::string> ListUsers(Database& dbconn) {
    return dbconn.Texts("select userid from users where userid <> 'administrator' order by userid");
}

std::optional<UserRecord> ReadUser(Database& dbconn, const std::string& userid) {
    const auto row = dbconn.First("select * from users where userid = ?", {userid});
    if (!row) {
        return std::nullopt;
    }
    UserRecord user;
    user.firstname = row->Text("firstname");
    user.lastname = row->Text("lastname");
    user.userid = row->Text("userid");
    user.password = UnscramblePassword(row->Text("password")).value_or("");
    user.readsec = Level(*row, "readsec");
    user.writesec = Level(*row, "writesec");
    user.configstation = row->Bool("configstation");
    user.tts = row->Bool("tts");
    user.gascomposition = row->Bool("gascomposition");
    user.utility = row->Bool("utility");
    user.scheduler = row->Bool("scheduler");
    user.usermanager = row->Bool("usermanager");
    user.Archive = row->Bool("Archive");
    user.Dailyreport = row->Bool("Dailyreport");
    user.trends = row->Bool("trends");
    user.historicaldata = row->Bool("historicaldata");
    user.change = row->Bool("change");
    return user;
}

std::optional<UserFault> CheckUser(Database& dbconn, const UserRecord& user, const std::string& confirmPassword,
                                   const std::string& editedId) {
    if (Trim(user.firstname).empty()) {
        return UserFault{"Fistname should not be Blank", "txtfirstname"};
    }
    if (Trim(user.lastname).empty()) {
        return UserFault{"Lastname should not be Blank", "txtlastname"};
    }
    if (Trim(user.userid).empty()) {
        return UserFault{"UserId should not be Blank", "txtuser"};
    }
    if (Trim(user.password).empty()) {
        return UserFault{"Password should not be Blank", "txtpassword"};
    }
    if (user.password != confirmPassword) {
        return UserFault{"Password and Confirm Password must be same.", "txtconfirmpassword"};
    }
    if (!IsLevel(user.readsec)) {
        return UserFault{"Please Select Read Security Level for the user.", "cmbreadsec"};
    }
    if (!IsLevel(user.writesec)) {
        return UserFault{"Please Select Write Security Level for the user.", "cmbwritesec"};
    }
    if (IsTaken(dbconn, Trim(user.userid), editedId)) {
        return UserFault{"User Already Exists", "txtuser"};
    }
    if (const auto fault = LevelsFault(dbconn, user, editedId)) {
        return fault;
    }
    if (!ScramblePassword(user.password)) {
        return UserFault{"The password cannot be stored: it is too long or holds a character that is out of range",
                         "txtpassword"};
    }
    return std::nullopt;
}

std::optional<UserFault> SaveUser(Database& dbconn, const MAIN_Module& shared, Logs& logs, const UserRecord& user,
                                  const std::string& confirmPassword, const std::string& editedId) {
    std::optional<UserFault> fault;
    dbconn.InTransaction([&] {
        fault = CheckUser(dbconn, user, confirmPassword, editedId);
        if (fault) {
            return;
        }
        std::vector<Value> values = Values(user);
        if (editedId.empty()) {
            dbconn.Execute(insertUser, values);
        } else {
            values.emplace_back(editedId);
            if (dbconn.Execute(updateUser, values) == 0) {
                fault = UserFault{"The user " + editedId + " is not there any more", "txtuser"};
                return;
            }
        }
        logs.WriteAudit(logs.Stamp() + " :" + shared.currentuser + (editedId.empty() ? " created" : " edited") +
                        " user " + Trim(user.userid) + ".");
    });
    return fault;
}

void DeleteUser(Database& dbconn, const MAIN_Module& shared, Logs& logs, const std::string& userid) {
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from users where userid = ?", {userid});
        logs.WriteAudit(logs.Stamp() + " :" + shared.currentuser + " deleted user " + userid + ".");
    });
}

}  // namespace core
