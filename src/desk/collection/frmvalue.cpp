#include "desk/collection/frmvalue.h"

#include "core/MAIN_Module.h"
#include "core/Text.h"
#include "desk/kit/Boxes.h"
#include "desk/kit/EngineText.h"
#include "ui_frmvalue.h"

namespace desk {

frmvalue::frmvalue(const Desk& desk, QWidget* over, const QString& description, std::optional<double> value)
    : QDialog(over), ui_(std::make_unique<Ui::frmvalue>()) {
    ui_->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle("Value" + QString::fromStdString(desk.shared.versionsuffix));
    ui_->lbldescription->setText(description);
    ui_->txtvalue->setText(value ? Number(*value) : QString());
    ui_->txtvalue->selectAll();
    ui_->txtvalue->installEventFilter(this);
    connect(ui_->cmdOk, &QPushButton::clicked, this, &frmvalue::cmdOk);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmvalue::~frmvalue() = default;

// Queued: a click that brings the focus sets its cursor first.
bool frmvalue::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        QMetaObject::invokeMethod(ui_->txtvalue, &QLineEdit::selectAll, Qt::QueuedConnection);
    }
    return QDialog::eventFilter(watched, event);
}

void frmvalue::cmdOk() {
    const QString text = ui_->txtvalue->text();
    const auto value = core::EnteredNumber(text.toStdString());
    if (!value) {
        constexpr int shown = 40;  // characters of a wrong input
        ui_->txtvalue->setFocus();
        ui_->txtvalue->selectAll();
        ShowBox(this, '"' + text.left(shown) + "\" is not a number. Numbers have a decimal point.", windowTitle());
        return;
    }
    Q_EMIT Given(*value);
    accept();
}

}  // namespace desk
