// The signal tools: a long list over the waits that a station needs, and the comparison of many lists with its file.

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Figure.h"
#include "bench/Served.h"
#include "desk/kit/Grid.h"
#include "desk/kit/Navigator.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/SerialLine.h"
#include "desk/signals/FetchPanel.h"
#include "desk/signals/frmVerify.h"
#include "reports/ReportMail.h"
#include "session/StationLine.h"
#include "signals/change/ChangeStore.h"
#include "signals/change/VerificationBook.h"
#include "support/CollectionDesk.h"

namespace {

using bench::Goal;
using bench::Served;
using Time = std::chrono::steady_clock;

constexpr int listLength = 1500;
constexpr int lists = 20;

double Milliseconds(Time::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

// The grid of a screen, and how many replies came into it.
class CountingPanel final : public desk::FetchPanel {
  public:
    int replies = 0;

    void Signals(const std::vector<signals::Signal>& signals) override {
        ++replies;
        FetchPanel::Signals(signals);
    }
    void Box(const std::string& text) override { throw std::runtime_error(text); }
};

// A list of 1,500 signals on a real port: in front of each request a wait, behind it another.
bool LongList() {
    constexpr double waitsOfAReply = 2;
    const demo::DemoStation station{"Hill Farm", "TeleFlow+", "BSAP", "", 1, 1, "", 1, {}, "00:00", 100};
    support::ScratchDesk scratch;
    const auto locationID = demo::AddStation(scratch.dbconn, station);
    fieldsim::Field field(scratch.dbconn, {});
    std::vector<fieldsim::Signal> signals;
    for (int n = 1; n <= listLength; ++n) {
        signals.push_back({n, "METER.SIGNAL." + std::to_string(n), "M3/H", fieldsim::Kind::Float, n * 1.25});
    }
    // A poll for an answer that is not ready yet is a wait of its own.
    field.Station(locationID)->bsap->Options().notReadyOneIn = 0;
    *field.Station(locationID)->bsap->Lists().at(54) = fieldsim::SignalList(signals);
    const std::filesystem::path port = scratch.shared.directory / "COM1";
    const Served served(port, *field.Ports().at(1));

    desk::EventLoopClock clock;
    core::Logs logs(scratch.dbconn, scratch.shared, clock);
    protocols::FieldLines lines(clock, [&](const core::Station&) {
        return std::make_unique<desk::SerialLine>([&](int) { return port.string(); });
    });
    protocols::BsapCounters counters;
    CountingPanel panel;
    panel.resize(1000, 600);
    panel.show();
    const reading::Workplace place{scratch.dbconn, scratch.shared, clock, panel, logs, lines, counters};
    std::optional<signals::FetchEnd> end;
    double took = 0;
    session::OnStationLine(
        place, nullptr, {}, locationID,
        [&](protocols::Conversation& talk) {
            const auto start = Time::now();
            end = signals::FetchList(talk, 54, panel);
            took = Milliseconds(Time::now() - start);
        },
        [] {});
    while (clock.Conversations() > 0) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    if (end != signals::FetchEnd::Whole || panel.Rows().size() != listLength) {
        throw std::runtime_error("the list did not come whole");
    }
    std::printf("  %d signals in %d replies: %.0f ms\n", listLength, panel.replies, took);
    return bench::Report("list of 1,500 over its waits", took / (panel.replies * waitsOfAReply * station.delaytime), "",
                         Goal::AtMost, 1.05);
}

// Two sets of lists of which every third value is another one.
void FillLists(core::Database& dbconn, std::int64_t locationID) {
    dbconn.InTransaction([&] {
        for (int list = 1; list <= lists; ++list) {
            for (const auto side : {signals::Side::Before, signals::Side::After}) {
                std::vector<signals::ChangeRow> rows;
                for (int n = 1; n <= listLength; ++n) {
                    const bool other = side == signals::Side::After && n % 3 == 0;
                    rows.push_back({"", "METER" + std::to_string(list) + ".SIGNAL." + std::to_string(n) + " (Analog)",
                                    std::to_string(n) + (other ? ".75" : ".5"), "M3/H"});
                }
                signals::StoreChange(dbconn, side, locationID, list, rows, {2026, 3, 9, 8, 0, 0});
            }
        }
    });
}

bool Comparison() {
    constexpr int rounds = 3;
    support::CollectionDesk scratch;
    core::Station station;
    station.locationID = demo::AddStation(scratch.dbconn, {"Hill Farm", "TeleFlow+", "BSAP", "", 1, 1});
    FillLists(scratch.dbconn, station.locationID);
    desk::Navigator window;
    desk::Desk desk{scratch.place, scratch.shared.addressees, scratch.scheduler, scratch.mail, window};
    auto* page = new desk::frmVerify(desk, station);
    window.resize(1024, 680);
    window.Open(page);
    window.show();
    QCoreApplication::processEvents();
    auto& grid = *page->findChild<desk::Grid*>("signalsGrid");
    auto& cmdVerify = *page->findChild<QPushButton*>("cmdVerify");
    std::vector<double> times;
    double longestTurn = 0;
    for (int round = 0; round < rounds; ++round) {
        const auto start = Time::now();
        cmdVerify.click();
        while (!cmdVerify.isEnabled()) {
            const auto turn = Time::now();
            QCoreApplication::processEvents();
            longestTurn = std::max(longestTurn, Milliseconds(Time::now() - turn));
        }
        QCoreApplication::processEvents();
        times.push_back(Milliseconds(Time::now() - start));
        for (QMessageBox* box : page->findChildren<QMessageBox*>()) {
            box->close();
        }
    }
    if (grid.Rows() != lists * listLength) {
        throw std::runtime_error("the comparison is not whole");
    }
    std::sort(times.begin(), times.end());
    const double middle = times[rounds / 2];
    std::printf("  the window waits for at most %.0f ms of it\n", longestTurn);

    std::vector<signals::VerifiedRow> rows;
    signals::Verification verification(scratch.dbconn, station.locationID);
    while (verification.Done() < verification.Total()) {
        const auto next = verification.Next();
        rows.insert(rows.end(), next.begin(), next.end());
    }
    const auto start = Time::now();
    const std::string failure = signals::WriteVerificationBook(scratch.shared.directory / "report.xlsx", rows);
    const double book = Milliseconds(Time::now() - start);
    if (!failure.empty()) {
        throw std::runtime_error(failure);
    }
    const bool met = bench::Report("30,000 rows compared and shown", middle, "ms", Goal::AtMost, 1000);
    return bench::Report("the workbook of 30,000 rows", book, "ms", Goal::AtMost, 3000) && met;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const bool good[] = {LongList(), Comparison()};
    return std::all_of(std::begin(good), std::end(good), [](bool met) { return met; }) ? 0 : 1;
}
