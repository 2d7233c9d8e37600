#include <gtest/gtest.h>

#include <map>
#include <set>

#include "core/Station.h"
#include "core/Text.h"
#include "stations/MapBuilder.h"
#include "stations/Tables.h"
#include "support/ScratchDesk.h"

// Holds what the delivered lists must give whatever station is made from them.
namespace {

using core::Row;
using tables::Names;
using tables::Sorted;

struct Map {
    std::string label;
    stations::MapChoices choices;
};

Map Made(const std::string& modelno, const std::string& protocol, bool optAga3, const stations::RegisterSize& registers,
         const Names& streams) {
    stations::MapChoices choices;
    choices.locationID = 1;
    choices.modelno = modelno;
    choices.protocol = core::ProtocolOf(protocol);
    choices.optAga3 = optAga3;
    choices.registers = registers;
    choices.No_Stream = static_cast<int>(streams.size());
    std::copy(streams.begin(), streams.end(), choices.stream.begin());
    return {modelno + " " + protocol + (optAga3 ? " AGA3" : " AGA7") + " " + std::to_string(registers.registerCount) +
                registers.registerTypeName,
            choices};
}

// Every map that the register can make for a station on Modbus or BSAP.
std::vector<Map> AllMaps() {
    const auto two = stations::TypeFloatTwoRegisters();
    std::vector<Map> maps;
    for (const char* model : {"TeleFlow", "TeleFlow+", "TeleCorrector", "TeleCorrector+", "TeleRTU", "TeleRTU(M)"}) {
        const std::string name = model;
        for (const bool optAga3 : {true, false}) {
            if (optAga3 && name.starts_with("TeleCorrector")) {
                continue;
            }
            maps.push_back(Made(name, "BSAP", optAga3, two, {"AGA3"}));
            for (const auto& registers : {two, stations::TypeFloatOneRegister(), stations::TypeInteger()}) {
                maps.push_back(Made(name, "Modbus", optAga3, registers, {"AGA3"}));
            }
        }
    }
    for (const char* model :
         {"CWEFM-AGA3", "CWGFC-AGA3", "CWEFM-AGA7", "CWGFC-AGA7", "CWEFM-AGA9", "CWGFC-AGA9", "CWEPAC-AGA11"}) {
        maps.push_back(Made(model, "BSAP", false, two, {std::string(model).substr(std::string(model).find('-') + 1)}));
    }
    maps.push_back(Made("CWEFM-MultiStream", "BSAP", false, two, {"AGA3", "AGA7", "AGA9", "AGA11"}));
    maps.push_back(Made("CWGFC-MultiStream", "Modbus", false, two, {"AGA7", "AGA3"}));
    return maps;
}

struct Place {
    bool coil;
    int position;
};

// The list position of a row, whether it is stored as one or as a register.
Place PlaceOf(const Row& row, const stations::MapChoices& choices) {
    const std::string address = row.Text("startaddress");
    const std::string type = row.Text("type");
    const bool coil = type == "Boolean" || type == "Coil(Boolean)";
    EXPECT_TRUE(coil || type == "Float") << type;
    if (const auto dash = address.find('-'); dash != std::string::npos) {
        EXPECT_EQ(address.substr(0, dash), coil ? "55" : "54") << row.Text("description");
        return {coil, std::stoi(address.substr(dash + 1))};
    }
    const int number = std::stoi(address);
    return {coil, coil ? number : (number + choices.registers.registerOffset) / choices.registers.registerCount};
}

// Under which name the workbook of a run finds its list.
std::string WorkbookList(const stations::MapChoices& choices, int streamno) {
    if (core::IsMultiStreamModel(choices.modelno)) {
        return choices.stream[static_cast<std::size_t>(streamno - 1)];
    }
    if (core::IsCwModel(choices.modelno)) {
        return choices.modelno;
    }
    return choices.modelno.starts_with("TeleCorrector") ? "TC" : "TF";
}

struct DeliveredMapsTest : testing::Test {
    support::ScratchDesk desk;

    Names Texts(const std::string& sql, std::initializer_list<core::Value> values = {}) {
        return tables::Texts(desk.dbconn, sql, values);
    }

    std::vector<Row> Built(const Map& map, int streamno) {
        stations::BuildMap(desk.dbconn, map.choices);
        return desk.dbconn.Query("select * from configdata_detail where StreamNo=?", {streamno});
    }

    core::ModelCounts Counts(const stations::MapChoices& choices, int streamno) {
        core::Station station;
        station.isCW = core::IsCwModel(choices.modelno);
        station.isTeleCorrector = choices.modelno.starts_with("TeleCorrector");
        station.stream = choices.stream;
        return core::ReadModelCounts(desk.dbconn, station, streamno).value();
    }

