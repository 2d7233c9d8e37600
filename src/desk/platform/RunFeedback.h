#pragma once

#include <QMessageBox>
#include <QPointer>
#include <functional>
#include <map>
#include <string>

#include "core/Feedback.h"
#include "core/Logs.h"

namespace desk {

// What unattended work tells: its status texts go where they are shown, and a box never waits for anybody. It stands
// on the screen until somebody closes it, the newest text in it, and the text is in the error log.
class RunFeedback final : public core::Feedback {
  public:
    RunFeedback(core::Logs& logs, std::function<void(const QString&)> status);

    ~RunFeedback() override { delete box_; }
    RunFeedback(const RunFeedback&) = delete;
    RunFeedback& operator=(const RunFeedback&) = delete;

    void Status(const std::string& text) override;
    // Of one line its text; of several at once the first three, each behind its name, and how many more there are;
    // nothing when no line is at work any more.
    void LineStatus(const std::string& line, const std::string& text) override;
    void Box(const std::string& text) override;

  private:
    core::Logs& logs_;
    std::function<void(const QString&)> status_;
    std::map<std::string, std::string> lines_;  // those that are at work
    QPointer<QMessageBox> box_;
};

}  // namespace desk
