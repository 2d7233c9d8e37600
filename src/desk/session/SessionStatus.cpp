#include "desk/session/SessionStatus.h"

#include <QGridLayout>

#include "desk/kit/Look.h"
#include "session/HealthTexts.h"
#include "session/Session.h"

namespace desk {

namespace {

constexpr unsigned alarmColour = 0xc00000;

}  // namespace

QString AgeText(std::int64_t seconds) {
    return seconds < 120 ? QString::number(seconds) + " s old" : QString::number(seconds / 60) + " min old";
}

SessionStatus::SessionStatus(QWidget* parent)
    : QWidget(parent),
      lbldatetime_(new QLabel(this)),
      lblbatvolts_(new QLabel(this)),
      lblaga3_(new QLabel(this)),
      lblaga8_(new QLabel(this)),
      lblage_(new QLabel(this)),
      lblrequests_(new QLabel(this)),
      lblalarmbar_(new QLabel(this)),
      colour_(alarmColour) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(24);
    layout->setVerticalSpacing(4);
    const std::initializer_list<std::pair<QLabel*, const char*>> labels = {
        {lbldatetime_, "lbldatetime"}, {lblbatvolts_, "lblbatvolts"}, {lblaga3_, "lblaga3"},
        {lblaga8_, "lblaga8"},         {lblage_, "lblage"},           {lblrequests_, "lblrequests"},
        {lblalarmbar_, "lblalarmbar"}};
    for (const auto& [label, name] : labels) {
        label->setObjectName(name);
        label->setTextFormat(Qt::PlainText);
    }
    layout->addWidget(lbldatetime_, 0, 0, 2, 1, Qt::AlignTop);
    layout->addWidget(lblbatvolts_, 0, 1, 2, 1, Qt::AlignTop);
    layout->addWidget(lblaga3_, 0, 2);
    layout->addWidget(lblaga8_, 1, 2);
    layout->addWidget(lblage_, 0, 3);
    layout->addWidget(lblrequests_, 1, 3);
    layout->addWidget(lblalarmbar_, 2, 0, 1, 4);
    layout->setColumnStretch(3, 1);
    Mute(lblrequests_);
    lblalarmbar_->setAlignment(Qt::AlignCenter);
    lblalarmbar_->setAutoFillBackground(true);
    lblalarmbar_->setFont(Larger(font(), 1.2, true));
    lblalarmbar_->hide();
    connect(&tmr_blink_, &QTimer::timeout, this, &SessionStatus::Blink);
}

void SessionStatus::Show(const session::Session& session) {
    const core::Station& station = session.GetStation();
    const session::ParameterSet& set = session.Parameters();
    lbldatetime_->setText(QString::fromStdString(session::DateTimeText(set, station.isCW)));
    lblbatvolts_->setText(QString::fromStdString(session::VoltageText(set, station.isCW)));
    const std::string method = station.ModelText(session.StreamNo());
    lblaga3_->setText(QString::fromStdString(!method.empty() ? method : session.IsAga3() ? "AGA3" : "AGA7"));
    lblaga8_->setText(!session.Look().aga8_fpv ? "NX-19" : session.Look().Gross_Detail ? "AGA8 Gross" : "AGA8 Detail");
    const std::string alarm = session::VoltageAlarm(set, station.isCW, station.voltlimit);
    if (alarm.empty()) {
        HideAlarm();
        return;
    }
    lblalarmbar_->setText(QString::fromStdString(alarm));
    if (!tmr_blink_.isActive()) {
        Blink();
        lblalarmbar_->show();
        tmr_blink_.start(500);
    }
}

void SessionStatus::ShowAge(const session::Session& session, const core::DateTime& now) {
    const auto at = session.ValuesAt();
    lblage_->setText(at ? "Values " + AgeText(core::ToSeconds(now) - core::ToSeconds(*at)) : QString("No values yet"));
    const auto requests = session.Requests();
    lblrequests_->setText("Requests: " + QString::number(requests.good) + " good, " + QString::number(requests.failed) +
                          " failed");
}

void SessionStatus::HideAlarm() {
    tmr_blink_.stop();
    lblalarmbar_->hide();
}

void SessionStatus::Blink() {
    colour_ ^= 0xffffffU;
    QPalette colours = lblalarmbar_->palette();
    const QColor back = QColor::fromRgb(colour_);
    colours.setColor(QPalette::Window, back);
    colours.setColor(QPalette::WindowText, back.lightness() > 110 ? Qt::black : Qt::white);
    lblalarmbar_->setPalette(colours);
}

}  // namespace desk
