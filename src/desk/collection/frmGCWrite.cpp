#include "desk/collection/frmGCWrite.h"

#include <algorithm>

#include "core/Feedback.h"
#include "desk/collection/frmvalue.h"
#include "desk/kit/EngineText.h"
#include "ui_frmGCWrite.h"

namespace desk {

namespace {

constexpr int gasColumn = 2;

// A dash where there is none.
QString ValueText(const std::optional<double>& value) {
    return value ? Number(*value) : "-";
}

}  // namespace

frmGCWrite::frmGCWrite(Desk& desk) : Page(desk, "Gas Composition Write "), ui_(std::make_unique<Ui::frmGCWrite>()) {
    ui_->setupUi(this);
    Title("Gas Composition Write ");
    ui_->Grid->FormatString(">Location|<Station");
    ui_->gcgrid->FormatString(">Address|<Description|>Value");
    connect(ui_->Grid, &Grid::RowSelected, this, &frmGCWrite::ShowStored);
    connect(ui_->gcgrid, &Grid::RowChosen, this, &frmGCWrite::EditRow);
    connect(ui_->cmdedit, &QPushButton::clicked, this, &frmGCWrite::cmdedit);
    connect(ui_->cmdsave, &QPushButton::clicked, this, &frmGCWrite::cmdsave);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmGCWrite::cmdCancel);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    Guarded([this] {
        stations_ = collection::GasStations(desk_.dbconn);
        std::vector<QStringList> rows;
        for (const auto& station : stations_) {
            rows.push_back({QString::number(station.locationId), QString::fromStdString(station.consumer)});
        }
        ui_->Grid->AddItems(rows);
    });
    ui_->Grid->SelectRow(0);
    Edit(false);
}

frmGCWrite::~frmGCWrite() = default;

void frmGCWrite::ShowStored() {
    components_.clear();
    ui_->gcgrid->Clear();
    Guarded([this] {
        const int row = ui_->Grid->Row();
        if (row >= 0) {
            components_ = collection::GasComposition(desk_.dbconn, stations_[static_cast<std::size_t>(row)].locationId);
        }
    });
    std::vector<QStringList> rows;
    for (const auto& component : components_) {
        rows.push_back({QString::fromStdString(component.startaddress), QString::fromStdString(component.description),
                        ValueText(component.value)});
    }
    ui_->gcgrid->AddItems(rows);
    ui_->gcgrid->SelectRow(0);
    ui_->cmdedit->setEnabled(!components_.empty());
    ShowSum();
}

// A help for whoever types: a whole composition comes to 100.
void frmGCWrite::ShowSum() {
    const auto missing =
        std::count_if(components_.begin(), components_.end(), [](const auto& component) { return !component.value; });
    const QString rest = missing > 0 ? " (" + QString::number(missing) + " without a value)" : QString();
    const bool none = missing == static_cast<std::ptrdiff_t>(components_.size());
    ui_->lblsum->setText(none ? "" : "Sum: " + Number(collection::GasSum(components_)) + rest);
}

void frmGCWrite::Edit(bool editing) {
    ui_->Grid->setEnabled(!editing);
    ui_->cmdClose->setEnabled(!editing);
    ui_->cmdedit->setEnabled(!editing && !components_.empty());
    ui_->frmdata->setEnabled(editing);
    ui_->cmdsave->setEnabled(editing);
    ui_->cmdCancel->setEnabled(editing);
    ui_->cmdedit->setDefault(!editing);
    ui_->cmdsave->setDefault(editing);
    CloseCommand(editing ? ui_->cmdCancel : ui_->cmdClose);
    if (editing) {
        ui_->gcgrid->setFocus();
    } else {
        ui_->Grid->setFocus();
    }
}

void frmGCWrite::EditRow(int row) {
    const auto& component = components_[static_cast<std::size_t>(row)];
    auto* value = new frmvalue(desk_, this, QString::fromStdString(component.description), component.value);
    connect(value, &frmvalue::Given, this, [this, row](double given) {
        components_[static_cast<std::size_t>(row)].value = given;
        ui_->gcgrid->TextMatrix(row, gasColumn, Number(given));
        ShowSum();
    });
    value->open();
}

void frmGCWrite::cmdedit() {
    Edit(true);
}

void frmGCWrite::cmdsave() {
    Guarded([this] {
        const auto& station = stations_[static_cast<std::size_t>(ui_->Grid->Row())];
        collection::SaveGasComposition(desk_.dbconn, station.locationId, components_);
        Edit(false);
        desk_.feedback.Status("Gas composition of " + station.consumer + " saved");
    });
}

void frmGCWrite::cmdCancel() {
    ShowStored();
    Edit(false);
}

}  // namespace desk
