#include <QCheckBox>
#include <QLineEdit>
#include <memory>

#include "core/MAIN_Module.h"
#include "demo/screens/Acting.h"
#include "demo/screens/Screens.h"
#include "desk/kit/Grid.h"
#include "desk/session/ParameterTabs.h"
#include "desk/session/frmparalist.h"
#include "session/Session.h"

namespace demo {

namespace {

constexpr std::int64_t teleFlow = 1;
constexpr std::int64_t teleCorrector = 2;
constexpr std::int64_t multiStream = 4;
constexpr std::int64_t quantum = 5;
constexpr std::int64_t regulator = 6;

using Work = std::function<void(Stage&, desk::frmparalist&)>;

desk::frmparalist& Front(Stage& stage) {
    return dynamic_cast<desk::frmparalist&>(stage.Front());
}

void ChooseRow(desk::frmparalist& page, const char* aga, const char* description) {
    auto& tabs = *page.findChild<desk::ParameterTabs*>("gridtab");
    const auto place = page.GetSession()->Parameters().Find(aga, description).value();
    tabs.BringForward(place.group);
    desk::Grid& grid = tabs.GridOf(place.group);
    grid.SelectRow(tabs.GridRow(place.group, place.row));
    Q_EMIT grid.RowChosen(grid.Row());
}

bool AlwaysReady(const session::Session&) {
    return true;
}

// Live values on both sides of their limits.
bool ShowsAlarms(const session::Session& session) {
    bool low = false;
    bool high = false;
    for (const auto& live : session.Alarms()) {
        low = low || (live.place.row < 21 && live.state == session::AlarmState::LoLo);
        high = high || (live.place.row < 21 && live.state == session::AlarmState::HiHi);
    }
    return low && high;
}

// A session with a station that has been polled for a while, until it is `ready`. `work` is done before the look.
Screen Live(const std::string& name, std::int64_t locationID, Work work = {},
            bool (*ready)(const session::Session&) = AlwaysReady) {
    Screen screen;
    screen.name = name;
    screen.show = [locationID](Stage& stage) {
        stage.Shared().currentuser = "WARDEN";
        stage.Open<desk::frmparalist>(locationID);
        return static_cast<QWidget*>(&stage.Shell());
    };
    screen.alive = [work, ready](Stage& stage, const std::function<void()>& look) {
        desk::frmparalist& page = Front(stage);
        session::Session& session = *page.GetSession();
        Press(stage, page, "cmdConnect");
        auto polls = std::make_shared<int>(0);
        auto last = std::make_shared<std::optional<core::DateTime>>();
        const auto turn = std::make_shared<std::function<void()>>();
        *turn = [&stage, &page, &session, work, look, polls, last, turn, ready] {
            *polls += session.ValuesAt() != *last ? 1 : 0;
            *last = session.ValuesAt();
            if (*polls < 3 || (!ready(session) && *polls < 400)) {
                stage.Clock().After(20, *turn);
                return;
            }
            if (work) {
                work(stage, page);
            }
            look();
            session.Disconnect();
        };
        stage.Clock().After(20, *turn);
        Press(stage, page, "cmdgetdata");
        *turn = {};
        stage.Shared().currentuser = "operator";
    };
    return screen;
}

// One tab of a session.
Screen Tab(const std::string& name, std::int64_t locationID, int tab) {
    constexpr int alarmTab = 5;
    return Live(
        "session_" + name, locationID,
        [tab](Stage&, desk::frmparalist& page) {
            page.findChild<desk::ParameterTabs*>("gridtab")->setCurrentIndex(tab);
        },
        tab == alarmTab ? ShowsAlarms : AlwaysReady);
}

// The register editor on a new station that is laid out by hand, with some of its addresses given.
QWidget* Registers(Stage& stage, int tab) {
    stage.Shared().currentuser = "WARDEN";
    desk::RegisterStation station;
    station.consumer = "Zeal Ceramics";
    station.edited.choices.locationID = 900;
    station.edited.choices.modelno = "TeleFlow";
    station.edited.choices.protocol = core::Protocol::Modbus;
    station.edited.choices.optAga3 = true;
    station.edited.choices.MB_CONFIG = true;
    station.tabs.isAga3 = true;
    station.tabs.superUser = true;
    auto& page = stage.Open<desk::frmparalist>(station);
    page.findChild<desk::ParameterTabs*>("gridtab")->setCurrentIndex(tab);
    stage.Shared().currentuser = "operator";
    return &stage.Shell();
}

}  // namespace

std::vector<Screen> SessionScreens() {
    std::vector<Screen> screens{
        {"session_idle",
         [](Stage& stage) {
             stage.Open<desk::frmparalist>(teleFlow);
             return static_cast<QWidget*>(&stage.Shell());
         }},
        Live("session_write", teleFlow,
             [](Stage&, desk::frmparalist& page) { ChooseRow(page, "KEYPAD", "Keypad N2"); }),
        Live("session_switch", teleFlow,
             [](Stage&, desk::frmparalist& page) { ChooseRow(page, "IO", "Digital Output 1 State"); }),
        Live("session_pending", teleFlow,
             [](Stage&, desk::frmparalist& page) {
                 ChooseRow(page, "KEYPAD", "Keypad N2");
                 page.findChild<QLineEdit*>("txtvalue")->setText("1.25");
                 Press(page, "cmdwrite");
             }),
        Live("session_composition", teleFlow, [](Stage&, desk::frmparalist& page) { Press(page, "chkMultiple"); }),
        Live("session_traffic", teleFlow,
             [](Stage&, desk::frmparalist& page) { page.findChild<QCheckBox*>("chktraffic")->setChecked(true); }),
        Live("session_summary", teleFlow, [](Stage&, desk::frmparalist& page) { Press(page, "cmd_summary"); }),
        Live("session_drawing", regulator, [](Stage&, desk::frmparalist& page) { Press(page, "cmdDRS"); }),
        Live("session_streams", multiStream,
             [](Stage&, desk::frmparalist& page) {
                 page.findChild<desk::ParameterTabs*>("gridtab")->setCurrentIndex(6);
             }),
        Tab("drs", regulator, 9),
        Tab("curve", teleCorrector, 11),
        Tab("quantum", quantum, 16),
    };
    const std::vector<std::pair<int, const char*>> tabs{
        {0, "meter"},      {1, "aga8"}, {2, "gc"},    {3, "totals"}, {4, "health"}, {5, "alarm"},   {6, "io"},
        {7, "nomination"}, {8, "pid"},  {10, "aga5"}, {12, "radio"}, {13, "modem"}, {14, "keypad"}, {15, "constants"}};
    for (const auto& [tab, name] : tabs) {
        screens.push_back(Tab(name, teleFlow, tab));
    }
    for (const auto& [tab, name] : tabs) {
        screens.push_back(
            {"registers_" + std::string(name), [tab = tab](Stage& stage) { return Registers(stage, tab); }});
    }
    return screens;
}

}  // namespace demo
