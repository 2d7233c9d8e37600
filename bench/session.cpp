// A session on the screen: how fast it polls, how fast its grids follow, and what it keeps after a night.

#include <malloc.h>

#include <QApplication>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/Figure.h"
#include "bench/Served.h"
#include "desk/kit/Navigator.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/SerialLine.h"
#include "desk/session/LiveScreen.h"
#include "desk/session/frmparalist.h"
#include "reports/ReportMail.h"
#include "support/CollectionDesk.h"

namespace {

using bench::Goal;
using bench::Served;
using Time = std::chrono::steady_clock;

void TurnUntil(const std::function<bool()>& holds) {
    while (!holds()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

double Milliseconds(Time::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

const demo::DemoStation teleFlow{"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 17, "", 1, {}, "00:00", 100};

// A poll of the whole fixed map on a real port: two blocks of coils and five of registers, three waits each.
bool OnePoll() {
    constexpr double waits = 7 * 3;
    support::ScratchDesk scratch;
    const auto locationID = demo::AddStation(scratch.dbconn, teleFlow);
    fieldsim::Field field(scratch.dbconn, {});
    const std::filesystem::path port = scratch.shared.directory / "COM1";
    const Served served(port, *field.Ports().at(1));

    desk::EventLoopClock clock;
    core::Logs logs(scratch.dbconn, scratch.shared, clock);
    protocols::FieldLines lines(clock, [&](const core::Station&) {
        return std::make_unique<desk::SerialLine>([&](int) { return port.string(); });
    });
    protocols::BsapCounters counters;
    reading::Workplace place{scratch.dbconn, scratch.shared, clock, scratch.feedback, logs, lines, counters};
    support::RecordingMail mail;
    reports::ReportMail reportMail(place, mail);
    collection::Scheduler scheduler(place, reportMail);
    scratch.shared.rights.rightOnline = true;
    desk::Navigator window;
    desk::Desk desk{place, scratch.shared.addressees, scheduler, mail, window};
    auto* page = new desk::frmparalist(desk, locationID);
    window.resize(1024, 680);
    window.Open(page);
    window.show();
    session::Session& session = *page->GetSession();
    session.Connect();
    TurnUntil([&] { return session.GetState() != session::State::Connecting; });

    std::vector<Time::time_point> reads;
    int good = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        // A poll is over when its last request is good and the next one is on its way.
        if (session.Requests().good / 7 > good) {
            good = session.Requests().good / 7;
            reads.push_back(Time::now());
        }
        if (reads.size() == 6) {
            session.Disconnect();
        }
    });
    watch.start(1);
    session.GetData();
    TurnUntil([&] { return clock.Conversations() == 0; });
    const double poll = Milliseconds(reads.back() - reads.front()) / static_cast<double>(reads.size() - 1);
    return bench::Report("one poll over its waits", poll / (waits * teleFlow.delaytime), "", Goal::AtMost, 1.05);
}

// A desk whose window shows a session, on the virtual clock.
class ScreenDesk : public support::CollectionDesk {
  public:
    desk::Navigator window;
    desk::Desk desk{place, shared.addressees, scheduler, mail, window};

    desk::frmparalist& Open(std::int64_t locationID) {
        shared.rights.rightOnline = true;
        auto* page = new desk::frmparalist(desk, locationID);
        window.resize(1024, 680);
        window.Open(page);
        window.show();
        return *page;
    }
};

// All grids follow a poll of 400 numbers and 80 switches of which every one is new, until they are painted.
bool RefreshOfAllGrids() {
    ScreenDesk desk;
    const auto locationID = demo::AddStation(desk.dbconn, teleFlow);
    desk.dbconn.Execute("delete from configdata_detail");
    const char* groups[] = {"AGA3", "GC", "TOTRND", "ALARM", "PID", "IO"};
    desk.dbconn.InTransaction([&] {
        for (int n = 1; n <= 480; ++n) {
            const bool logical = n > 400;
            desk.dbconn.Execute(
                "insert into configdata_detail(locationID,description,startaddress,type,srno,lastvalue,aga,StreamNo) "
                "values(?,?,?,?,?,0,?,1)",
                {locationID, logical ? "Digital Input - 1" : "Value " + std::to_string(n), std::to_string(n),
                 logical ? "Coil(Boolean)" : "Float", n, groups[n % 6]});
        }
    });
    desk::frmparalist& page = desk.Open(locationID);
    auto& live = *page.findChild<desk::LiveScreen*>();
    auto& set = const_cast<session::ParameterSet&>(live.GetSession().Parameters());
    std::vector<double> times;
    for (int round = 0; round < 50; ++round) {
        set.ForEach([&](session::ParameterRow& row) {
            session::TakeValue(row, row.kind == core::ValueKind::Logical ? round % 2 : row.lastvalue + 1.5,
                               desk.clock.Now());
        });
        const auto start = Time::now();
        live.Refreshed();
        QCoreApplication::processEvents();
        times.push_back(Milliseconds(Time::now() - start));
    }
    std::sort(times.begin(), times.end());
    return bench::Report("refresh of 400 and 80 values", times[times.size() / 2], "ms", Goal::AtMost, 30);
}

// What is in use on the heap after so many polls.
bool MemoryOfANight() {
    constexpr int few = 100;
    constexpr int many = 10000;
    ScreenDesk desk;
    const auto locationID = demo::AddStation(desk.dbconn, teleFlow);
    desk.OpenField();
    desk.dbconn.Execute("pragma synchronous=off");  // the disk is not what is measured
    session::Session& session = *desk.Open(locationID).GetSession();
    session.Connect();
    desk.Settle();
    std::size_t early = 0;
    std::size_t late = 0;
    int polls = 0;
    std::optional<core::DateTime> last;
    desk.clock.Every(500, [&] {
        QCoreApplication::processEvents();
        if (session.ValuesAt() == last) {
            return;
        }
        last = session.ValuesAt();
        ++polls;
        if (polls == few) {
            early = mallinfo2().uordblks;
        } else if (polls == many) {
            late = mallinfo2().uordblks;
            session.Disconnect();
        }
    });
    session.GetData();
    desk.clock.Finish();
    const double grown = (static_cast<double>(late) - static_cast<double>(early)) / 1024;
    std::printf("  %.0f KiB in use after %d polls, %.0f KiB after %d\n", static_cast<double>(early) / 1024, few,
                static_cast<double>(late) / 1024, many);
    return bench::Report("heap grown in 9,900 polls", grown, "KiB", Goal::AtMost, 64);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const bool good[] = {OnePoll(), RefreshOfAllGrids(), MemoryOfANight()};
    return std::all_of(std::begin(good), std::end(good), [](bool met) { return met; }) ? 0 : 1;
}
