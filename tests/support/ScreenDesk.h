#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desk/kit/Desk.h"
#include "desk/kit/Grid.h"
#include "desk/kit/Navigator.h"
#include "desk/kit/Page.h"
#include "support/CollectionDesk.h"
#include "support/Script.h"

namespace support {

// A control of a page by its name; the test ends where there is none.
template <class Control = QWidget>
Control& The(const QWidget& page, const char* name) {
    auto* control = page.findChild<Control*>(name);
    if (control == nullptr) {
        throw std::runtime_error(std::string("no control ") + name);
    }
    return *control;
}

inline void Click(const QWidget& page, const char* name) {
    QTest::mouseClick(&The(page, name), Qt::LeftButton);
    QCoreApplication::processEvents();
}

// The key of a command or a field, with Alt. A command is down for a moment before it runs.
inline void AltKey(const QWidget& page, Qt::Key key) {
    QTest::keyClick(page.window()->focusWidget(), key, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&page] {
        const auto commands = page.findChildren<QAbstractButton*>();
        return std::none_of(commands.begin(), commands.end(),
                            [&page](const auto* one) { return one->isDown() && one->window() == page.window(); });
    }));
}

// Types into a field, in place of what it holds.
inline void Type(const QWidget& page, const char* name, const QString& text) {
    QWidget& field = The(page, name);
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, text);
}

// The message box over a page; null when there is none.
inline QMessageBox* Box(const QWidget& page) {
    for (QMessageBox* box : page.findChildren<QMessageBox*>()) {
        if (box->isVisible()) {
            return box;
        }
    }
    return nullptr;
}

inline bool Enabled(const QWidget& page, const char* name) {
    return The(page, name).isEnabled();
}

inline bool Seen(const QWidget& page, const char* name) {
    return The(page, name).isVisible();
}

// Those of the controls that can be used: "cmdGo cmdClose ".
inline std::string Usable(const QWidget& page, const std::vector<const char*>& names) {
    std::string usable;
    for (const char* name : names) {
        usable += Enabled(page, name) ? std::string(name) + " " : "";
    }
    return usable;
}

// The text of a label, a field, a list or a command.
inline std::string Text(const QWidget& page, const char* name) {
    for (const char* property : {"currentText", "plainText", "text"}) {
        if (const QVariant text = The(page, name).property(property); text.isValid()) {
            return text.toString().toStdString();
        }
    }
    throw std::runtime_error(std::string("no text in ") + name);
}

inline int Rows(const QWidget& page, const char* grid) {
    return The<desk::Grid>(page, grid).Rows();
}

inline std::string Cell(const QWidget& page, const char* grid, int row, int column) {
    return The<desk::Grid>(page, grid).TextMatrix(row, column).toStdString();
}

// Captions and rows of a grid, cells separated by "|".
inline std::vector<std::string> Lines(const QWidget& page, const char* grid) {
    std::vector<std::string> lines;
    const QString text = The<desk::Grid>(page, grid).TabSeparated().replace('\t', '|');
    for (const QString& line : text.split("\r\n", Qt::SkipEmptyParts)) {
        lines.push_back(line.toStdString());
    }
    return lines;
}

// Enter on a row of a grid.
inline void ChooseRow(const QWidget& page, const char* grid, int row) {
    auto& rows = The<desk::Grid>(page, grid);
    rows.SelectRow(row);
    QTest::keyClick(&rows, Qt::Key_Return);
}

// A key to what has the focus of a page.
inline void Key(const QWidget& page, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QWidget* focus = page.focusWidget();
    QTest::keyClick(focus == nullptr ? page.window()->focusWidget() : focus, key, modifiers);
    QCoreApplication::processEvents();
}

// The turn of a timer that is not yet over.
inline void Fire(const QWidget& page, const char* timer) {
    QMetaObject::invokeMethod(page.findChild<QTimer*>(timer), "timeout", Qt::DirectConnection);
}

// Names the file in the dialog over a page. Gives the kinds of files that it offered.
inline std::string PickFile(const QWidget& page, const std::filesystem::path& file) {
    QCoreApplication::processEvents();
    auto* dialog = page.findChild<QFileDialog*>();
    if (dialog == nullptr) {
        throw std::runtime_error("no file is asked for");
    }
    const std::string kinds = dialog->nameFilters().join('|').toStdString();
    Q_EMIT dialog->fileSelected(QString::fromStdString(file.string()));
    dialog->reject();
    QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
    return kinds;
}

// Gives the page's window the focus back behind a box or a dialog, as a desktop does and the offscreen platform does
// not.
inline void Return(const QWidget& page) {
    const QWidget* modal = QApplication::activeModalWidget();
    if (page.window()->isVisible() && (modal == nullptr || modal == page.window())) {
        page.window()->activateWindow();
        static_cast<void>(QTest::qWaitForWindowActive(page.window()));
    }
}

// The text of the box over a page, which is then answered; empty when there is none.
inline std::string Answer(const QWidget& page, QMessageBox::StandardButton button = QMessageBox::Ok) {
    QMessageBox* box = Box(page);
    if (box == nullptr) {
        return {};
    }
    static_cast<void>(QTest::qWaitForWindowActive(box));
    const std::string text = box->text().toStdString();
    QTest::mouseClick(box->button(button), Qt::LeftButton);
    Return(page);
    QCoreApplication::processEvents();
    return text;
}

// The name of the control that has the focus of a page.
inline std::string Focus(const QWidget& page) {
    const QWidget* focus = page.focusWidget();
    return focus == nullptr ? "" : focus->objectName().toStdString();
}

// A desk with a window for its screens, on the delivered database and the virtual clock. Clicks and keys reach the page
// in front as an operator's do.
class ScreenDesk : public CollectionDesk {
  public:
    using CollectionDesk::CollectionDesk;

    desk::Navigator window;
    desk::Desk desk{place, shared.addressees, scheduler, mail, window};

    // Opens a page in the window, which is as large as the smallest screen.
    template <class Form, class... Arguments>
    Form& Open(Arguments&&... arguments) {
        auto* form = new Form(desk, std::forward<Arguments>(arguments)...);
        window.resize(1024, 680);
        window.Open(form);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        return *form;
    }

    // The page in front, which is one of these.
    template <class Form>
    Form& Front() {
        auto* form = dynamic_cast<Form*>(window.Front());
        if (form == nullptr) {
            throw std::runtime_error("another page is in front");
        }
        return *form;
    }

    // Begins something, and makes the steps until all is done.
    void During(std::vector<Script::Step> steps, const std::function<void()>& work) {
        const auto script = std::make_shared<Script>(std::move(steps));
        clock.Every(20, [script] { script->Turn(); });
        work();
        Settle();
        QCoreApplication::processEvents();
        EXPECT_EQ(script->Missing(), "");
    }
    // The same with a command that is pressed.
    void Press(const QWidget& page, const char* command, std::vector<Script::Step> steps = {}) {
        During(std::move(steps), [&] { Click(page, command); });
    }
};

}  // namespace support
