// The figures of the summary and what a change of one does, and the list of configurable parameters, on stations of the
// simulated field.

#include <gmock/gmock.h>

#include "session/Session.h"
#include "session/Summary.h"
#include "session/editor/ConfigParams.h"
#include "support/SessionDesk.h"

namespace session {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

struct SummaryTest : testing::Test {
    support::CollectionDesk desk;
    std::int64_t teleFlow = demo::AddStation(desk.dbconn, {"O'Brien's Mill", "TeleFlow", "Modbus", "RTU", 1, 1});
    std::int64_t orifice = demo::AddStation(desk.dbconn, {"Works", "CWEFM", "BSAP", "", 2, 1, "", 1, {"AGA3"}});
    fieldsim::Field* field = &desk.OpenField();
    support::RecordingView view;
    std::unique_ptr<Session> session;

    SummaryTest() { desk.shared.currentuser = "WARDEN"; }

    void Open(std::int64_t station) { session = std::make_unique<Session>(desk.place, view, station); }
    // Polls the station until `work` has run and its request is served; then the operator disconnects.
    void Poll(const std::function<void()>& work) {
        session->Connect();
        desk.RunUntil([this] { return session->HasLine(); });
        bool done = false;
        desk.clock.After(20000, [&] { work(), done = true; });
        desk.clock.After(40000, [this] { session->Disconnect(); });
        session->GetData();
        desk.Finish();
        EXPECT_TRUE(done);
    }

