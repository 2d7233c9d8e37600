#include "fieldsim/PtyPorts.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace fieldsim {

namespace {

Moment RealNow() {
    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
    localtime_r(&seconds, &local);
    const auto count = std::chrono::steady_clock::now().time_since_epoch();
    return {{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec},
            static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(count).count())};
}

std::string Failure(const std::string& what) {
    return what + ": " + std::strerror(errno);
}

}  // namespace

struct PtyPorts::Port {
    Device* device = nullptr;
    std::filesystem::path link;
    std::string terminal;
    int master = -1;
    int slave = -1;  // kept open, so that the terminal lives on while no master has it open
    int watched = -1;
    int openings = 0;  // by masters, of those that are still open
    std::multimap<std::uint64_t, std::string> due;

    ~Port() {
        std::error_code ignored;
        if (!link.empty() && std::filesystem::read_symlink(link, ignored) == terminal) {
            std::filesystem::remove(link, ignored);
        }
        for (const int file : {master, slave}) {
            if (file >= 0) {
                close(file);
            }
        }
    }

    void Note(std::uint32_t event) {
        if ((event & IN_OPEN) != 0) {
            ++openings;
        } else if ((event & IN_CLOSE) != 0 && --openings == 0) {
            tcflush(slave, TCIFLUSH);
            device->LineClosed();
        }
    }

    // A terminal that passes every byte as it is. Tells whether it is there.
    bool OpenTerminal() {
        master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) {
            return false;
        }
        std::array<char, 128> name{};
        if (ptsname_r(master, name.data(), name.size()) != 0) {
            return false;
        }
        terminal = name.data();
        slave = open(terminal.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings{};
        if (slave < 0 || tcgetattr(slave, &settings) != 0) {
            return false;
        }
        cfmakeraw(&settings);
        return tcsetattr(slave, TCSANOW, &settings) == 0;
    }
};

PtyPorts::PtyPorts() : watch_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

PtyPorts::~PtyPorts() {
    if (watch_ >= 0) {
        close(watch_);
    }
}

std::string PtyPorts::Open(const std::filesystem::path& link, Device& device) {
    auto port = std::make_unique<Port>();
    port->device = &device;
    if (!port->OpenTerminal()) {
        return Failure("no pseudo-terminal");
    }
    std::error_code error;
    std::filesystem::create_directories(link.parent_path(), error);
    const auto there = std::filesystem::symlink_status(link, error);
    if (std::filesystem::exists(there) && !std::filesystem::is_symlink(there)) {
        return link.string() + " is there and is no link";
    }
    std::filesystem::remove(link, error);
    std::filesystem::create_symlink(port->terminal, link, error);
    if (error) {
        return link.string() + ": " + error.message();
    }
    port->link = link;
    port->watched = inotify_add_watch(watch_, port->terminal.c_str(), IN_OPEN | IN_CLOSE);
    ports_.push_back(std::move(port));
    return {};
}

void PtyPorts::Turn(int atMostMs) {
    std::vector<pollfd> files;
    for (const auto& port : ports_) {
        files.push_back({port->master, POLLIN, 0});
    }
    files.push_back({watch_, POLLIN, 0});
    if (poll(files.data(), files.size(), UntilNextDue(atMostMs)) > 0) {
        // First who opened and closed: what has come by now may be from the next session.
        if ((files.back().revents & POLLIN) != 0) {
            NoteOpenings();
        }
        for (std::size_t i = 0; i < ports_.size(); ++i) {
            if ((files[i].revents & POLLIN) != 0) {
                Receive(*ports_[i]);
            }
        }
    }
    for (const auto& port : ports_) {
        SendDue(*port);
    }
}

void PtyPorts::Receive(Port& port) {
    std::array<char, 1024> bytes{};
    const ssize_t count = read(port.master, bytes.data(), bytes.size());
    if (count <= 0) {
        return;
    }
    const Moment now = RealNow();
    for (Answer& answer : port.device->Receive({bytes.data(), static_cast<std::size_t>(count)}, now)) {
        port.due.emplace(now.milliseconds + answer.delayMs, std::move(answer.bytes));
    }
}

// Bytes that find the port closed or its buffer full are lost, as on a line that nobody reads.
void PtyPorts::SendDue(Port& port) {
    const auto later = port.due.upper_bound(RealNow().milliseconds);
    const bool heard = port.openings > 0 || port.watched < 0;
    for (auto answer = port.due.begin(); heard && answer != later; ++answer) {
        static_cast<void>(!write(port.master, answer->second.data(), answer->second.size()));
    }
    port.due.erase(port.due.begin(), later);
}

void PtyPorts::NoteOpenings() {
    alignas(inotify_event) std::array<char, 4096> events{};
    const ssize_t size = read(watch_, events.data(), events.size());
    for (ssize_t at = 0; at + static_cast<ssize_t>(sizeof(inotify_event)) <= size;) {
        inotify_event event{};
        std::memcpy(&event, events.data() + at, sizeof event);
        at += static_cast<ssize_t>(sizeof event + event.len);
        for (const auto& port : ports_) {
            if (port->watched == event.wd) {
                port->Note(event.mask);
            }
        }
    }
}

int PtyPorts::UntilNextDue(int atMostMs) const {
    const std::uint64_t now = RealNow().milliseconds;
    auto wait = static_cast<std::uint64_t>(std::max(0, atMostMs));
    for (const auto& port : ports_) {
        if (!port->due.empty()) {
            const std::uint64_t due = port->due.begin()->first;
            wait = std::min(wait, due > now ? due - now : 0);
        }
    }
    return static_cast<int>(wait);
}

}  // namespace fieldsim
