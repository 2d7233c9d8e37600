#pragma once

#include <QMainWindow>
#include <QTimer>
#include <functional>
#include <memory>

#include "desk/core/Minutes.h"

namespace Ui {
class mainfrm;
}
class QLabel;

namespace core {
class Clock;
class Database;
class Logs;
struct MAIN_Module;
}  // namespace core
namespace collection {
class Scheduler;
}

namespace desk {

// The shell: the window, its status bar, and the minute's tick that drives the schedule, whoever is logged in.
class mainfrm : public QMainWindow {
    Q_OBJECT

  public:
    mainfrm(core::Database& dbconn, core::MAIN_Module& shared, core::Logs& logs, const core::Clock& clock,
            collection::Scheduler& scheduler);
    ~mainfrm() override;

    // The schedule is live from here on: the first tick comes in a minute. Further calls change nothing.
    void StartTimer();

    // The minute's tick: the schedule's work, and once an hour and a minute the reset of the day's flags.
    void Tick();

    // A status text: the first panel of the status bar, and the list of what was done.
    void Status(const QString& text);

    // Shows the shell for the user who has logged in.
    void ShowForUser();

    // Ends the program: at once, or, while stations are collected, as soon as their line is hung up and closed.
    void EndProgram();

  Q_SIGNALS:
    void LoggedOff();
    void Ended();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void cmdlogoff();
    void cmdexit();
    void Unload();
    void ShowClock();

    core::Database& dbconn_;
    core::MAIN_Module& shared_;
    core::Logs& logs_;
    const core::Clock& clock_;
    collection::Scheduler& scheduler_;
    Minutes timer1_;
    QTimer seconds_;
    int resetCounter_ = 0;
    bool ending_ = false;
    QLabel* panel_;
    std::unique_ptr<Ui::mainfrm> ui_;
};

}  // namespace desk
