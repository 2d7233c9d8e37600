#include <QComboBox>
#include <QCoreApplication>

#include "demo/screens/Acting.h"
#include "demo/screens/Screens.h"
#include "desk/kit/Grid.h"
#include "desk/session/frmparalist.h"
#include "desk/signals/frmAfterChange.h"
#include "desk/signals/frmBeforeChange.h"
#include "desk/signals/frmDataVerification.h"
#include "desk/signals/frmVerify.h"
#include "session/Session.h"
#include "signals/change/ChangeStore.h"

namespace demo {

namespace {

constexpr std::int64_t multiStream = 4;
constexpr int list = 54;

session::Session& OpenSession(Stage& stage) {
    return *stage.Open<desk::frmparalist>(multiStream).GetSession();
}

QWidget* Launcher(Stage& stage) {
    stage.Open<desk::frmDataVerification>(&OpenSession(stage));
    return &stage.Shell();
}

// A screen on which a list is fetched: in its midst, some replies after the start, or behind its end.
template <class Form>
Screen Fetch(const std::string& name, bool running) {
    constexpr std::uint32_t someRepliesMs = 4000;
    Screen screen;
    screen.name = name;
    screen.show = [](Stage& stage) {
        stage.Open<Form>(OpenSession(stage));
        return static_cast<QWidget*>(&stage.Shell());
    };
    screen.alive = [running](Stage& stage, const std::function<void()>& look) {
        desk::Page& page = stage.Front();
        CloseBoxes(page);
        page.findChild<QComboBox*>("txtListNo")->setEditText(QString::number(list));
        if (running) {
            stage.Clock().After(someRepliesMs, look);
        }
        Press(stage, page, "cmdfetch");
        CloseBoxes(page);
        if (!running) {
            look();
        }
    };
    return screen;
}

// What was fetched before and after, with a difference here and there.
void ChangeSomeValues(core::Database& dbconn, const core::DateTime& now) {
    using signals::Side;
    auto rows = signals::StoredChange(dbconn, Side::Before, multiStream, list);
    for (std::size_t n = 3; n < rows.size(); n += 7) {
        rows[n][2] = n % 2 == 0 ? "CHANGED" : "12.5";
    }
    signals::StoreChange(dbconn, Side::After, multiStream, list, rows, now);
}

QWidget* Verify(Stage& stage) {
    ChangeSomeValues(stage.Surroundings().dbconn, stage.Clock().Now());
    auto& page = stage.Open<desk::frmVerify>(OpenSession(stage).GetStation());
    Press(page, "cmdVerify");
    auto& command = *page.findChild<QAbstractButton*>("cmdVerify");
    while (!command.isEnabled()) {
        QCoreApplication::processEvents();
    }
    CloseBoxes(page);
    return &stage.Shell();
}

}  // namespace

std::vector<Screen> VerificationScreens() {
    return {
        {"verification", Launcher},
        Fetch<desk::frmBeforeChange>("change_before", true),
        Fetch<desk::frmAfterChange>("change_after", false),
        {"verify", Verify},
    };
}

}  // namespace demo
