// The program as a user meets it: its start, its memory, and a collection through a real serial device.

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <fstream>

#include "bench/Figure.h"
#include "core/Ports.h"
#include "core/Text.h"
#include "desk/core/EventLoopClock.h"
#include "desk/core/SerialLine.h"
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

double ResidentMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) {
            return core::Val(line.substr(6)) / 1024;
        }
    }
    return 0;
}

// One attempt at a station on a clock and a line; its run state says whether it was good.
bool Collect(support::ScratchDesk& desk, core::Clock& clock, protocols::Line& line, std::int64_t location) {
    protocols::FieldLine fieldLine(line, clock);
    protocols::BsapCounters counters;
    core::Logs logs(desk.dbconn, desk.shared, clock);
    collection::Workplace place{desk.dbconn, desk.shared, clock, desk.feedback, logs, fieldLine, counters};
    collection::RunState state;
    collection::collectiong_Data(place, location, state);
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

    fieldsim::SimLine simulated(desk.clock);
    fieldsim::Field field(desk.dbconn, {});
    field.AttachTo(simulated);

    support::ChildProcess stations({FIELDSIM_PROGRAM, "--directory", desk.shared.directory.string()});
    if (!stations.Printed("ready")) {
        return false;
    }
    desk::EventLoopClock clock;
    desk::SerialLine line(
        [&](int port) { return core::DevicePath(desk.dbconn, port, desk.shared.directory).string(); });
    double required = 0;
    double taken = 0;
    for (const std::int64_t location : {1, 2, 4}) {  // on direct lines, paced by delaytime alone
        const auto before = desk.clock.Elapsed();
        bool good = Collect(desk, desk.clock, simulated, location);
        required += static_cast<double>(desk.clock.Elapsed() - before) / 1000;
        const auto start = Stopwatch::now();
        good &= Collect(desk, clock, line, location);
        taken += Seconds(start);
        if (!good) {
            std::fprintf(stderr, "station %d was not collected\n%s", static_cast<int>(location), desk.RtuErr().c_str());
            return false;
        }
    }
    bool met = bench::Report("collection, wall time over waits", taken / required, "", Goal::AtMost, 1.05);
    met &= bench::Report("memory after a collection", ResidentMegabytes(), "MB", Goal::AtMost, 90);
    return met;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const bool started = StartToTheLogin();
    return WallTimeOverWaits() && started ? 0 : 1;
}