    SummaryFigure Figure(const std::string& label) {
        const auto figures = ReadSummary(desk.dbconn, *session);
        for (std::size_t i = 0; i < figures.size(); ++i) {
            if (summaryItems[i].label == label) {
                return figures[i];
            }
        }
        throw std::runtime_error(label);
    }
    SummaryAnswer Set(const std::string& name, const std::string& text) {
        for (const SummaryItem& item : summaryItems) {
            if (item.name == name) {
                return SetSummary(desk.dbconn, *session, item, text);
            }
        }
        throw std::runtime_error(name);
    }
    double Stored(const char* description) {
        return desk.dbconn
            .First("select lastvalue from SummaryPara where LocationID=? and description=?", {teleFlow, description})
            ->Number("lastvalue");
    }
};

TEST_F(SummaryTest, EachFigureHasItsFormAndIsNotAvailableBeforeItIsRead) {
    // A value of the station and how the panel shows it.
    const struct {
        const char* label;
        const char* description;
        double value;
        const char* text;
    } table[] = {
        {"lb_cur_FR", "Flowrate", 1234.5, "1234.5000"},
        {"lb_V_yest", "Volume Yesterday", -0.25, "-0.2500"},
        {"lb_zFactor", "Compressibility Flowing", 0.99791, "0.9979"},
        {"lbBatch", "Batch Mode", 1, "Enable"},
        {"lbBatch", "Batch Mode", 2, "Disable"},
        {"lbPID_loop", "PID Loop Mode", 1, "Manual"},
        {"lbPID_loop", "PID Loop Mode", 0, "Auto"},
        {"lb_con_Hr", "Contract Hour", 6, "6"},
        {"lb_Time", "Contract Hour", 18, "18:00"},
    };
    Open(teleFlow);
    for (const auto& row : table) {
        EXPECT_EQ(Figure(row.label).text, "N/A") << row.label;
    }
    session->Connect();
    desk.RunUntil([this] { return session->HasLine(); });
    std::size_t at = 0;
    std::function<void()> next = [&] {
        if (at > 0) {
            const auto figure = Figure(table[at - 1].label);
            EXPECT_TRUE(figure.known);
            EXPECT_EQ(figure.text, table[at - 1].text) << table[at - 1].label;
        }
        if (at == std::size(table)) {
            session->Disconnect();
            return;
        }
        ASSERT_TRUE(field->Values(teleFlow, 1, table[at].description)->Fix(table[at].description, table[at].value));
        ++at;
        desk.clock.After(20000, next);
    };
    desk.clock.After(1, next);
    session->GetData();
    desk.Finish();
    EXPECT_EQ(at, std::size(table));
    EXPECT_EQ(Figure("lb_Press").unit, "kg/cm2");
}

TEST_F(SummaryTest, AWordIsWrittenAsItsValueAndAWrongTextIsNot) {
    Open(teleFlow);
    auto& values = *field->Values(teleFlow, 1, "PID Loop Mode");
    values.Fix("PID Loop Mode", 0);
    EXPECT_EQ(Set("PID LOOP", "Manual").text, "Not connected");
    Poll([&] {
        EXPECT_EQ(Figure("lbPID_loop").text, "Auto");
        EXPECT_TRUE(Set("PID LOOP", "abc").mend);
        EXPECT_EQ(Set("Flow Set Point", "12,5").text, "Enter Proper Data");
        desk.shared.currentuser = "nobody";
        const auto refused = Set("PID LOOP", "Manual");
        EXPECT_EQ(refused.text, "Could not set. Lower user level.");
        EXPECT_FALSE(refused.mend);
        desk.shared.currentuser = "WARDEN";
        for (const SummaryItem& item : summaryItems) {
            EXPECT_EQ(MaySetSummary(*session, item), !item.name.empty()) << item.label;
        }
        EXPECT_EQ(Set("PID LOOP", ToggledSummary("Auto")).text, "Write Request Pending.....");
        EXPECT_EQ(Set("Batch", "Enable").text, "Write Request Pending.....");  // the first is still pending
        for (const SummaryItem& item : summaryItems) {
            EXPECT_FALSE(MaySetSummary(*session, item)) << item.label;
        }
    });
    EXPECT_EQ(values.ValueAt(*values.Find("PID Loop Mode"), desk.clock.Now()), 1);
    EXPECT_EQ(Figure("lbPID_loop").text, "Manual");
    EXPECT_EQ(desk.Count("TTS_table where LOG like '%parameter Batch%'"), 0);
}

TEST_F(SummaryTest, TheOperatorsOwnFiguresAreStoredWithoutALine) {
    Open(teleFlow);
    EXPECT_EQ(Figure("lbToday").text, "0");
    EXPECT_TRUE(MaySetSummary(*session, summaryItems.back()));
    EXPECT_EQ(Set("Todays Allocation", " 24000.5 ").text, "");
    EXPECT_EQ(Set("Locking Position", "-3").text, "");
    for (const char* const wrong : {"abc", "", "1 2", "5'; delete from SummaryPara --", "1e999", "nan"}) {
        const auto answer = Set("Additional", wrong);
        EXPECT_EQ(answer.text, "Enter Proper Data") << wrong;
        EXPECT_TRUE(answer.mend);
    }
    EXPECT_EQ(Stored("Todays Allocation"), 24000.5);
    EXPECT_EQ(Stored("Additional"), 0);
    EXPECT_EQ(Figure("lbToday").text, "24000.5");
    EXPECT_EQ(Figure("lbLock").text, "-3");
    Open(orifice);
    EXPECT_EQ(Figure("lbToday").text, "0");
}

TEST_F(SummaryTest, TheListOfConfigurableParametersIsTheFileOfItsName) {
    const auto set = [&](const char* description, double value, const char* readat) {
        ASSERT_GT(desk.dbconn.Execute("update configdata_detail set lastvalue=?, quality='good', readat=? where "
                                      "locationID=? and streamNo=1 and description=?",
                                      {value, readat, teleFlow, description}),
                  0);
    };
    set("Tap Type", 1, "2026-03-09 07:59:00");
    set("Contract Hour", 6, "2026-03-09 07:58:00");
    set("PID Flow Set Point", 1250.25, "2026-03-08 08:00:07");
    const auto list = fetch_params(desk.dbconn, desk.logs, desk.clock, teleFlow, 1);
    EXPECT_TRUE(list.written);
    EXPECT_EQ(list.text, support::FileText(desk.shared.confparamspath));
    const std::string head = "                 Meter ID :-   " + std::to_string(teleFlow) +
                             "\r\n                 Customer Name :-  O'Brien's Mill\r\n"
                             "                 Time :-      09/03/2026 07:59:30\r\n** PARAMETERS **\r\n\t";
    EXPECT_EQ(list.text.substr(0, head.size()), head);
    EXPECT_THAT(list.text,
                AllOf(HasSubstr("\r\n\tTap Type = PIPE\r\n"), HasSubstr("\r\n\tContract Hour = 6 hour\r\n"),
                      HasSubstr("\r\n\tPID Flow Set Point = 1250.25 SCMH (of 08/03/2026 08:00:07)\r\n"),
                      HasSubstr(" = - (not read yet)\r\n"), Not(HasSubstr(" = 0")), Not(HasSubstr("Valve Position"))));
    std::filesystem::remove(desk.shared.confparamspath);
    std::filesystem::create_directory(desk.shared.confparamspath);
    EXPECT_FALSE(fetch_params(desk.dbconn, desk.logs, desk.clock, teleFlow, 1).written);
    EXPECT_THROW(fetch_params(desk.dbconn, desk.logs, desk.clock, 4711, 1), std::runtime_error);
}

}  // namespace
}  // namespace session
