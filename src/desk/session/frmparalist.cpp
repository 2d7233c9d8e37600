#include "desk/session/frmparalist.h"

#include "desk/kit/Grid.h"
#include "desk/kit/Look.h"
#include "desk/session/LiveScreen.h"
#include "ui_frmparalist.h"

namespace desk {

frmparalist::frmparalist(Desk& desk) : Page(desk, "Parameter Information  "), ui_(std::make_unique<Ui::frmparalist>()) {
    ui_->setupUi(this);
    Title("Parameter Information  ");
    ui_->lblconsumer->setFont(Larger(font(), 1.2, true));
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &frmparalist::CloseAsked);
}

frmparalist::frmparalist(Desk& desk, const RegisterStation& station) : frmparalist(desk) {
    ShowMode(false);
    ui_->lblconsumer->setText(QString::fromStdString(station.consumer));
    ui_->cmdOk->setEnabled(false);
    connect(ui_->cmdOk, &QPushButton::clicked, this, [this] { Guarded([this] { Ok(); }); });
    Guarded([&] {
        editing_ = std::make_unique<RegisterEditing>(desk_, *ui_->gridtab, station);
        ui_->cmdOk->setEnabled(true);
        connect(ui_->gridtab, &ParameterTabs::RowChosen, this,
                [this](std::size_t group, std::size_t row) { Guarded([&] { editing_->Choose(group, row, this); }); });
        if (!station.edited.choices.MB_CONFIG) {
            // A map that is not laid out by hand is stored without the operator.
            QTimer::singleShot(0, ui_->cmdOk, &QPushButton::click);
        }
    });
}

frmparalist::frmparalist(Desk& desk, std::int64_t locationID) : frmparalist(desk) {
    ShowMode(true);
    Title("Parameter List");
    Guarded([&] {
        live_ = std::make_unique<LiveScreen>(desk_, *this, *ui_, locationID);
        setWindowTitle(windowTitle() + "----(" + ui_->lblconsumer->text() + ")");
    });
    if (live_ == nullptr) {
        ui_->lblconsumer->setText("This station cannot be opened; the error log says why");
        for (QWidget* command : findChildren<QAbstractButton*>()) {
            command->setEnabled(command == ui_->cmdClose);
        }
    }
}

frmparalist::~frmparalist() = default;

session::Session* frmparalist::GetSession() {
    return live_ == nullptr ? nullptr : &live_->GetSession();
}

void frmparalist::ShowMode(bool online) {
    for (int at = 0; at < ui_->commands->count(); ++at) {
        if (QWidget* command = ui_->commands->itemAt(at)->widget()) {
            command->setVisible(online);
        }
    }
    const std::initializer_list<QWidget*> ofSession = {
        ui_->Op_Stream_1, ui_->Op_Stream_2, ui_->Op_Stream_3,   ui_->Op_Stream_4, ui_->status, ui_->lblreq,
        ui_->lblmsg,      ui_->pbupdate,    ui_->lbldisconnect, ui_->chktraffic,  ui_->leds};
    for (QWidget* widget : ofSession) {
        widget->setVisible(online);
    }
    ui_->lblhint->setVisible(!online);
    ui_->cmdOk->setVisible(!online);
    ui_->cmdOk->setDefault(!online);
    ui_->cmdClose->show();
}

void frmparalist::Activated() {
    if (live_ != nullptr && ui_->cmdConnect->isEnabled()) {
        ui_->cmdConnect->setFocus();
    } else if (Grid* grid = ui_->gridtab->GridInFront()) {
        grid->setFocus();
    }
}

void frmparalist::Ok() {
    editing_->Store();
    Q_EMIT Stored();
    Close();
}

void frmparalist::CloseAsked() {
    if (live_ != nullptr && !live_->MayClose()) {
        return;
    }
    if (editing_ != nullptr && editing_->Changed()) {
        Ask("The addresses are not stored yet.\nClose without storing them?", [this] { Close(); });
    } else {
        Close();
    }
}

}  // namespace desk
