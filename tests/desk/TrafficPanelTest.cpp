#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTest>

#include "desk/session/TrafficPanel.h"
#include "fieldsim/VirtualClock.h"
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
        panel.resize(900, 400);
        panel.show();
        static_cast<void>(QTest::qWaitForWindowActive(&panel));
    }

    std::string Cell(const TrafficView& view, int row, int column) const {
        return view.lines.index(row, column).data().toString().toStdString();
    }
    std::string Fields() const { return The<QPlainTextEdit>(panel, "txtfields").toPlainText().toStdString(); }

    fieldsim::VirtualClock clock{{2026, 11, 24, 10, 31, 7}};
    TrafficPanel panel{clock};
    TrafficView& tx = The<TrafficView>(panel, "gridTX");
    TrafficView& rx = The<TrafficView>(panel, "gridRX");
};

TEST_F(TrafficPanelTest, ALineIsInThePanelOfItsDirection) {
    panel.Line("TX", Bytes(request));
    clock.WaitMs(1250);
    panel.Line("RX", Bytes(refusal));
    panel.Line("RX", "");
    ASSERT_EQ(tx.lines.rowCount(), 1);
    ASSERT_EQ(rx.lines.rowCount(), 1);
    EXPECT_EQ(Cell(tx, 0, 0), "10:31:07.000");
    EXPECT_EQ(Cell(tx, 0, 1), "TX");
    EXPECT_EQ(Cell(tx, 0, 2), "8 ");
    EXPECT_EQ(Cell(tx, 0, 3), request);
    EXPECT_EQ(Cell(rx, 0, 0), "10:31:08.250");
    EXPECT_EQ(Cell(rx, 0, 1), "RX");

    panel.Line("RX late", Bytes(refusal));
    EXPECT_EQ(Cell(rx, 1, 1), "late");
    EXPECT_EQ(Cell(rx, 1, 3), refusal);
    EXPECT_EQ(rx.lines.CopyText(1).toStdString(), std::string("10:31:08.250\tRX late\t") + refusal);
}

TEST_F(TrafficPanelTest, OneLineIsReadAndCopiedByKeys) {
    panel.Line("TX", Bytes(request));
    panel.Line("RX", Bytes(refusal));
    rx.setFocus();
    QTest::keyClick(&rx, Qt::Key_Down);
    EXPECT_NE(Fields().find("exception  2 illegal data address"), std::string::npos) << Fields();
    QTest::keyClick(&rx, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QString("10:31:07.000\tRX\t") + refusal);
    tx.setFocus();
    QTest::keyClick(&tx, Qt::Key_Down);
    EXPECT_NE(Fields().find("quantity  10"), std::string::npos) << Fields();
    EXPECT_FALSE(rx.currentIndex().isValid());
    // What comes in never is markup.
    panel.Line("RX", "<b>hello</b>\r");
    EXPECT_TRUE(rx.lines.index(1, 0).data(Qt::ToolTipRole).toString().contains("&lt;b&gt;hello"));
}

TEST_F(TrafficPanelTest, AnswersAreReadByWhatWasAsked) {
    panel.Station({core::Protocol::Bsap});
    panel.Line("TX", Bytes("10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6"));
    panel.Line("RX", Bytes("10 02 00 01 00 86 01 00 01 10 03 00 00"));
    panel.Line("TX", Bytes("10 02 01 01 85 10 10 10 03 2C B5"));
    panel.Line("RX", Bytes("10 02 00 01 00 0B 00 04 A0 00 00 00 00 12 34 23 4F 4E 2E 2E 00 10 03 00 00"));
    EXPECT_TRUE(rx.lines.Fields(1).contains("load version"));
    panel.Station({core::Protocol::Modbus});  // another way to read: nothing is left of the old lines
    EXPECT_EQ(rx.lines.rowCount() + tx.lines.rowCount(), 0);
}

TEST_F(TrafficPanelTest, TheLastThousandLinesStay) {
    for (int i = 0; i < 600; ++i) {
        panel.Line("TX", std::string(1, static_cast<char>(i)));
        panel.Line("RX", Bytes(refusal));
    }
    EXPECT_EQ(tx.lines.rowCount() + rx.lines.rowCount(), 1000);
    EXPECT_EQ(Cell(tx, 499, 3), "57");  // 599
    panel.resize(900, 300);
    EXPECT_EQ(tx.verticalScrollBar()->value(), tx.verticalScrollBar()->maximum());

    // A line that is read stays what it is, also as the oldest; a place that was gone to stays.
    tx.setCurrentIndex(tx.lines.index(0, 0));
    const std::string read = Fields();
    panel.Line("TX", "x");
    EXPECT_EQ(Fields(), read);
    EXPECT_LT(tx.verticalScrollBar()->value(), tx.verticalScrollBar()->maximum());
    panel.Line("RX", std::string(100000, '\xFF'));
    EXPECT_EQ(Cell(rx, 499, 2), "100000 ");
    EXPECT_LT(rx.lines.CopyText(499).size(), 4000);
    EXPECT_LE(panel.minimumSizeHint().width(), 600);
}

TEST_F(TrafficPanelTest, AMarkLightsUpAndGoesBackToGreen) {
    constexpr QRgb green = 0xFF00FF00;
    auto& timer = *panel.findChild<QTimer*>("tmrleds");
    auto& sent = The<LineMark>(panel, "TX");
    auto& received = The<LineMark>(panel, "RX");
    EXPECT_EQ(sent.Colour().rgba(), green);
    panel.Line("TX", Bytes(request));
    EXPECT_NE(sent.Colour().rgba(), green);
    EXPECT_EQ(received.Colour().rgba(), green);
    EXPECT_TRUE(timer.isActive() && timer.isSingleShot());
    panel.Line("RX", Bytes(refusal));
    QMetaObject::invokeMethod(&timer, "timeout", Qt::DirectConnection);
    EXPECT_EQ(sent.Colour().rgba(), green);
    EXPECT_EQ(received.Colour().rgba(), green);
}

}  // namespace
