#pragma once

#include <optional>
#include <string>

namespace core {

class Database;
class Logs;
struct MAIN_Module;

// The stored form of a password: reversed, each character's 8-bit code raised by its position from 1.
// It is a form, not a protection. Nothing when a character leaves the 8-bit code page.
std::optional<std::string> ScramblePassword(const std::string& text);

// The plain text of a stored password, for the screen that edits a user. Nothing where the stored text is none that
// ScramblePassword makes.
std::optional<std::string> UnscramblePassword(const std::string& stored);

// The built-in super-user's id, in any spelling of case.
bool IsSuperUser(const std::string& userid);

// What a parameter is to a user: 1 read, 2 read and write, 3 hidden.
enum class AccessLevel { Read = 1, ReadWrite = 2, Hidden = 3 };

// Compares a parameter's levels with those of the user whose first name is `user`. A user without such a row has
// level 0 on both scales; the super-user may do everything. Throws DatabaseError.
AccessLevel CheckWriteLevel(Database& dbconn, const std::string& description, int RS, int WS, const std::string& user);

enum class LoginOutcome { LoggedIn, Refused, AlreadyLoggedOn };

// Compares a user's password with the one that is stored, without logging in. The super-user has no row.
// Throws DatabaseError.
LoginOutcome CheckPassword(Database& dbconn, const std::string& userid, const std::string& password);

// Stores a new password, without the blanks at its ends. False: a character has no scrambled form, or no such user;
// nothing is changed. Throws DatabaseError.
bool ChangePassword(Database& dbconn, const std::string& userid, const std::string& newPassword);

// Logs a user in: sets currentuser and the right flags and writes the audit line; the built-in super-user leaves
// none. On any other outcome nothing is changed. Throws DatabaseError.
LoginOutcome Login(Database& dbconn, MAIN_Module& shared, Logs& logs, const std::string& userid,
                   const std::string& password);

// The row's logon flag at the end of the program or at log-off; a user without a row changes nothing.
void ClearLogon(Database& dbconn, const std::string& userid);

}  // namespace core
