#include <fcntl.h>
#include <gmock/gmock.h>
#include <modbus.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <ctime>
#include <thread>

#include "core/Database.h"
#include "support/ChildProcess.h"
#include "support/ScratchDesk.h"

using testing::HasSubstr;

namespace {

constexpr int slaveAddress = 3;

// A null-modem cable between two pseudo-terminals: what is written to one device can be read from the other.
class Cable {
  public:
    Cable() {
        for (std::size_t i = 0; i < 2; ++i) {
            std::array<char, 128> name{};
            termios raw{};
            cfmakeraw(&raw);
            EXPECT_EQ(openpty(&far_[i], &near_[i], name.data(), &raw, nullptr), 0);
            device[i] = name.data();
        }
        thread_ = std::thread([this] { Carry(); });
    }
    ~Cable() {
        stopped_ = true;
        thread_.join();
        for (const int descriptor : {far_[0], far_[1], near_[0], near_[1]}) {
            close(descriptor);
        }
    }

    std::array<std::string, 2> device;

  private:
    void Carry() {
        while (!stopped_) {
            std::array<pollfd, 2> ready{{{far_[0], POLLIN, 0}, {far_[1], POLLIN, 0}}};
            poll(ready.data(), ready.size(), 100);
            for (std::size_t i = 0; i < 2; ++i) {
                std::array<char, 512> bytes{};
                const ssize_t count = (ready[i].revents & POLLIN) != 0 ? read(far_[i], bytes.data(), bytes.size()) : 0;
                if (count > 0) {
                    EXPECT_EQ(write(far_[1 - i], bytes.data(), static_cast<std::size_t>(count)), count);
                }
            }
        }
    }

    std::array<int, 2> far_{};
    std::array<int, 2> near_{};
    std::atomic<bool> stopped_ = false;
    std::thread thread_;
};

// A Modbus RTU slave of somebody else's making at the other end of a cable.
class ForeignSlave {
  public:
    ForeignSlave() {
        context_ = modbus_new_rtu(cable_.device[1].c_str(), 9600, 'N', 8, 1);
        modbus_set_slave(context_, slaveAddress);
        EXPECT_EQ(modbus_connect(context_), 0);
        map_ = modbus_mapping_new(100, 0, 600, 0);
        for (int n = 1; n <= 280; ++n) {
            const auto word = std::bit_cast<std::uint32_t>(static_cast<float>(Value(n)));
            map_->tab_registers[2 * (n - 1)] = static_cast<std::uint16_t>(word >> 16);  // high word first
            map_->tab_registers[2 * (n - 1) + 1] = static_cast<std::uint16_t>(word);
        }
        map_->tab_bits[4] = 1;
        thread_ = std::thread([this] { Serve(); });
    }
    ~ForeignSlave() {
        stopped_ = true;
        thread_.join();
        modbus_mapping_free(map_);
        modbus_close(context_);
        modbus_free(context_);
    }
    static double Value(int n) { return n * 1.5; }
    std::string Device() const { return cable_.device[0]; }

  private:
    void Serve() {
        modbus_set_indication_timeout(context_, 0, 200000);
        std::array<std::uint8_t, MODBUS_RTU_MAX_ADU_LENGTH> query{};
        while (!stopped_) {
            const int length = modbus_receive(context_, query.data());
            if (length > 0) {
                modbus_reply(context_, query.data(), length, map_);
            }
        }
    }

    Cable cable_;
    modbus_t* context_ = nullptr;
    modbus_mapping_t* map_ = nullptr;
    std::atomic<bool> stopped_ = false;
    std::thread thread_;
};

// The hour and minute that it will be in so many seconds.
std::string ClockIn(int seconds) {
    const std::time_t then = std::time(nullptr) + seconds;
    std::tm local{};
    localtime_r(&then, &local);
    std::array<char, 8> text{};
    std::strftime(text.data(), text.size(), "%H:%M", &local);
    return text.data();
}

struct ProgramTest : testing::Test {
    support::ScratchDirectory scratch;

