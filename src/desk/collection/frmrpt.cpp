#include "desk/collection/frmrpt.h"

#include <cmath>
#include <optional>
#include <system_error>

#include "desk/kit/EngineText.h"
#include "desk/kit/WholeFile.h"
#include "reports/DailyReport.h"
#include "ui_frmrpt.h"

namespace desk {

namespace {

// Two places, so that the points stand below each other.
QString Figure(double value) {
    constexpr double widest = 1e12;
    return std::fabs(value) < widest ? QString::number(value, 'f', 2) : Number(value);
}

QString Figure(const std::optional<double>& value, bool cumulative = false) {
    return value ? Figure(*value) + (cumulative ? " cumulative" : "") : QString("no data");
}

QStringList Cells(const reports::DailyLine& line) {
    return {QString::number(line.number),
            QString::fromStdString(line.consumer),
            QString::fromStdString(line.status),
            Figure(line.presentallocation),
            Figure(line.MGO_Qty),
            Figure(line.dayflow, line.cumulative),
            Figure(line.monthflow, line.cumulative),
            line.cumulative ? QString() : Figure(line.averageflow),
            Figure(line.pressure),
            Figure(line.Cont_Pr)};
}

}  // namespace

frmrpt::frmrpt(Desk& desk) : Page(desk, "Daily Report "), ui_(std::make_unique<Ui::frmrpt>()) {
    ui_->setupUi(this);
    Title("Daily Report ");
    CloseCommand(ui_->cmdClose);
    ui_->Grid->FormatString(
        ">Sr. No|<Consumer|<Status|>Allocation\n(SCM)|>MGO Qty\n(SCM)|>Day Flow\n(SCM)|>Month Flow\n(SCM)|"
        ">Average\n(SCM/day)|>Pressure\n(kg/cm2)|>Cont. Pr.\n(kg/cm2)");
    const core::DateTime today = desk_.clock.Now();
    ui_->dtpicker->setDate(QDate(today.year, today.month, today.day));
    connect(ui_->dtpicker, &QDateEdit::dateChanged, this, &frmrpt::Clear);
    connect(ui_->cmddaily, &QPushButton::clicked, this, &frmrpt::cmddaily);
    connect(ui_->cmdsavertf, &QPushButton::clicked, this, &frmrpt::cmdsavertf);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
}

frmrpt::~frmrpt() = default;

core::DateTime frmrpt::Day() const {
    const QDate date = ui_->dtpicker->date();
    return {date.year(), date.month(), date.day()};
}

void frmrpt::Clear() {
    ui_->Grid->Clear();
    ui_->cmdsavertf->setEnabled(false);
}

void frmrpt::Make() {
    Clear();
    reports::makereport_daily(desk_.dbconn, Day(), desk_.clock.Now(), desk_.feedback);
    std::vector<QStringList> rows;
    for (const auto& line : reports::DailyLines(desk_.dbconn, Day(), desk_.clock.Now())) {
        rows.push_back(Cells(line));
    }
    ui_->Grid->AddItems(rows);
    ui_->Grid->SelectRow(0);
    ui_->cmdsavertf->setEnabled(!rows.empty());
}

void frmrpt::cmddaily() {
    Guarded([this] {
        Make();
        if (ui_->Grid->Rows() == 0) {
            Show("No Data available");
        }
    });
}

void frmrpt::cmdsavertf() {
    AskForFile(this, {"Save Report", "Rich text (*.rtf)", "rtf", "daily_report.rtf"},
               [this](const QString& file) { Write(file); });
}

// The scheduled mail fills the same table for its own day, perhaps since this one was made: it is made anew.
void frmrpt::Write(const QString& file) {
    Guarded([this, &file] {
        Make();
        try {
            reports::WriteDailyReport(desk_.dbconn, Day(), desk_.clock.Now(), file.toStdString());
            Show("Report saved", QMessageBox::Information);
        } catch (const std::system_error& failure) {
            Show(QString::fromStdString(failure.what()));
        }
    });
}

}  // namespace desk
