#include "desk/signals/frmCalib.h"

#include "core/MAIN_Module.h"
#include "core/Text.h"
#include "desk/collection/TakenLine.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Look.h"
#include "desk/signals/CalibTab.h"
#include "session/Session.h"
#include "session/StationLine.h"
#include "signals/lists/SignalWriting.h"
#include "ui_frmCalib.h"

namespace desk {

using signals::CalibrationState;

frmCalib::frmCalib(Desk& desk, session::Session& session)
    : Page(desk, "Calibration"), session_(session), ui_(std::make_unique<Ui::frmCalib>()) {
    ui_->setupUi(this);
    Title("Calibration");
    ui_->lblconsumer->setFont(Larger(font(), 1.5, true));
    ui_->lblconsumer->setText(QString::fromStdString(session.GetStation().consumer));
    ui_->lblstate->setFont(Larger(font(), 1.25));
    ui_->lblmsg->setFont(Larger(font(), 1.25));
    for (const signals::Transmitter transmitter : signals::transmitters) {
        auto* tab = new CalibTab(transmitter, ui_->SSTab1);
        tabs_[static_cast<std::size_t>(transmitter)] = tab;
        ui_->SSTab1->addTab(tab, signals::NameOf(transmitter));
        connect(tab, &CalibTab::Asked, this,
                [this, tab](signals::CalibrationCommand command) { Guarded([&] { Ask(*tab, command); }); });
    }
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdStart, &QPushButton::clicked, this, [this] { Guarded([this] { Start(); }); });
    connect(ui_->cmdStop, &QPushButton::clicked, this, &frmCalib::Stop);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &frmCalib::CloseAsked);
    new TakenLine(
        desk_, this,
        [this]() -> std::optional<std::int64_t> {
            return running_ ? std::optional(session_.GetStation().locationID) : std::nullopt;
        },
        [this](const QString& text) { ui_->lblmsg->setText(text); });
    ui_->pbsignals->hide();
    ShowCommands();
    ShowState();
}

frmCalib::~frmCalib() = default;

void frmCalib::Start() {
    if (running_) {
        return;
    }
    names_ = signals::ReadCalibrationSignals(desk_.dbconn);
    if (const std::string missing = signals::MissingName(names_); !missing.empty()) {
        Message(missing);
        return;
    }
    clear();
    running_ = true;
    stopping_ = false;
    lineFailure_.clear();
    calibration_ = std::make_unique<signals::Calibration>(desk_.dbconn, names_, *this);
    Message("Please wait...");
    ShowCommands();
    ShowState();
    MoveFocus();
    const reading::Workplace place = desk_.With(*this);
    try {
        session::OnStationLine(
            place, &session_, session::WayOfCalibration(), session_.GetStation().locationID,
            [this](protocols::Conversation& talk) { calibration_->Run(talk); }, [this] { Over(); });
    } catch (...) {
        Over();
        throw;
    }
}

void frmCalib::Stop() {
    stopping_ = true;
    calibration_->Stop();
    desk_.lines.StopConnecting();
    ShowCommands();
    ShowState();
}

void frmCalib::Over() {
    running_ = false;
    ui_->pbsignals->hide();
    const std::string& told = calibration_->LastMessage();
    Message(!told.empty()           ? told
            : !lineFailure_.empty() ? lineFailure_
            : stopping_             ? "Stopped"
                                    : "The line was gone before the calibration began");
    Changed();
    MoveFocus();
    if (closing_) {
        Close();
    }
}

void frmCalib::CloseAsked() {
    if (!running_) {
        Close();
        return;
    }
    closing_ = true;
    Stop();
}

