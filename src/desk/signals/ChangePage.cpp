#include "desk/signals/ChangePage.h"

#include <QComboBox>
#include <QLineEdit>

#include "desk/kit/EngineText.h"
#include "desk/kit/Grid.h"
#include "desk/signals/FetchPanel.h"
#include "desk/signals/ListNumber.h"
#include "session/Session.h"
#include "session/StationLine.h"
#include "signals/lists/BsapStations.h"
#include "ui_ChangePage.h"

namespace desk {

namespace {

constexpr const char* notCollected = "List is not collected";

}  // namespace

ChangePage::ChangePage(Desk& desk, const QString& title, signals::Side side, session::Session& session)
    : Page(desk, title), ui_(std::make_unique<Ui::ChangePage>()), side_(side), session_(session) {
    ui_->setupUi(this);
    Title(title);
    TakesDigits(*ui_->txtListNo->lineEdit());
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    connect(ui_->cmd_stop, &QPushButton::clicked, this, [this] {
        ui_->panel->Stop();
        ui_->cmd_stop->setEnabled(false);
        desk_.lines.StopConnecting();
    });
    connect(ui_->cmd_save, &QPushButton::clicked, ui_->panel, &FetchPanel::Save);
    connect(ui_->cmdfetch, &QPushButton::clicked, this, [this] { Guarded([this] { cmdfetch(); }); });
    connect(ui_->cmdView, &QPushButton::clicked, this, [this] { Guarded([this] { cmdView(); }); });
    // A fetch replaces what is stored, so that Enter only comes to its command; queued, so that it does not press it.
    connect(ui_->txtListNo->lineEdit(), &QLineEdit::returnPressed, ui_->cmdfetch, QOverload<>::of(&QWidget::setFocus),
            Qt::QueuedConnection);
    for (QLabel* label : {ui_->Label4, ui_->lblDate, ui_->lblF, ui_->lblFD, ui_->lblL, ui_->lblLD}) {
        label->hide();
    }
}

ChangePage::~ChangePage() = default;

void ChangePage::Build() {
    Guarded([this] {
        for (const signals::BsapStation& node : signals::BsapStations(desk_.dbconn)) {
            ui_->cmbnodename->addItem(QString::fromStdString(node.consumer), qlonglong{node.locationID});
        }
        ui_->cmbnodename->setCurrentIndex(ui_->cmbnodename->findData(qlonglong{session_.GetStation().locationID}));
        ShowStored();
        ui_->txtListNo->setCurrentIndex(-1);
    });
    ShowButtons();
}

signals::ChangeDates ChangePage::Dates() const {
    return signals::ReadChangeDates(desk_.dbconn, session_.GetStation().locationID);
}

void ChangePage::ShowDate(QLabel& caption, QLabel& label, const std::optional<std::string>& date) {
    label.setText(QString::fromStdString(date.value_or("")));
    caption.setVisible(date.has_value());
    label.setVisible(date.has_value());
}

// Fetching ------------------------------------------------------------------------------------------------------------

void ChangePage::cmdfetch() {
    const auto list = ListNumber(*ui_->txtListNo->lineEdit());
    const bool hasLists = ui_->cmbnodename->currentIndex() >= 0;
    if (!list || !hasLists) {
        ui_->txtListNo->setFocus();
        Show(hasLists ? noListNumber : "This station has no lists: it does not speak BSAP");
        return;
    }
    end_.reset();
    reason_.clear();
    storeFailure_.clear();
    ui_->panel->Clear();
    ui_->lblshown->clear();
    ui_->panel->Running(true, "Please wait ....");
    ShowButtons();
    const reading::Workplace place = desk_.With(*ui_->panel);
    session::OnStationLine(
        place, &session_, session::WayOfChange(), session_.GetStation().locationID,
        [this, list = *list](protocols::Conversation& talk) { Collect(talk, list); },
        [this, list = *list] { Guarded([&] { Over(list); }); });
}

// Stored while the line is still held, before anything else has its turn.
void ChangePage::Collect(protocols::Conversation& talk, int list) {
    end_ = signals::FetchList(talk, list, *ui_->panel);
    reason_ = talk.line->Reason();
    if (end_ == signals::FetchEnd::Whole && ui_->panel->Stopped()) {
        end_ = signals::FetchEnd::Stopped;  // while the last reply was on its way
    }
    if (end_ != signals::FetchEnd::Whole) {
        return;
    }
    ui_->panel->Status(side_ == signals::Side::Before ? "Saving data to database before change....."
                                                      : "Saving data to database after change.....");
    std::vector<signals::ChangeRow> rows;
    for (const signals::Signal& signal : ui_->panel->Rows()) {
        rows.push_back(signals::SignalRow(rows.size() + 1, signal));
    }
    try {
        signals::StoreChange(desk_.dbconn, side_, session_.GetStation().locationID, list, rows, desk_.clock.Now());
    } catch (const std::exception& failure) {
        storeFailure_ = failure.what();
        throw;
    }
}

void ChangePage::Over(int list) {
    using signals::FetchEnd;
    if (!end_ && ui_->panel->Stopped()) {
        end_ = FetchEnd::Stopped;  // before the station was reached
    }
    ui_->panel->Running(false);
    ShowButtons();
    ui_->txtListNo->setFocus();
    if (!end_) {
        return;
    }
    const bool stored = end_ == FetchEnd::Whole && storeFailure_.empty();
    if (!ui_->panel->Rows().empty()) {
        ShowList(list, stored ? "fetched and stored" : "not stored");
    }
    QString message = Lines(signals::FetchMessage(*end_, ui_->panel->Rows().size(), reason_));
    if (!storeFailure_.empty()) {
        message += "\nIt could not be stored: " + Lines(storeFailure_);
    } else if (end_ == FetchEnd::Stopped || end_ == FetchEnd::Ended) {
        message += "\nNothing was stored.";
    }
    Show(message, stored ? QMessageBox::Information : QMessageBox::Warning);
    ShowStored();
    ui_->txtListNo->setEditText(QString::number(list));
}

// What is stored ------------------------------------------------------------------------------------------------------

void ChangePage::ShowStored() {
    ShowDates(Dates());
    const QString entered = ui_->txtListNo->currentText();
    ui_->txtListNo->clear();
    for (const int list : signals::CollectedLists(desk_.dbconn, session_.GetStation().locationID)) {
        ui_->txtListNo->addItem(QString::number(list));
    }
    ui_->txtListNo->setEditText(entered);
}

void ChangePage::cmdView() {
    const auto list = ListNumber(*ui_->txtListNo->lineEdit());
    end_.reset();
    const auto rows = list ? signals::StoredChange(desk_.dbconn, side_, session_.GetStation().locationID, *list)
                           : std::vector<signals::ChangeRow>();
    ui_->panel->Clear();
    ui_->panel->signalsGrid().AddItems(GridRows(rows));
    ui_->lblshown->clear();
    if (rows.empty()) {
        ui_->txtListNo->setFocus();
        Show(notCollected);
    } else {
        ShowList(*list, "as it is stored");
    }
    ShowButtons();
}

void ChangePage::ShowList(int list, const QString& what) {
    ui_->lblshown->setText("List " + QString::number(list) + ", " + what);
}

void ChangePage::ShowButtons() {
    const bool running = ui_->panel->IsRunning();
    for (QWidget* control :
         std::initializer_list<QWidget*>{ui_->txtListNo, ui_->cmdfetch, ui_->cmdView, ui_->cmdClose}) {
        control->setEnabled(!running);
    }
    const bool failed = end_ && (end_ != signals::FetchEnd::Whole || !storeFailure_.empty());
    ui_->cmd_save->setEnabled(!running && !failed && ui_->panel->signalsGrid().Rows() > 0);
    ui_->cmd_stop->setEnabled(running);
    ui_->cmdfetch->setDefault(!running);
    if (running) {
        ui_->cmd_stop->setFocus();
    }
}

}  // namespace desk
