#pragma once

namespace core {
class Clock;
class Database;
class Feedback;
class Logs;
struct MAIN_Module;
}  // namespace core
namespace collection {
class Scheduler;
}  // namespace collection
namespace mail {
class MailTransport;
}  // namespace mail
namespace mail {}  // namespace mail
namespace protocols {
class FieldLines;
struct BsapCounters;
}  // namespace protocols

namespace desk {

class Navigator;

// What every screen works with.
struct Desk {
    core::Database& dbconn;
    core::MAIN_Module& shared;
    core::Logs& logs;
    core::Clock& clock;
    core::Feedback& feedback;
    protocols::FieldLines& lines;
    protocols::BsapCounters& counters;
    collection::Scheduler& scheduler;
    mail::MailTransport& mail;
    Navigator& navigator;
};

}  // namespace desk
