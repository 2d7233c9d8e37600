#include "desk/shell/frmGraphicRept.h"

#include <QAction>
#include <QListWidget>
#include <QRegularExpression>
#include <algorithm>
#include <map>

#include "collection/Schedule.h"
#include "core/Clock.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Station.h"
#include "core/Text.h"
#include "desk/collection/ByHand.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Look.h"
#include "desk/kit/Navigator.h"
#include "desk/session/frm_CWM.h"
#include "desk/session/frmparalist.h"
#include "desk/shell/NodeButton.h"
#include "desk/shell/frmshowdata.h"
#include "ui_frmGraphicRept.h"

namespace desk {

namespace {

constexpr int mostLines = 500;
constexpr int linesInSight = 3;
constexpr qsizetype mostNamed = 3;  // of the stations that are being collected
constexpr double fromAfar = 1.5;

using collection::DayState;

}  // namespace

frmGraphicRept::frmGraphicRept(Desk& desk) : Page(desk, "NodeView "), ui_(std::make_unique<Ui::frmGraphicRept>()) {
    ui_->setupUi(this);
    Title("NodeView ");
    MakeColumns();
    MakeLegend();
    for (QLabel* label : {ui_->lblnow, ui_->lblnext}) {
        label->setTextFormat(Qt::PlainText);
        label->setFont(Larger(font(), fromAfar));
    }
    ui_->layout->setStretch(0, 1);
    ui_->foot->setStretch(0, 1);
    ui_->lstlines->setFixedHeight(fontMetrics().height() * linesInSight + 12);
    connect(ui_->cmdMissing, &QPushButton::clicked, this, [this] {
        Guarded([this] {
            CollectMissing(desk_);
            Refresh();
        });
    });
    connect(ui_->cmdMenu, &QPushButton::clicked, this, &frmGraphicRept::MenuWanted);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &frmGraphicRept::ExitWanted);
    connect(&next_, &QTimer::timeout, this, &frmGraphicRept::FollowTheClock);
    next_.start(5000);
    desk_.scheduler.Watch(this);
    ui_->cmdMenu->setFocus();
}

frmGraphicRept::~frmGraphicRept() {
    desk_.scheduler.Watch(nullptr);
}

// A column a group: its name, its ten stations, and at the foot what they have collected. cmdLoc(0), which only a
// station without a number in its group has, stands over the first.
void frmGraphicRept::MakeColumns() {
    const QFont large = Larger(font(), fromAfar, true);
    for (int index = 0; index < reports::nodeButtons; ++index) {
        auto* button = new NodeButton(this);
        button->setObjectName("cmdLoc" + QString::number(index));
        button->setFont(large);
        const int place = index == 0 ? 0 : (index - 1) % reports::stationsAGroup + 1;
        const int group = index == 0 ? 0 : (index - 1) / reports::stationsAGroup;
        ui_->nodes->addWidget(button, place + 1, group);
        ui_->nodes->setRowStretch(place + 1, index == 0 ? 0 : 1);
        connect(button, &QPushButton::clicked, this, [this, index] { cmdLoc(index); });
        auto* collect = new QAction("Collect &Now", button);
        collect->setObjectName("collect" + QString::number(index));
        collect->setShortcut(Qt::Key_F5);
        collect->setShortcutContext(Qt::WidgetShortcut);
        connect(collect, &QAction::triggered, this, [this, index] { Collect(index); });
        button->addAction("&Open", button, &QPushButton::click);
        button->addAction(collect);
        button->setContextMenuPolicy(Qt::ActionsContextMenu);
        cmdLoc_[static_cast<std::size_t>(index)] = button;
    }
    for (int group = 0; group < reports::groups; ++group) {
        auto* name = new QLabel("Group " + QString::number(group + 1));
        name->setFont(large);
        ui_->nodes->addWidget(name, 0, group, Qt::AlignHCenter);
        auto* total = new QPushButton;
        total->setObjectName("lblgroup" + QString::number(group + 1));
        total->setFont(large);
        total->setFlat(true);
        total->setToolTip("The volumes of group " + QString::number(group + 1));
        connect(total, &QPushButton::clicked, this,
                [this, group] { desk_.navigator.Open(new frmshowdata(desk_, group + 1)); });
        ui_->nodes->addWidget(total, reports::stationsAGroup + 2, group);
        ui_->nodes->setColumnStretch(group, 1);
        lblgroup_[static_cast<std::size_t>(group)] = total;
    }
}

void frmGraphicRept::MakeLegend() {
    for (const auto& [state, word] :
         {std::pair{DayState::Collected, "Collected"}, std::pair{DayState::Partly, "Partly"},
          std::pair{DayState::Failed, "Failed"}, std::pair{DayState::NotYetDue, "Due"},
          std::pair{DayState::NoSchedule, "No schedule"}, std::pair{DayState::Collecting, "Collecting"}}) {
        auto* sample = new NodeButton(this);
        sample->ShowNode(word, {state, state == DayState::Collected || state == DayState::Partly});
        sample->setFocusPolicy(Qt::NoFocus);
        sample->setAttribute(Qt::WA_TransparentForMouseEvents);
        sample->setFixedWidth(fontMetrics().horizontalAdvance(word) + fontMetrics().height() + 28);
        ui_->legend->addWidget(sample);
    }
}

