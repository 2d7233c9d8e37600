#include "desk/kit/FirstColumn.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>

#include "desk/kit/Grid.h"

namespace desk {

FirstColumn::FirstColumn(Grid* grid) : QTableView(grid), grid_(grid) {
    setModel(grid->model());
    setSelectionModel(grid->selectionModel());
    setSelectionBehavior(grid->selectionBehavior());
    setSelectionMode(grid->selectionMode());
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setAutoScroll(false);
    setFrameShape(NoFrame);
    setFocusProxy(grid);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(grid->verticalScrollMode());
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(grid->verticalHeader()->defaultSectionSize());
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    connect(grid->verticalScrollBar(), &QScrollBar::valueChanged, verticalScrollBar(), &QScrollBar::setValue);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, grid->verticalScrollBar(), &QScrollBar::setValue);
    // The header tells the new width before it has it.
    connect(grid->horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column, int, int width) {
        if (column == 0) {
            Fit(width);
        }
    });
    grid->installEventFilter(this);
    Fit(grid->columnWidth(0));
}

bool FirstColumn::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest) {
        Fit(grid_->columnWidth(0));
    }
    return QTableView::eventFilter(watched, event);
}

void FirstColumn::Fit(int width) {
    setColumnWidth(0, width);
    const QRect inside = grid_->viewport()->geometry();
    const int head = grid_->horizontalHeader()->height();
    horizontalHeader()->setFixedHeight(head);
    setGeometry(inside.left(), inside.top() - head, qMin(width, inside.width()), inside.height() + head);
}

}  // namespace desk
