#include "desk/session/frmconfparams.h"

#include <QFontDatabase>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

#include "desk/kit/WholeFile.h"
#include "ui_frmconfparams.h"

namespace desk {

frmconfparams::frmconfparams(Desk& desk, const QString& text)
    : Page(desk, "Configurable Parameters"), ui_(std::make_unique<Ui::frmconfparams>()) {
    ui_->setupUi(this);
    Title("Configurable Parameters");
    ui_->rtbconfparams->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    ui_->rtbconfparams->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    ui_->rtbconfparams->setPlainText(text);
    connect(ui_->cmdprint, &QPushButton::clicked, this, &frmconfparams::cmdprint);
    connect(ui_->cmdsave, &QPushButton::clicked, this, &frmconfparams::cmdsave);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    CloseCommand(ui_->cmdClose);
}

frmconfparams::~frmconfparams() = default;

void frmconfparams::Print(QPrinter& printer) {
    ui_->rtbconfparams->print(&printer);
}

// Printing into a file is what "Save" is for; the dialog would ask its question about it in a loop of its own.
void frmconfparams::cmdprint() {
    if (QPrinterInfo::availablePrinterNames().isEmpty()) {
        Show("No printer is set up on this computer. Save the list and print the file elsewhere.");
        return;
    }
    auto* dialog = new QPrintDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QAbstractPrintDialog::PrintToFile, false);
    connect(dialog, qOverload<QPrinter*>(&QPrintDialog::accepted), this,
            [this](QPrinter* printer) { Print(*printer); });
    dialog->open();
}

void frmconfparams::cmdsave() {
    AskForFile(this, {"Save the list", "Text (*.txt)", "txt", "confparams.txt"}, [this](const QString& file) {
        if (const QString failure = ui_->rtbconfparams->Save(file); !failure.isEmpty()) {
            Show(failure);
        }
    });
}

}  // namespace desk
