#include "desk/session/LiveScreen.h"

#include <QTimer>

#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Users.h"
#include "desk/archive/frmHistory.h"
#include "desk/archive/frmarcmbus.h"
#include "desk/archive/frmparaarchive.h"
#include "desk/collection/TakenLine.h"
#include "desk/kit/Boxes.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Grid.h"
#include "desk/kit/Navigator.h"
#include "desk/kit/Page.h"
#include "desk/session/DrsDrawing.h"
#include "desk/session/TrafficPanel.h"
#include "desk/session/frm_summary.h"
#include "desk/session/frmconfparams.h"
#include "desk/signals/ListPage.h"
#include "desk/signals/frmCalibration.h"
#include "desk/signals/frmDataVerification.h"
#include "desk/signals/frmSignalSearch.h"
#include "session/Buttons.h"
#include "session/editor/ConfigParams.h"
#include "ui_frmparalist.h"

namespace desk {

LiveScreen::LiveScreen(Desk& desk, Page& page, Ui::frmparalist& ui, std::int64_t locationID)
    : QObject(&page),
      desk_(desk),
      page_(page),
      ui_(ui),
      status_(*ui.status),
      traffic_(new TrafficPanel(desk.clock, &page)),
      session_(desk, *this, locationID),
      grids_(*ui.gridtab, session_, core::IsSuperUser(desk.shared.currentuser)),
      writing_(session_, *this, desk.shared, desk.logs, grids_,
               {*ui.gridtab, *ui.frmvalue, *ui.multiple, *ui.chkMultiple}),
      streams_{ui.Op_Stream_1, ui.Op_Stream_2, ui.Op_Stream_3, ui.Op_Stream_4} {
    const core::Station& station = session_.GetStation();
    ui_.lblconsumer->setText(Text(station.consumer));
    ui_.cmd_arc->setText(station.protocol == core::Protocol::Bsap ? "&Archive/Audit" : "&Archive");
    if (station.protocol != core::Protocol::Bsap) {
        for (QPushButton* command : {ui_.cmdfetch, ui_.cmdSignalSearch, ui_.cmdDataVerify, ui_.cmdCalib}) {
            command->setToolTip("A " + Text(core::TextOf(station.protocol)) + " station has no named signals");
            command->setAccessibleDescription(command->toolTip());
        }
    }
    ui_.trafficplace->addWidget(traffic_);
    Grid& drs = ui_.gridtab->GridOf(*session::GroupOf("DRS"));
    drawing_ = new FrmPNI(drs.parentWidget());
    drs.parentWidget()->layout()->addWidget(drawing_);
    drawing_->hide();
    ui_.cmdDRS->setVisible(session_.Look().drs != 0);
    traffic_->Station({station.protocol, station.framing, station.isCW,
                       station.wordOrder == core::WordOrder::LowFirst && !station.rtuBitsMode});
    traffic_->hide();
    ConnectCommands();
    Drawn();
    connect(&seconds_, &QTimer::timeout, this, &LiveScreen::EverySecond);
    seconds_.start(1000);
}

LiveScreen::~LiveScreen() = default;

// Commands -----------------------------------------------------------------------------------------------------------

void LiveScreen::Guarded(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::exception& failure) {
        desk_.logs.WriteRtuErr(failure.what());
        desk_.feedback.Status(failure.what());
    }
}

void LiveScreen::Command(QAbstractButton* button, void (LiveScreen::*work)()) {
    connect(button, &QAbstractButton::clicked, this, [this, work] { Guarded([&] { (this->*work)(); }); });
}

void LiveScreen::ConnectCommands() {
    Command(ui_.cmdConnect, &LiveScreen::Connect);
    Command(ui_.cmdgetdata, &LiveScreen::GetData);
    Command(ui_.cmddisconnect, &LiveScreen::Disconnect);
    Command(ui_.cmd_summary, &LiveScreen::OpenSummary);
    Command(ui_.btnHistory, &LiveScreen::OpenHistory);
    Command(ui_.cmdDRS, &LiveScreen::SwapDrawing);
    connect(ui_.cmdtime, &QPushButton::clicked, &writing_, &LiveWriting::SetTime);
    connect(ui_.chkMultiple, &QCheckBox::clicked, &writing_, &LiveWriting::Multiple);
    connect(&ui_.gridtab->cmdgc(), &QPushButton::clicked, &writing_, &LiveWriting::Multiple);
    Command(ui_.cmd_arc, &LiveScreen::OpenArchive);
    Command(ui_.cmdfetch, &LiveScreen::OpenList);
    Command(ui_.cmdSignalSearch, &LiveScreen::OpenSearch);
    Command(ui_.cmdDataVerify, &LiveScreen::OpenVerification);
    Command(ui_.cmdCalib, &LiveScreen::OpenCalibration);
    for (int n = 1; n <= 4; ++n) {
        QPushButton* button = streams_[static_cast<std::size_t>(n - 1)];
        button->setVisible(n <= session_.GetStation().No_Stream);
        connect(button, &QPushButton::clicked, this, [this, n] {
            Guarded([&] { session_.ChooseStream(n); });
            ShowButtons();
        });
    }
    connect(ui_.chktraffic, &QCheckBox::toggled, traffic_, &QWidget::setVisible);
    connect(ui_.chktraffic, &QCheckBox::toggled, ui_.leds, &QWidget::setHidden);  // the panel has its own
}

