#include "desk/session/frm_CWM.h"

#include <QFormLayout>
#include <QLabel>

#include "core/Station.h"
#include "core/Text.h"
#include "desk/archive/frmHistory.h"
#include "desk/archive/frmparaarchive.h"
#include "desk/collection/ByHand.h"
#include "desk/collection/TakenLine.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Look.h"
#include "desk/kit/Navigator.h"
#include "desk/signals/ListPage.h"
#include "ui_frm_CWM.h"

namespace desk {

namespace {

std::string Line(const core::Station& station) {
    if (!station.ip.empty()) {
        return "IP " + station.ip;
    }
    return station.comtype + ", COM" + std::to_string(station.comport) + ", " + station.settings +
           (station.phoneno.empty() ? "" : ", " + station.phoneno);
}

}  // namespace

frm_CWM::frm_CWM(Desk& desk, std::int64_t locationID)
    : Page(desk, "Selection Menu"), ui_(std::make_unique<Ui::frm_CWM>()) {
    ui_->setupUi(this);
    ui_->lblconsumer->setTextFormat(Qt::PlainText);
    ui_->lblconsumer->setFont(Larger(font(), 2, true));
    ui_->lblconnection->setFont(Larger(font(), 1.5));
    Title("Selection Menu");
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &frm_CWM::CloseAsked);
    if (core::ReadStation(desk_.dbconn, locationID)) {
        const reading::Workplace place = desk.With(*this);
        session_ = std::make_unique<session::Session>(place, *this, locationID);
        ShowStation(session_->GetStation());
        ConnectCommands();
    } else {
        ui_->lblconsumer->setText("This station is no longer in the register");
    }
    ShowButtons();
}

frm_CWM::~frm_CWM() = default;

void frm_CWM::ShowStation(const core::Station& station) {
    setWindowTitle(windowTitle() + "----(" + QString::fromStdString(station.consumer) + ")");
    ui_->lblconsumer->setText(QString::fromStdString(station.consumer));
    Fact("Today's collection", LineNow(desk_, station.locationID).text);
    Fact("Model", station.modelno);
    Fact("Protocol", station.ProtocolText());
    Fact("Slave address", std::to_string(station.slaveaddress));
    Fact("Line", Line(station));
}

void frm_CWM::Fact(const QString& caption, const std::string& text) {
    auto* name = new QLabel(caption);
    Mute(name);
    auto* value = new QLabel(QString::fromStdString(text));
    value->setTextFormat(Qt::PlainText);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    ui_->facts->addRow(name, value);
}

void frm_CWM::ConnectCommands() {
    connect(ui_->cmdConnect, &QPushButton::clicked, this, [this] {
        lost_ = false;
        Guarded([this] { session_->Connect(); });
    });
    connect(ui_->cmddisconnect, &QPushButton::clicked, this, [this] { Guarded([this] { session_->Disconnect(); }); });
    connect(ui_->cmd_archive, &QPushButton::clicked, this,
            [this] { Guarded([this] { desk_.navigator.Open(new frmparaarchive(desk_, *session_)); }); });
    connect(ui_->cmd_fetch, &QPushButton::clicked, this,
            [this] { Guarded([this] { desk_.navigator.Open(new frmparafetchlist(desk_, *session_)); }); });
    connect(ui_->btnHistory, &QPushButton::clicked, this, [this] {
        Guarded([this] { desk_.navigator.Open(new frmHistory(desk_, session_->GetStation().locationID)); });
    });
    new TakenLine(
        desk_, this,
        [this]() -> std::optional<std::int64_t> {
            return lost_ || session_->GetState() == session::State::Disconnecting
                       ? std::optional(session_->GetStation().locationID)
                       : std::nullopt;
        },
        [this](const QString& text) { ui_->lblconnection->setText(text); });
    // Whether stations are being collected shows in time.
    connect(&seconds_, &QTimer::timeout, this, &frm_CWM::ShowButtons);
    seconds_.start(1000);
}

void frm_CWM::ShowButtons() {
    const auto state = session_ != nullptr ? session_->GetState() : session::State::Disconnecting;
    const bool lineUp = session_ != nullptr && session_->HasLine();
    ui_->cmdConnect->setEnabled(state == session::State::Idle && !desk_.lines.Of(session_->GetStation()).Reserved());
    ui_->cmddisconnect->setEnabled(lineUp || state == session::State::Connecting);
    ui_->cmd_archive->setEnabled(lineUp);
    ui_->cmd_fetch->setEnabled(lineUp);
    ui_->btnHistory->setEnabled(session_ != nullptr);
    ui_->cmdConnect->setDefault(ui_->cmdConnect->isEnabled());
    ui_->cmd_archive->setDefault(lineUp);
}

void frm_CWM::CloseAsked() {
    if (session_ != nullptr && !session_->IsOffLine()) {
        Box("Stop Communitcation...");
    } else {
        Close();
    }
}

void frm_CWM::Status(const std::string& text) {
    ui_->lblconnection->setText(OneLine(text));
}

void frm_CWM::Box(const std::string& text) {
    Show(Lines(text));
}

void frm_CWM::Lamp(const std::string& lamp, const std::string&) {
    ui_->leds->Light(QString::fromStdString(lamp));
}

void frm_CWM::Ended(const std::string& reason, bool) {
    lost_ = !reason.empty();
    Status(reason.empty() ? "Not connected" : "Not connected: " + reason);
    ShowButtons();
}

}  // namespace desk
