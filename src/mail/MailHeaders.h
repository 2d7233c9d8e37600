#pragma once

#include <string>
#include <vector>

#include "core/Clock.h"
#include "mail/Mail.h"

// The head of a mail, as the Internet message format has it.
namespace mail {

// Whether a text can stand as the one address of an envelope: no blank, control character, bracket, comma or
// semicolon, so that it is neither two addresses nor a header or a command of its own.
bool IsAddress(const std::string& text);

// What the operator is told of a text that is none.
std::string NotOneAddress(const std::string& text);

// An address as envelope and headers have it.
std::string Bracketed(const std::string& address);

// The text on one line, whatever was typed: each control character is a blank.
std::string OneLine(const std::string& text);

// One line of text as a header holds it: what is long or not plain ASCII becomes encoded words (RFC 2047) on lines of
// at most 76 characters.
std::string HeaderText(const std::string& text);

// "Tue, 10 Mar 2026 08:00:00 +0100": a local time of this machine's zone, in English whatever the locale.
std::string MailDate(const core::DateTime& at);

// How an attachment is named: as it stands in plain ASCII, in the extended notation (RFC 2231) otherwise.
std::string Disposition(const std::string& fileName);

// Date, Message-ID, From, To, Cc and Subject; the hidden addressee is in none of them. `unique` tells two mails of one
// second apart.
std::vector<std::string> MailHeaders(const MailMessage& message, const core::DateTime& now, const std::string& unique);

}  // namespace mail
