#include "desk/shell/mainfrm.h"

#include <QCloseEvent>
#include <QLabel>
#include <QScrollArea>

#include "collection/Scheduler.h"
#include "core/Clock.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Station.h"
#include "core/Users.h"
#include "desk/kit/Boxes.h"
#include "desk/kit/Look.h"
#include "desk/kit/Navigator.h"
#include "desk/shell/frmGraphicRept.h"
#include "desk/shell/frmmain.h"
#include "protocols/line/LineLease.h"
#include "ui_mainfrm.h"

namespace desk {

namespace {

constexpr int ticksToReset = 60;
constexpr QSize usual(1024, 740);

}  // namespace

mainfrm::mainfrm(Desk& desk)
    : desk_(desk),
      timer1_([this] { Tick(); }),
      panel_(new QLabel),
      scroll_(new QScrollArea),
      overview_(new frmGraphicRept(desk)),
      menu_(new frmmain(desk)),
      ui_(std::make_unique<Ui::mainfrm>()) {
    ui_->setupUi(this);
    // On a screen that is smaller than a page the page is scrolled; the window stays on the screen.
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidget(&desk_.navigator);
    ui_->layout->addWidget(scroll_, 1);
    desk_.navigator.addWidget(overview_);
    desk_.navigator.addWidget(menu_);
    // A station or a user may have any name, also one that looks like markup.
    panel_->setTextFormat(Qt::PlainText);
    panel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // a long text does not widen the window
    ui_->lbluser->setTextFormat(Qt::PlainText);
    ui_->lblcaption->setTextFormat(Qt::PlainText);
    ui_->statusbar->addWidget(panel_, 1);
    ui_->lblcaption->setFont(Larger(font(), 1.5, true));
    ui_->lblclock->setFont(Larger(font(), 1.5));
    Mute(ui_->lbluser);
    connect(&desk_.navigator, &Navigator::Changed, this, &mainfrm::ShowCaption);
    connect(overview_, &frmGraphicRept::MenuWanted, this, [this] { desk_.navigator.Home(menu_); });
    connect(overview_, &frmGraphicRept::ExitWanted, this, [this] { Exit(": "); });
    connect(menu_, &frmmain::NodesWanted, this, [this] { desk_.navigator.Home(overview_); });
    connect(menu_, &frmmain::LoggedOff, this, &mainfrm::LogOff);
    connect(menu_, &frmmain::ExitWanted, this, [this] { Exit(" :"); });
    desk_.lines.WhenReleased([this] { desk_.scheduler.Serve(); });
    connect(&seconds_, &QTimer::timeout, this, &mainfrm::ShowClock);
    seconds_.start(1000);
    ShowClock();
    const QSize room = screen()->availableSize();
    resize(usual.boundedTo(room));
    if (room.width() <= usual.width() || room.height() <= usual.height()) {
        setWindowState(Qt::WindowMaximized);  // within the frame of the window, too
    }
}

mainfrm::~mainfrm() {
    desk_.lines.WhenReleased({});
    desk_.navigator.Empty();
    scroll_->takeWidget();
    desk_.navigator.setParent(nullptr);
}

void mainfrm::StartTimer() {
    if (!timer1_.Running()) {
        timer1_.Start();
    }
}

void mainfrm::ShowClock() {
    const core::DateTime now = desk_.clock.Now();
    ui_->lblclock->setText(QString::fromStdString(core::DateText(now) + "  " + core::TimeText(now)));
}

void mainfrm::ShowCaption(Page* front) {
    const auto show = [this](const QString& caption) {
        ui_->lblcaption->setText(caption);
        setWindowTitle(caption);
    };
    disconnect(caption_);
    caption_ = connect(front, &QWidget::windowTitleChanged, this, show);
    show(front->windowTitle());
}

void mainfrm::Status(const QString& text) {
    panel_->setText(text);
    if (!text.isEmpty()) {
        overview_->Line(text);
    }
}

void mainfrm::ShowForUser() {
    ui_->lbluser->setText("Logged in as " + QString::fromStdString(desk_.shared.currentuser));
    StartTimer();
    show();
    desk_.navigator.Home(overview_);
}

void mainfrm::Tick() {
    core::Guarded(desk_.logs, [this] {
        if (resetCounter_ == ticksToReset) {
            resetCounter_ = 0;
            desk_.scheduler.ResetDailyFlags();
        } else {
            ++resetCounter_;
        }
    });
    desk_.scheduler.Tick();
}

void mainfrm::LogOff() {
    hide();
    Q_EMIT LoggedOff();
}

void mainfrm::closeEvent(QCloseEvent* event) {
    event->ignore();
    AskToEnd(this);
}

void mainfrm::Exit(const char* separator) {
    AskToEnd(this, [this, separator] {
        core::Guarded(desk_.logs, [&] {
            desk_.logs.WriteAudit(desk_.logs.Stamp() + separator + desk_.shared.currentuser + " logged out.");
        });
    });
}

void mainfrm::AskToEnd(QWidget* over, std::function<void()> before) {
    const auto end = [this, before = std::move(before)] {
        if (before) {
            before();
        }
        EndProgram();
    };
    if (timer1_.Running()) {
        AskBox(over, WhatStops(), "Exit", end);
    } else {
        end();
    }
}

QString mainfrm::WhatStops() const {
    QString text = "Nothing will be collected until the program is started again.";
    core::Guarded(desk_.logs, [&] {
        const auto inHand = desk_.scheduler.InHand();
        for (const std::int64_t locationID : inHand) {
            if (const auto station = core::ReadStation(desk_.dbconn, locationID)) {
                text += "\nThe collection of " + QString::fromStdString(station->consumer) + " will be broken off.";
            }
        }
        if (inHand.empty() && desk_.lines.InUse()) {
            text += "\nThe connection to a station will be cut.";
        }
        text += "\n" + overview_->NextDue() + ".";
    });
    return text + "\n\nEnd the program?";
}

void mainfrm::EndProgram() {
    if (ending_) {
        return;
    }
    ending_ = true;
    hide();
    Unload();
    desk_.scheduler.Leave();
    connect(&end_, &QTimer::timeout, this, &mainfrm::EndWhenFree);
    end_.start(20);
    EndWhenFree();
}

// What talks to a station hangs up first: the program ends when it has unwound.
void mainfrm::EndWhenFree() {
    if (desk_.clock.Conversations() == 0) {
        end_.stop();
        Q_EMIT Ended();
    }
}

void mainfrm::Unload() {
    core::Guarded(desk_.logs, [this] { core::ClearLogon(desk_.dbconn, desk_.shared.currentuser); });
}

}  // namespace desk
