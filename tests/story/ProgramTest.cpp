#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <ctime>
#include <fstream>
#include <thread>

#include "core/Database.h"
#include "support/ChildProcess.h"
#include "support/LibmodbusSlave.h"
#include "support/ScratchDesk.h"

using testing::HasSubstr;

namespace {

constexpr int slaveAddress = 3;

// The float at registers 2n - 1 and 2n of the slave.
float Value(int n) {
    return static_cast<float>(n) * 1.5F;
}

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
    support::LibmodbusSlave slave({.slave = slaveAddress, .registers = 600, .coils = 100});
    for (int n = 1; n <= 280; ++n) {
        slave.SetFloat(2 * (n - 1), Value(n));
    }
    slave.SetCoil(4, true);
    core::Database dbconn(scratch.path / "Kolmar.mdb");
    dbconn.Execute("update comports set device=? where portname='COM4'", {slave.Path()});
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
    EXPECT_EQ(value("Volume Yesterday"), Value(69));
    EXPECT_EQ(value("Flowing Pressure"), Value(44));
    EXPECT_EQ(value("Tap Type"), 0);
    EXPECT_EQ(value("Orifice Material"), 1);
    EXPECT_EQ(
        dbconn.First("select CurrentDayFlow from LogParam where LocationId=?", {location})->Number("CurrentDayFlow"),
        Value(69));
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
