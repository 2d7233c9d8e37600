#pragma once

#include "reading/Workplace.h"

namespace collection {
class Scheduler;
}  // namespace collection
namespace mail {
class MailTransport;
}  // namespace mail

namespace desk {

class Navigator;

// What every screen works with.
struct Desk : reading::Workplace {
    core::Addressees& addressees;  // shared.addressees, all of it that a screen sets
    collection::Scheduler& scheduler;
    mail::MailTransport& mail;
    Navigator& navigator;
};

}  // namespace desk
