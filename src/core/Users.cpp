#include "core/Users.h"

#include "core/Database.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Text.h"

namespace core {

namespace {

constexpr const char* superUser = "WARDEN";
constexpr const char* superPassword = "panelgrove";

Rights AllRights() {
    return {true, true, true, true, true, true, true, true, true, true, true, true};
}

Rights RightsOf(const Row& user) {
    Rights rights;
    rights.rightConfigStation = user.Bool("configstation");
    rights.rightTts = user.Bool("tts");
    rights.rightGasComposition = user.Bool("gascomposition");
    rights.rightUtility = user.Bool("utility");
    rights.rightScheduler = user.Bool("scheduler");
    rights.rightUserManager = user.Bool("usermanager");
    rights.rightArchive = user.Bool("Archive");
    rights.rightDailyReport = user.Bool("Dailyreport");
    rights.rightTrends = user.Bool("trends");
    rights.rightHistorical = user.Bool("historicaldata");
    rights.rightOnline = true;
    rights.rightSetup = true;
    return rights;
}

std::optional<Row> UserRow(Database& dbconn, const std::string& userid) {
    return dbconn.First("select * from users where userid = ?", {Trim(userid)});
}

}  // namespace

std::optional<std::string> ScramblePassword(const std::string& text) {
    const auto plain = ToCodePage(text);
    if (!plain) {
        return std::nullopt;
    }
    std::string stored;
    for (std::size_t position = plain->size(); position > 0; --position) {
        const std::size_t code = static_cast<unsigned char>((*plain)[position - 1]) + position;
        if (code > 255) {
            return std::nullopt;
        }
        stored += static_cast<char>(code);
    }
    return FromCodePage(stored);
}

std::optional<std::string> UnscramblePassword(const std::string& stored) {
    const auto codes = ToCodePage(stored);
    if (!codes) {
        return std::nullopt;
    }
    std::string plain;
    for (std::size_t position = 1; position <= codes->size(); ++position) {
        const std::size_t code = static_cast<unsigned char>((*codes)[codes->size() - position]);
        if (code <= position) {
            return std::nullopt;
        }
        plain += static_cast<char>(code - position);
    }
    return FromCodePage(plain);
}

bool IsSuperUser(const std::string& userid) {
    return UpperText(userid) == superUser;
}

AccessLevel CheckWriteLevel(Database& dbconn, const std::string&, int RS, int WS, const std::string& user) {
    if (user == superUser) {
        return AccessLevel::ReadWrite;
    }
    // Looked up by first name although callers give the user id: only a user whose two names agree has levels.
    const auto row = dbconn.First("select firstname,readsec,writesec from users where firstname = ?", {user});
    const auto readsec = row ? row->Long("readsec") : 0;
    const auto writesec = row ? row->Long("writesec") : 0;
    if (RS > readsec) {
        return AccessLevel::Hidden;
    }
    return WS > writesec ? AccessLevel::Read : AccessLevel::ReadWrite;
}

LoginOutcome CheckPassword(Database& dbconn, const std::string& userid, const std::string& password) {
    const auto user = UserRow(dbconn, userid);
    const auto stored = ScramblePassword(password);
    // A row without a password opens nothing, the empty text of the field least of all.
    if (!user || !stored || user->IsNull("password") || *stored != user->Text("password")) {
        return LoginOutcome::Refused;
    }
    // Nothing here sets logon: the flag is true only when somebody set it outside the program, to keep a user out.
    return user->Bool("logon") ? LoginOutcome::AlreadyLoggedOn : LoginOutcome::LoggedIn;
}

bool ChangePassword(Database& dbconn, const std::string& userid, const std::string& newPassword) {
    const auto stored = ScramblePassword(Trim(newPassword));
    return stored && dbconn.Execute("update users set password = ? where userid = ?", {*stored, Trim(userid)}) > 0;
}

LoginOutcome Login(Database& dbconn, MAIN_Module& shared, Logs& logs, const std::string& userid,
                   const std::string& password) {
    if (IsSuperUser(userid) && password == superPassword) {
        shared.currentuser = superUser;
        shared.rights = AllRights();
        return LoginOutcome::LoggedIn;
    }
    const LoginOutcome outcome = CheckPassword(dbconn, userid, password);
    if (outcome != LoginOutcome::LoggedIn) {
        return outcome;
    }
    shared.currentuser = userid;
    shared.rights = RightsOf(UserRow(dbconn, userid).value());
    logs.WriteAudit(logs.Stamp() + ":  user " + userid + " logged in.");
    return LoginOutcome::LoggedIn;
}

void ClearLogon(Database& dbconn, const std::string& userid) {
    dbconn.Execute("update users set logon = false where userid = ?", {userid});
}

}  // namespace core
