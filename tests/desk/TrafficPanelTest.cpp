#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>

#include "desk/session/TrafficPanel.h"
#include "support/Hex.h"
#include "support/ScreenDesk.h"

using namespace desk;
using support::Bytes;
using support::The;

namespace {

constexpr const char* request = "01 03 00 64 00 0A 84 12";
constexpr const char* refusal = "01 83 02 C0 F1";

class TrafficPanelTest : public testing::Test {
  protected:
    TrafficPanelTest() {
        panel.Station({core::Protocol::Modbus});
        panel.resize(900, 300);
        panel.show();
        static_cast<void>(QTest::qWaitForWindowActive(&panel));
    }
    static std::string Cell(const TrafficView& view, int row, int column) {
        return view.lines.index(row, column).data().toString().toStdString();
    }

    fieldsim::VirtualClock clock{{2026, 11, 24, 10, 31, 7}};
    TrafficPanel panel{clock};
    TrafficView& tx = The<TrafficView>(panel, "gridTX");
    TrafficView& rx = The<TrafficView>(panel, "gridRX");
};

TEST_F(TrafficPanelTest, ALineIsInThePanelOfItsDirectionAndReadAndCopiedByKeys) {
    panel.Line("TX", Bytes(request));
    EXPECT_NE(The<LineMark>(panel, "TX").Colour(), The<LineMark>(panel, "RX").Colour());
    support::Fire(panel, "tmrleds");
    EXPECT_EQ(The<LineMark>(panel, "TX").Colour(), The<LineMark>(panel, "RX").Colour());
    clock.WaitMs(1250);
    panel.Line("RX", Bytes(refusal));
    panel.Line("RX", "");
    panel.Line("RX late", Bytes(refusal));
    EXPECT_EQ(Cell(tx, 0, 0) + "|" + Cell(tx, 0, 1) + "|" + Cell(tx, 0, 2) + "|" + Cell(tx, 0, 3),
              std::string("10:31:07.000|TX|8 |") + request);
    EXPECT_EQ(rx.lines.rowCount(), 2);
    EXPECT_EQ(Cell(rx, 0, 0) + Cell(rx, 0, 1), "10:31:08.250RX");
    EXPECT_EQ(Cell(rx, 1, 1) + Cell(rx, 1, 3), std::string("late") + refusal);

    rx.setFocus();
    QTest::keyClick(&rx, Qt::Key_Down);
    EXPECT_NE(support::Text(panel, "txtfields").find("exception  2 illegal data address"), std::string::npos);
    QTest::keyClick(&rx, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QString("10:31:08.250\tRX late\t") + refusal);
    // What comes in never is markup.
    panel.Line("RX", "<b>hello</b>\r");
    EXPECT_TRUE(rx.lines.index(2, 0).data(Qt::ToolTipRole).toString().contains("&lt;b&gt;hello"));
    panel.Station({core::Protocol::Bsap});  // another way to read: nothing is left of the old lines
    EXPECT_EQ(rx.lines.rowCount() + tx.lines.rowCount(), 0);
}

}  // namespace
