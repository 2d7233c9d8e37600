#pragma once

#include <QMainWindow>
#include <QTimer>
#include <functional>
#include <memory>

#include "desk/kit/Desk.h"
#include "desk/platform/Minutes.h"

namespace Ui {
class mainfrm;
}
class QLabel;
class QScrollArea;

namespace desk {

class frmGraphicRept;
class frmmain;
class Page;

// The shell: the window with its pages, the status bar, and the minute's tick that drives the schedule, whoever is
// logged in. The overview of the stations and the menu are loaded with it.
class mainfrm : public QMainWindow {
    Q_OBJECT

  public:
    explicit mainfrm(Desk& desk);
    ~mainfrm() override;

    // The schedule is live from here on: the first tick comes in a minute. Further calls change nothing.
    void StartTimer();

    // The minute's tick: the schedule's work, and once an hour and a minute the reset of the day's flags.
    void Tick();

    // A status text: the first panel of the status bar, and the overview's list of what was done.
    void Status(const QString& text);

    // Shows the shell for the user who has logged in, with the overview in front.
    void ShowForUser();

    // Asks over a window whether the program is to end, once the schedule is live: what stops, and what is due next.
    // `before` comes before the end.
    void AskToEnd(QWidget* over, std::function<void()> before = {});

    // Ends the program unasked: at once, or, while stations are collected, as soon as their line is hung up and closed.
    void EndProgram();

  Q_SIGNALS:
    void LoggedOff();
    void Ended();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void LogOff();
    // The exit of a page, with its line in the audit trail: "<stamp><separator><user> logged out."
    void Exit(const char* separator);
    QString WhatStops() const;
    void EndWhenFree();
    void Unload();
    void ShowClock();
    void ShowCaption(Page* front);

    Desk& desk_;
    Minutes timer1_;
    QTimer seconds_;
    QTimer end_;
    int resetCounter_ = 0;
    bool ending_ = false;
    QLabel* panel_;
    QScrollArea* scroll_;              // around the pages
    QMetaObject::Connection caption_;  // to the page in front
    frmGraphicRept* overview_;
    frmmain* menu_;
    std::unique_ptr<Ui::mainfrm> ui_;
};

}  // namespace desk
