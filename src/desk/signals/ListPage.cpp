#include "desk/signals/ListPage.h"

#include "desk/kit/EngineText.h"
#include "desk/signals/FetchPanel.h"
#include "desk/signals/ListNumber.h"
#include "session/Session.h"
#include "ui_ListPage.h"

namespace desk {

ListPage::ListPage(Desk& desk, session::Session* session)
    : SignalPage(desk, "Fetch List", session), ui_(std::make_unique<Ui::ListPage>()) {
    ui_->setupUi(this);
    Title("Fetch List");
    Build(*ui_->panel, *ui_->frmvalue, *ui_->lblWrite);
    Guarded([this] { stations_ = signals::BsapStations(desk_.dbconn); });
    for (const signals::BsapStation& station : stations_) {
        ui_->cmbnodename->addItem(QString::fromStdString(station.consumer), qlonglong{station.locationID});
    }
    if (session != nullptr) {
        ui_->cmbnodename->setCurrentIndex(ui_->cmbnodename->findData(qlonglong{session->GetStation().locationID}));
    }
    TakesDigits(*ui_->txtListNo);
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    connect(ui_->cmd_stop, &QPushButton::clicked, this, [this] {
        ui_->panel->Stop();
        desk_.lines.StopConnecting();
    });
    connect(ui_->cmd_save, &QPushButton::clicked, ui_->panel, &FetchPanel::Save);
    connect(ui_->cmdfetch, &QPushButton::clicked, this, [this] { Guarded([this] { cmdfetch(); }); });
    // Queued, so that the key does not also press the command in focus when the fetch is over.
    connect(
        ui_->txtListNo, &QLineEdit::returnPressed, this, [this] { Guarded([this] { cmdfetch(); }); },
        Qt::QueuedConnection);
    ShowButtons();
    ui_->txtListNo->setFocus();
}

ListPage::~ListPage() = default;

std::int64_t ListPage::LocationID() const {
    return ui_->cmbnodename->currentData().toLongLong();
}

void ListPage::cmdfetch() {
    const auto list = ListNumber(*ui_->txtListNo);
    if (!list) {
        ui_->txtListNo->setFocus();
        Show(noListNumber);
        return;
    }
    fetched_ = false;
    Fetch([panel = ui_->panel, list = *list](protocols::Conversation& talk) {
        return signals::FetchList(talk, list, *panel);
    });
}

void ListPage::ShowButtons() {
    // The station of a session is that of its line.
    ui_->cmbnodename->setEnabled(!IsBusy() && GetSession() == nullptr);
    ui_->cmdfetch->setEnabled(!IsBusy());
    ui_->cmdClose->setEnabled(!IsBusy());
    ui_->txtListNo->setEnabled(!IsBusy());
    ui_->cmd_stop->setEnabled(IsFetching());
    ui_->cmd_save->setEnabled(!IsBusy() && fetched_ && !ui_->panel->Rows().empty());
    ui_->cmdfetch->setDefault(!IsBusy());
    if (IsFetching()) {
        ui_->cmd_stop->setFocus();
    }
}

void ListPage::FetchOver(std::optional<signals::FetchEnd> end, const std::string& reason) {
    fetched_ = end == signals::FetchEnd::Whole || end == signals::FetchEnd::Stopped;
    ShowButtons();
    ui_->txtListNo->setFocus();
    if (end) {
        Show(Lines(signals::FetchMessage(*end, ui_->panel->Rows().size(), reason)),
             end == signals::FetchEnd::Whole ? QMessageBox::Information : QMessageBox::Warning);
    }
}

}  // namespace desk
