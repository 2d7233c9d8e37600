#include "desk/archive/DownloadPanel.h"

#include <algorithm>

#include "desk/kit/Boxes.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/GridFile.h"
#include "ui_DownloadPanel.h"

namespace desk {

namespace {

// The time and the description of an event are texts; everything else is a number, and right-aligned.
bool IsNumber(const QString& caption) {
    return !caption.startsWith("Time ::") && caption != "Date/Time" && caption != "Description";
}

}  // namespace

DownloadPanel::DownloadPanel(QWidget* parent) : QWidget(parent), ui_(std::make_unique<Ui::DownloadPanel>()) {
    ui_->setupUi(this);
    connect(ui_->cmd_stop, &QPushButton::clicked, this, &DownloadPanel::Stop);
    connect(ui_->cmdsave, &QPushButton::clicked, this, &DownloadPanel::Save);
    ui_->cmdReport->setEnabled(false);
    Running(false);
}

DownloadPanel::~DownloadPanel() = default;

QPushButton& DownloadPanel::cmdGo() {
    return *ui_->cmdGo;
}

QPushButton& DownloadPanel::cmd_stop() {
    return *ui_->cmd_stop;
}

QPushButton& DownloadPanel::cmdReport() {
    return *ui_->cmdReport;
}

QPushButton& DownloadPanel::cmd_email() {
    return *ui_->cmd_email;
}

QPushButton& DownloadPanel::cmdClose() {
    return *ui_->cmdClose;
}

void DownloadPanel::Running(bool running) {
    running_ = running;
    stopflag_ = false;
    for (QPushButton* command : {ui_->cmdGo, ui_->cmdsave, ui_->cmd_email, ui_->cmdClose}) {
        command->setEnabled(!running);
    }
    ui_->cmdsave->setEnabled(!running && ui_->grid->Rows() > 0);
    ui_->cmdReport->setEnabled(!running && ui_->grid->Rows() > 0);
    ui_->cmd_stop->setEnabled(running);
    ui_->cmdGo->setDefault(!running);
    for (QWidget* place : std::initializer_list<QWidget*>{ui_->lblmsg, ui_->lblrecno, ui_->pbrecords}) {
        place->setVisible(running);
    }
    ui_->lblrecno->clear();
    ui_->pbrecords->setRange(0, 0);
}

void DownloadPanel::ClearGrid() {
    captions_.clear();
    ui_->grid->FormatString(QStringList());
}

void DownloadPanel::Columns(const std::vector<std::string>& captions) {
    captions_.clear();
    QStringList shown;
    for (const std::string& caption : captions) {
        captions_.append(QString::fromStdString(caption));
        QString text = captions_.back().trimmed();
        shown.append((IsNumber(text) ? ">" : "<") + text);
    }
    ui_->grid->FormatString(shown);
}

void DownloadPanel::Rows(const std::vector<std::vector<std::string>>& rows) {
    ui_->grid->AddItems(GridRows(rows));
}

void DownloadPanel::Record(int record, int total) {
    ui_->lblrecno->setText("Record (" + QString::number(record) + "/" + QString::number(total) + ")");
    ui_->pbrecords->setRange(0, std::max(total, 1));
    ui_->pbrecords->setValue(record);
}

void DownloadPanel::Status(const std::string& text) {
    ui_->lblmsg->setText(OneLine(text));
}

void DownloadPanel::Box(const std::string& text) {
    ShowBox(this, Lines(text), window()->windowTitle());
}

void DownloadPanel::Lamp(const std::string& lamp, const std::string&) {
    ui_->leds->Light(QString::fromStdString(lamp));
}

void DownloadPanel::Stop() {
    stopflag_ = true;
    ui_->lblmsg->setText("Stoped");
    ui_->cmd_stop->setEnabled(false);
}

void DownloadPanel::Save() {
    SaveGridFile(this, GridText(*ui_->grid, files_.ending, captions_), files_.wish);
}

}  // namespace desk
