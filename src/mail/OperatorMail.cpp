#include "mail/OperatorMail.h"

#include <exception>
#include <utility>

#include "core/Text.h"
#include "mail/MailHeaders.h"

namespace mail {

std::optional<MailFault> FaultOf(const MailMessage& message) {
    if (!HasAddressee(message)) {
        return MailFault{MailField::To, "Specify Mail Address"};
    }
    for (const auto& [field, address] :
         {std::pair{MailField::To, message.to}, std::pair{MailField::Cc, message.cc},
          std::pair{MailField::Bcc, message.bcc}, std::pair{MailField::Sender, message.sender}}) {
        if (!address.empty() && !IsAddress(address)) {
            return MailFault{field, (field == MailField::Sender ? "Sender: " : "") + NotOneAddress(address)};
        }
    }
    return std::nullopt;
}

void NameWhatIsEmpty(OperatorMail& mail) {
    for (std::string* text : {&mail.subject, &mail.text}) {
        if (text->empty()) {
            *text = "None";
        }
    }
}

std::variant<MailMessage, MailFault> Compose(const OperatorMail& mail, const MailServer& server) {
    OperatorMail named = mail;
    NameWhatIsEmpty(named);
    MailMessage message;
    message.to = core::Trim(named.to);
    message.cc = core::Trim(named.cc);
    message.bcc = core::Trim(named.bcc);
    message.subject = named.subject;
    message.text = named.text + " ";
    message.sender = Sender(server, message);
    if (auto fault = FaultOf(message)) {
        return *fault;
    }
    try {
        if (!mail.attachment.empty()) {
            Attach(message, mail.attachment);
        }
    } catch (const std::exception& failure) {
        return MailFault{MailField::Attachment, failure.what()};
    }
    return message;
}

}  // namespace mail
