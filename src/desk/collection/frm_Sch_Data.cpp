#include "desk/collection/frm_Sch_Data.h"

#include <QDesktopServices>
#include <QUrl>

#include "collection/SchedulerData.h"
#include "ui_frm_Sch_Data.h"

namespace desk {

bool OpenDocument(const std::filesystem::path& document) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(document.string())));
}

frm_Sch_Data::frm_Sch_Data(Desk& desk, Opener opener)
    : Page(desk, "Scheduler"), ui_(std::make_unique<Ui::frm_Sch_Data>()), opener_(std::move(opener)) {
    ui_->setupUi(this);
    Title("Scheduler");
    CloseCommand(ui_->cmd_Close);
    Guarded([this] {
        for (const std::string& name : collection::ScheduledNames(desk_.dbconn)) {
            ui_->cmb_rtu->addItem(QString::fromStdString(name));
        }
    });
    ui_->cmb_rtu->setCurrentIndex(-1);
    connect(ui_->cmb_rtu, &QComboBox::currentIndexChanged, this, &frm_Sch_Data::ShowDates);
    connect(ui_->cmd_open, &QPushButton::clicked, this, &frm_Sch_Data::cmd_open);
    connect(ui_->cmd_Close, &QPushButton::clicked, this, &Page::Closed);
}

frm_Sch_Data::~frm_Sch_Data() = default;

void frm_Sch_Data::Activated() {
    if (ui_->cmb_rtu->count() == 0) {
        ui_->cmd_Close->setFocus();
        Show("Scheduler Data not found");
    }
}

void frm_Sch_Data::ShowDates() {
    ui_->cmb_date->clear();
    Guarded([this] {
        for (const std::string& date :
             collection::ScheduledDates(desk_.dbconn, ui_->cmb_rtu->currentText().toStdString())) {
            ui_->cmb_date->addItem(QString::fromStdString(date));
        }
    });
    ui_->cmd_open->setEnabled(ui_->cmb_date->count() > 0);
}

void frm_Sch_Data::cmd_open() {
    Guarded([this] {
        const QString date = ui_->cmb_date->currentText();
        const auto workbook =
            collection::ScheduledWorkbook(desk_.shared, ui_->cmb_rtu->currentText().toStdString(), date.toStdString());
        ui_->cmb_date->setFocus();
        if (!workbook) {
            Show('"' + date + "\" is no date, so its workbook cannot be found.");
        } else if (!std::filesystem::exists(*workbook)) {
            Show("File Not Found");
        } else if (!opener_(*workbook)) {
            Show("No program could open " + QString::fromStdString(workbook->string()));
        }
    });
}

}  // namespace desk
