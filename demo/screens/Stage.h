#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "collection/Scheduler.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "desk/kit/Desk.h"
#include "desk/kit/Navigator.h"
#include "desk/shell/mainfrm.h"
#include "fieldsim/Field.h"
#include "fieldsim/SimLine.h"
#include "fieldsim/VirtualClock.h"
#include "mail/Mail.h"
#include "reports/ReportMail.h"

// The whole desk on a virtual clock before a simulated field, with weeks of collections behind it: what the pictures of
// the operator's guide are taken of.
namespace demo {

class Stage {
  public:
    // Works on a copy of the delivered database in `directory`, which exists.
    Stage(const std::filesystem::path& delivered, const std::filesystem::path& directory);

    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // The shell with the overview in front, for the user "operator".
    void LogIn();

    desk::Desk& Surroundings() { return desk_; }
    core::MAIN_Module& Shared() { return shared_; }
    fieldsim::VirtualClock& Clock() { return clock_; }
    desk::mainfrm& Shell() { return *shell_; }
    desk::Page& Front() { return *navigator_.Front(); }

    // Runs the clock until every conversation is over or waits for the operator.
    void Settle();

    template <class Form, class... Arguments>
    Form& Open(Arguments&&... arguments) {
        auto* form = new Form(desk_, std::forward<Arguments>(arguments)...);
        navigator_.Open(form);
        return *form;
    }

  private:
    struct StatusLine final : core::Feedback {
        desk::mainfrm* shell = nullptr;
        void Status(const std::string& text) override;
        void LineStatus(const std::string&, const std::string& text) override { Status(text); }
        void Box(const std::string& text) override { Status(text); }
    };
    struct NoMail final : mail::MailTransport {
        mail::MailOutcome Send(const mail::MailMessage&, const mail::MailServer&, core::Clock&,
                               const std::function<bool()>&) override {
            return {true, ""};
        }
    };

    void Collect();

    core::MAIN_Module shared_;
    core::Database dbconn_;
    fieldsim::VirtualClock clock_;
    core::Logs logs_{dbconn_, shared_, clock_};
    StatusLine feedback_;
    fieldsim::SimPorts ports_{clock_};
    protocols::FieldLines lines_{clock_, [this](const core::Station& station) { return ports_.Line(station); }};
    protocols::BsapCounters counters_;
    reading::Workplace place_{dbconn_, shared_, clock_, feedback_, logs_, lines_, counters_};
    NoMail mail_;
    reports::ReportMail reportMail_{place_, mail_};
    collection::Scheduler scheduler_{place_, reportMail_};
    desk::Navigator navigator_;
    desk::Desk desk_{place_, shared_.addressees, scheduler_, mail_, navigator_};
    std::unique_ptr<desk::mainfrm> shell_;
    std::unique_ptr<fieldsim::Field> field_;
};

}  // namespace demo
