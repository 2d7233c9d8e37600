#include "desk/kit/LogView.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>

#include "core/Logs.h"
#include "desk/kit/Boxes.h"
#include "desk/kit/WholeFile.h"

namespace desk {

LogView::LogView(QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setLineWrapMode(NoWrap);
}

void LogView::ShowLog(const core::LogText& log, QLabel* note) {
    setPlainText(QString::fromStdString(log.text));
    moveCursor(QTextCursor::End);
    ensureCursorVisible();
    note->setText("The log is long: only its last lines are shown.");
    note->setVisible(!log.whole);
}

QString LogView::Save(const QString& file) const {
    return WriteWhole(file, toPlainText().replace('\n', "\r\n").toUtf8());
}

void LogView::SaveAs() {
    AskForFile(this, {"Save as text", "Text (*.txt)", "txt"}, [this](const QString& file) {
        if (const QString failure = Save(file); !failure.isEmpty()) {
            ShowBox(this, failure, "Save");
        }
    });
}

void LogView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Save)) {
        SaveAs();
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

void LogView::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = createStandardContextMenu(event->pos());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addSeparator();
    menu->addAction("&Save As...", QKeySequence::Save, this, &LogView::SaveAs);
    menu->popup(event->globalPos());
}

}  // namespace desk