void LiveScreen::Connect() {
    waitsForLine_ = false;
    Request("");
    wasConnected_ = false;
    session_.Connect();
}

void LiveScreen::GetData() {
    session_.GetData();
}

void LiveScreen::Disconnect() {
    status_.HideAlarm();
    session_.Disconnect();
}

void LiveScreen::OpenSummary() {
    desk_.navigator.Open(new frm_summary(desk_, session_));
}

void LiveScreen::OpenList() {
    desk_.navigator.Open(new frmparafetchlist(desk_, session_));
}

void LiveScreen::OpenSearch() {
    desk_.navigator.Open(new frmSignalSearch(desk_, session_));
}

void LiveScreen::OpenVerification() {
    desk_.navigator.Open(new frmDataVerification(desk_, &session_));
}

void LiveScreen::OpenCalibration() {
    desk_.navigator.Open(new frmCalibration(desk_, &session_));
}

void LiveScreen::OpenHistory() {
    desk_.navigator.Open(new frmHistory(desk_, session_.GetStation().locationID));
}

void LiveScreen::OpenArchive() {
    const core::Station& station = session_.GetStation();
    if (station.protocol == core::Protocol::Modbus) {
        desk_.navigator.Open(new frmarcmbus(desk_, &session_, station.locationID));
    } else if (station.protocol == core::Protocol::Bsap) {
        desk_.navigator.Open(new frmparaarchive(desk_, session_));
    } else {
        ShowBox(&page_, "A " + Text(core::TextOf(station.protocol)) + " station has no archive that can be read.",
                page_.windowTitle(), QMessageBox::Information);
    }
}

void LiveScreen::ShowParameters() {
    const auto list = session::fetch_params(desk_.dbconn, desk_.logs, desk_.clock, session_.GetStation().locationID,
                                            session_.StreamNo());
    if (!list.written) {
        Status("The list could not be written to its file");
    }
    desk_.navigator.Open(new frmconfparams(desk_, Text(list.text)));
}

// The grid of a district regulating station and its drawing stand in each other's place.
void LiveScreen::SwapDrawing() {
    const bool drawing = drawing_->isHidden();
    ui_.gridtab->BringForward(*session::GroupOf("DRS"));
    ui_.gridtab->GridOf(*session::GroupOf("DRS")).setVisible(!drawing);
    drawing_->setVisible(drawing);
    ui_.cmdDRS->setText(drawing ? "Show Data" : "Show P&&I");
    ui_.cmdDRS->setShortcut(Qt::ALT | Qt::Key_P);
}

bool LiveScreen::MayClose() {
    if (session_.IsOffLine()) {
        return true;
    }
    Box("Stop Communitcation...");
    return false;
}

// What the session tells ---------------------------------------------------------------------------------------------

void LiveScreen::Status(const std::string& text) {
    ui_.lblmsg->setText(OneLine(text));
}

void LiveScreen::Box(const std::string& text) {
    ShowBox(&page_, Lines(text), page_.windowTitle());
}

void LiveScreen::Lamp(const std::string& lamp, const std::string& bytes) {
    ui_.leds->Light(Text(lamp));
    traffic_->Line(Text(lamp), bytes);
}

void LiveScreen::StateChanged() {
    const bool connected = session_.GetState() == session::State::Connected;
    wasConnected_ = wasConnected_ || connected;
    grids_.StateChanged();
    if (!session_.PollingActive()) {
        writing_.Leave();
    }
    ShowButtons();
    if (connected) {
        ui_.cmdgetdata->setFocus();
    } else if (Grid* grid = session_.PollingActive() ? ui_.gridtab->GridInFront() : nullptr) {
        grid->setFocus();
    }
}

void LiveScreen::Request(const std::string& text) {
    ui_.lblreq->setText(Text(text));
    ShowButtons();
}

