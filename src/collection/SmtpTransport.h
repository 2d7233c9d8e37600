#pragma once

#include "collection/Mail.h"

namespace collection {

// Mail through an SMTP server, by libcurl. It is driven inside the clock's waits, so neither the window nor the
// schedule stands still for a slow server, and it gives up after its own time limit.
class SmtpTransport final : public MailTransport {
  public:
    static constexpr double timeLimitMs = 60000;

    MailOutcome Send(const MailMessage& message, const MailServer& server, core::Clock& clock,
                     const std::function<bool()>& ended) override;
};

}  // namespace collection
