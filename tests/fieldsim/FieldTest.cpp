// A whole register is served in process, and its values move as a gas station's do.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <sstream>

#include "fieldsim/Checks.h"
#include "fieldsim/Field.h"
#include "fieldsim/GasBehaviour.h"
#include "fieldsim/GasHistory.h"
#include "tests/support/Hex.h"
#include "tests/support/ScratchDesk.h"

namespace fieldsim {
namespace {

using support::Bytes;

struct FieldTest : testing::Test {
    support::ScratchDesk desk;
    SimLine line{desk.clock};

    void AddStation(int location, const char* model, const char* port, const char* phone, const char* protocol,
                    int address, int streams = 1) {
        desk.dbconn.Execute(
            "insert into configdata_master(locationID, consumer, modelno, comtype, comport, phoneno, protocol, mode, "
            "slaveaddress, No_Stream, stream1, stream2, delaytime, rtubits, MB_CONFIG) "
            "values (?, ?, ?, 'DialUp Modem', ?, ?, ?, 'RTU', ?, ?, 'AGA3', 'AGA7', 2000, false, true)",
            {location, "Site " + std::to_string(location), model, port, phone, protocol, address, streams});
    }
    void AddRow(int location, const char* description, const char* address, const char* type, const char* unit = "",
                int stream = 1) {
        desk.dbconn.Execute(
            "insert into configdata_detail(locationID, description, startaddress, type, srno, unit, StreamNo) "
            "values (?, ?, ?, ?, (select count(*) from configdata_detail), ?, ?)",
            {location, description, address, type, unit, stream});
    }
    std::string Ask(const std::string& bytes) {
        line.Output(bytes);
        desk.clock.WaitMs(1000);
        return line.Input();
    }
    void Open(int port) {
        line.CommPort(port);
        ASSERT_TRUE(line.PortOpen(true));
    }
};

TEST_F(FieldTest, ReadsTheMapOfAStation) {
    AddRow(1, "Flowing Pressure", "3", "Float", "kg/cm2");
    AddRow(1, "Count", "5", "Integer");
    AddRow(1, "Door Position", "7", "Coil(Boolean)");
    AddRow(1, "Not laid out", "0", "Float");
    AddRow(1, "Other stream", "9", "Float", "", 2);
    AddRow(2, "Volume Today", "54-83", "Float", "SCM");
    AddRow(2, "Tap Type", "55-11", "Boolean");
    const StationMap modbus = LoadMap(desk.dbconn, 1, 1);
    ASSERT_EQ(modbus.analogs.size(), 2U);
    EXPECT_EQ(modbus.analogs[0].position, 3);
    EXPECT_EQ(modbus.analogs[0].unit, "kg/cm2");
    EXPECT_EQ(modbus.analogs[1].kind, Kind::Integer);
    ASSERT_EQ(modbus.logicals.size(), 1U);
    EXPECT_EQ(modbus.logicals[0].position, 7);
    const StationMap bsap = LoadMap(desk.dbconn, 2, 1);
    ASSERT_EQ(bsap.analogs.size() + bsap.logicals.size(), 2U);
    EXPECT_EQ(bsap.analogs[0].position, 83);
    EXPECT_EQ(bsap.logicals[0].position, 11);
}

TEST_F(FieldTest, StationsShareAPortAndAreToldWhatTheyServed) {
    AddStation(1, "TeleFlow", "COM1", "", "Modbus", 1);
    AddRow(1, "Flowing Pressure", "1", "Float", "kg/cm2");
    AddStation(2, "TeleFlow", "COM1", "", "Quantum", 7);
    AddRow(2, "Pressure", "1", "Float", "bar");
    AddRow(2, "DD MM YY HH MM SS", "1", "Float");
    Field field(desk.dbconn, {});
    field.AttachTo(line);
    Open(1);
    EXPECT_EQ(field.LastServed(1, 1, "Flowing Pressure"), std::nullopt);
    const std::string reply = Ask(Bytes("01 03 00 00 00 02 C4 0B"));
    ASSERT_EQ(reply.size(), 9U);
    const auto bits = static_cast<std::uint32_t>(WordAt(reply, 3) * 65536LL + WordAt(reply, 5));
    const double sent = std::bit_cast<float>(bits);
    EXPECT_EQ(field.LastServed(1, 1, "Flowing Pressure"), sent);
    EXPECT_GT(sent, 5);
    EXPECT_LT(sent, 40);
    const std::string quantum = Ask(Bytes("02 30 37 41 30 33 00 F3 03"));
    EXPECT_EQ(quantum.substr(22, 13), "90326075931  ");  // 9 March 2026, 07:59:31: a second has passed
    EXPECT_TRUE(field.WasServed(2, 1, "Pressure", std::stod(quantum.substr(22 + 26, 13))));
    EXPECT_FALSE(field.WasServed(2, 1, "Pressure", 1e6));
}

TEST_F(FieldTest, DialledStationsStandBehindOneModem) {
    AddStation(1, "TeleFlow", "COM3", "111", "Modbus", 1);
    AddStation(2, "TeleFlow", "COM3", "222", "Modbus", 1);
    AddRow(1, "A", "1", "Integer");
    AddRow(2, "A", "1", "Integer");
    FieldOptions options;
    options.modems[3] = {{"NO CARRIER"}};
    options.silent = {1};
    Field field(desk.dbconn, options);
    field.AttachTo(line);
    Open(3);
    line.Output("atx3dt222\r");
    desk.clock.WaitMs(10000);
    EXPECT_NE(line.Input().find("NO CARRIER"), std::string::npos);
    line.Output("atx3dt222\r");
    desk.clock.WaitMs(10000);
    EXPECT_NE(line.Input().find("CONNECT"), std::string::npos);
    EXPECT_EQ(Ask(Bytes("01 03 00 00 00 01 84 0A")).size(), 7U);
    EXPECT_NE(field.LastServed(2, 1, "A"), std::nullopt);
    line.PortOpen(false);
    Open(3);
    line.Output("atx3dt111\r");
    desk.clock.WaitMs(10000);
    line.Input();
    EXPECT_EQ(Ask(Bytes("01 03 00 00 00 01 84 0A")), "");
    EXPECT_EQ(field.Modem(3)->Dialled(), (std::vector<std::string>{"222", "222", "111"}));
}

TEST_F(FieldTest, EachStreamHasItsPairOfLists) {
    AddStation(1, "CWGFC-MultiStream", "COM1", "", "Modbus", 1, 2);
    AddRow(1, "Volume Today", "54-1", "Float", "SCM", 1);
    AddRow(1, "Volume Today", "54-1", "Float", "SCM", 2);
    AddRow(1, "Status", "55-1", "Boolean", "", 2);
    const Field field(desk.dbconn, {});
    const Field::Served& served = field.Stations().at(0);
    EXPECT_EQ(AnalogList(served.station, 1), 54);  // AGA3
    EXPECT_EQ(AnalogList(served.station, 2), 66);  // AGA7: 2 * 10 + 44 + 2
    EXPECT_EQ(LogicalList(served.station, 2), 67);
    const auto& lists = dynamic_cast<BsapStation&>(*served.device).Lists();
    EXPECT_EQ(lists.at(66)->At(1)->description, "Volume Today");
    const core::DateTime now = desk.clock.Now();
    EXPECT_NE(lists.at(54)->ValueAt(*lists.at(54)->At(1), now), lists.at(66)->ValueAt(*lists.at(66)->At(1), now));
    EXPECT_EQ(lists.at(67)->At(1)->description, "Status");
}

TEST_F(FieldTest, FaultsLieBetweenTheLineAndTheStation) {
    AddStation(1, "TeleFlow", "COM1", "", "Modbus", 1);
    AddRow(1, "A", "1", "Integer");
    FieldOptions options;
    options.faults[1].script = {Fault::Silence, Fault::Late};
    Field field(desk.dbconn, options);
    field.AttachTo(line);
    Open(1);
    const std::string request = Bytes("01 03 00 00 00 01 84 0A");
    EXPECT_EQ(Ask(request), "");
    EXPECT_EQ(Ask(request), "");
    EXPECT_EQ(Ask(request).size(), 7U);
    desk.clock.WaitMs(8000);
    EXPECT_EQ(line.Input().size(), 7U);
    EXPECT_EQ(field.Station(1)->faults->Count(Fault::None), 1);
}

TEST_F(FieldTest, StationsTakeWritesAsTheOptionsSay) {
    AddStation(1, "TeleFlow", "COM1", "", "Modbus", 1);
    AddStation(2, "TeleFlow", "COM1", "", "Modbus", 2);
    for (const int location : {1, 2}) {
        AddRow(location, "A", "1", "Integer");
        AddRow(location, "Flowrate Live", "3", "Float", "SCMH");
    }
    FieldOptions options;
    options.writes[1].otherwise = WriteFault::Refuse;
    options.alarmCycle = 300;
    Field field(desk.dbconn, options);
    field.AttachTo(line);
    Open(1);
    const auto frame = [](const char* message) { return ModbusFrame(Framing::Rtu, Bytes(message)); };
    EXPECT_EQ(Ask(frame("01 06 00 00 00 07")), frame("01 86 04"));
    EXPECT_EQ(Ask(frame("02 06 00 00 00 07")), frame("02 06 00 00 00 07"));
    EXPECT_EQ(field.Station(1)->written->WritesText(), std::vector<std::string>{"register 1 A = 7 refused"});
    EXPECT_EQ(field.Station(2)->written->WritesText(), std::vector<std::string>{"register 1 A = 7"});
    EXPECT_EQ(field.Values(2, 1, "A")->ValueAt(*field.Values(2, 1, "A")->Find("A"), desk.clock.Now()), 7);
    const SignalList& live = *field.Values(1, 1, "Flowrate Live");
    EXPECT_NE(live.ValueAt(*live.Find("Flowrate Live"), {2026, 3, 9, 8, 0, 0}),
              live.ValueAt(*live.Find("Flowrate Live"), {2026, 3, 9, 8, 1, 0}));
}

TEST_F(FieldTest, StationsKeepWhatTheirValuesWere) {
    AddStation(1, "TeleFlow", "COM1", "", "BSAP", 1);
    AddRow(1, "Flowing Pressure", "54-1", "Float", "bar");
    AddStation(2, "CWGFC-MultiStream", "COM1", "", "BSAP", 2, 2);
    AddStation(3, "TeleCorrector", "COM1", "", "BSAP", 3);
    AddStation(4, "TeleFlow", "COM1", "", "BSAP", 4);
    FieldOptions options;
    options.bsapCountsForItself = true;  // and is always ready
    options.histories[4] = [](StationHistory& history) { MakeHistory(history, "wrapped"); };
    Field field(desk.dbconn, options);
    field.AttachTo(line);
    Open(1);
    const auto ask = [&](const char* body) { return Ask(BsapFrame(Bytes(body))); };
    for (const char* body : {"01 01 A0 02 00 0B 00 70 07 04 01 00", "01 01 A0 02 00 0B 00 70 07 04 02 00",
                             "01 01 A0 02 00 0B 00 70 07 04 03 00", "01 01 A0 02 00 0B 00 70 03 05 00 00 00 04 01 00",
                             "02 01 A0 02 00 0B 00 70 07 04 04 00", "04 01 A0 02 00 0B 00 70 07 04 02 00"}) {
        EXPECT_GT(ask(body).size(), 20U) << body;
    }
    auto& files = field.Station(1)->bsap->Archives();
    const auto stands = [](const ArchiveFile& file) {
        return std::to_string(file.oldest) + ": " + std::to_string(file.records.size()) + " to " +
               core::IsoText(file.records.back().at);
    };
    ArchiveFile& hourly = files.at(2);
    EXPECT_EQ(stands(files.at(1)), "0: 40 to 2026-03-09 06:00:00");
    EXPECT_EQ(stands(hourly), "0: 720 to 2026-03-09 07:00:00");
    EXPECT_EQ(stands(files.at(3)), "0: 200 to 2026-03-09 07:59:00");
    EXPECT_EQ(stands(field.Station(4)->bsap->Archives().at(2)), "5000: 720 to 2026-03-09 07:00:00");
    // A record has the values that the lists had at its time.
    const SignalList& live = *field.Values(1, 1, "Flowing Pressure");
    for (const FileRecord& record : {hourly.records.front(), hourly.records.back()}) {
        EXPECT_EQ(static_cast<float>(record.values.at(1)), live.ValueAt(*live.Find("Flowing Pressure"), record.at));
    }
    const FileRecord newest = files.at(1).records.back();
    EXPECT_EQ(newest.values.at(5), 0);  // a daily record is made as the volume of the day turns over
    EXPECT_GT(newest.values.at(6), 1000);
    EXPECT_NE(hourly.records[700].values, field.Station(4)->bsap->Archives().at(2).records[700].values);
    // It goes on, and what there was keeps its number.
    desk.clock.WaitMs(3 * 3600 * 1000.0);
    ask("01 01 A0 02 00 0B 00 70 07 04 02 00");
    ask("04 01 A0 02 00 0B 00 70 07 04 02 00");
    EXPECT_EQ(stands(hourly), "0: 723 to 2026-03-09 10:00:00");
    EXPECT_EQ(stands(field.Station(4)->bsap->Archives().at(2)), "5003: 720 to 2026-03-09 10:00:00");
    // The fields of the models and methods: AGA3 daily and hourly, AGA7 daily and hourly, TeleCorrector.
    auto& streams = field.Station(2)->bsap->Archives();
    EXPECT_EQ(streams.at(1).fields.size(), 10U);
    EXPECT_EQ(streams.at(2).fields.size(), 9U);
    EXPECT_EQ(streams.at(4).fields.size(), 9U);
    EXPECT_EQ(streams.at(5).fields.size(), 8U);
    EXPECT_EQ(field.Station(3)->bsap->Archives().at(2).fields.size(), 11U);
    // Events of all codes, in the order of their times, and none after they were asked for.
    const auto& events = field.Station(1)->bsap->Audit().events;
    ASSERT_EQ(events.size(), 40U);
    int codes = 0;
    for (std::size_t i = 0; i < events.size(); ++i) {
        codes |= 1 << (events[i].flags & 7U);
        EXPECT_TRUE(i == 0 || events[i - 1].at < events[i].at);
        EXPECT_LE(events[i].signal.size(), 15U);
    }
    EXPECT_EQ(codes, 0xFF);
    EXPECT_LT(events.back().at, (core::DateTime{2026, 3, 9, 8, 0, 0}));
}

// The names of a list in their places, each with its value or text.
std::string Shown(const SignalList& list, const core::DateTime& at, int first, int last) {
    std::ostringstream text;
    for (int position = first; position <= last; ++position) {
        const Signal* signal = list.At(position);
        text << position << ' ' << (signal != nullptr ? signal->description : "") << ' ';
        if (signal != nullptr && signal->kind == Kind::Text) {
            text << '"' << list.Text(*signal) << "\" ";
        } else {
            text << (signal != nullptr ? list.ValueAt(*signal, at) : 0) << ' ';
        }
    }
    return text.str();
}

TEST_F(FieldTest, BsapStationsHaveAProgramThatChangesAndTransmitters) {
    AddStation(1, "TeleFlow", "COM1", "", "BSAP", 1);
    AddStation(2, "TeleFlow", "COM1", "", "BSAP", 2);
    AddStation(3, "TeleFlow", "COM1", "", "Modbus", 3);
    FieldOptions options;
    options.programs[2] = [](SignalLists& lists) { lists.at(kProgramList)->SetValue("METER1.BETA.RTIO", 0.25); };
    options.transmitters[2] = [](Transmitters& all) { all.Manner(Transmitter::DP).refuses = true; };
    Field field(desk.dbconn, options);
    field.AttachTo(line);
    Open(1);
    const SignalList& program = *field.Station(1)->program;
    const core::DateTime at = desk.clock.Now();
    const std::string before = Shown(program, at, 1, 40);
    EXPECT_EQ(Shown(program, at, 7, 14),
              "7 METER1.ORIF.DIA 101.6 8 METER1.BETA.RTIO 0.501134 9 METER1.TAP.TYPE 1 10 METER1.TAP.LOC 0 11 "
              "METER1.DIFF.HI 90 12 METER1.DIFF.LO 5 13 METER1.PRES.HI 40 14 METER1.PRES.LO 2.5 ");
    EXPECT_NE(Shown(program, at, 1, 1), Shown(program, core::FromSeconds(core::ToSeconds(at) + 60), 1, 1));
    field.ChangePrograms(false);
    EXPECT_EQ(Shown(program, at, 7, 21),
              "7 METER1.ORIF.DIA 95.25 8 METER1.BETA.RTIO 0.501134 9 METER1.TAP.TYPE 1 10 METER1.DIFF.HI 90 11 "
              "METER1.DIFF.LO 5 12 METER1.PRES.HI 40 13 METER1.PRES.LO 2.5 14 METER1.FLOW.CUT 25 15 METER1.DIFF.ALRM 0 "
              "16 METER1.PRES.ALRM 1 17 METER1.FLOW.SETP 1200 18 METER1.GAS.GRAV 0.6125 19 METER1.GAS.CO2 0.85 "
              "20 METER1.GAS.N2 1.4 21 METER1.HEAT.VAL \"BY CHROMATOGRAPH\" ");
    field.ChangePrograms(true);
    EXPECT_EQ(Shown(program, at, 1, 40), before);
    EXPECT_EQ(Shown(*field.Station(2)->program, at, 8, 8), "8 METER1.BETA.RTIO 0.25 ");
    EXPECT_EQ(field.Station(3)->program, nullptr);
    // Both are on the line: the search finds them, and a command comes to the transmitters that stand behind it.
    const auto ask = [&](const char* function) {
        return Ask(BsapFrame(Bytes(std::string("02 04 A0 00 06 0B 00 ") + function)));
    };
    EXPECT_NE(ask("08 05 F9 01 FF 00 00 00 00 80 4D 45 54 45 52 31 2E 2A 52 41 54 45 00").find("METER1.FLOW.RATE"),
              std::string::npos);
    EXPECT_NE(ask("08 05 F9 01 FF 00 00 00 00 80 44 50 2E 4C 00").find("DP.LIVE."), std::string::npos);
    EXPECT_EQ(field.LastServed(2, 1, "DP.LIVE."), 99.5);
    ask("84 FF 01 23 43 41 4C 2E 44 50 5A 45 52 4F 2E 00 09");  // #CAL.DPZERO.
    desk.clock.WaitMs(4000);
    EXPECT_EQ(Shown(*field.Station(2)->transmitters->List(), desk.clock.Now(), 3, 3), "3 PRESS.CALSTAT. 2 ");
    field.VentTransmitters(true);
    EXPECT_EQ(Shown(*field.Station(1)->transmitters->List(), desk.clock.Now(), 1, 1), "1 DP.LIVE. 0 ");
}

double ValueOf(const GasBehaviour& behaviour, const char* description, const core::DateTime& at, const char* unit = "",
               Kind kind = Kind::Decimal) {
    return behaviour({1, description, unit, kind}, at);
}

TEST(GasBehaviour, VolumesAreTheFlowAddedUpAndTurnOverAtTheContractHour) {
    const GasBehaviour station(7, 6);
    const core::DateTime before{2026, 3, 10, 5, 59, 59};
    const core::DateTime after{2026, 3, 10, 6, 0, 0};
    const double day = ValueOf(station, "Volume Today", before);
    EXPECT_EQ(ValueOf(station, "Volume Today", after), 0);
    EXPECT_NEAR(ValueOf(station, "Volume Yesterday", after), day, day * 1e-4);
    EXPECT_LT(ValueOf(station, "Volume Yesterday", before), day * 1.3);
    EXPECT_NEAR(ValueOf(station, "Volume This Month", after), ValueOf(station, "Volume This Month", before), 1);
    // The first gas day of the month: what was this month is last month.
    EXPECT_NEAR(ValueOf(station, "Volume Last Month", {2026, 4, 1, 6, 0, 0}),
                ValueOf(station, "Volume This Month", {2026, 4, 1, 5, 59, 59}), 1);
    EXPECT_EQ(ValueOf(station, "Volume This Month", {2026, 4, 1, 6, 0, 0}), 0);
    const double grown = ValueOf(station, "Total Volume Accumulated", {2026, 3, 10, 9, 0, 30}) -
                         ValueOf(station, "Total Volume Accumulated", {2026, 3, 10, 8, 59, 30});
    EXPECT_NEAR(grown, ValueOf(station, "Flowrate", {2026, 3, 10, 9, 0, 0}) / 60, grown * 1e-3);
}

TEST(GasBehaviour, EachKindOfValueMovesInItsWay) {
    const GasBehaviour station(7, 6);
    const core::DateTime noon{2026, 3, 10, 12, 34, 56};
    const core::DateTime night{2026, 3, 11, 0, 30, 0};
    EXPECT_EQ(ValueOf(station, "RTU Time - Year", noon), 2026);
    EXPECT_EQ(ValueOf(station, "RTU Time - Month", noon), 3);
    EXPECT_EQ(ValueOf(station, "RTU Time - Date", noon), 10);
    EXPECT_EQ(ValueOf(station, "System Time Hour", noon), 12);
    EXPECT_EQ(ValueOf(station, "RTU Time - Minute", noon), 34);
    EXPECT_EQ(ValueOf(station, "DD MM YY HH MM SS", noon), 100326123456);
    EXPECT_GT(ValueOf(station, "Solar Panel Voltage", noon), 15);
    EXPECT_EQ(ValueOf(station, "Solar Panel Voltage", night), 0);
    EXPECT_GT(ValueOf(station, "Main Battery Volt", noon), ValueOf(station, "Main Battery Volt", night));
    EXPECT_NE(ValueOf(station, "Flowing Pressure", noon), ValueOf(station, "Flowing Pressure", night));
    for (const char* constant : {"Methane", "Pipe Diameter", "Flowing Pressure Hi Limit", "PID Flow Set Point"}) {
        EXPECT_EQ(ValueOf(station, constant, noon, "kg/cm2"), ValueOf(station, constant, night, "kg/cm2")) << constant;
    }
    const double pressure = ValueOf(station, "Flowing Pressure Live", noon, "kg/cm2");
    EXPECT_GT(ValueOf(station, "Flowing Pressure Hi Limit", noon, "kg/cm2"), pressure);
    EXPECT_LT(ValueOf(station, "Flowing Pressure Lo Limit", noon, "kg/cm2"), pressure);
    EXPECT_EQ(ValueOf(station, "Flow Time Today", {2026, 3, 10, 8, 0, 0}, "min"), 120);
    EXPECT_NE(ValueOf(GasBehaviour(8, 6), "Flowing Pressure", noon), ValueOf(station, "Flowing Pressure", noon));
}

TEST(GasBehaviour, LiveValuesPassThroughTheirLimitsInEachCycle) {
    support::ScratchDesk desk;
    const GasBehaviour alarming(7, 6, 300);
    const auto rows =
        desk.dbconn.Query("select distinct Description, unit from parameter where Description like '% Live'");
    ASSERT_EQ(rows.size(), 7U);
    for (const core::Row& row : rows) {
        const std::string live = row.Text("Description");
        const std::string block = live.substr(0, live.size() - 4);
        const auto value = [&](const std::string& name, int second) {
            return ValueOf(alarming, name.c_str(), core::FromSeconds(1773043200 + second), row.Text("unit").c_str());
        };
        std::map<int, int> seconds;  // by how many limits are below the value
        int before = -1;
        for (int second = 0; second < 300; ++second) {
            int above = 0;
            for (const char* limit : {"Lo-Lo", "Lo Limit", "Hi Limit", "Hi-Hi"}) {
                above += value(live, second) > value(block + limit, second) ? 1 : 0;
            }
            ++seconds[above];
            EXPECT_LE(std::abs(above - before), before < 0 ? 5 : 1) << live << second;
            before = above;
        }
        for (int above = 0; above <= 4; ++above) {
            EXPECT_GE(seconds[above], 55) << live << above;
        }
        EXPECT_EQ(value(live, 0), value(live, 300));
    }
}

// Masters of this field read floats from 2^-30 up to 2^31.
TEST(GasBehaviour, EveryDeliveredValueIsOneThatAMasterCanRead) {
    support::ScratchDesk desk;
    const GasBehaviour station(7, 6);
    for (const core::Row& row : desk.dbconn.Query("select Description, unit from parameter")) {
        for (const core::DateTime& at : {core::DateTime{2026, 3, 10, 12, 0, 0}, {2026, 3, 10, 6, 0, 0}}) {
            const double value = std::fabs(station({1, row.Text("Description"), row.Text("unit"), Kind::Float}, at));
            EXPECT_TRUE(value == 0 || (value > 1e-3 && value < 2e9) || row.Text("Description") == "DD MM YY HH MM SS")
                << row.Text("Description") << ' ' << value;
        }
    }
}

}  // namespace
}  // namespace fieldsim
