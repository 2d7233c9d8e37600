#include "desk/signals/FetchPanel.h"

#include "desk/kit/Boxes.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/GridFile.h"
#include "ui_FetchPanel.h"

namespace desk {

namespace {

constexpr const char* columns = ">Sr. No.|<Signal Name|>Value|<Units";

}  // namespace

FetchPanel::FetchPanel(QWidget* parent) : QWidget(parent), ui_(std::make_unique<Ui::FetchPanel>()) {
    ui_->setupUi(this);
    ui_->signalsGrid->FormatString(columns);
    Running(false);
}

FetchPanel::~FetchPanel() = default;

Grid& FetchPanel::signalsGrid() {
    return *ui_->signalsGrid;
}

void FetchPanel::Running(bool running, const QString& text) {
    running_ = running;
    stopRequested_ = false;
    ui_->lblmsg->setText(text);
    for (QWidget* place : std::initializer_list<QWidget*>{ui_->lblmsg, ui_->lblrows, ui_->pbupdate}) {
        place->setVisible(running);
    }
}

void FetchPanel::Stop() {
    stopRequested_ = true;
    ui_->lblmsg->setText("Stoped");
}

void FetchPanel::Clear() {
    rows_.clear();
    ui_->lblrows->clear();
    ui_->signalsGrid->FormatString(columns);
}

void FetchPanel::Rewrite(std::size_t row, const signals::Signal& signal) {
    rows_.at(row) = signal;
    const auto cells = signals::SignalRow(row + 1, signal);
    for (std::size_t column = 0; column < cells.size(); ++column) {
        ui_->signalsGrid->TextMatrix(static_cast<int>(row), static_cast<int>(column),
                                     QString::fromStdString(cells[column]));
    }
}

void FetchPanel::AddText(const QString& text) {
    rows_.emplace_back();
    ui_->signalsGrid->AddItem(QString::number(rows_.size()) + "\t" + text);
}

void FetchPanel::Save() {
    SaveGridFile(this, GridText(*ui_->signalsGrid, '\t'), ExcelFile());
}

void FetchPanel::Signals(const std::vector<signals::Signal>& signals) {
    std::vector<std::vector<std::string>> cells;
    for (const signals::Signal& signal : signals) {
        rows_.push_back(signal);
        cells.push_back(signals::SignalRow(rows_.size(), signal));
    }
    ui_->signalsGrid->AddItems(GridRows(cells));
    ui_->lblrows->setText(QString::number(rows_.size()) + (rows_.size() == 1 ? " signal" : " signals"));
}

void FetchPanel::BetweenReplies(protocols::Conversation& talk) {
    if (between) {
        between(talk);
    }
}

void FetchPanel::Status(const std::string& text) {
    ui_->lblmsg->setText(OneLine(text));
}

void FetchPanel::Box(const std::string& text) {
    ShowBox(this, Lines(text), window()->windowTitle());
}

void FetchPanel::Lamp(const std::string& lamp, const std::string&) {
    ui_->leds->Light(QString::fromStdString(lamp));
}

}  // namespace desk
