#pragma once

#include "mail/Mail.h"

namespace mail {

// Mail through an SMTP server, by libcurl. It is driven inside the clock's waits, so neither the window nor the
// schedule stands still for a slow server or name service, and it gives up after its own time limit. To a server that
// wants a user the password goes over TLS only.
class SmtpTransport final : public MailTransport {
  public:
    // The whole mail may take that long, by the clock of Send.
    explicit SmtpTransport(double timeLimitMs = 60000) : timeLimitMs_(timeLimitMs) {}

    MailOutcome Send(const MailMessage& message, const MailServer& server, core::Clock& clock,
                     const std::function<bool()>& ended) override;

  private:
    double timeLimitMs_;
};

}  // namespace mail
