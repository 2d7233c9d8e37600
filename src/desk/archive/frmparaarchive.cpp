#include "desk/archive/frmparaarchive.h"

#include "desk/archive/frmCW_archive.h"
#include "desk/kit/Dates.h"
#include "desk/kit/Navigator.h"
#include "session/Session.h"
#include "ui_frmparaarchive.h"

namespace desk {

frmparaarchive::frmparaarchive(Desk& desk, session::Session& session)
    : ArchivePage(desk, archive::Screen::frmparaarchive, &session), ui_(std::make_unique<Ui::frmparaarchive>()) {
    ui_->setupUi(this);
    const core::DateTime today = desk.clock.Now();
    for (QDateEdit* picker : {ui_->DTPicker1, ui_->DTPicker2}) {
        picker->setDate({today.year, today.month, today.day});
    }
    ui_->lblstream->setText("Stream " + QString::number(session.StreamNo()));
    ui_->lblstream->setVisible(session.GetStation().No_Stream > 1);
    ui_->cmdfile->setVisible(session.GetStation().isCW);
    ui_->opthourly->setChecked(true);
    ui_->optarchive->setChecked(true);
    Build(*ui_->panel, *ui_->cmbNode, *ui_->choices, std::nullopt);
    connect(ui_->optarchive, &QRadioButton::toggled, this, [this] {
        ForgetReport();
        ui_->che_new->setChecked(true);
        ShowKind();
    });
    connect(ui_->che_new, &QCheckBox::toggled, this, [this] { ShowKind(); });
    connect(ui_->chkStart, &QCheckBox::toggled, this, [this](bool byDate) {
        if (byDate) {
            ui_->che_new->setChecked(false);
        }
        ShowKind();
    });
    connect(ui_->cmdfile, &QPushButton::clicked, this, [this] {
        Guarded([this] { desk_.navigator.Open(new frmCW_archive(desk_, GetSession(), std::nullopt)); });
    });
    ui_->che_new->setChecked(true);
    ShowKind();
}

frmparaarchive::~frmparaarchive() = default;

// The newest first and a range of dates exclude each other, and only an archive is read by date.
void frmparaarchive::ShowKind() {
    const bool isArchive = ui_->optarchive->isChecked();
    ui_->chkStart->setEnabled(isArchive && !ui_->che_new->isChecked());
    if (!ui_->chkStart->isEnabled()) {
        ui_->chkStart->setChecked(false);
    }
    const bool byDate = ui_->chkStart->isChecked();
    ui_->che_new->setEnabled(!byDate);
    for (QWidget* place : std::initializer_list<QWidget*>{ui_->DTPicker1, ui_->lblEnd, ui_->DTPicker2}) {
        place->setEnabled(byDate);
    }
    for (QWidget* kind : std::initializer_list<QWidget*>{ui_->optdaily, ui_->opthourly, ui_->optMinute}) {
        kind->setEnabled(isArchive);
    }
}

std::optional<archive::Wish> frmparaarchive::GetWish() {
    archive::Wish wish;
    wish.screen = GetScreen();
    wish.audit = ui_->optaudit->isChecked();
    wish.kind = ui_->optdaily->isChecked()    ? archive::ArchiveKind::Daily
                : ui_->optMinute->isChecked() ? archive::ArchiveKind::Minute
                                              : archive::ArchiveKind::Hourly;
    wish.newFirst = ui_->che_new->isChecked();
    if (ui_->chkStart->isChecked()) {
        wish.range = {DayOf(ui_->DTPicker1->date()), DayOf(ui_->DTPicker2->date())};
    }
    return wish;
}

}  // namespace desk