    ProgramTest() {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        std::filesystem::create_directory(scratch.path / "scheduler");
    }
    void Deliver() { std::filesystem::copy_file(NORWEN_DATABASE, scratch.path / "Kolmar.mdb"); }
    std::vector<std::string> Unattended() const {
        return {NORWEN_PROGRAM, "--directory", scratch.path.string(), "--unattended"};
    }
};

TEST_F(ProgramTest, CollectsASlaveOfSomebodyElseFromRowsPutInByHand) {
    Deliver();
    const ForeignSlave slave;
    core::Database dbconn(scratch.path / "Kolmar.mdb");
    dbconn.Execute("update comports set device=? where portname='COM4'", {slave.Device()});
    // The first tick comes a minute after the start, which may take some seconds on a busy machine.
    for (const int seconds : {60, 66}) {
        dbconn.Execute(
            "insert into configdata_master(locationID,consumer,modelno,comtype,comport,baudrate,protocol,mode,"
            "slaveaddress,delaytime,duration,day,contracthour,MB_CONFIG,groupno) "
            "values(?,?,'TeleFlow','Direct Comport','COM4','9600,N,8,1','Modbus','RTU',?,100,'Daily','0',?,0,1)",
            {seconds, "Foreign " + std::to_string(seconds), slaveAddress, ClockIn(seconds)});
        for (const auto& [description, address, type] :
             std::initializer_list<std::tuple<const char*, const char*, const char*>>{
                 {"Volume Yesterday", "137", "Float"},
                 {"Flowing Pressure", "87", "Float"},
                 {"Tap Type", "4", "Coil(Boolean)"},
                 {"Orifice Material", "5", "Coil(Boolean)"}}) {
            dbconn.Execute("insert into configdata_detail values(?,?,?,?,1,-1,1,'SCM','TOTRND',0,0,1,6,1,null,null)",
                           {seconds, description, address, type});
        }
    }
    support::ChildProcess program(Unattended());
    std::optional<core::Row> row;
    for (int seconds = 0; seconds < 110 && !row; ++seconds) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        row = dbconn.First("select * from configdata_master where sampledtoday");
    }
    ASSERT_TRUE(row) << program.Said() << support::FileText(scratch.path / "RTU_Err.log");
    const auto location = row->Long("locationID");
    const auto value = [&](const char* description) {
        return dbconn
            .First("select lastvalue from configdata_detail where locationID=? and description=?",
                   {location, description})
            ->Number("lastvalue");
    };
    EXPECT_EQ(value("Volume Yesterday"), ForeignSlave::Value(69));
    EXPECT_EQ(value("Flowing Pressure"), ForeignSlave::Value(44));
    EXPECT_EQ(value("Tap Type"), 0);
    EXPECT_EQ(value("Orifice Material"), 1);
    EXPECT_EQ(
        dbconn.First("select CurrentDayFlow from LogParam where LocationId=?", {location})->Number("CurrentDayFlow"),
        ForeignSlave::Value(69));
    EXPECT_EQ(dbconn.Query("select * from Scheduler where RTUName=?", {row->Text("consumer")}).size(), 1U);
    EXPECT_FALSE(std::filesystem::is_empty(scratch.path / "scheduler"));

    // A second instance leaves the first alone; the first ends in order.
    support::ChildProcess second(Unattended());
    EXPECT_EQ(second.Wait(), 1);
    EXPECT_TRUE(second.Printed("One Instance of This SoftWare is Already running...!"));
    program.Signal(SIGTERM);
    EXPECT_EQ(program.Wait(), 0);
}

TEST_F(ProgramTest, ADatabaseThatCannotBeOpenedEndsTheStartWithItsMessage) {
    support::ChildProcess missing(Unattended());
    EXPECT_EQ(missing.Wait(), 1);
    EXPECT_TRUE(missing.Printed("Error in Setup - code(0002) Disk or Network Error"));
    std::ofstream(scratch.path / "Kolmar.mdb") << std::string(9000, 'x');
    support::ChildProcess damaged(Unattended());
    EXPECT_EQ(damaged.Wait(), 1);
    EXPECT_TRUE(damaged.Printed("file is not a database"));
}

TEST_F(ProgramTest, AMissingTableEndsTheStartAndACrashLocksNobodyOut) {
    Deliver();
    {
        support::ChildProcess crashed(Unattended());
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        crashed.Signal(SIGKILL);
        EXPECT_EQ(crashed.Wait(), 128 + SIGKILL);
    }
    core::Database(scratch.path / "Kolmar.mdb").Execute("drop table logGen");
    support::ChildProcess next(Unattended());
    EXPECT_EQ(next.Wait(), 1);
    EXPECT_TRUE(next.Printed("no such table: logGen"));
}

}  // namespace
