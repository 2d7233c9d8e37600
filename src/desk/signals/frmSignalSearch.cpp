#include "desk/signals/frmSignalSearch.h"

#include "desk/kit/EngineText.h"
#include "desk/kit/Grid.h"
#include "desk/signals/FetchPanel.h"
#include "session/Session.h"
#include "ui_frmSignalSearch.h"

namespace desk {

namespace {

using signals::FetchEnd;
using signals::SearchKind;

constexpr int longestAttribute = 4;
constexpr int longestName = 20;

}  // namespace

frmSignalSearch::frmSignalSearch(Desk& desk, session::Session& session)
    : SignalPage(desk, "Signal Search", &session), ui_(std::make_unique<Ui::frmSignalSearch>()) {
    ui_->setupUi(this);
    Title("Signal Search");
    setWindowTitle(windowTitle() + "----(" + QString::fromStdString(session.GetStation().consumer) + ")");
    Build(*ui_->panel, *ui_->frmvalue, *ui_->lblWrite);
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    connect(ui_->cmdStop, &QPushButton::clicked, ui_->panel, &FetchPanel::Stop);
    connect(ui_->cmdSaveExcel, &QPushButton::clicked, ui_->panel, &FetchPanel::Save);
    connect(ui_->cmdSearch, &QPushButton::clicked, this, [this] { Guarded([this] { cmdSearch(); }); });
    // Queued, so that the key does not also press the command in focus when the search is over.
    connect(
        ui_->txtSigName, &QLineEdit::returnPressed, this, [this] { Guarded([this] { cmdSearch(); }); },
        Qt::QueuedConnection);
    // The stations' names are in capitals.
    connect(ui_->txtSigName, &QLineEdit::textEdited, this, [this](const QString& text) {
        const int cursor = ui_->txtSigName->cursorPosition();
        ui_->txtSigName->setText(text.toUpper());
        ui_->txtSigName->setCursorPosition(cursor);
    });
    connect(ui_->Option1_0, &QRadioButton::clicked, this, [this] { ChooseKind(SearchKind::Attribute); });
    connect(ui_->Option1_1, &QRadioButton::clicked, this, [this] { ChooseKind(SearchKind::Name); });
    ui_->Option1_1->setChecked(true);
    ChooseKind(SearchKind::Name);
    ShowButtons();
}

frmSignalSearch::~frmSignalSearch() = default;

void frmSignalSearch::ChooseKind(SearchKind kind) {
    searchkind_ = kind;
    const bool byName = kind == SearchKind::Name;
    ui_->txtSigName->clear();
    ui_->txtSigName->setMaxLength(byName ? longestName : longestAttribute);
    ui_->lblhint->setText(byName ? "how the name begins, * for any characters" : "what follows the last point");
    ui_->txtSigName->setFocus();
}

void frmSignalSearch::cmdSearch() {
    Fetch([panel = ui_->panel, pattern = ui_->txtSigName->text().toStdString(), kind = searchkind_](
              protocols::Conversation& talk) { return signals::SearchSignals(talk, pattern, kind, *panel); });
}

std::int64_t frmSignalSearch::LocationID() const {
    return GetSession()->GetStation().locationID;
}

void frmSignalSearch::ShowButtons() {
    for (QWidget* control : std::initializer_list<QWidget*>{ui_->cmdSearch, ui_->cmdClose, ui_->txtSigName,
                                                            ui_->Option1_0, ui_->Option1_1}) {
        control->setEnabled(!IsBusy());
    }
    ui_->cmdSaveExcel->setEnabled(!IsBusy() && ui_->panel->signalsGrid().Rows() > 0);
    ui_->cmdStop->setEnabled(IsFetching());
    ui_->cmdSearch->setDefault(!IsBusy());
    if (IsFetching()) {
        ui_->cmdStop->setFocus();
    }
}

void frmSignalSearch::FetchOver(std::optional<FetchEnd> end, const std::string& reason) {
    const std::size_t found = ui_->panel->Rows().size();
    if (end == FetchEnd::Whole && found == 0) {
        ui_->panel->AddText(signals::signalNotFound);
    }
    ShowButtons();
    ui_->txtSigName->setFocus();
    if (end == FetchEnd::Whole && found > 0) {
        Show("Collected", QMessageBox::Information);
    } else if (end && end != FetchEnd::Whole) {
        Show(Lines(signals::FetchMessage(*end, found, reason)));
    }
}

}  // namespace desk