void frmGraphicRept::Activated() {
    Guarded([this] {
        Reset();
        Refresh();
        ui_->cmdMissing->setEnabled(MayCollect(desk_));
        for (QAction* collect : findChildren<QAction*>(QRegularExpression("^collect"))) {
            collect->setEnabled(MayCollect(desk_));
        }
        std::map<int, std::string> shown;
        for (const reports::Node& node : nodes_) {
            std::string& before = shown[node.index];
            if (node.index < 0) {
                desk_.feedback.Status("No place in the overview for " + node.consumer);
            } else if (!before.empty()) {
                desk_.feedback.Status("No place in the overview for " + before + ": " + node.consumer + " has it");
            }
            before = node.consumer;
        }
    });
}

void frmGraphicRept::Reset() {
    for (NodeButton* button : cmdLoc_) {
        button->ShowNode("Remote Loc.", {});
        button->hide();
    }
}

void frmGraphicRept::Refresh() {
    nodes_ = reports::ReadNodes(desk_.dbconn);
    for (const reports::Node& node : nodes_) {
        const QString consumer = QString::fromStdString(node.consumer);
        if (node.index < 0) {
            continue;
        }
        NodeButton* button = cmdLoc_[static_cast<std::size_t>(node.index)];
        const collection::DayLine line = LineNow(desk_, node.locationId);
        // A session has read it, without a run.
        const bool session =
            node.sampledtoday && (line.state == DayState::NotYetDue || line.state == DayState::NoSchedule);
        button->ShowNode(
            consumer, {line.state, node.sampledtoday, (session ? "read, " : "") + Text(line.text), Text(line.reason)});
        button->show();
    }
    const auto totals = reports::GroupTotals(desk_.dbconn);
    for (std::size_t group = 0; group < totals.size(); ++group) {
        lblgroup_[group]->setText(QString::fromStdString(totals[group]));
    }
    ShowNow();
    ShowNext();
}

void frmGraphicRept::ShowNow() {
    QStringList inHand;
    for (const reports::Node& node : nodes_) {
        if (desk_.scheduler.StandOf(node.locationId) == collection::InQueue::Collecting) {
            inHand.append(QString::fromStdString(node.consumer));
        }
    }
    const auto more = inHand.size() - mostNamed;
    const QString named =
        inHand.mid(0, mostNamed).join(", ") + (more > 0 ? " and " + QString::number(more) + " others" : "");
    ui_->lblnow->setText(inHand.isEmpty() ? "Nothing is being collected" : "Collecting " + named + Behind(desk_));
}

void frmGraphicRept::ShowNext() {
    Guarded([this] { ui_->lblnext->setText(NextDue()); });
}

// A minute later a station may be due, or the day another one.
void frmGraphicRept::FollowTheClock() {
    const std::string minute = core::IsoText(desk_.clock.Now()).substr(0, 16);
    if (isVisible() && std::exchange(minute_, minute) != minute) {
        Guarded([this] { Refresh(); });
    }
}

QString frmGraphicRept::NextDue() const {
    const core::DateTime now = desk_.clock.Now();
    const auto next = collection::NextDue(desk_.dbconn, now, desk_.scheduler.Served(now));
    if (!next) {
        return "No station has a schedule";
    }
    const bool today = core::DateText(next->at) == core::DateText(now);
    return "Next: " + QString::fromStdString(next->consumer) + " at " +
           QString::fromStdString(core::TimeText(next->at).substr(0, 5)) +
           (today ? QString() : " on " + QString::fromStdString(core::DateText(next->at)));
}

void frmGraphicRept::Line(const QString& text) {
    ui_->lstlines->addItem(QString::fromStdString(core::TimeText(desk_.clock.Now())) + "   " + text);
    if (ui_->lstlines->count() > mostLines) {
        delete ui_->lstlines->takeItem(0);
    }
    ui_->lstlines->scrollToBottom();
}

void frmGraphicRept::Collecting(std::int64_t) {
    Guarded([this] { Refresh(); });
}

void frmGraphicRept::Collected(std::int64_t) {
    Guarded([this] { Refresh(); });
}

// Of two stations with one place the button names the later one.
const reports::Node* frmGraphicRept::StationAt(int index) const {
    const auto node =
        std::find_if(nodes_.rbegin(), nodes_.rend(), [&](const reports::Node& one) { return one.index == index; });
    return node == nodes_.rend() ? nullptr : &*node;
}

void frmGraphicRept::cmdLoc(int index) {
    if (const reports::Node* node = StationAt(index)) {
        Guarded([&] { OpenStation(node->locationId); });
    }
}

void frmGraphicRept::Collect(int index) {
    if (const reports::Node* node = StationAt(index)) {
        Guarded([&] {
            CollectNow(desk_, node->locationId, node->consumer);
            Refresh();
        });
    }
}

// A station whose parameters come from its own signal lists has a menu in place of the session.
void frmGraphicRept::OpenStation(std::int64_t locationId) {
    const auto station = core::ReadStation(desk_.dbconn, locationId);
    if (station && !core::SameText(station->modelno, "CW_Micro")) {
        desk_.navigator.Open(new frmparalist(desk_, locationId));
    } else {
        desk_.navigator.Open(new frm_CWM(desk_, locationId));
    }
}

}  // namespace desk
