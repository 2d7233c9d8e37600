#include "desk/core/mainfrm.h"

#include <QCloseEvent>
#include <QFont>
#include <QLabel>

#include "collection/Scheduler.h"
#include "core/Database.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Users.h"
#include "ui_mainfrm.h"

namespace desk {

namespace {

constexpr int ticksToReset = 60;
constexpr int mostLines = 500;

}  // namespace

mainfrm::mainfrm(core::Database& dbconn, core::MAIN_Module& shared, core::Logs& logs, const core::Clock& clock,
                 collection::Scheduler& scheduler)
    : dbconn_(dbconn),
      shared_(shared),
      logs_(logs),
      clock_(clock),
      scheduler_(scheduler),
      timer1_([this] { Tick(); }),
      panel_(new QLabel),
      ui_(std::make_unique<Ui::mainfrm>()) {
    ui_->setupUi(this);
    setWindowTitle("Norwen" + QString::fromStdString(shared_.versionsuffix));
    // A station or a user may have any name, also one that looks like markup.
    panel_->setTextFormat(Qt::PlainText);
    ui_->lbluser->setTextFormat(Qt::PlainText);
    ui_->statusbar->addWidget(panel_, 1);
    QFont large = ui_->lblclock->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    ui_->lblclock->setFont(large);
    ui_->lblschedule->setFont(large);
    connect(ui_->cmdlogoff, &QPushButton::clicked, this, &mainfrm::cmdlogoff);
    connect(ui_->cmdexit, &QPushButton::clicked, this, &mainfrm::cmdexit);
    connect(&seconds_, &QTimer::timeout, this, &mainfrm::ShowClock);
    seconds_.start(1000);
    ShowClock();
}

mainfrm::~mainfrm() = default;

void mainfrm::StartTimer() {
    if (!timer1_.Running()) {
        timer1_.Start();
    }
}

void mainfrm::ShowClock() {
    const core::DateTime now = clock_.Now();
    ui_->lblclock->setText(QString::fromStdString(core::DateText(now) + "  " + core::TimeText(now)));
    ui_->lblschedule->setText(scheduler_.Busy() ? "Collecting stations" : "Waiting for the next contract hour");
}

void mainfrm::Status(const QString& text) {
    panel_->setText(text);
    ui_->lstlines->addItem(QString::fromStdString(core::TimeText(clock_.Now())) + "   " + text);
    if (ui_->lstlines->count() > mostLines) {
        delete ui_->lstlines->takeItem(0);
    }
    ui_->lstlines->scrollToBottom();
}

void mainfrm::ShowForUser() {
    ui_->lbluser->setText("Logged in as " + QString::fromStdString(shared_.currentuser));
    StartTimer();
    show();
    ui_->lstlines->setFocus();
}

void mainfrm::Tick() {
    try {
        if (resetCounter_ == ticksToReset) {
            resetCounter_ = 0;
            scheduler_.ResetDailyFlags();
        } else {
            ++resetCounter_;
        }
    } catch (const std::exception& failure) {
        logs_.WriteRtuErr(failure.what());
    }
    scheduler_.Tick();
    // A tick inside a run returns at once; the outer one ends the program when its run has unwound.
    if (ending_ && !scheduler_.Busy()) {
        Q_EMIT Ended();
    }
}

void mainfrm::cmdlogoff() {
    try {
        core::ClearLogon(dbconn_, shared_.currentuser);
        logs_.WriteAudit(logs_.Stamp() + ":  user " + shared_.currentuser + " logged out");
    } catch (const std::exception& failure) {
        logs_.WriteRtuErr(failure.what());
    }
    hide();
    Q_EMIT LoggedOff();
}

void mainfrm::cmdexit() {
    try {
        logs_.WriteAudit(logs_.Stamp() + " :" + shared_.currentuser + " logged out.");
    } catch (const std::exception& failure) {
        logs_.WriteRtuErr(failure.what());
    }
    EndProgram();
}

void mainfrm::closeEvent(QCloseEvent* event) {
    event->ignore();
    EndProgram();
}

void mainfrm::EndProgram() {
    if (ending_) {
        return;
    }
    ending_ = true;
    hide();
    Unload();
    scheduler_.Leave();
    if (!scheduler_.Busy()) {
        Q_EMIT Ended();
    }
}

void mainfrm::Unload() {
    try {
        core::ClearLogon(dbconn_, shared_.currentuser);
    } catch (const std::exception& failure) {
        logs_.WriteRtuErr(failure.what());
    }
}

}  // namespace desk