void frmCalib::Ask(CalibTab& tab, signals::CalibrationCommand command) {
    // What will be refused is refused without a question.
    const auto applied = core::EnteredNumber(tab.Applied());
    if ((command == signals::CalibrationCommand::Span && !applied) ||
        !signals::MayCalibrate(desk_.dbconn, desk_.shared.currentuser)) {
        Give(tab, command, tab.Applied());
        return;
    }
    const signals::TransmitterReading& reading = calibration_->Of(tab.Of());
    const QString unit = reading.unit.empty() ? QString() : " " + QString::fromStdString(reading.unit);
    const QString name = signals::NameOf(tab.Of());
    QString act;
    QString then;
    switch (command) {
        case signals::CalibrationCommand::Zero:
            act = "Calibrate the zero of " + name;
            then = "0" + unit;
            break;
        case signals::CalibrationCommand::Span:
            act = "Calibrate the span of " + name;
            then = Number(*applied) + unit;
            break;
        case signals::CalibrationCommand::Restore:
            act = "Restore the calibration of " + name;
            then = "as in the factory calibration";
            break;
    }
    const QString now = !reading.live ? QString("not read")
                                      : CalibTab::Shown(*reading.live) + unit + ", read at " +
                                            QString::fromStdString(core::TimeText(reading.at));
    Page::Ask(act + " at " + QString::fromStdString(session_.GetStation().consumer) + "?\n\nValue now: " + now +
                  "\nValue after: " + then,
              [this, &tab, command, value = tab.Applied()] { Guarded([&] { Give(tab, command, value); }); });
}

void frmCalib::Give(CalibTab& tab, signals::CalibrationCommand command, const std::string& applied) {
    if (GetState() != CalibrationState::Reading) {
        Message("The command was not given: the signals are no longer read");
        return;
    }
    const std::string refusal = calibration_->Ask(tab.Of(), command, applied);
    if (!refusal.empty()) {
        Message(refusal);
        tab.AppliedField().setFocus();
        tab.AppliedField().selectAll();
    }
}

void frmCalib::Changed() {
    display();
    ShowCommands();
    ShowState();
    if (shown_ != GetState()) {
        shown_ = GetState();
        ui_->pbsignals->setVisible(shown_ == CalibrationState::Starting);
        MoveFocus();
    }
}

void frmCalib::Message(const std::string& text) {
    ui_->lblmsg->setText(OneLine(text));
}

void frmCalib::Progress(int done, int total) {
    ui_->pbsignals->setRange(0, total);
    ui_->pbsignals->setValue(done);
}

void frmCalib::Box(const std::string& text) {
    lineFailure_ = text;
    Show(Lines(text));
}

void frmCalib::Blink_leds(const std::string& lamp, const std::string&) {
    ui_->leds->Light(QString::fromStdString(lamp));
}

void frmCalib::display() {
    for (CalibTab* tab : tabs_) {
        tab->Display(calibration_->Of(tab->Of()));
    }
}

void frmCalib::clear() {
    for (CalibTab* tab : tabs_) {
        tab->Clear();
    }
}

CalibrationState frmCalib::GetState() const {
    return calibration_ == nullptr ? CalibrationState::NotStarted
           : !running_             ? CalibrationState::Stopped
                                   : calibration_->GetState();
}

void frmCalib::ShowState() {
    const auto busyWith = calibration_ == nullptr ? std::nullopt : calibration_->BusyWith();
    QString state = "Not started";
    switch (GetState()) {
        case CalibrationState::NotStarted:
            state = running_ ? "Connecting" : "Not started";
            break;
        case CalibrationState::Starting:
            state = "Looking for the signals";
            break;
        case CalibrationState::Reading:
            state = "Reading";
            break;
        case CalibrationState::Busy:
            state = QString("Busy with ") + (busyWith ? signals::NameOf(*busyWith) : "");
            break;
        case CalibrationState::Stopped:
            state = running_ ? "Releasing the line" : "Stopped";
            break;
    }
    ui_->lblstate->setText(running_ && stopping_ ? "Stopping..." : state);
}

void frmCalib::ShowCommands() {
    const bool reading = running_ && !stopping_ && GetState() == CalibrationState::Reading;
    const bool busy = running_ && GetState() == CalibrationState::Busy;
    for (CalibTab* tab : tabs_) {
        tab->Open(reading, !busy);
    }
    // A command belongs to the tab on which it was given.
    ui_->SSTab1->tabBar()->setEnabled(!busy);
    ui_->cmdStart->setEnabled(!running_);
    ui_->cmdStop->setEnabled(running_ && !stopping_);
    ui_->cmdClose->setEnabled(!busy && !closing_);
    ui_->cmdStart->setDefault(!running_);
}

CalibTab& frmCalib::TabInFront() const {
    return *tabs_[static_cast<std::size_t>(ui_->SSTab1->currentIndex())];
}

void frmCalib::MoveFocus() {
    if (!running_) {
        ui_->cmdStart->setFocus();
    } else if (GetState() == CalibrationState::Reading) {
        TabInFront().AppliedField().setFocus();
    } else {
        ui_->cmdStop->setFocus();
    }
}

}  // namespace desk
