#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QScrollArea>
#include <QTableView>
#include <QTest>
#include <set>

#include "demo/screens/Screens.h"
#include "desk/kit/Look.h"
#include "desk/shell/NodeButton.h"
#include "support/ScreenDesk.h"

namespace {

// The room of a shell on the smallest screen, 1024x768, less the frame of its window.
constexpr int width = 1024;
constexpr int height = 740;

std::string Name(const QWidget& widget) {
    return widget.objectName().toStdString() + " (" + widget.metaObject()->className() + ")";
}

bool NeedsItsWidth(const QWidget& widget) {
    // The arrows of a row of tabs, which have the size that the style gives them.
    if (widget.objectName().startsWith("Scroll")) {
        return false;
    }
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        return !label->wordWrap() && !label->text().isEmpty();
    }
    // A node's name is made to fit its button.
    return qobject_cast<const QAbstractButton*>(&widget) != nullptr &&
           qobject_cast<const ::desk::NodeButton*>(&widget) == nullptr;
}

// Every text that is shown is shown whole, and nothing hangs over an edge.
void ExpectNothingCutOff(const QWidget& window) {
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->window() != &window) {
            continue;
        }
        if (NeedsItsWidth(*widget)) {
            EXPECT_GE(widget->width(), widget->sizeHint().width()) << Name(*widget);
            EXPECT_GE(widget->height(), widget->minimumSizeHint().height()) << Name(*widget);
        }
        if (const auto* combo = qobject_cast<const QComboBox*>(widget)) {
            EXPECT_GE(combo->width(), combo->fontMetrics().horizontalAdvance(combo->currentText()) + 24)
                << Name(*combo);
        }
        if (const auto* table = qobject_cast<const QTableView*>(widget)) {
            for (int column = 0; column < table->model()->columnCount(); ++column) {
                const QString caption = table->model()->headerData(column, Qt::Horizontal).toString();
                EXPECT_GE(table->columnWidth(column), table->fontMetrics().size(0, caption).width()) << Name(*table);
            }
        }
        // What a scrolling view or a list holds may go on outside of it.
        const QString parent = widget->parentWidget()->objectName();
        if (!parent.startsWith("qt_") && qobject_cast<const QAbstractItemView*>(widget->parentWidget()) == nullptr) {
            EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry())) << Name(*widget);
        }
    }
}

// Each command of a page has a key of its own.
void ExpectKeysAreUnique(const QWidget& page) {
    std::set<QString> keys;
    for (const QAbstractButton* command : page.findChildren<QAbstractButton*>()) {
        const QString key = command->shortcut().toString();
        if (command->isVisible() && !key.isEmpty()) {
            EXPECT_TRUE(keys.insert(key).second) << key.toStdString() << " " << Name(*command);
        }
    }
}

// Tab comes to every field and command that is in reach, and back to the first.
void ExpectTabReachesEverything(const QWidget& page) {
    std::set<const QWidget*> reached;
    const QWidget* at = &page;
    do {
        reached.insert(at);
        at = at->nextInFocusChain();
    } while (at != &page && reached.count(at) == 0);
    for (const QWidget* widget : page.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0) {
            EXPECT_TRUE(reached.count(widget) == 1) << Name(*widget);
        }
    }
}

class ScreensTest : public testing::Test {
  protected:
    support::ScratchDirectory scratch;
    demo::Stage stage{NORWEN_DATABASE, scratch.path};
};

TEST_F(ScreensTest, FitTheSmallestScreenWithNothingCutOff) {
    stage.LogIn();
    for (const demo::Screen& screen : demo::Screens()) {
        SCOPED_TRACE(screen.name);
        QWidget* window = screen.show(stage);
        if (window == &stage.Shell()) {
            window->setWindowState(Qt::WindowNoState);
            window->resize(width, height);
        }
        const auto look = [&] {
            ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
            QCoreApplication::processEvents();
            EXPECT_LE(window->width(), width);
            EXPECT_LE(window->height(), height);
            ExpectNothingCutOff(*window);
            if (window == &stage.Shell()) {
                const auto* room = window->findChild<QScrollArea*>();
                EXPECT_LE(room->widget()->width(), room->viewport()->width()) << "the page is wider than the window";
            }
            const QWidget& page = window == &stage.Shell() ? stage.Front() : *window;
            ExpectKeysAreUnique(page);
            ExpectTabReachesEverything(page);
        };
        screen.alive ? screen.alive(stage, look) : look();
    }
}

}  // namespace
