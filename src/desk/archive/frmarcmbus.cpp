#include "desk/archive/frmarcmbus.h"

#include <optional>

#include "core/Logs.h"
#include "core/Station.h"
#include "desk/collection/TakenLine.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Grid.h"
#include "desk/kit/GridFile.h"
#include "desk/kit/Look.h"
#include "desk/kit/Navigator.h"
#include "desk/kit/frmtxrxleds.h"
#include "desk/mail/frmemail.h"
#include "session/Session.h"
#include "session/StationLine.h"
#include "ui_frmarcmbus.h"

namespace desk {

namespace {

constexpr int hoursOfDay = 24;
constexpr int daysOfMonth = 31;

}  // namespace

frmarcmbus::frmarcmbus(Desk& desk, session::Session* session, std::int64_t locationID)
    : Page(desk, "MODBUS Archive"),
      ui_(std::make_unique<Ui::frmarcmbus>()),
      session_(session),
      locationID_(locationID) {
    ui_->setupUi(this);
    Title("MODBUS Archive");
    CloseCommand(ui_->cmdClose);
    ui_->lblconsumer->setFont(Larger(font(), 1.2, true));
    Guarded([this] {
        if (const auto station = core::ReadStation(desk_.dbconn, locationID_)) {
            ui_->lblconsumer->setText(QString::fromStdString(station->consumer));
        }
    });
    connect(ui_->opthrly, &QRadioButton::toggled, this, &frmarcmbus::ChooseKind);
    connect(ui_->cmdarchive, &QPushButton::clicked, this, &frmarcmbus::cmdarchive);
    connect(ui_->cmd_stop, &QPushButton::clicked, this, &frmarcmbus::cmd_stop);
    connect(ui_->cmdsave, &QPushButton::clicked, this,
            [this] { SaveGridFile(this, GridText(*ui_->mfg1, '\t'), ExcelFile()); });
    connect(ui_->cmd_email, &QPushButton::clicked, this, [this] { desk_.navigator.Open(new frmemail(desk_)); });
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    new TakenLine(
        desk_, this,
        [this]() -> std::optional<std::int64_t> { return running_ ? std::optional(locationID_) : std::nullopt; },
        [this](const QString& text) { Status(text.toStdString()); });
    ChooseKind();
    ShowButtons();
}

frmarcmbus::~frmarcmbus() = default;

// The number is for the operator only: a run brings all that the station has.
void frmarcmbus::ChooseKind() {
    const bool hourly = ui_->opthrly->isChecked();
    ui_->lblhrd->setText(hourly ? "Number of Hours" : "Number of Days");
    ui_->cmbnum->clear();
    for (int number = 1; number <= (hourly ? hoursOfDay : daysOfMonth); ++number) {
        ui_->cmbnum->addItem(QString::number(number));
    }
}

// Nothing but the stop works while a run goes on; nor can the page be closed.
void frmarcmbus::ShowButtons() {
    const std::initializer_list<QWidget*> atRest = {ui_->opthrly,       ui_->optdly,    ui_->cmbnum,  ui_->cmdarchive,
                                                    ui_->cmdviewreport, ui_->cmd_email, ui_->cmdClose};
    for (QWidget* control : atRest) {
        control->setEnabled(!running_);
    }
    ui_->cmdsave->setEnabled(!running_ && ui_->mfg1->Columns() > 0);
    ui_->cmd_stop->setEnabled(running_ && !stopflag_);
    ui_->cmdarchive->setDefault(!running_);
    ui_->pbarchive->setVisible(running_);
}

void frmarcmbus::cmdarchive() {
    if (running_) {
        return;
    }
    running_ = true;
    stopflag_ = told_ = false;
    ui_->lblrecno->clear();
    ui_->mfg1->Clear();
    ui_->pbarchive->setRange(0, 1);
    ui_->pbarchive->setValue(0);
    ShowButtons();
    ui_->cmd_stop->setFocus();
    Status(session_ != nullptr && session_->PollingActive() ? "Waiting for the answer that is due" : "");
    const reading::Workplace place = desk_.With(*this);
    const auto message = std::make_shared<std::optional<std::string>>();
    Guarded([&] {
        session::OnStationLine(
            place, session_, session::WayOfModbusArchive(), locationID_,
            [this, message](protocols::Conversation& talk) { *message = Collect(talk); },
            [this, message] { EndRun(message->value_or(WhyNot())); });
    });
}

// What the operator is told at the end.
std::string frmarcmbus::Collect(protocols::Conversation& talk) {
    const auto kind = ui_->opthrly->isChecked() ? archive::ArchiveKind::Hourly : archive::ArchiveKind::Daily;
    return archive::ArchiveCollected(archive::CollectModbusArchive(talk, desk_.dbconn, kind, *this));
}

// Of a run that did not come to the archive.
std::string frmarcmbus::WhyNot() const {
    return told_       ? ""
           : stopflag_ ? "Stopped before the station was reached"
                       : "The connection ended before the archive was read";
}

void frmarcmbus::EndRun(const std::string& message) {
    running_ = false;
    ShowButtons();
    ui_->cmdarchive->setFocus();
    if (!message.empty()) {
        Status(message);
        Box(message);
    }
}

void frmarcmbus::cmd_stop() {
    stopflag_ = true;
    ShowButtons();
    Status("Stopping after this block");
    desk_.lines.StopConnecting();
}

// What the run tells -----------------------------------------------------------------------------------------------

void frmarcmbus::Status(const std::string& text) {
    ui_->lblmsg->setText(OneLine(text));
}

void frmarcmbus::Box(const std::string& text) {
    told_ = true;
    Show(Lines(text), text == archive::ArchiveCollected({}) ? QMessageBox::Information : QMessageBox::Warning);
}

void frmarcmbus::Lamp(const std::string& lamp, const std::string&) {
    ui_->leds->Light(QString::fromStdString(lamp));
}

// The time is a text, all other columns are numbers.
void frmarcmbus::Columns(const std::vector<std::string>& captions) {
    QStringList columns;
    for (const std::string& caption : captions) {
        columns.append((columns.isEmpty() ? "<" : ">") + QString::fromStdString(caption));
    }
    ui_->mfg1->FormatString(columns);
}

void frmarcmbus::Rows(const std::vector<std::vector<std::string>>& rows) {
    ui_->mfg1->AddItems(GridRows(rows));
}

void frmarcmbus::Record(int records, int newest) {
    ui_->lblrecno->setText(QString::fromStdString(archive::RecordText(records, newest)));
    ui_->pbarchive->setRange(0, std::max(newest, 1));
    ui_->pbarchive->setValue(records);
}

}  // namespace desk
