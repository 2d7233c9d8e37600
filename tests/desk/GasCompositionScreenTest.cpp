#include <gmock/gmock.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

#include "collection/CollectionRun.h"
#include "desk/collection/frmGCWrite.h"
#include "desk/collection/frmvalue.h"
#include "desk/kit/Grid.h"
#include "support/ScreenDesk.h"

using support::Answer;
using support::Click;
using support::Focus;
using support::The;

namespace {

// A station collected from the simulated field, and one in whose place nothing was read yet.
struct GasCompositionScreenTest : testing::Test {
    support::ScreenDesk desk;
    std::int64_t mill = demo::AddStation(desk.dbconn, {"O'Brien's Mill", "TeleFlow", "Modbus", "RTU", 1, 1});
    std::int64_t farm = demo::AddStation(desk.dbconn, {"Farm", "TeleFlow", "Modbus", "RTU", 2, 1});

    desk::frmGCWrite& Open() {
        auto& field = desk.OpenField();
        field.Values(mill, 1, "Methane")->Fix("Methane", 90.5);
        reading::RunState state;
        collection::collectiong_Data(desk.place, mill, state);
        EXPECT_FALSE(state.runfailed) << desk.RtuErr();
        return desk.Open<desk::frmGCWrite>();
    }

    // The window that asks for a value, in its focus; null when there is none.
    static desk::frmvalue* Window(const QWidget& form) {
        QCoreApplication::processEvents();
        auto* window = form.findChild<desk::frmvalue*>();
        if (window == nullptr || !window->isVisible()) {
            return nullptr;
        }
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        QCoreApplication::processEvents();
        return window;
    }
    // Types over what the window offers.
    static void Give(desk::frmvalue& window, const QString& text) {
        QTest::keyClicks(window.focusWidget(), text);
        QTest::keyClick(window.focusWidget(), Qt::Key_Return);
        QCoreApplication::processEvents();
    }
};

std::string Cell(const QWidget& form, int row, int column) {
    return The<desk::Grid>(form, "gcgrid").TextMatrix(row, column).toStdString();
}

// A letter for each control that takes input: Grid, gcgrid, edit, save, cancel, close, frame.
std::string Enabled(const QWidget& form) {
    std::string letters;
    for (const char* const name : {"Grid", "gcgrid", "cmdedit", "cmdsave", "cmdCancel", "cmdClose", "frmdata"}) {
        letters += The(form, name).isEnabled() ? '1' : '0';
    }
    return letters;
}

const char* const looking = "1010010";
const char* const editing = "0101101";

TEST_F(GasCompositionScreenTest, AValueIsEditedByKeysAndSaved) {
    auto& form = Open();
    EXPECT_EQ(form.windowTitle(), "Gas Composition Write  - v10.3");
    EXPECT_EQ(Enabled(form), looking);
    EXPECT_EQ(Focus(form), "Grid");
    EXPECT_EQ(Cell(form, 0, 1), "Methane");
    EXPECT_EQ(Cell(form, 0, 2), "90.5");
    Click(form, "cmdedit");
    EXPECT_EQ(Enabled(form), editing);
    EXPECT_EQ(Focus(form), "gcgrid");
    QTest::keyClick(form.focusWidget(), Qt::Key_Return);
    auto* window = Window(form);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->windowTitle(), "Value - v10.3");
    EXPECT_EQ(window->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    QCoreApplication::processEvents();
    EXPECT_EQ(The<QLabel>(*window, "lbldescription").text(), "Methane");
    EXPECT_EQ(The<QLineEdit>(*window, "txtvalue").selectedText(), "90.5");
    Give(*window, "91.25");
    EXPECT_EQ(Window(form), nullptr);
    EXPECT_EQ(Cell(form, 0, 2), "91.25");
    EXPECT_EQ(desk.Count("write_gc"), 0);
    Click(form, "cmdsave");
    EXPECT_EQ(Enabled(form), looking);
    EXPECT_EQ(desk.Count("write_gc where locationid=? and lastvalue=91.25 and description='Methane'", {mill}), 1);
    EXPECT_EQ(desk.Count("write_gc"), The<desk::Grid>(form, "gcgrid").Rows());
    QTest::keyClick(form.focusWidget(), Qt::Key_Down);
    EXPECT_EQ(Cell(form, 0, 2), "-");
    EXPECT_EQ(The<QLabel>(form, "lblsum").text(), "");
    Click(form, "cmdedit");
    QTest::keyClick(form.focusWidget(), Qt::Key_Return);
    window = Window(form);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(The<QLineEdit>(*window, "txtvalue").text(), "");
    Give(*window, "88");
    EXPECT_EQ(The<QLabel>(form, "lblsum").text(), "Sum: 88 (20 without a value)");
    Click(form, "cmdsave");
    EXPECT_EQ(desk.Count("write_gc where locationid=? and lastvalue is null", {farm}), 20);
    QTest::keyClick(form.focusWidget(), Qt::Key_Up);
    EXPECT_EQ(Cell(form, 0, 2), "91.25");
}

TEST_F(GasCompositionScreenTest, OnlyANumberIsTaken) {
    auto& form = Open();
    Click(form, "cmdedit");
    QTest::keyClick(form.focusWidget(), Qt::Key_Return);
    auto* window = Window(form);
    ASSERT_NE(window, nullptr);
    for (const char* const text : {"abc", "1,5", "9'"}) {
        Give(*window, text);
        EXPECT_THAT(Answer(*window), testing::HasSubstr(text));
        EXPECT_EQ(Focus(*window), "txtvalue");
        EXPECT_EQ(The<QLineEdit>(*window, "txtvalue").selectedText().toStdString(), text);
    }
    The<QLineEdit>(*window, "txtvalue").setText(QString(10000, '9'));
    Click(*window, "cmdOk");
    EXPECT_LT(Answer(*window).size(), 200U);
    EXPECT_EQ(Cell(form, 0, 2), "90.5");
    Click(*window, "cmdCancel");
    EXPECT_EQ(Window(form), nullptr);
    EXPECT_EQ(Cell(form, 0, 2), "90.5");
}

TEST_F(GasCompositionScreenTest, CancelShowsWhatIsStored) {
    collection::SaveGasComposition(desk.dbconn, mill, {{"9", "Methane", 60}, {"11", "Ethane", 39.9}});
    auto& form = Open();
    EXPECT_EQ(The<QLabel>(form, "lblsum").text(), "Sum: 99.9");
    Click(form, "cmdedit");
    auto& grid = The<desk::Grid>(form, "gcgrid");
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(grid.model()->index(1, 1)).center());
    auto* window = Window(form);
    ASSERT_NE(window, nullptr);
    Give(*window, "40");
    EXPECT_EQ(The<QLabel>(form, "lblsum").text(), "Sum: 100");
    QTest::keyClick(&grid, Qt::Key_Escape);
    EXPECT_EQ(Cell(form, 1, 2), "39.9");
    EXPECT_EQ(The<QLabel>(form, "lblsum").text(), "Sum: 99.9");
    EXPECT_EQ(Enabled(form), looking);
    QSignalSpy closed(&form, &desk::Page::Closed);
    QTest::keyClick(form.focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(closed.count(), 1);
}

TEST_F(GasCompositionScreenTest, WithoutAStationThereIsNothingToEdit) {
    desk.dbconn.Execute("update configdata_master set Gross_Detail=true");
    EXPECT_EQ(Enabled(desk.Open<desk::frmGCWrite>()), "1000010");
}

TEST_F(GasCompositionScreenTest, ASaveThatFailsLeavesTheFormAsItIs) {
    auto& form = Open();
    Click(form, "cmdedit");
    desk.dbconn.Execute("alter table write_gc rename to gone");
    Click(form, "cmdsave");
    EXPECT_EQ(Enabled(form), editing);
    EXPECT_THAT(desk.feedback.status.back(), testing::HasSubstr("write_gc"));
}

}  // namespace