    template <typename Check>
    void ForEachStream(const Check& check) {
        for (const Map& map : AllMaps()) {
            for (int streamno = 1; streamno <= map.choices.No_Stream; ++streamno) {
                SCOPED_TRACE(map.label + " stream " + std::to_string(streamno));
                check(map, streamno, Built(map, streamno));
            }
        }
    }
};

TEST_F(DeliveredMapsTest, EveryPlaceOfAListHasOneRowAndTheCountsCoverThemAll) {
    ForEachStream([&](const Map& map, int streamno, const std::vector<Row>& rows) {
        std::set<int> floats;
        std::set<int> coils;
        for (const Row& row : rows) {
            const Place place = PlaceOf(row, map.choices);
            EXPECT_GE(place.position, 1);
            EXPECT_TRUE((place.coil ? coils : floats).insert(place.position).second) << row.Text("description");
        }
        const auto counts = Counts(map.choices, streamno);
        EXPECT_LE(*floats.rbegin(), counts.floatcount);
        EXPECT_LE(*coils.rbegin(), counts.boolcount);
        EXPECT_LE(*coils.rbegin(), 80);
        EXPECT_LE(*floats.rbegin(), 300) << "the windows of the Modbus archive begin there";
    });
}

// A name is found by its text, and by screens of the history as a part of a longer text, in the order coils, floats.
// So no name stands in front of a longer one that contains it.
TEST_F(DeliveredMapsTest, NoValueCanBeTakenForAnotherByItsName) {
    ForEachStream([&](const Map& map, int, const std::vector<Row>& rows) {
        std::map<std::pair<int, int>, std::string> inOrder;
        std::set<std::string> names;
        for (const Row& row : rows) {
            const Place place = PlaceOf(row, map.choices);
            inOrder[{place.coil ? 0 : 1, place.position}] = core::UpperText(row.Text("description"));
            EXPECT_TRUE(names.insert(core::UpperText(row.Text("description"))).second) << row.Text("description");
        }
        for (auto shorter = inOrder.begin(); shorter != inOrder.end(); ++shorter) {
            for (auto longer = std::next(shorter); longer != inOrder.end(); ++longer) {
                EXPECT_EQ(longer->second.find(shorter->second), std::string::npos)
                    << shorter->second << " before " << longer->second;
            }
        }
    });
}

TEST_F(DeliveredMapsTest, EveryRowFitsItsScreenAndItsLevels) {
    const auto screens =
        Sorted({"AGA3",   "AGA5",      "AGA7",  "AGA8(Detail)", "AGA8(GROSS)", "Health", "TOTRND", "GC",
                "KEYPAD", "IO",        "FPV",   "NOM",          "PID",         "DRS",    "ALARM",  "CURVE",
                "RADIO",  "CONSTANTS", "MODEM", "TIME",         "AGA9",        "AGA11"});
    ForEachStream([&](const Map&, int, const std::vector<Row>& rows) {
        std::map<std::string, int> group;
        for (const Row& row : rows) {
            EXPECT_EQ(screens.count(row.Text("aga")), 1U) << row.Text("aga");
            ++group[row.Text("aga")];
            EXPECT_TRUE(row.Long("RS") >= 1 && row.Long("RS") <= 6 && row.Long("WS") >= row.Long("RS") &&
                        row.Long("WS") <= 6)
                << row.Text("description");
            EXPECT_TRUE(row.Long("CFP") == 0 || row.Long("CFP") == 1);
        }
        for (const auto& [aga, count] : group) {
            EXPECT_LE(count, aga == "CONSTANTS" || aga == "MODEM" ? 50 : 150) << aga;
        }
        EXPECT_EQ(group["GC"], 21);
        EXPECT_LE(group["TOTRND"], 19);
    });
}

TEST_F(DeliveredMapsTest, TheValuesPeopleAreBilledByAreInEveryMap) {
    ForEachStream([&](const Map& map, int, const std::vector<Row>& rows) {
        std::map<std::string, std::string> aga;
        Names totals;
        for (const Row& row : rows) {
            aga[row.Text("description")] = row.Text("aga");
            if (row.Text("aga") == "TOTRND") {
                totals.push_back(row.Text("description"));
            }
        }
        const bool isCW = core::IsCwModel(map.choices.modelno);
        for (const char* name : {"Flowing Pressure", "Flowing Temperature", "Flowrate"}) {
            EXPECT_EQ(aga.count(name), 1U) << name;
        }
        Names health = {"Main Battery Volt", "Backup Battery Voltage", "Solar Panel Voltage", "Board Temperature"};
        for (const char* part : {"Year", "Month", "Date", "Hour", "Minute", "Second"}) {
            health.push_back((isCW ? "System Time " : "RTU Time - ") + std::string(part));
            EXPECT_EQ(aga["Set " + std::string(part)], "TIME");
        }
        EXPECT_EQ(aga["Set Time & Date"], "TIME");
        for (const std::string& name : health) {
            EXPECT_EQ(aga[name], "Health") << name;
        }
        // The columns of the mail table, in their order; models without uncorrected totals lack those five.
        const bool uncorrected = aga.count("Total Un Volume Accumulated") != 0;
        auto columns = Texts("select name from pragma_table_info('tblmail') where name <> 'Node Name' order by cid");
        if (!uncorrected) {
            std::erase_if(columns, [](const std::string& name) { return name.find("Un") != std::string::npos; });
        }
        ASSERT_GE(totals.size(), columns.size());
        EXPECT_TRUE(std::equal(columns.begin(), columns.end(), totals.begin())) << testing::PrintToString(totals);
    });
}

TEST_F(DeliveredMapsTest, TheWorkbookListsNameWhatTheyRead) {
    ForEachStream([&](const Map& map, int streamno, const std::vector<Row>&) {
        const std::string kind = WorkbookList(map.choices, streamno);
        const auto list = desk.dbconn.Query("select * from sched_ParaList where RTU_Type=?", {kind});
        EXPECT_TRUE(list.size() >= 10 && list.size() <= 15) << kind;
        if (map.choices.protocol != core::Protocol::Bsap && !core::IsCwModel(map.choices.modelno)) {
            return;  // the same places, as registers
        }
        for (const Row& row : list) {
            const auto names = Texts("select description from configdata_detail where StreamNo=? and startaddress=?",
                                     {streamno, row[2]});
            ASSERT_EQ(names.size(), 1U);
            // The two families share the first place: a TeleRTU without an orifice reads its meter there.
            EXPECT_TRUE(names[0] == row.Text("description") ||
                        (kind == "TF" && !map.choices.optAga3 && names[0] == "UnCorr.Flowrate"))
                << kind << " " << names[0];
        }
    });
}

}  // namespace
