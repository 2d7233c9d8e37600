#include "desk/archive/ArchivePage.h"

#include <QComboBox>
#include <QPushButton>

#include "desk/archive/DownloadPanel.h"
#include "desk/collection/TakenLine.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/GridFile.h"
#include "desk/kit/Navigator.h"
#include "desk/mail/frmemail.h"
#include "session/Session.h"
#include "session/StationLine.h"

namespace desk {

ArchivePage::ArchivePage(Desk& desk, archive::Screen screen, session::Session* session)
    : Page(desk, "Historical Data"), screen_(screen), session_(session) {}

void ArchivePage::Build(DownloadPanel& panel, QComboBox& cmbNode, QWidget& choices,
                        std::optional<std::int64_t> locationID) {
    Title("Historical Data");
    panel_ = &panel;
    cmbNode_ = &cmbNode;
    choices_ = &choices;
    panel.Files(screen_ == archive::Screen::frmarchive
                    ? DownloadPanel::FileForm{';', {"Save To File", "Text Files (*.txt)", "txt"}}
                    : DownloadPanel::FileForm{'\t', ExcelFile()});
    new TakenLine(
        desk_, this,
        [this]() -> std::optional<std::int64_t> {
            return panel_->IsRunning() ? std::optional(workingOn_) : std::nullopt;
        },
        [&panel](const QString& text) { panel.Status(text.toStdString()); });
    CloseCommand(&panel.cmdClose());
    connect(&panel.cmd_stop(), &QPushButton::clicked, this, [this] { desk_.lines.StopConnecting(); });
    connect(&panel.cmdClose(), &QPushButton::clicked, this, &Page::Closed);
    connect(&panel.cmdGo(), &QPushButton::clicked, this, [this] { Guarded([this] { Go(); }); });
    connect(&panel.cmd_email(), &QPushButton::clicked, this,
            [this] { Guarded([this] { desk_.navigator.Open(new frmemail(desk_)); }); });
    if (session_ != nullptr) {
        locationID = session_->GetStation().locationID;
    }
    Guarded([&] {
        for (const std::string& node : archive::ArchiveNodes(desk_.dbconn, locationID)) {
            cmbNode.addItem(QString::fromStdString(node));
        }
    });
    cmbNode.setCurrentIndex(locationID ? 0 : -1);
}

std::optional<archive::Node> ArchivePage::ChosenNode() const {
    return archive::SplitNode(cmbNode_->currentText().toStdString());
}

void ArchivePage::ForgetReport() {
    panel_->cmdReport().setEnabled(false);
}

void ArchivePage::Go() {
    const auto node = ChosenNode();
    if (!node) {
        cmbNode_->setFocus();
        Show("Invalid Location");
        return;
    }
    const auto wish = GetWish();
    if (!wish) {
        return;
    }
    collected_.reset();
    workingOn_ = node->locationID;
    panel_->ClearGrid();
    panel_->Running(true);
    choices_->setEnabled(false);
    panel_->cmd_stop().setFocus();
    const reading::Workplace place = desk_.With(*panel_);
    session::OnStationLine(
        place, session_, session::WayOfArchive(screen_), node->locationID,
        [this, wish = *wish](protocols::Conversation& talk) {
            collected_ = archive::Collect(desk_.dbconn, talk, wish, *panel_);
        },
        [this] { Over(); });
}

void ArchivePage::Over() {
    const bool stopped = panel_->Stopped();
    panel_->Running(false);
    choices_->setEnabled(true);
    panel_->cmdGo().setFocus();
    if (collected_) {
        Show(Lines(collected_->message),
             collected_->end == archive::RunEnd::Whole ? QMessageBox::Information : QMessageBox::Warning);
    } else if (stopped) {
        Show("Stopped before the station was reached");
    }
}

}  // namespace desk
