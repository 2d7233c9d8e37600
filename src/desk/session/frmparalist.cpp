#include "desk/session/frmparalist.h"

#include "desk/core/Grid.h"
#include "desk/core/Look.h"
#include "ui_frmparalist.h"

namespace desk {

frmparalist::frmparalist(Desk& desk, const RegisterStation& station)
    : Page(desk, "Parameter Information  "), ui_(std::make_unique<Ui::frmparalist>()) {
    ui_->setupUi(this);
    Title("Parameter Information  ");
    ui_->lblconsumer->setText(QString::fromStdString(station.consumer));
    ui_->lblconsumer->setFont(Larger(font(), 1.2, true));
    ui_->cmdOk->setEnabled(false);
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &frmparalist::CloseAsked);
    connect(ui_->cmdOk, &QPushButton::clicked, this, [this] { Guarded([this] { Ok(); }); });
    Guarded([&] {
        editing_ = std::make_unique<RegisterEditing>(desk, *ui_->gridtab, station);
        ui_->cmdOk->setEnabled(true);
        connect(ui_->gridtab, &ParameterTabs::RowChosen, this,
                [this](std::size_t group, std::size_t row) { Guarded([&] { editing_->Choose(group, row, this); }); });
        if (!station.edited.choices.MB_CONFIG) {
            // A map that is not laid out by hand is stored without the operator.
            QTimer::singleShot(0, ui_->cmdOk, &QPushButton::click);
        }
    });
}

frmparalist::~frmparalist() = default;

void frmparalist::Activated() {
    if (Grid* grid = ui_->gridtab->GridInFront()) {
        grid->setFocus();
    }
}

void frmparalist::Ok() {
    editing_->Store();
    Q_EMIT Stored();
    Close();
}

void frmparalist::CloseAsked() {
    if (editing_ != nullptr && editing_->Changed()) {
        Ask("The addresses are not stored yet.\nClose without storing them?", [this] { Close(); });
    } else {
        Close();
    }
}

}  // namespace desk
