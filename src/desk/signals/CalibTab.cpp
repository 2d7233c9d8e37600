#include "desk/signals/CalibTab.h"

#include "core/Text.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Look.h"
#include "ui_CalibTab.h"

namespace desk {

namespace {

using signals::CalibrationCommand;
using signals::Transmitter;

// Behind these places single precision shows what nobody measures.
constexpr int shownPlaces = 4;

// What stands at the input before a command is given.
struct Hints {
    const char* zero;
    const char* span;
};

Hints HintsOf(Transmitter transmitter) {
    switch (transmitter) {
        case Transmitter::DP:
            return {"Isolated and equalised, no difference between high and low: the live value should be 0.",
                    "Apply a pressure to the high side, low side vented; enter it as the applied value."};
        case Transmitter::SP:
            return {"Isolated and vented to atmosphere: the live value should be 0.",
                    "Apply a pressure and enter it as the applied value."};
        case Transmitter::Temp:
            break;
    }
    return {"The sensor in melting ice, or the decade box at its 0 value: the live value should be 0.",
            "Bring the sensor to a temperature, or set the decade box; enter it as the applied value."};
}

QString Sign(const std::string& result) {
    return result == "Success" ? "\u2713 " : result == "Failure" ? "\u2717 " : result.empty() ? "" : "? ";
}

QString Meaning(const std::string& result) {
    return result == "Success"   ? "The station carried out the last command."
           : result == "Failure" ? "The station did not carry out the last command."
           : result.empty()      ? ""
                                 : "Look at the live value before the next command.";
}

}  // namespace

QString CalibTab::Shown(double value) {
    return Number(core::RoundTo(value, shownPlaces));
}

CalibTab::CalibTab(Transmitter transmitter, QWidget* parent)
    : QWidget(parent), transmitter_(transmitter), ui_(std::make_unique<Ui::CalibTab>()) {
    ui_->setupUi(this);
    ui_->txtLive->setFont(Larger(font(), 2.5, true));
    ui_->lblUnit->setFont(Larger(font(), 2));
    ui_->txtApplied->setFont(Larger(font(), 1.5));
    ui_->lblAppliedUnit->setFont(Larger(font(), 1.5));
    ui_->txtStatus->setFont(Larger(font(), 1.5, true));
    for (QWidget* label : std::initializer_list<QWidget*>{ui_->lblLimit, ui_->lblInStation, ui_->lblResult}) {
        Mute(label);
    }
    for (QWidget* command : std::initializer_list<QWidget*>{ui_->cmdZero, ui_->cmdSpan, ui_->cmdRestore}) {
        command->setFont(Larger(font(), 1.25));
    }
    const Hints hints = HintsOf(transmitter);
    ui_->lblZero->setText(hints.zero);
    ui_->lblSpan->setText(hints.span);
    connect(ui_->txtApplied, &QLineEdit::textChanged, this, &CalibTab::ShowLimit);
    connect(ui_->cmdZero, &QPushButton::clicked, this, [this] { Q_EMIT Asked(CalibrationCommand::Zero); });
    connect(ui_->cmdSpan, &QPushButton::clicked, this, [this] { Q_EMIT Asked(CalibrationCommand::Span); });
    connect(ui_->cmdRestore, &QPushButton::clicked, this, [this] { Q_EMIT Asked(CalibrationCommand::Restore); });
    NameControls();
    Clear();
}

CalibTab::~CalibTab() = default;

// As the form names them: those of the values by the transmitter, those of the commands by the tab's number.
void CalibTab::NameControls() {
    const QString name = signals::NameOf(transmitter_);
    const int tab = static_cast<int>(transmitter_);
    const QString number = tab == 0 ? QString() : QString::number(tab);
    ui_->txtLive->setObjectName("txt" + name + "Live");
    ui_->txtApplied->setObjectName("txt" + name + "Applied");
    ui_->lblUnit->setObjectName("lbl" + name + "Unit");
    ui_->lblAge->setObjectName("lbl" + name + "Age");
    ui_->lblInStation->setObjectName("lbl" + name + "InStation");
    ui_->lblLimit->setObjectName("lbl" + name + "Limit");
    ui_->txtStatus->setObjectName("txtStatus" + number);
    ui_->cmdZero->setObjectName("cmdCalibZero" + number);
    ui_->cmdSpan->setObjectName("cmdCalibSpan" + number);
    ui_->cmdRestore->setObjectName("cmdRestore" + number);
    setObjectName("tab" + name);
}

void CalibTab::Display(const signals::TransmitterReading& reading) {
    const QString unit = QString::fromStdString(reading.unit);
    ui_->txtLive->setText(reading.live ? Shown(*reading.live) : "");
    ui_->lblUnit->setText(unit);
    ui_->lblAppliedUnit->setText(unit);
    const QString at = QString::fromStdString(core::TimeText(reading.at));
    ui_->lblAge->setText(!reading.live ? "" : reading.old ? "\u26A0 Old: read at " + at : "Read at " + at);
    QString inStation;
    if (reading.spanValue) {
        inStation = "In the station: " + (Shown(*reading.spanValue) + " " + unit).trimmed();
    }
    if (reading.spanValue && reading.status) {
        inStation += ", status " + Shown(*reading.status);
    }
    ui_->lblInStation->setText(inStation);
    ui_->txtStatus->setText(Sign(reading.result) + QString::fromStdString(reading.result));
    ui_->lblResult->setText(Meaning(reading.result));
}

// So that a technician sees before the command whether it can pass.
void CalibTab::ShowLimit() {
    const auto applied = core::EnteredNumber(Applied());
    QString text;
    if (applied && *applied >= 0) {
        const signals::SpanLimit limit = signals::LimitOf(*applied);
        text = "For a span the live value must be from " + Shown(limit.low) + " to " + Shown(limit.high);
    }
    ui_->lblLimit->setText(text);
}

void CalibTab::Clear() {
    Display({});
}

void CalibTab::Open(bool commands, bool entry) {
    for (QWidget* command : std::initializer_list<QWidget*>{ui_->cmdZero, ui_->cmdSpan, ui_->cmdRestore}) {
        command->setEnabled(commands);
    }
    ui_->txtApplied->setEnabled(entry);
}

std::string CalibTab::Applied() const {
    return ui_->txtApplied->text().toStdString();
}

QLineEdit& CalibTab::AppliedField() {
    return *ui_->txtApplied;
}

}  // namespace desk
