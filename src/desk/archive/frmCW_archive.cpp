#include "desk/archive/frmCW_archive.h"

#include <QRegularExpressionValidator>

#include "desk/archive/DownloadPanel.h"
#include "ui_frmCW_archive.h"

namespace desk {

namespace {

constexpr int highestFile = 255;  // its number goes out as one byte

}  // namespace

frmCW_archive::frmCW_archive(Desk& desk, session::Session* session, std::optional<std::int64_t> locationID)
    : ArchivePage(desk, archive::Screen::frmCW_archive, session), ui_(std::make_unique<Ui::frmCW_archive>()) {
    ui_->setupUi(this);
    ui_->optarchive->setChecked(true);
    ui_->opthourly->setChecked(true);
    ui_->che_new->setChecked(true);
    ui_->Txt_arcfile->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]*"), this));
    Build(*ui_->panel, *ui_->cmbNode, *ui_->choices, locationID);
    connect(ui_->optarchive, &QRadioButton::toggled, this, [this] { ForgetReport(); });
    // Behind the key: it would otherwise press the command that has the focus when the run is over.
    connect(ui_->Txt_arcfile, &QLineEdit::returnPressed, &ui_->panel->cmdGo(), &QPushButton::click,
            Qt::QueuedConnection);
}

frmCW_archive::~frmCW_archive() = default;

std::optional<archive::Wish> frmCW_archive::GetWish() {
    archive::Wish wish;
    wish.screen = GetScreen();
    wish.audit = ui_->optaudit->isChecked();
    wish.file = ui_->Txt_arcfile->text().toInt();
    wish.newFirst = ui_->che_new->isChecked();
    if (!wish.audit && (ui_->Txt_arcfile->text().isEmpty() || wish.file > highestFile)) {
        ui_->Txt_arcfile->setFocus();
        Show(wish.file > highestFile ? "An archive file has a number up to 255" : "Enter Archive File Number");
        return std::nullopt;
    }
    return wish;
}

}  // namespace desk
