#include "desk/shell/frmnewuser.h"

#include <array>
#include <utility>

#include "core/UserRegister.h"
#include "ui_frmnewuser.h"

namespace desk {

namespace {

using core::UserRecord;

struct RightBox {
    QCheckBox* Ui::frmnewuser::*box;
    bool UserRecord::*right;
};

constexpr std::array<RightBox, 11> rightBoxes{{
    {&Ui::frmnewuser::chkconfig, &UserRecord::configstation},
    {&Ui::frmnewuser::chktts, &UserRecord::tts},
    {&Ui::frmnewuser::chkgas, &UserRecord::gascomposition},
    {&Ui::frmnewuser::chkutility, &UserRecord::utility},
    {&Ui::frmnewuser::chkscheduler, &UserRecord::scheduler},
    {&Ui::frmnewuser::chkuser, &UserRecord::usermanager},
    {&Ui::frmnewuser::chkarchive, &UserRecord::Archive},
    {&Ui::frmnewuser::chkdailyreport, &UserRecord::Dailyreport},
    {&Ui::frmnewuser::chktrends, &UserRecord::trends},
    {&Ui::frmnewuser::chkhistorical, &UserRecord::historicaldata},
    {&Ui::frmnewuser::chkChangeRight, &UserRecord::change},
}};

}  // namespace

frmnewuser::frmnewuser(Desk& desk, std::string userid)
    : Page(desk, "New User"), editedId_(std::move(userid)), ui_(std::make_unique<Ui::frmnewuser>()) {
    ui_->setupUi(this);
    Title("New User");
    ui_->cmdreveal->Reveals({ui_->txtpassword, ui_->txtconfirmpassword});
    CloseCommand(ui_->cmdCancel);
    connect(ui_->cmdsave, &QPushButton::clicked, this, &frmnewuser::cmdsave);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &Page::Closed);
    for (const QLineEdit* field : findChildren<QLineEdit*>()) {
        connect(field, &QLineEdit::returnPressed, ui_->cmdsave, &QPushButton::click);
    }
    ShowUser({});
    if (!editedId_.empty()) {
        Guarded([this] { ShowUser(core::ReadUser(desk_.dbconn, editedId_).value_or(UserRecord())); });
    }
}

frmnewuser::~frmnewuser() = default;

void frmnewuser::ShowUser(const UserRecord& user) {
    ui_->txtfirstname->setText(QString::fromStdString(user.firstname));
    ui_->txtlastname->setText(QString::fromStdString(user.lastname));
    ui_->txtuser->setText(QString::fromStdString(user.userid));
    // Confirmed as it stands: who gives a user a right needs no password for it.
    ui_->txtpassword->setText(QString::fromStdString(user.password));
    ui_->txtconfirmpassword->setText(QString::fromStdString(user.password));
    ui_->cmbreadsec->setCurrentIndex(user.readsec - 1);
    ui_->cmbwritesec->setCurrentIndex(user.writesec - 1);
    for (const auto& [box, right] : rightBoxes) {
        (ui_.get()->*box)->setChecked(user.*right);
    }
}

UserRecord frmnewuser::User() const {
    UserRecord user;
    user.firstname = ui_->txtfirstname->text().toStdString();
    user.lastname = ui_->txtlastname->text().toStdString();
    user.userid = ui_->txtuser->text().toStdString();
    user.password = ui_->txtpassword->text().toStdString();
    user.readsec = ui_->cmbreadsec->currentIndex() + 1;
    user.writesec = ui_->cmbwritesec->currentIndex() + 1;
    for (const auto& [box, right] : rightBoxes) {
        user.*right = (ui_.get()->*box)->isChecked();
    }
    return user;
}

void frmnewuser::cmdsave() {
    Guarded([this] {
        const auto fault = core::SaveUser(desk_.dbconn, desk_.shared, desk_.logs, User(),
                                          ui_->txtconfirmpassword->text().toStdString(), editedId_);
        if (!fault) {
            Close();
            return;
        }
        if (auto* control = findChild<QWidget*>(QString::fromStdString(fault->control))) {
            control->setFocus();
        }
        Show(QString::fromStdString(fault->message));
    });
}

}  // namespace desk
