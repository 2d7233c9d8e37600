#include "desk/session/frmdata.h"

#include "core/MAIN_Module.h"
#include "desk/kit/Boxes.h"
#include "ui_frmdata.h"

namespace desk {

frmdata::frmdata(Desk& desk, session::RegisterEditor& editor, const session::EditedRow& row, QWidget* over)
    : QDialog(over), editor_(editor), ui_(std::make_unique<Ui::frmdata>()) {
    ui_->setupUi(this);
    setWindowTitle("Enter Data" + QString::fromStdString(desk.shared.versionsuffix));
    setAttribute(Qt::WA_DeleteOnClose);
    ui_->lbldescription->setText(QString::fromStdString(row.description));
    ui_->txtstartaddress->setText(QString::fromStdString(row.address));
    ui_->txtstartaddress->installEventFilter(this);
    ui_->cmbdatatype->Fill(editor.DataTypes());
    ui_->cmbdatatype->Text(row.type);
    connect(ui_->cmdOk, &QPushButton::clicked, this, [this] { Accept(false); });
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->cmbdatatype, &PickCombo::Left, this, &frmdata::DataTypeLeft);
    connect(this, &QDialog::rejected, this, [this] { editor_.PutBack(); });
    ui_->txtstartaddress->setFocus();
}

frmdata::~frmdata() = default;

void frmdata::Accept(bool evenIfTaken) {
    if (std::exchange(left_, false) && !SettleDataType()) {
        return;
    }
    const session::AddressVerdict verdict =
        editor_.Enter(ui_->txtstartaddress->text().toStdString(), ui_->cmbdatatype->Text(), evenIfTaken);
    const QString message = QString::fromStdString(verdict.message);
    switch (verdict.kind) {
        case session::AddressVerdict::Taken:
            accept();
            return;
        case session::AddressVerdict::Question:
            // No goes on with an address that two parameters share: the operators' own decision, never a reflex.
            ToAddress();
            AskBox(
                this, message, windowTitle(), [this] { ToAddress(); }, [this] { Accept(true); }, QMessageBox::Yes);
            return;
        case session::AddressVerdict::Refused:
            ToAddress();
            findChild<QWidget*>(QString::fromStdString(verdict.control))->setFocus();
            ShowBox(this, message, windowTitle());
    }
}

void frmdata::ToAddress() {
    ui_->txtstartaddress->setFocus();
    ui_->txtstartaddress->selectAll();
}

void frmdata::DataTypeLeft() {
    left_ = true;
    // Behind the change of the focus, which is still on its way. Who cancels is not asked to mend it first.
    QTimer::singleShot(0, this, [this] {
        const bool cancels = ui_->cmdCancel->hasFocus() || !isVisible();
        if (std::exchange(left_, false) && !cancels && QApplication::activeModalWidget() == this) {
            SettleDataType();
        }
    });
}

bool frmdata::SettleDataType() {
    if (ui_->cmbdatatype->Settle()) {
        return true;
    }
    ui_->cmbdatatype->Text("");
    ui_->cmbdatatype->setFocus();
    ShowBox(this, "Invalid Datatype", windowTitle());
    return false;
}

bool frmdata::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        // A click sets the cursor behind this event.
        QTimer::singleShot(0, ui_->txtstartaddress, &QLineEdit::selectAll);
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace desk
