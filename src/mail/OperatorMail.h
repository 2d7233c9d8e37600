#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "mail/Mail.h"

// The mail that an operator writes.
namespace mail {

// As it was typed; an empty path is no attachment.
struct OperatorMail {
    std::string to;
    std::string cc;
    std::string bcc;
    std::string subject;
    std::string text;
    std::filesystem::path attachment;
};

// Why a mail cannot go, and the field in which it is mended.
enum class MailField { To, Cc, Bcc, Sender, Attachment };
struct MailFault {
    MailField field;
    std::string text;
};

// What is wrong with the addressees or the sender of a mail, if anything is.
std::optional<MailFault> FaultOf(const MailMessage& message);

// Puts "None" where there is no subject or no text.
void NameWhatIsEmpty(OperatorMail& mail);

// The mail as it is sent: its addressees without blanks around them, its attachment read, and a blank behind its text,
// since the attachment has a place in the text of some mail programs.
std::variant<MailMessage, MailFault> Compose(const OperatorMail& mail, const MailServer& server);

}  // namespace mail
