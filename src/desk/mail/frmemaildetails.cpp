#include "desk/mail/frmemaildetails.h"

#include "core/Feedback.h"
#include "core/MAIN_Module.h"
#include "core/Text.h"
#include "ui_frmemaildetails.h"

namespace desk {

frmemaildetails::frmemaildetails(Desk& desk)
    : Page(desk, "Mail Addressees"), ui_(std::make_unique<Ui::frmemaildetails>()) {
    ui_->setupUi(this);
    Title("Mail Addressees");
    CloseCommand(ui_->cmdCancel);
    const core::Addressees& stored = desk_.shared.addressees;
    ui_->txteto->setText(QString::fromStdString(stored.to));
    ui_->txtecc->setText(QString::fromStdString(stored.cc));
    ui_->txtebcc->setText(QString::fromStdString(stored.bcc));
    ui_->txtesub->setText(QString::fromStdString(stored.subject));
    connect(ui_->cmdsave, &QPushButton::clicked, this, &frmemaildetails::cmdsave);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &Page::Closed);
}

frmemaildetails::~frmemaildetails() = default;

void frmemaildetails::cmdsave() {
    if (core::Trim(ui_->txteto->text().toStdString()).empty()) {
        ui_->txteto->setFocus();
        Show("Please specify email to address it is necessary");
        return;
    }
    desk_.addressees = {ui_->txteto->text().toStdString(), ui_->txtecc->text().toStdString(),
                        ui_->txtebcc->text().toStdString(), ui_->txtesub->text().toStdString()};
    desk_.feedback.Status("Addressees stored");
    Q_EMIT Stored();
    Close();
}

}  // namespace desk