void LiveScreen::Progress(int done, int total) {
    ui_.pbupdate->setRange(0, std::max(total, 1));
    ui_.pbupdate->setValue(done);
}

void LiveScreen::Storing(bool storing) {
    QPalette colours = page_.palette();
    if (storing) {
        ui_.lblmsg->setText("Please Wait For Few Seconds........");
        colours.setColor(QPalette::Window, QColor(255, 0, 0));
        colours.setColor(QPalette::WindowText, Qt::white);
    }
    ui_.lblmsg->setPalette(colours);
    if (storing) {
        ui_.lblmsg->repaint();
    }
}

// What was being entered was meant for a row of the stream before.
void LiveScreen::Drawn() {
    writing_.Leave();
    grids_.Arrange();
    ShowFigures();
    ShowButtons();
}

void LiveScreen::Refreshed() {
    grids_.Refresh();
    ShowFigures();
}

void LiveScreen::ShowFigures() {
    status_.Show(session_);
    status_.ShowAge(session_, desk_.clock.Now());
    drawing_->Show(session_.Parameters(), session_.GetStation().isCW);
}

void LiveScreen::Ended(const std::string& reason, bool polled) {
    status_.HideAlarm();
    waitsForLine_ = !reason.empty() && wasConnected_;
    if (!reason.empty() && wasConnected_) {
        Status(reason);
    }
    EverySecond();
    if (reason.empty() && polled) {
        AskBox(&page_, "Do you want to see list of configurable parameters?", page_.windowTitle(),
               [this] { Guarded([this] { ShowParameters(); }); });
    }
}

// Buttons ------------------------------------------------------------------------------------------------------------

void LiveScreen::ShowButtons() {
    const core::Station& station = session_.GetStation();
    session::ButtonFacts facts;
    facts.state = session_.GetState();
    facts.isBsap = station.protocol == core::Protocol::Bsap;
    facts.hidesCalibration = session::HidesCalibration(station.modelno);
    facts.dataRight = desk_.shared.rights.rightOnline;
    facts.lineFree = !desk_.lines.Of(session_.GetStation()).Reserved();
    facts.wasConnected = wasConnected_ || waitsForLine_;
    const session::Buttons buttons = session::ButtonsOf(facts);
    ui_.cmdConnect->setEnabled(buttons.cmdConnect);
    ui_.cmdClose->setEnabled(buttons.cmdClose);
    ui_.cmddisconnect->setEnabled(buttons.cmddisconnect);
    ui_.cmdgetdata->setEnabled(buttons.cmdgetdata);
    ui_.cmd_arc->setEnabled(buttons.cmd_arc);
    ui_.cmdfetch->setEnabled(buttons.cmdfetch);
    ui_.cmdCalib->setEnabled(buttons.cmdCalib);
    ui_.cmdCalib->setVisible(buttons.cmdCalibSeen);
    ui_.cmdSignalSearch->setEnabled(buttons.cmdSignalSearch);
    ui_.cmdDataVerify->setEnabled(buttons.cmdDataVerify);
    ui_.lblmsg->setVisible(buttons.lblmsgSeen);
    ui_.lbldisconnect->setVisible(buttons.lbldisconnectSeen);
    ui_.pbupdate->setVisible(buttons.pbupdateSeen);
    const bool asks = session_.PollingActive() && !session_.WritePending();
    ui_.cmdtime->setEnabled(session_.PollingActive() && !session_.TimePending());
    ui_.chkMultiple->setEnabled(asks);
    ui_.gridtab->cmdgc().setEnabled(asks);
    ui_.cmdConnect->setDefault(buttons.cmdConnect);
    ui_.cmdgetdata->setDefault(buttons.cmdgetdata);
    for (std::size_t n = 0; n < streams_.size(); ++n) {
        streams_[n]->setChecked(static_cast<int>(n) + 1 == session_.StreamNo());
    }
}

void LiveScreen::EverySecond() {
    status_.ShowAge(session_, desk_.clock.Now());
    ShowButtons();
    const QString taken = TakenBy(desk_, session_.GetStation().locationID);
    const bool lost = waitsForLine_ || (wasConnected_ && session_.GetState() == session::State::Disconnecting);
    if (lost && !taken.isEmpty()) {
        Status(taken.toStdString());
    }
    const auto& line = desk_.lines.Of(session_.GetStation());
    const bool free = session_.GetState() == session::State::Idle && !line.Reserved() && !line.InUse();
    if (waitsForLine_ && free) {
        waitsForLine_ = false;
        Request("The line is free. Connect again to go on.");
        if (page_.isVisible()) {  // else the page in front would lose the focus
            ui_.cmdConnect->setFocus();
        }
    }
}

}  // namespace desk
