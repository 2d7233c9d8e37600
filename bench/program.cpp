// The program as a user meets it: its start, its memory, and a collection through a real serial device.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <array>
#include <chrono>
#include <ctime>
#include <fstream>

#include "bench/Figure.h"
#include "core/Ports.h"
#include "core/Text.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/SerialLine.h"
#include "support/ChildProcess.h"
#include "support/CollectionDesk.h"

namespace {

using bench::Goal;
using Stopwatch = std::chrono::steady_clock;

double Seconds(Stopwatch::time_point since) {
    return std::chrono::duration<double>(Stopwatch::now() - since).count();
}

void Prepare(const std::filesystem::path& directory) {
    std::filesystem::copy_file(NORWEN_DATABASE, directory / "Kolmar.mdb");
    std::filesystem::create_directory(directory / "scheduler");
    std::filesystem::create_directory(directory / "field");
    core::Database dbconn(directory / "Kolmar.mdb");
    for (const auto& station : demo::OneOfEach("00:00")) {
        demo::AddStation(dbconn, station);
    }
    dbconn.Execute("update comports set device = 'field/' || portname");
}

// Where a program tells that it is ready.
class ReadySocket {
  public:
    explicit ReadySocket(const std::filesystem::path& path) : descriptor_(socket(AF_UNIX, SOCK_DGRAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.string().copy(address.sun_path, sizeof address.sun_path - 1);
        bind(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address);
        setenv("NOTIFY_SOCKET", path.c_str(), 1);
    }
    ~ReadySocket() {
        close(descriptor_);
        unsetenv("NOTIFY_SOCKET");
    }
    void Await() const {
        char text[64];
        static_cast<void>(!recv(descriptor_, text, sizeof text, 0));
    }

  private:
    int descriptor_;
};

bool StartToTheLogin() {
    const support::ScratchDirectory scratch;
    Prepare(scratch.path);
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        const ReadySocket ready(scratch.path / ("ready" + std::to_string(round)));
        const auto start = Stopwatch::now();
        support::ChildProcess program({NORWEN_PROGRAM, "--directory", scratch.path.string(), "--unattended"});
        ready.Await();
        best = std::min(best, Seconds(start));
        program.Signal(SIGTERM);
        program.Wait();
    }
    return bench::Report("start to the login", best, "s", Goal::AtMost, 0.5);
}

double ResidentMegabytes(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) {
            return core::Val(line.substr(6)) / 1024;
        }
    }
    return 1e9;  // the program is gone
}

// The hour and minute of the program's first tick, a minute from now.
std::string NextMinute() {
    const std::time_t then = std::time(nullptr) + 60;
    std::tm local{};
    localtime_r(&then, &local);
    std::array<char, 8> text{};
    std::strftime(text.data(), text.size(), "%H:%M", &local);
    return text.data();
}

bool MemoryAfterACollection() {
    const support::ScratchDirectory scratch;
    Prepare(scratch.path);
    core::Database dbconn(scratch.path / "Kolmar.mdb");
    const support::ChildProcess stations({FIELDSIM_PROGRAM, "--directory", scratch.path.string()});
    // A start close to the end of a minute meets the next one.
    while (std::time(nullptr) % 60 > 50) {
        sleep(1);
    }
    dbconn.Execute("update configdata_master set contracthour = ? where locationID in (1, 4)", {NextMinute()});
    const support::ChildProcess program({NORWEN_PROGRAM, "--directory", scratch.path.string(), "--unattended"});
    for (int seconds = 0; seconds < 150; ++seconds) {
        sleep(1);
        if (dbconn.Query("select * from configdata_master where sampledtoday").size() == 2) {
            return bench::Report("memory after a collection", ResidentMegabytes(program.Pid()), "MB", Goal::AtMost, 90);
        }
    }
    std::fputs("the stations were not collected\n", stderr);
    return false;
}

// One attempt at a station, on a clock and its lines; its run state says whether it was good.
template <class Turn>
bool Collect(support::ScratchDesk& desk, core::Clock& clock, protocols::FieldLines& lines, std::int64_t location,
             const Turn& turn) {
    protocols::BsapCounters counters;
    core::Logs logs(desk.dbconn, desk.shared, clock);
    reading::Workplace place{desk.dbconn, desk.shared, clock, desk.feedback, logs, lines, counters};
    reading::RunState state;
    clock.Start([&] { collection::collectiong_Data(place, location, state); });
    while (clock.Conversations() > 0) {
        turn();
    }
    return !state.runfailed;
}

// The waits that a collection must make are what it takes on the virtual clock, where nothing else takes time.
bool WallTimeOverWaits() {
    support::ScratchDesk desk;
    for (const auto& station : demo::OneOfEach("00:00")) {
        demo::AddStation(desk.dbconn, station);
    }
    desk.dbconn.Execute("update comports set device = 'field/' || portname");
    std::filesystem::create_directory(desk.shared.directory / "field");

    fieldsim::SimPorts simulated(desk.clock);
    fieldsim::Field field(desk.dbconn, {});
    field.AttachTo(simulated);
    protocols::FieldLines simulatedLines(desk.clock,
                                         [&](const core::Station& station) { return simulated.Line(station); });

    support::ChildProcess stations({FIELDSIM_PROGRAM, "--directory", desk.shared.directory.string()});
    if (!stations.Printed("ready")) {
        return false;
    }
    desk::EventLoopClock clock;
    protocols::FieldLines lines(clock, [&](const core::Station&) {
        return std::make_unique<desk::SerialLine>(
            [&](int port) { return core::DevicePath(desk.dbconn, port, desk.shared.directory).string(); });
    });
    double required = 0;
    double taken = 0;
    for (const std::int64_t location : {1, 2, 4}) {  // on direct lines, paced by delaytime alone
        const auto before = desk.clock.Elapsed();
        bool good = Collect(desk, desk.clock, simulatedLines, location, [&] { desk.clock.Finish(); });
        required += static_cast<double>(desk.clock.Elapsed() - before) / 1000;
        const auto start = Stopwatch::now();
        good &= Collect(desk, clock, lines, location,
                        [] { QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); });
        taken += Seconds(start);
        if (!good) {
            std::fprintf(stderr, "station %d was not collected\n%s", static_cast<int>(location), desk.RtuErr().c_str());
            return false;
        }
    }
    return bench::Report("collection, wall time over waits", taken / required, "", Goal::AtMost, 1.05);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    bool met = StartToTheLogin();
    met &= WallTimeOverWaits();
    met &= MemoryAfterACollection();
    return met ? 0 : 1;
}
