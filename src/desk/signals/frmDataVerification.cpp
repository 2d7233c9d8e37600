#include "desk/signals/frmDataVerification.h"

#include "desk/kit/Look.h"
#include "desk/signals/frmAfterChange.h"
#include "desk/signals/frmBeforeChange.h"
#include "desk/signals/frmVerify.h"
#include "session/Session.h"
#include "ui_frmDataVerification.h"

namespace desk {

frmDataVerification::frmDataVerification(Desk& desk, session::Session* session)
    : MenuPage(desk, "Data Verification"), ui_(std::make_unique<Ui::frmDataVerification>()) {
    ui_->setupUi(this);
    Title("Data Verification");
    const core::Station& station = session->GetStation();
    ui_->lblconsumer->setText(QString::fromStdString(station.consumer));
    ui_->lblconsumer->setFont(Larger(font(), 1.2, true));
    const auto opens = [this](QAbstractButton* command, auto make) {
        connect(command, &QAbstractButton::clicked, this,
                [this, make] { Guarded([&] { desk_.navigator.Open(make()); }); });
    };
    opens(ui_->cmdBefore, [this, session] { return new frmBeforeChange(desk_, *session); });
    opens(ui_->cmdAfterChange, [this, session] { return new frmAfterChange(desk_, *session); });
    opens(ui_->cmdDataVerification, [this, &station] { return new frmVerify(desk_, station); });
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QAbstractButton::clicked, this, &Page::Closed);
}

frmDataVerification::~frmDataVerification() = default;

}  // namespace desk
