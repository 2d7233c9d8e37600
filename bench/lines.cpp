// Lines side by side: what one costs the others, on the machine's clock, in front of stations on the network.

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "bench/Figure.h"
#include "core/Address.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/TcpLine.h"
#include "reports/ReportMail.h"
#include "support/CollectionDesk.h"

namespace {

using bench::Goal;
using Time = std::chrono::steady_clock;

double Seconds(Time::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

// Stations that speak Modbus TCP, each behind an address of its own and in its own time: every value is 1.
class Stations {
  public:
    Stations(int count, std::chrono::milliseconds answerTime) : answerTime_(answerTime) {
        for (int i = 0; i < count; ++i) {
            const int listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
            sockaddr_in address{};
            address.sin_family = AF_INET;
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            socklen_t length = sizeof address;
            bind(listening, reinterpret_cast<sockaddr*>(&address), length);
            listen(listening, 8);
            getsockname(listening, reinterpret_cast<sockaddr*>(&address), &length);
            addresses_.push_back("127.0.0.1:" + std::to_string(ntohs(address.sin_port)));
            listeners_.push_back(listening);
        }
        thread_ = std::thread([this] { Serve(); });
    }
    ~Stations() {
        stopped_ = true;
        thread_.join();
    }
    Stations(const Stations&) = delete;
    Stations& operator=(const Stations&) = delete;

    const std::vector<std::string>& Addresses() const { return addresses_; }

  private:
    struct Answer {
        Time::time_point at;
        int call;
        std::string bytes;
    };

    // The answer to a whole request: its head with the new length, and the values.
    static std::string AnswerTo(const std::string& request) {
        const int function = request[7];
        const int quantity = static_cast<unsigned char>(request[10]) * 256 + static_cast<unsigned char>(request[11]);
        std::string values;
        if (function == 1) {
            values.assign(static_cast<std::size_t>(quantity + 7) / 8, '\xFF');
        }
        for (int n = 0; function != 1 && n < quantity / 2; ++n) {
            values += std::string("\x3F\x80\0\0", 4);
        }
        std::string answer = request.substr(0, 4) + '\0' + static_cast<char>(3 + values.size()) + request.substr(6, 2);
        return answer + static_cast<char>(values.size()) + values;
    }

    void Serve() {
        std::vector<int> calls;
        std::deque<Answer> answers;
        while (!stopped_) {
            std::vector<pollfd> waits;
            for (const int descriptor : listeners_) {
                waits.push_back({descriptor, POLLIN, 0});
            }
            for (const int descriptor : calls) {
                waits.push_back({descriptor, POLLIN, 0});
            }
            poll(waits.data(), waits.size(), 1);
            for (std::size_t i = 0; i < waits.size(); ++i) {
                if (waits[i].revents == 0) {
                    continue;
                }
                if (i < listeners_.size()) {
                    calls.push_back(accept(waits[i].fd, nullptr, nullptr));
                    continue;
                }
                std::string request(12, '\0');
                if (recv(waits[i].fd, request.data(), request.size(), 0) == 12) {
                    answers.push_back({Time::now() + answerTime_, waits[i].fd, AnswerTo(request)});
                } else {
                    close(waits[i].fd);
                    std::erase(calls, waits[i].fd);
                }
            }
            for (; !answers.empty() && answers.front().at <= Time::now(); answers.pop_front()) {
                static_cast<void>(send(answers.front().call, answers.front().bytes.data(), answers.front().bytes.size(),
                                       MSG_NOSIGNAL));
            }
        }
        for (const int descriptor : calls) {
            close(descriptor);
        }
        for (const int descriptor : listeners_) {
            close(descriptor);
        }
    }

    std::chrono::milliseconds answerTime_;
    std::vector<std::string> addresses_;
    std::vector<int> listeners_;
    std::atomic<bool> stopped_ = false;
    std::thread thread_;
};

struct Collected {
    double seconds = 0;
    double longestTurn = 0;  // ms in which the event loop did not come round
    bool whole = false;
};

// Collects so many stations at each of the first addresses, all asked for at once.
Collected Collect(const Stations& field, int lines, int stationsOfALine) {
    support::ScratchDesk scratch;
    int count = 0;
    for (int line = 0; line < lines; ++line) {
        for (int n = 1; n <= stationsOfALine; ++n) {
            const auto location = demo::AddStation(
                scratch.dbconn, {"Station " + std::to_string(++count), "TeleFlow", "Modbus", "RTU", 1, n});
            scratch.dbconn.Execute(
                "update configdata_master set comtype='IP', ip=?, mode='TCP', pacing='prompt', delaytime=500, "
                "duration='Weekly' where locationID=?",
                {field.Addresses()[static_cast<std::size_t>(line)], location});
        }
    }
    desk::EventLoopClock clock;
    core::Logs logs(scratch.dbconn, scratch.shared, clock);
    protocols::FieldLines fieldLines(clock, [&](const core::Station& station) {
        return std::make_unique<desk::TcpLine>(*core::AddressOf(station), clock);
    });
    protocols::BsapCounters counters;
    reading::Workplace place{scratch.dbconn, scratch.shared, clock, scratch.feedback, logs, fieldLines, counters};
    support::RecordingMail mail;
    reports::ReportMail reportMail(place, mail);
    collection::Scheduler scheduler(place, reportMail);
    for (int location = 1; location <= count; ++location) {
        scheduler.CollectNow(location);
    }

    Collected collected;
    QTimer watch;
    auto last = Time::now();
    QObject::connect(&watch, &QTimer::timeout, [&] {
        const auto now = Time::now();
        collected.longestTurn = std::max(collected.longestTurn, 1000 * Seconds(now - last));
        last = now;
    });
    watch.start(0);
    const auto start = Time::now();
    scheduler.Serve();
    while (scheduler.Busy()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    collected.seconds = Seconds(Time::now() - start);
    const auto whole = scratch.dbconn.First("select count(*) from outcome where result='collected'").value();
    collected.whole = whole[std::size_t{0}].Long() == count;
    if (!collected.whole) {
        std::fprintf(stderr, "not all of %d stations were collected\n%s", count, scratch.RtuErr().c_str());
    }
    return collected;
}

bool FortyLines() {
    const Stations field(40, std::chrono::milliseconds(50));
    const Collected alone = Collect(field, 1, 1);
    const Collected all = Collect(field, 40, 1);
    bool met = alone.whole && all.whole;
    met &= bench::Report("forty lines over one", all.seconds / alone.seconds, "", Goal::AtMost, 1.3);
    met &= bench::Report("longest turn of the event loop", all.longestTurn, "ms", Goal::AtMost, 30);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    met &= bench::Report("memory after forty at once", static_cast<double>(usage.ru_maxrss) / 1024, "MiB", Goal::AtMost,
                         110);
    return met;
}

bool FourLinesOfTen() {
    const Stations field(4, std::chrono::milliseconds(50));
    const Collected one = Collect(field, 1, 10);
    const Collected four = Collect(field, 4, 10);
    return bench::Report("four lines of ten over one", four.seconds / one.seconds, "", Goal::AtMost, 1.1) &&
           one.whole && four.whole;
}

bool AMillionWaits() {
    fieldsim::VirtualClock clock({2026, 1, 1, 0, 0, 0});
    for (int fiber = 0; fiber < 40; ++fiber) {
        clock.Start([&clock] {
            for (int wait = 0; wait < 25000; ++wait) {
                clock.WaitMs(1 + wait % 7);
            }
        });
    }
    const auto start = Time::now();
    clock.Finish();
    return bench::Report("a million waits of forty fibers", Seconds(Time::now() - start), "s", Goal::AtMost, 0.3);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    bool met = AMillionWaits();
    met &= FourLinesOfTen();
    met &= FortyLines();
    return met ? 0 : 1;
}
