#include "desk/shell/frmuser.h"

#include <algorithm>

#include "core/UserRegister.h"
#include "desk/kit/Navigator.h"
#include "desk/shell/frmnewuser.h"
#include "ui_frmuser.h"

namespace desk {

frmuser::frmuser(Desk& desk) : Page(desk, "User Management"), ui_(std::make_unique<Ui::frmuser>()) {
    ui_->setupUi(this);
    Title("User Management");
    ui_->Grid->FormatString("<User ID");
    CloseCommand(ui_->cmdCancel);
    connect(ui_->cmdadd, &QPushButton::clicked, this,
            [this] { Guarded([this] { desk_.navigator.Open(new frmnewuser(desk_)); }); });
    connect(ui_->cmdedit, &QPushButton::clicked, this, &frmuser::cmdedit);
    connect(ui_->Grid, &QTableView::doubleClicked, this, &frmuser::cmdedit);
    connect(ui_->cmddelete, &QPushButton::clicked, this, &frmuser::cmddelete);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &Page::Closed);
}

frmuser::~frmuser() = default;

void frmuser::Activated() {
    Guarded([this] { filluser(); });
}

// The selection stays with its user, or on its row where the user is gone.
void frmuser::filluser() {
    const QString selected = Selected();
    const int row = std::max(ui_->Grid->Row(), 0);
    std::vector<QStringList> users;
    for (const std::string& userid : core::ListUsers(desk_.dbconn)) {
        users.push_back({QString::fromStdString(userid)});
    }
    const auto count = static_cast<int>(users.size());
    ui_->Grid->Clear();
    ui_->Grid->AddItems(users);
    ui_->Grid->SelectRow(std::min(row, count - 1));
    for (int at = 0; at < count; ++at) {
        if (ui_->Grid->TextMatrix(at, 0) == selected) {
            ui_->Grid->SelectRow(at);
        }
    }
    ui_->cmdedit->setEnabled(count > 0);
    ui_->cmddelete->setEnabled(count > 0);
}

QString frmuser::Selected() const {
    return ui_->Grid->Row() < 0 ? QString() : ui_->Grid->TextMatrix(ui_->Grid->Row(), 0);
}

void frmuser::cmdedit() {
    Guarded([this] { desk_.navigator.Open(new frmnewuser(desk_, Selected().toStdString())); });
}

void frmuser::cmddelete() {
    ui_->Grid->setFocus();
    const std::string userid = Selected().toStdString();
    Ask("Are You Sure?", [this, userid] {
        Guarded([&] {
            core::DeleteUser(desk_.dbconn, desk_.shared, desk_.logs, userid);
            filluser();
            Show("User Deleted..", QMessageBox::Information);
        });
    });
}

}  // namespace desk
