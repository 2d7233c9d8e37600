#pragma once

#include <optional>
#include <string>
#include <vector>

namespace core {

class Database;
class Logs;
struct MAIN_Module;

// A row of users as its screen shows it.
struct UserRecord {
    std::string firstname;
    std::string lastname;
    std::string userid;
    std::string password;  // as typed, not as stored; empty where the stored one cannot be read
    int readsec = 0;       // 1 to 6; anything else is no level
    int writesec = 0;
    bool configstation = false;
    bool tts = false;
    bool gascomposition = false;
    bool utility = false;
    bool scheduler = false;
    bool usermanager = false;
    bool Archive = false;
    bool Dailyreport = false;
    bool trends = false;
    bool historicaldata = false;
    bool change = false;  // stored and shown; nothing asks for it
};

// What keeps a user from being saved, and the control where it is mended.
struct UserFault {
    std::string message;
    std::string control;
};

// The user ids in their order, without "administrator", who is nobody's to edit. Throws DatabaseError.
std::vector<std::string> ListUsers(Database& dbconn);

// Nothing when there is no such user. Throws DatabaseError.
std::optional<UserRecord> ReadUser(Database& dbconn, const std::string& userid);

// The first thing that is wrong with a user, in the order of the screen's fields; nothing when it can be saved.
// `editedId` is the user id that the record was read under, empty for a new user: another user's id, or the built-in
// super-user's, is taken. Throws DatabaseError.
std::optional<UserFault> CheckUser(Database& dbconn, const UserRecord& user, const std::string& confirmPassword,
                                   const std::string& editedId);

// Checks a user as above, then adds or updates the row and writes the audit line: both or neither. The user id is
// stored without the blanks at its ends, since a login looks it up so. With a fault nothing is changed. Throws
// DatabaseError.
std::optional<UserFault> SaveUser(Database& dbconn, const MAIN_Module& shared, Logs& logs, const UserRecord& user,
                                  const std::string& confirmPassword, const std::string& editedId);

// Deletes a user and writes the audit line: both or neither. Throws DatabaseError.
void DeleteUser(Database& dbconn, const MAIN_Module& shared, Logs& logs, const std::string& userid);

}  // namespace core
