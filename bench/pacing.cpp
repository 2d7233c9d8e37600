// How close prompt pacing comes to the time that the line itself takes, and stated pacing to its waits.

#include <fcntl.h>
#include <poll.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <algorithm>
#include <chrono>
#include <functional>
#include <iterator>

#include "bench/Figure.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/SerialLine.h"
#include "desk/platform/TcpLine.h"
#include "protocols/modbus/ModbusTransact.h"
#include "support/LibmodbusSlave.h"
#include "support/LibmodbusTcpSlave.h"
#include "support/ScratchDesk.h"

namespace {

using bench::Goal;
using Time = std::chrono::steady_clock;
using Context = std::unique_ptr<modbus_t, void (*)(modbus_t*)>;

constexpr int registers = 124;
constexpr int bitsPerByte = 10;

double Milliseconds(Time::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

// Milliseconds of one of so many reads.
double OneOf(int reads, const std::function<bool()>& read) {
    bool good = read();  // the first one also opens what is to be open
    const auto start = Time::now();
    for (int i = 0; i < reads; ++i) {
        good &= read();
    }
    const double all = Milliseconds(Time::now() - start);
    if (!good) {
        std::puts("  a read failed");
    }
    return good ? all / reads : 1e9;
}

// A pseudo-terminal in front of another device that takes the time of the bits, in both directions at once.
class SlowTerminal {
  public:
    SlowTerminal(const std::string& device, int baud)
        : byteTime_(std::chrono::nanoseconds(1000000000LL * bitsPerByte / baud)),
          device_(open(device.c_str(), O_RDWR)) {
        std::array<char, 128> name{};
        termios raw{};
        cfmakeraw(&raw);
        if (device_ < 0 || openpty(&far_, &near_, name.data(), &raw, nullptr) != 0) {
            throw std::runtime_error("no slow pseudo-terminal");
        }
        path_ = name.data();
        there_ = std::thread([this] { Pump(far_, device_); });
        back_ = std::thread([this] { Pump(device_, far_); });
    }
    ~SlowTerminal() {
        stopped_ = true;
        there_.join();
        back_.join();
        close(far_);
        close(near_);
        close(device_);
    }
    SlowTerminal(const SlowTerminal&) = delete;
    SlowTerminal& operator=(const SlowTerminal&) = delete;

    const std::string& Path() const { return path_; }

  private:
    // Each byte is there when its last bit would be.
    void Pump(int from, int to) {
        auto due = Time::now();
        while (!stopped_) {
            pollfd readable{from, POLLIN, 0};
            std::array<char, 512> bytes{};
            const ssize_t count = poll(&readable, 1, 20) > 0 ? read(from, bytes.data(), bytes.size()) : 0;
            due = std::max(due, Time::now());
            for (ssize_t i = 0; i < count; ++i) {
                due += byteTime_;
                std::this_thread::sleep_until(due);
                if (write(to, &bytes[static_cast<std::size_t>(i)], 1) != 1) {
                    return;
                }
            }
        }
    }

    std::chrono::nanoseconds byteTime_;
    int device_ = -1;
    int far_ = -1;
    int near_ = -1;
    std::string path_;
    std::atomic<bool> stopped_ = false;
    std::thread there_;
    std::thread back_;
};

// A conversation with a Modbus station over a real line.
class Talk {
  public:
    using MakeLine = std::function<std::unique_ptr<protocols::Line>(core::Clock& clock)>;

    Talk(const MakeLine& make, core::Pacing pacing, core::Framing framing, const std::string& ip)
        : line_(make(clock_)), field_(*line_, clock_), logs_(desk_.dbconn, desk_.shared, clock_) {
        core::Station station;
        station.pacing = pacing;
        station.framing = framing;
        station.ip = ip;
        station.commtimeout = pacing == core::Pacing::Prompt ? 5000 : 100;
        talk_ = std::make_unique<protocols::Conversation>(protocols::Conversation{
            field_.TakeOver(""), clock_, desk_.feedback, logs_, counters_, station, "", 1, {}, {}});
        talk_->modbus.floatread = true;
    }

    void Settings(const std::string& settings) { talk_->station.settings = settings; }
    int CommTimeout() const { return talk_->CommTimeout(); }
    // Milliseconds of one of so many reads, in a conversation.
    double OneRead(int reads) {
        double one = 0;
        clock_.Start([&] {
            talk_->line->Settings(talk_->station.settings);
            talk_->line->PortOpen(true);
            one = OneOf(reads, [&] {
                return ModbusTransact(*talk_, 0, registers, 3).kind == protocols::ModbusReply::Kind::Values;
            });
        });
        while (clock_.Conversations() > 0) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return one;
    }

  private:
    desk::EventLoopClock clock_;
    support::ScratchDesk desk_;
    std::unique_ptr<protocols::Line> line_;
    protocols::FieldLine field_;
    core::Logs logs_;
    protocols::BsapCounters counters_;
    std::unique_ptr<protocols::Conversation> talk_;
};

Talk::MakeLine OnPort(const std::string& device) {
    return [device](core::Clock&) { return std::make_unique<desk::SerialLine>([device](int) { return device; }); };
}

double OneRead(const std::string& device, int reads, const std::string& settings, const std::string& ip) {
    Talk talk(OnPort(device), core::Pacing::Prompt, core::Framing::Rtu, ip);
    talk.Settings(settings);
    return talk.OneRead(reads);
}

double OneReadOfLibmodbus(Context context, int reads) {
    std::array<std::uint16_t, registers> values{};
    modbus_set_slave(context.get(), 1);
    modbus_connect(context.get());
    const double one =
        OneOf(reads, [&] { return modbus_read_registers(context.get(), 0, registers, values.data()) == registers; });
    modbus_close(context.get());
    return one;
}

// A bare pseudo-terminal has no baud: neither of the two waits for a silence.
bool AgainstLibmodbus() {
    support::LibmodbusSlave slave;
    const double theirs =
        OneReadOfLibmodbus(Context(modbus_new_rtu(slave.Path().c_str(), 115200, 'N', 8, 1), modbus_free), 500);
    const double ours = OneRead(slave.Path(), 500, "115200,N,8,1", "no baud");
    std::printf("  %.3f ms, libmodbus %.3f ms\n", ours, theirs);
    return bench::Report("124 registers over libmodbus", ours / theirs, "", Goal::AtMost, 1.2);
}

// The bits of request and reply, and the silence behind the reply.
bool AgainstTheBits(int baud, int reads) {
    constexpr double bytes = 8 + 5 + 2 * registers;
    constexpr double silence = 3.5 * 11;
    support::LibmodbusSlave slave;
    const SlowTerminal terminal(slave.Path(), baud);
    const double ours = OneRead(terminal.Path(), reads, std::to_string(baud) + ",N,8,1", "");
    return bench::Report("124 registers, " + std::to_string(baud) + " baud, over bits",
                         ours / ((bytes * bitsPerByte + silence) / baud * 1000), "", Goal::AtMost, 1.1);
}

bool OverTcp() {
    constexpr int blocks = 100;
    support::LibmodbusTcpSlave slave;
    const double theirs = OneReadOfLibmodbus(Context(modbus_new_tcp("127.0.0.1", slave.Port()), modbus_free), blocks);
    const core::Address address{"127.0.0.1", slave.Port()};
    Talk talk([&](core::Clock& clock) { return std::make_unique<desk::TcpLine>(address, clock); }, core::Pacing::Prompt,
              core::Framing::Tcp, core::AddressText(address));
    const double ours = talk.OneRead(blocks);
    std::printf("  %.3f ms a block, libmodbus %.3f ms\n", ours, theirs);
    return bench::Report("100 blocks by TCP over libmodbus", ours / theirs, "", Goal::AtMost, 1.5);
}

// Five waits a read.
bool StatedOverItsWaits() {
    support::LibmodbusSlave slave;
    Talk talk(OnPort(slave.Path()), core::Pacing::Stated, core::Framing::Rtu, "");
    talk.Settings("9600,N,8,1");
    const double ours = talk.OneRead(10);
    return bench::Report("stated pacing over its waits", ours / (5 * talk.CommTimeout()), "", Goal::AtMost, 1.02);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const bool good[] = {AgainstLibmodbus(), AgainstTheBits(9600, 5), AgainstTheBits(1200, 2), OverTcp(),
                         StatedOverItsWaits()};
    return std::all_of(std::begin(good), std::end(good), [](bool met) { return met; }) ? 0 : 1;
}
