#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "core/Clock.h"

namespace mail {

// One mail. Each of the three recipient fields holds one address or is empty.
struct MailMessage {
    std::string sender;
    std::string to;
    std::string cc;
    std::string bcc;  // gets the mail and stands in no header
    std::string subject;
    std::string text;
    std::string attachmentName;  // empty: no attachment
    std::string attachment;      // its bytes
    // Of a mail that was kept: when it was written, and what tells it from all others. Else it is written as it is
    // sent.
    std::optional<core::DateTime> written{};
    std::string unique{};
};

inline bool HasAddressee(const MailMessage& message) {
    return !message.to.empty() || !message.cc.empty() || !message.bcc.empty();
}

// How the mail leaves: the row of mail_server.
struct MailServer {
    std::string url;  // "smtp://host:port" or "smtps://..."; empty: the server on this machine
    std::string user;
    std::string password;
    std::string sender;  // empty: the first addressee of each mail
};

struct MailOutcome {
    bool sent = false;
    std::string reason;  // why not, in the server's or the network's words
};

class MailTransport {
  public:
    virtual ~MailTransport() = default;

    // Delivers the mail to the server, waiting through the clock. Ends early, unsent, as soon as `ended` holds.
    virtual MailOutcome Send(const MailMessage& message, const MailServer& server, core::Clock& clock,
                             const std::function<bool()>& ended) = 0;
};

// Who a mail comes from: as mail_server says, else its first addressee, who then at least knows the name.
std::string Sender(const MailServer& server, const MailMessage& message);

// Takes a file along, under its own name. Throws std::runtime_error with what the operator is told when it cannot be
// read.
void Attach(MailMessage& message, const std::filesystem::path& file);

}  // namespace mail
