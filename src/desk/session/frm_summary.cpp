#include "desk/session/frm_summary.h"

#include <QKeyEvent>
#include <QTimer>

#include "core/MAIN_Module.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Look.h"
#include "session/Session.h"
#include "ui_frm_summary.h"

namespace desk {

namespace {

constexpr int refreshMs = 1000;
constexpr double figureSize = 2;  // of the font's

}  // namespace

frm_summary::frm_summary(Desk& desk, session::Session& session)
    : Page(desk, "Summary"), session_(session), ui_(std::make_unique<Ui::frm_summary>()) {
    ui_->setupUi(this);
    Title("Summary");
    ui_->lblconsumer->setFont(Larger(font(), figureSize, true));
    for (std::size_t i = 0; i < controls_.size(); ++i) {
        const QString name = Text(session::summaryItems[i].label);
        Figure& figure = controls_[i];
        figure.label = findChild<QLabel*>(name);
        figure.button = findChild<QPushButton*>(name);
        figure.unit = findChild<QLabel*>("unit_" + name);
        Mute(figure.unit);
        Mute(findChild<QLabel*>("cap_" + name));
        findChild<QWidget*>(name)->setFont(Larger(font(), figureSize));
        if (figure.button != nullptr) {
            connect(figure.button, &QPushButton::clicked, this, [this, i] { ChooseFigure(i); });
        }
    }
    Mute(ui_->lblread);
    connect(ui_->cmd_ok, &QPushButton::clicked, this, &frm_summary::cmd_ok);
    connect(ui_->cmd_toggle, &QPushButton::clicked, this, &frm_summary::cmd_toggle);
    connect(ui_->cmd_cancel, &QPushButton::clicked, this, &frm_summary::CloseWrite);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    CloseCommand(ui_->cmdClose);
    ui_->fra_write->hide();
    Fill();
    auto* Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    connect(Timer1, &QTimer::timeout, this, &frm_summary::Fill);
    Timer1->start(refreshMs);
}

frm_summary::~frm_summary() = default;

void frm_summary::Fill() {
    Guarded([this] { figures_ = session::ReadSummary(desk_.dbconn, session_); });
    for (std::size_t i = 0; i < controls_.size(); ++i) {
        const QString text = QString::fromStdString(figures_[i].text);
        controls_[i].unit->setText(QString::fromStdString(figures_[i].unit));
        if (controls_[i].label != nullptr) {
            controls_[i].label->setText(text);
        } else {
            controls_[i].button->setText(text);
        }
    }
    const auto& station = session_.GetStation();
    ui_->lblconsumer->setText(QString::fromStdString(station.consumer) +
                              (station.No_Stream > 1 ? ", stream " + QString::number(session_.StreamNo()) : QString()));
    const auto at = session_.ValuesAt();
    ui_->lblread->setText(at ? "Read " + QString::fromStdString(core::DateText(*at) + " " + core::TimeText(*at))
                             : "Not read yet");
    if (session_.WritePending()) {
        ui_->lblreq->setText(session::requestPending);
    } else if (ui_->lblreq->text() == session::requestPending) {
        ui_->lblreq->setText(Text(session_.LastAnswer()));
    }
}

// Why an item cannot be changed now, for the operator; empty when it can.
std::string frm_summary::Refusal(std::size_t item) const {
    const bool own = session::summaryItems[item].form == session::SummaryForm::Own;
    if (!session::MaySetSummary(session_, session::summaryItems[item])) {
        return session_.WritePending() ? session::requestPending : "Not connected";
    }
    if (!own && !desk_.shared.rights.rightSetup) {
        return "User Not Granted Configuration Rights";
    }
    return figures_[item].known ? "" : "The value has not been read yet";
}

void frm_summary::ChooseFigure(std::size_t item) {
    Fill();
    const std::string refusal = Refusal(item);
    ui_->lblreq->setText(QString::fromStdString(refusal));
    if (refusal.empty()) {
        Open(item);
    }
}

void frm_summary::Open(std::size_t item) {
    item_ = item;
    streamno_ = session_.StreamNo();
    const bool switched = session::IsSwitched(session::summaryItems[item]);
    ui_->lb_para->setText(Text(session::summaryItems[item].name));
    ui_->txt_value->setText(QString::fromStdString(figures_[item].text));
    ui_->txt_value->setReadOnly(switched);
    ui_->txt_value->selectAll();
    ui_->cmd_toggle->setVisible(switched);
    ui_->cmd_toggle->setDefault(switched);
    ui_->cmd_ok->setDefault(!switched);
    ui_->fra_write->show();
    CloseCommand(ui_->cmd_cancel);
    if (switched) {
        ui_->cmd_toggle->setFocus();
    } else {
        ui_->txt_value->setFocus();
    }
}

void frm_summary::CloseWrite() {
    controls_[item_].button->setFocus();
    ui_->fra_write->hide();
    CloseCommand(ui_->cmdClose);
}

void frm_summary::cmd_toggle() {
    ui_->txt_value->setText(QString::fromStdString(session::ToggledSummary(ui_->txt_value->text().toStdString())));
}

// A stream that was chosen before the figure may come after it: the value was meant for the other one.
void frm_summary::cmd_ok() {
    if (session_.StreamNo() != streamno_) {
        CloseWrite();
        Fill();
        ui_->lblreq->setText("Not set: another stream is shown now");
        return;
    }
    Guarded([this] {
        const auto answer = session::SetSummary(desk_.dbconn, session_, session::summaryItems[item_],
                                                ui_->txt_value->text().toStdString());
        ui_->lblreq->setText(QString::fromStdString(answer.text));
        if (answer.mend) {
            ui_->txt_value->setFocus();
            ui_->txt_value->selectAll();
            return;
        }
        CloseWrite();
        Fill();
    });
}

// Enter in the field, before the page gives it to the control that has the focus afterwards.
void frm_summary::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && ui_->txt_value->hasFocus()) {
        cmd_ok();
        return;
    }
    Page::keyPressEvent(event);
}

}  // namespace desk
