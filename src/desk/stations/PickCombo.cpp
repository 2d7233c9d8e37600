#include "desk/stations/PickCombo.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QWheelEvent>

#include "stations/StationRules.h"

namespace desk {

PickCombo::PickCombo(QWidget* parent) : QComboBox(parent) {
    setEditable(true);
    setInsertPolicy(NoInsert);
    // A completion would make "TeleFlow+" of a typed "TeleFlow".
    setCompleter(nullptr);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] { typed_ = true; });
    connect(this, &QComboBox::activated, this, [this] {
        typed_ = false;
        settled_ = currentText();
    });
}

void PickCombo::Fill(const std::vector<std::string>& list) {
    const QString text = currentText();
    const QSignalBlocker quiet(this);
    clear();
    for (const std::string& item : list) {
        addItem(QString::fromStdString(item));
    }
    setCurrentIndex(findText(text, Qt::MatchFixedString));
    setEditText(text);
}

void PickCombo::Text(const std::string& text) {
    settled_ = QString::fromStdString(text);
    typed_ = false;
    setCurrentIndex(findText(settled_, Qt::MatchFixedString));
    setEditText(settled_);
    lineEdit()->setCursorPosition(0);
}

void PickCombo::Lock(bool locked) {
    locked_ = locked;
    lineEdit()->setReadOnly(locked);
    QPalette colours;
    if (locked) {
        colours.setColor(QPalette::Base, colours.color(QPalette::Window));
    }
    setPalette(colours);
}

bool PickCombo::Settle() {
    if (!typed_ || currentText().isEmpty()) {
        return true;
    }
    std::vector<std::string> list;
    for (int i = 0; i < count(); ++i) {
        list.push_back(itemText(i).toStdString());
    }
    if (!stations::IsInList(list, Text())) {
        return false;
    }
    const int listed = findText(currentText(), Qt::MatchFixedString);
    if (listed >= 0 && itemText(listed) != currentText()) {
        Text(itemText(listed).toStdString());
    }
    typed_ = false;
    settled_ = currentText();
    return true;
}

void PickCombo::TakeBack() {
    Text(settled_.toStdString());
}

void PickCombo::focusOutEvent(QFocusEvent* event) {
    QComboBox::focusOutEvent(event);
    const auto reason = event->reason();
    if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason && reason != Qt::MenuBarFocusReason) {
        Q_EMIT Left();
    }
}

void PickCombo::keyPressEvent(QKeyEvent* event) {
    const bool picks = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down || event->key() == Qt::Key_PageUp ||
                       event->key() == Qt::Key_PageDown || event->key() == Qt::Key_F4;
    if (locked_ && picks) {
        event->accept();
        return;
    }
    QComboBox::keyPressEvent(event);
}

void PickCombo::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void PickCombo::showPopup() {
    if (!locked_) {
        QComboBox::showPopup();
    }
}

}  // namespace desk
