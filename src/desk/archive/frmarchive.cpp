#include "desk/archive/frmarchive.h"

#include "core/Station.h"
#include "desk/archive/frmCW_archive.h"
#include "desk/kit/Navigator.h"
#include "ui_frmarchive.h"

namespace desk {

frmarchive::frmarchive(Desk& desk)
    : ArchivePage(desk, archive::Screen::frmarchive, nullptr), ui_(std::make_unique<Ui::frmarchive>()) {
    ui_->setupUi(this);
    ui_->optaudit->setChecked(true);
    ui_->opthourly->setChecked(true);
    ui_->frmarc->hide();
    Build(*ui_->panel, *ui_->cmbNode, *ui_->choices, std::nullopt);
    connect(ui_->optarchive, &QRadioButton::toggled, ui_->frmarc, &QWidget::setVisible);
    connect(ui_->optarchive, &QRadioButton::toggled, this, [this] { ForgetReport(); });
    connect(ui_->cmbNode, &QComboBox::currentIndexChanged, this, [this] { Guarded([this] { ShowNode(); }); });
    connect(ui_->cmdfile, &QPushButton::clicked, this, [this] {
        Guarded([this] { desk_.navigator.Open(new frmCW_archive(desk_, nullptr, ChosenNode()->locationID)); });
    });
    ShowNode();
}

frmarchive::~frmarchive() = default;

// The archive files of a CW are read by their number, on another screen.
void frmarchive::ShowNode() {
    const auto node = ChosenNode();
    const auto station = node ? core::ReadOnlineStation(desk_.dbconn, node->locationID) : std::nullopt;
    ui_->cmdfile->setEnabled(station && station->isCW);
}

std::optional<archive::Wish> frmarchive::GetWish() {
    archive::Wish wish;
    wish.screen = GetScreen();
    wish.audit = ui_->optaudit->isChecked();
    wish.kind = ui_->optdaily->isChecked() ? archive::ArchiveKind::Daily : archive::ArchiveKind::Hourly;
    return wish;
}

}  // namespace desk
