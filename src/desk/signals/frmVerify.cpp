#include "desk/signals/frmVerify.h"

#include <algorithm>

#include "core/Station.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Grid.h"
#include "desk/kit/GridFile.h"
#include "desk/kit/Look.h"
#include "desk/kit/WholeFile.h"
#include "signals/change/VerificationBook.h"
#include "ui_frmVerify.h"

namespace desk {

namespace {

// Behind the cells of the comparison: the word that goes with the colour. Typed over the grid it leaves those rows.
constexpr int wordColumn = signals::verificationCaptions.size();
constexpr const char* differs = "differs";

QStringList Columns() {
    QStringList columns;
    for (const char* caption : signals::verificationCaptions) {
        columns.append(QString(caption).trimmed());
    }
    for (const int number : {0, 1, 4, 5, 6}) {
        columns[number].prepend('>');
    }
    columns.append("");
    return columns;
}

// Yellow, and on a dark page a shade of it that does not dazzle.
QColor DifferenceColour(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() > 128 ? QColor(0xFF, 0xF1, 0x76) : QColor(0x6B, 0x5A, 0x00);
}

}  // namespace

frmVerify::frmVerify(Desk& desk, const core::Station& station)
    : Page(desk, "Data Verification"), ui_(std::make_unique<Ui::frmVerify>()), locationID_(station.locationID) {
    ui_->setupUi(this);
    Title("Data Verification");
    ui_->lblconsumer->setText(QString::fromStdString(station.consumer));
    ui_->lblconsumer->setFont(Larger(font(), 1.2, true));
    ui_->Frame2->hide();
    ui_->signalsGrid->FormatString(Columns());
    tmrverify_.setInterval(0);
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    connect(ui_->cmdVerify, &QPushButton::clicked, this, [this] { Guarded([this] { cmdVerify(); }); });
    connect(&tmrverify_, &QTimer::timeout, this, [this] { Guarded([this] { NextList(); }); });
    connect(ui_->cmdExcel, &QPushButton::clicked, this, [this] {
        AskForFile(this, {"Save To Excel", "Excel Files(*.xlsx)", "xlsx"}, [this](const QString& file) {
            // A spreadsheet warns of a file whose ending is not that of its content.
            const bool named = file.endsWith(".xlsx", Qt::CaseInsensitive);
            const QString book = named ? file : file + ".xlsx";
            if (!named && QFile::exists(book)) {
                Ask(book + " exists. Replace it?", [this, book] { SaveBook(book); });
            } else {
                SaveBook(book);
            }
        });
    });
    connect(ui_->cmdSvExcel, &QPushButton::clicked, this,
            [this] { AskForFile(this, ExcelFile(), [this](const QString& file) { SaveText(file); }); });
    ShowButtons();
}

frmVerify::~frmVerify() = default;

// Comparing -----------------------------------------------------------------------------------------------------------

void frmVerify::cmdVerify() {
    rows_.clear();
    ui_->signalsGrid->FormatString(Columns());
    ui_->lblsummary->clear();
    verification_ = std::make_unique<signals::Verification>(desk_.dbconn, locationID_);
    tmrverify_.start();
    ShowButtons();
}

void frmVerify::NextList() {
    try {
        if (verification_->Done() < verification_->Total()) {
            ShowRows(verification_->Next());
            ui_->lblsummary->setText(Count(verification_->Done()) + " of " + Count(verification_->Total()) + " lists");
            return;
        }
    } catch (...) {
        EndVerify();
        ui_->lblsummary->setText("Not all lists are compared.");
        throw;
    }
    EndVerify();
    ui_->lblsummary->setText(Summary());
    Show("Verification complete", QMessageBox::Information);
}

void frmVerify::EndVerify() {
    tmrverify_.stop();
    ShowButtons();
    if (rows_.empty()) {
        ui_->cmdVerify->setFocus();
    } else {
        ui_->signalsGrid->SelectRow(0);
        ui_->signalsGrid->setFocus();
    }
}

void frmVerify::ShowRows(const std::vector<signals::VerifiedRow>& rows) {
    Grid& grid = *ui_->signalsGrid;
    const QColor colour = DifferenceColour(palette());
    int row = grid.Rows();
    std::vector<std::vector<std::string>> lines;
    lines.reserve(rows.size());
    for (const signals::VerifiedRow& verified : rows) {
        auto& cells = lines.emplace_back(signals::VerifiedCells(verified));
        cells.resize(wordColumn);
        cells.emplace_back(verified.differs ? differs : "");
    }
    grid.AddItems(GridRows(lines));
    for (const signals::VerifiedRow& verified : rows) {
        // Behind a text there is no difference, and the empty cell carries on the colour.
        for (int column = 0; verified.differs && column < wordColumn; ++column) {
            grid.CellColour(row, column, colour);
        }
        ++row;
    }
    rows_.insert(rows_.end(), rows.begin(), rows.end());
}

QString frmVerify::Summary() const {
    if (verification_->Total() == 0) {
        return "No list of this station is collected.";
    }
    const auto differing = std::count_if(rows_.begin(), rows_.end(), [](const auto& row) { return row.differs; });
    QString text = Count(static_cast<std::size_t>(differing)) + " of " + Count(rows_.size()) + " rows differ.";
    if (verification_->Uneven().empty()) {
        return text;
    }
    constexpr std::size_t mostNamed = 6;
    const auto& uneven = verification_->Uneven();
    QStringList lists;
    for (std::size_t n = 0; n < std::min(uneven.size(), mostNamed); ++n) {
        lists.append(QString::number(uneven[n].list) + " (" + Count(uneven[n].before) + ", " + Count(uneven[n].after) +
                     ")");
    }
    if (uneven.size() > mostNamed) {
        lists.append("and " + Count(uneven.size() - mostNamed) + " more");
    }
    return text + " Lists with rows (before, after) that are not compared: " + lists.join(", ") + ".";
}

// Files ---------------------------------------------------------------------------------------------------------------

void frmVerify::SaveBook(const QString& file) {
    ui_->Frame2->show();
    layout()->activate();
    repaint();
    const std::string failure = signals::WriteVerificationBook(file.toStdString(), rows_);
    ui_->Frame2->hide();
    Show(failure.empty() ? "New file is created..." : Lines(failure),
         failure.empty() ? QMessageBox::Information : QMessageBox::Warning);
}

void frmVerify::SaveText(const QString& file) {
    const QString failure = WriteWhole(file, QByteArray::fromStdString(signals::VerificationText(rows_)));
    Show(failure.isEmpty() ? "New File is Created.." : failure,
         failure.isEmpty() ? QMessageBox::Information : QMessageBox::Warning);
}

void frmVerify::ShowButtons() {
    const bool running = tmrverify_.isActive();
    ui_->cmdVerify->setEnabled(!running);
    ui_->cmdVerify->setDefault(!running);
    ui_->cmdExcel->setEnabled(!running && verification_ != nullptr);
    ui_->cmdSvExcel->setEnabled(!running && verification_ != nullptr);
}

}  // namespace desk
