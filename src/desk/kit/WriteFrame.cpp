#include "desk/kit/WriteFrame.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <algorithm>

namespace desk {

WriteFrame::WriteFrame(QWidget* parent)
    : QFrame(parent),
      Label1_(new QLabel(this)),
      txtvalue_(new QLineEdit(this)),
      Cmb_input_(new QComboBox(this)),
      Cmb_output_(new QComboBox(this)),
      cmdtoggle_(new QPushButton("Togg&le", this)),
      cmdwrite_(new QPushButton("&Write", this)),
      cmdcan_(new QPushButton("Ca&ncel", this)) {
    setFrameShape(QFrame::StyledPanel);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 8, 12, 8);
    layout->setSpacing(8);
    Label1_->setObjectName("Label1");
    Label1_->setTextFormat(Qt::PlainText);
    Label1_->setBuddy(txtvalue_);
    layout->addWidget(Label1_);
    const std::initializer_list<std::pair<QWidget*, const char*>> fields = {
        {txtvalue_, "txtvalue"},   {Cmb_input_, "Cmb_input"}, {Cmb_output_, "Cmb_output"},
        {cmdtoggle_, "cmdtoggle"}, {cmdwrite_, "cmdwrite"},   {cmdcan_, "cmdcan"}};
    for (const auto& [field, name] : fields) {
        field->setObjectName(name);
        layout->addWidget(field);
    }
    layout->addStretch();
    txtvalue_->setMaxLength(40);
    txtvalue_->setMinimumWidth(fontMetrics().averageCharWidth() * 24);
    txtvalue_->installEventFilter(this);
    for (QComboBox* combo : {Cmb_input_, Cmb_output_}) {
        connect(combo, &QComboBox::activated, this,
                [this, combo] { txtvalue_->setText(combo->currentData().toString()); });
    }
    connect(cmdtoggle_, &QPushButton::clicked, this, [this] {
        txtvalue_->setText(txtvalue_->text() == row_.other ? row_.text : row_.other);
        Again();
    });
    connect(cmdwrite_, &QPushButton::clicked, this, &WriteFrame::Write);
    connect(cmdcan_, &QPushButton::clicked, this, &WriteFrame::Leave);
    hide();
}

void WriteFrame::Open(const Writable& row) {
    row_ = row;
    Label1_->setText(row.description);
    txtvalue_->setText(row.text);
    txtvalue_->setReadOnly(row.isSwitch);
    cmdtoggle_->setVisible(row.isSwitch);
    for (QComboBox* combo : {Cmb_input_, Cmb_output_}) {
        combo->clear();
        for (const Writable::Pick& pick : row.picks) {
            combo->addItem(pick.shown, pick.text);
        }
        combo->setCurrentIndex(std::max(0, combo->findData(row.present.isEmpty() ? row.text : row.present)));
    }
    Sending(false);
    Cmb_input_->setVisible(row.choice == Writable::Choice::Input);
    Cmb_output_->setVisible(row.choice == Writable::Choice::Output);
    show();
    Again();
}

void WriteFrame::Sending(bool sending) {
    setEnabled(!sending);
}

void WriteFrame::Leave() {
    if (!isHidden()) {
        hide();
        Q_EMIT Left();
    }
}

void WriteFrame::Again() {
    txtvalue_->setFocus();
    txtvalue_->selectAll();
}

void WriteFrame::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Leave();
    } else {
        QFrame::keyPressEvent(event);
    }
}

bool WriteFrame::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            Q_EMIT Write();
            return true;
        }
        if (key == Qt::Key_Space && row_.isSwitch) {
            cmdtoggle_->click();
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

}  // namespace desk
