#include "desk/session/MultipleWrite.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "desk/kit/Grid.h"

namespace desk {

namespace {

constexpr int writtenColumn = 2;

}  // namespace

MultipleWrite::MultipleWrite(QWidget* parent)
    : QFrame(parent), gcMultiGrid_(new Grid(this)), cmdMulWrite_(new QPushButton("Write All &Values", this)) {
    setFrameShape(QFrame::StyledPanel);
    gcMultiGrid_->setObjectName("gcMultiGrid");
    cmdMulWrite_->setObjectName("cmdMulWrite");
    auto* Command2 = new QPushButton("&Back Without Writing", this);
    Command2->setObjectName("Command2");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 8, 12, 8);
    layout->setSpacing(8);
    layout->addWidget(gcMultiGrid_);
    auto* commands = new QHBoxLayout;
    commands->addStretch();
    commands->addWidget(cmdMulWrite_);
    commands->addWidget(Command2);
    layout->addLayout(commands);
    connect(gcMultiGrid_, &Grid::RowChosen, this, &MultipleWrite::RowChosen);
    connect(cmdMulWrite_, &QPushButton::clicked, this, &MultipleWrite::Send);
    connect(Command2, &QPushButton::clicked, this, &MultipleWrite::Leave);
    hide();
}

void MultipleWrite::copyGrid(const QString& format, const std::vector<QStringList>& rows) {
    gcMultiGrid_->FormatString(format);
    gcMultiGrid_->AddItems(rows);
    gcMultiGrid_->SelectRow(0);
    changed_.clear();
    cmdMulWrite_->setEnabled(false);
    show();
    gcMultiGrid_->setFocus();
}

void MultipleWrite::Leave() {
    if (!isHidden()) {
        hide();
        Q_EMIT Left();
    }
}

void MultipleWrite::Enter(int row, const QString& text) {
    if (text != Text(row)) {
        gcMultiGrid_->TextMatrix(row, writtenColumn, text);
        gcMultiGrid_->Mark(row, writtenColumn);
        changed_.insert(row);
        cmdMulWrite_->setEnabled(true);
    }
    gcMultiGrid_->setFocus();
}

QString MultipleWrite::Text(int row) const {
    return gcMultiGrid_->TextMatrix(row, writtenColumn);
}

int MultipleWrite::Rows() const {
    return gcMultiGrid_->Rows();
}

}  // namespace desk
