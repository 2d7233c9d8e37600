#include <gmock/gmock.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>

#include "desk/kit/LogView.h"
#include "desk/shell/frmlog.h"
#include "desk/shell/frmtts.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;

struct LogScreensTest : testing::Test {
    ScreenDesk desk;

    std::string Shown(const QWidget& form, const char* view) {
        return The<::desk::LogView>(form, view).toPlainText().toStdString();
    }
};

TEST_F(LogScreensTest, TheAuditTrailIsShownWhenAskedForAndClearedAtOnce) {
    desk.logs.WriteAudit("operator created user O'Neil 100%.");
    auto& below = desk.Open<::desk::frmlog>();
    auto& form = desk.Open<::desk::frmtts>();
    EXPECT_EQ(form.windowTitle(), "TTS - v10.3");
    EXPECT_EQ(Focus(form), "cmd_view");
    EXPECT_EQ(Shown(form, "rtb_tts"), "");
    QTest::keyClick(form.focusWidget(), Qt::Key_Return);  // the command that is next
    EXPECT_EQ(Shown(form, "rtb_tts"), "operator created user O'Neil 100%.\n");
    desk.logs.WriteAudit("second");
    Click(form, "cmd_view");
    EXPECT_EQ(Shown(form, "rtb_tts"), "operator created user O'Neil 100%.\nsecond\n");
    QTest::keyClick(&The(form, "rtb_tts"), 'x');
    EXPECT_EQ(Shown(form, "rtb_tts"), "operator created user O'Neil 100%.\nsecond\n");
    Click(form, "cmd_clear");
    EXPECT_EQ(Shown(form, "rtb_tts"), "");
    EXPECT_EQ(Box(form), nullptr);
    EXPECT_EQ(desk.Count("TTS_table"), 0);
    desk.dbconn.Execute("drop table TTS_table");
    Click(form, "cmd_view");
    ASSERT_FALSE(desk.feedback.status.empty());
    EXPECT_THAT(desk.feedback.status.back(), testing::HasSubstr("TTS_table"));
    QTest::keyClick(&form, Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_EQ(desk.window.Front(), &below);
}

TEST_F(LogScreensTest, TheErrorLogIsShownClearedAndMissed) {
    desk.logs.WriteRtuErr("RTU Dead[3]");
    auto& form = desk.Open<::desk::frmlog>();
    EXPECT_EQ(Shown(form, "Text1"), "09/03/2026 07:59:30--:RTU Dead[3]\n");
    Click(form, "cmdclear");
    EXPECT_EQ(Shown(form, "Text1"), "");
    EXPECT_FALSE(std::filesystem::exists(desk.shared.rtuErrPath));
    EXPECT_TRUE(desk.feedback.status.empty());
    Click(form, "cmdclear");
    EXPECT_THAT(desk.feedback.status, testing::ElementsAre("RTU_Err.log: No such file or directory"));
    EXPECT_FALSE(std::filesystem::exists(desk.shared.rtuErrPath));
    EXPECT_EQ(Box(form), nullptr);
    EXPECT_EQ(Shown(desk.Open<::desk::frmlog>(), "Text1"), "");
}

// Of a log of 100 MB the end is there at once; reading and laying out the whole would take half a minute.
TEST_F(LogScreensTest, OfALogOfYearsTheEndIsShownAndTold) {
    std::ofstream(desk.shared.rtuErrPath).close();
    std::filesystem::resize_file(desk.shared.rtuErrPath, 100'000'000);
    std::ofstream file(desk.shared.rtuErrPath, std::ios::binary | std::ios::app);
    for (int i = 0; i < 30'000; ++i) {
        file << "\n09/03/2026 07:59:30--:RTU Dead[3] and so on for years";
    }
    file << "\nlast\n";
    file.close();
    desk.dbconn.Execute(
        "insert into TTS_table with recursive n(i) as (select 1 union all select i+1 from n where i<60000) "
        "select 'User operator connected to RTU Mill. ' || i from n");
    auto& log = desk.Open<::desk::frmlog>();
    auto& tts = desk.Open<::desk::frmtts>();
    EXPECT_FALSE(The(tts, "lblpart").isVisible());
    Click(tts, "cmd_view");
    EXPECT_TRUE(The(tts, "lblpart").isVisible());
    EXPECT_FALSE(The(log, "lblpart").isHidden());
    EXPECT_EQ(The<QLabel>(log, "lblpart").text(), "The log is long: only its last lines are shown.");
    for (const auto& [text, first, last] : {std::tuple{Shown(log, "Text1"), "09/03/2026", "years\nlast\n"},
                                            std::tuple{Shown(tts, "rtb_tts"), "User operator", "Mill. 60000\n"}}) {
        EXPECT_THAT(text, testing::StartsWith(first));
        EXPECT_THAT(text, testing::EndsWith(last));
        EXPECT_GT(text.size(), 900'000U);
        EXPECT_LT(text.size(), 1'100'000U);
    }
    Click(tts, "cmd_clear");
    EXPECT_FALSE(The(tts, "lblpart").isVisible());
}

TEST_F(LogScreensTest, ALogIsCopiedAndSaved) {
    desk.logs.WriteAudit("Straße O'Neil");
    desk.logs.WriteAudit("second");
    auto& form = desk.Open<::desk::frmtts>();
    Click(form, "cmd_view");
    auto& view = The<::desk::LogView>(form, "rtb_tts");
    QTest::keyClick(&view, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "Straße O'Neil\nsecond\n");
    const auto file = desk.shared.directory / "saved.txt";
    EXPECT_EQ(view.Save(QString::fromStdString(file.string())), "");
    EXPECT_EQ(FileText(file), "Straße O'Neil\r\nsecond\r\n");
    EXPECT_NE(view.Save("/no/such/place.txt"), "");
}

}  // namespace
