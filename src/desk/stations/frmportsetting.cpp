#include "desk/stations/frmportsetting.h"

#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "desk/kit/Boxes.h"
#include "stations/StationRules.h"
#include "ui_frmportsetting.h"

namespace desk {

namespace {

stations::PortChoices Read(const Ui::frmportsetting& ui) {
    return {ui.cmbbautrate->Text(), ui.cmbdatabits->Text(), ui.cmbparity->Text(), ui.cmbstopbits->Text()};
}

void Show(const stations::PortChoices& choices, Ui::frmportsetting& ui) {
    ui.cmbbautrate->Text(choices.baudrate);
    ui.cmbdatabits->Text(choices.databits);
    ui.cmbparity->Text(choices.parity);
    ui.cmbstopbits->Text(choices.stopbits);
}

}  // namespace

frmportsetting::frmportsetting(Desk& desk, const std::string& settings, QWidget* over)
    : QDialog(over), settings_(settings), ui_(std::make_unique<Ui::frmportsetting>()) {
    ui_->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle("Port Setting" + QString::fromStdString(desk.shared.versionsuffix));
    try {
        ui_->cmbbautrate->Fill(stations::Baudrates(desk.dbconn));
    } catch (const std::exception& failure) {
        desk.logs.WriteRtuErr(failure.what());
        desk.feedback.Status(failure.what());
    }
    ui_->cmbdatabits->Fill(stations::DataBits());
    ui_->cmbparity->Fill(stations::Parities());
    ui_->cmbstopbits->Fill(stations::StopBits());
    Show(stations::ReadPortChoices(settings), *ui_);
    connect(ui_->cmdOk, &QPushButton::clicked, this, &frmportsetting::Accept);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->cmdRestore, &QPushButton::clicked, this, [this] { Show(stations::PortChoices(), *ui_); });
    for (PickCombo* field : findChildren<PickCombo*>()) {
        connect(field, &PickCombo::Left, this, [this, field] { FieldLeft(field); });
    }
}

frmportsetting::~frmportsetting() = default;

void frmportsetting::Accept() {
    PickCombo* left = std::exchange(left_, nullptr);
    auto* inHand = qobject_cast<PickCombo*>(focusWidget());
    if ((left != nullptr && !Settle(*left)) || (inHand != nullptr && !Settle(*inHand))) {
        return;
    }
    const stations::PortChoices choices = Read(*ui_);
    if (const auto blanks = stations::BlankPortChoices(choices); !blanks.empty()) {
        findChild<QWidget*>(QString::fromStdString(blanks.front().control))->setFocus();
        ShowBox(this, QString::fromStdString(blanks.front().message), windowTitle());
        return;
    }
    settings_ = stations::JoinPortChoices(choices);
    accept();
}

void frmportsetting::FieldLeft(PickCombo* field) {
    left_ = field;
    // Behind the change of the focus, which is still on its way. Who cancels or restores is not asked to mend it first.
    QTimer::singleShot(0, this, [this] {
        PickCombo* left = std::exchange(left_, nullptr);
        const bool leavesAll = ui_->cmdCancel->hasFocus() || ui_->cmdRestore->hasFocus() || !isVisible();
        if (left != nullptr && !leavesAll && QApplication::activeModalWidget() == this) {
            Settle(*left);
        }
    });
}

bool frmportsetting::Settle(PickCombo& field) {
    if (field.Settle()) {
        return true;
    }
    if (const auto refusal = stations::CheckTyped(field.objectName().toStdString(), {}, field.Text())) {
        field.setFocus();
        ShowBox(this, QString::fromStdString(refusal->message), windowTitle());
    }
    return false;
}

}  // namespace desk
