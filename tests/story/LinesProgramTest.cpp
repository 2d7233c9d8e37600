// The program itself, at eight stations that are due in the same minute: two behind serial ports, one behind a terminal
// server, one that speaks Modbus TCP, and four on the network that are not what they should be. None waits for another.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <thread>

#include "core/Database.h"
#include "support/ChildProcess.h"
#include "support/LibmodbusSlave.h"
#include "support/LibmodbusTcpSlave.h"
#include "support/ScratchDesk.h"

using testing::HasSubstr;

namespace {

// The float at registers 2n - 1 and 2n of a station.
float Value(int station, int n) {
    return static_cast<float>(n) + static_cast<float>(station) * 0.125F;
}

// A port of this machine on which a listener may stand or nobody.
class Listener {
  public:
    explicit Listener(bool listens) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (bind(socket_, reinterpret_cast<sockaddr*>(&address), length) != 0 || (listens && listen(socket_, 4) != 0) ||
            getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            throw std::runtime_error("no port to listen on");
        }
        port_ = ntohs(address.sin_port);
    }
    ~Listener() {
        shutdown(socket_, SHUT_RDWR);
        close(socket_);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    int Port() const { return port_; }
    int Socket() const { return socket_; }

  private:
    int socket_;
    int port_ = 0;
};

// Takes each call and its first request, sends the head of a reply and hangs up.
class ClosesInTheMiddle {
  public:
    ClosesInTheMiddle() : thread_([this] { Serve(); }) {}
    ~ClosesInTheMiddle() {
        shutdown(listener_.Socket(), SHUT_RDWR);
        thread_.join();
    }
    int Port() const { return listener_.Port(); }

  private:
    void Serve() const {
        for (int call = accept(listener_.Socket(), nullptr, nullptr); call >= 0;
             call = accept(listener_.Socket(), nullptr, nullptr)) {
            char request[64];
            const char head[] = {1, 3, 4};
            static_cast<void>(recv(call, request, sizeof request, 0) > 0 &&
                              send(call, head, sizeof head, MSG_NOSIGNAL));
            close(call);
        }
    }

    Listener listener_{true};
    std::thread thread_;
};

std::string ClockIn(int seconds) {
    const std::time_t then = std::time(nullptr) + seconds;
    std::tm local{};
    localtime_r(&then, &local);
    char text[8];
    std::strftime(text, sizeof text, "%H:%M", &local);
    return text;
}

struct LinesProgram : testing::Test {
    support::ScratchDirectory scratch;
    std::unique_ptr<core::Database> dbconn;

    LinesProgram() {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        std::filesystem::create_directory(scratch.path / "scheduler");
        std::filesystem::copy_file(NORWEN_DATABASE, scratch.path / "Kolmar.mdb");
        dbconn = std::make_unique<core::Database>(scratch.path / "Kolmar.mdb");
    }
    // A station of two minutes, the next one and the one after it: the start of the program may take a while.
    void Add(int station, const std::string& line, const std::string& mode) {
        const bool isIp = line.find(':') != std::string::npos;
        for (const int later : {0, 100}) {
            const int location = station + later;
            dbconn->Execute(
                "insert into configdata_master(locationID,consumer,modelno,comtype,ip,comport,baudrate,protocol,mode,"
                "slaveaddress,delaytime,duration,day,contracthour,MB_CONFIG,groupno) "
                "values(?,?,'TeleFlow',?,?,?,'9600,N,8,1','Modbus',?,1,100,'Daily','0',?,0,1)",
                {location, "Station " + std::to_string(location), isIp ? "IP" : "Direct Comport", isIp ? line : "",
                 isIp ? "" : line, mode, ClockIn(later == 0 ? 60 : 120)});
            dbconn->Execute(
                "insert into configdata_detail values(?,'Flowing "
                "Pressure','87','Float',1,-1,1,'bar','TOTRND',0,0,1,6,1,"
                "null,null)",
                {location});
        }
    }
};

TEST_F(LinesProgram, CollectsEachLineInItsMinuteAndNoneWaitsForAnother) {
    support::LibmodbusSlave first({.registers = 600, .coils = 100});
    support::LibmodbusSlave second({.registers = 600, .coils = 100});
    support::LibmodbusSlave behindServer({.registers = 600, .coils = 100});
    support::LibmodbusTcpSlave tcp(600, 100);
    for (int n = 1; n <= 280; ++n) {
        first.SetFloat(2 * (n - 1), Value(1, n));
        second.SetFloat(2 * (n - 1), Value(2, n));
        behindServer.SetFloat(2 * (n - 1), Value(3, n));
        const auto bits = std::bit_cast<std::uint32_t>(Value(4, n));
        tcp.Registers()[2 * (n - 1)] = static_cast<std::uint16_t>(bits >> 16U);
        tcp.Registers()[2 * n - 1] = static_cast<std::uint16_t>(bits);
    }
    dbconn->Execute("update comports set device=? where portname='COM1'", {first.Path()});
    dbconn->Execute("update comports set device=? where portname='COM2'", {second.Path()});
    int serverPort = 0;
    {
        const Listener free(false);
        serverPort = free.Port();
    }
    support::ChildProcess server({"/usr/bin/socat",
                                  "TCP-LISTEN:" + std::to_string(serverPort) + ",bind=127.0.0.1,reuseaddr,fork",
                                  "FILE:" + behindServer.Path() + ",raw,echo=0"});
    const Listener nobody(false);
    const Listener silent(true);
    const ClosesInTheMiddle closes;
    const auto local = [](int port) { return "127.0.0.1:" + std::to_string(port); };
    Add(1, "COM1", "RTU");
    Add(2, "COM2", "RTU");
    Add(3, local(serverPort), "RTU");
    Add(4, local(tcp.Port()), "TCP");
    Add(5, local(nobody.Port()), "TCP");
    Add(6, local(silent.Port()), "TCP");
    Add(7, local(closes.Port()), "RTU");
    Add(8, "no-such-station.invalid:502", "TCP");

    support::ChildProcess program({NORWEN_PROGRAM, "--directory", scratch.path.string(), "--unattended"});
    for (int seconds = 0; seconds < 200 && dbconn->Query("select * from outcome").size() < 8; ++seconds) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    const auto outcomes = dbconn->Query("select * from outcome order by locationID % 100");
    ASSERT_EQ(outcomes.size() % 8, 0U) << program.Said() << support::FileText(scratch.path / "RTU_Err.log");
    ASSERT_GE(outcomes.size(), 8U);
    const struct {
        const char* result;
        const char* reason;
    } expected[] = {{"collected", ""},
                    {"collected", ""},
                    {"collected", ""},
                    {"collected", ""},
                    {"not reached", "connection refused"},
                    {"no answer", ""},
                    {"", "closed by the station"},
                    {"not reached", "name not found"}};
    for (std::size_t i = 0; i < 8; ++i) {
        const auto& outcome = outcomes[i];
        EXPECT_THAT(outcome.Text("result"), HasSubstr(expected[i].result)) << i + 1;
        EXPECT_THAT(outcome.Text("reason"), HasSubstr(expected[i].reason)) << i + 1;
        const auto begun = core::MomentOf(outcome.Text("begun"));
        const auto others = core::MomentOf(outcomes[0].Text("begun"));
        EXPECT_LE(std::abs(core::ToSeconds(*begun) - core::ToSeconds(*others)), 2) << "it waited for another";
        if (i < 4) {
            EXPECT_EQ(
                dbconn
                    ->First("select lastvalue from configdata_detail where locationID=?", {outcome.Long("locationID")})
                    ->Number("lastvalue"),
                Value(static_cast<int>(i) + 1, 44));
        }
    }
    program.Signal(SIGTERM);
    EXPECT_EQ(program.Wait(), 0);
    server.Signal(SIGTERM);
}

}  // namespace
