#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>

#include "core/Station.h"
#include "core/Text.h"
#include "stations/MapBuilder.h"
#include "stations/Records.h"
#include "stations/StationRules.h"
#include "support/ScratchDesk.h"

// Holds what the delivered lists must give whatever station is made from them: every model on every protocol that the
// form offers for it.
namespace {

using core::Row;
using tables::Names;

struct Made {
    core::Station station;
    bool isQuantum;  // as chosen: a run takes each CW for BSAP
    bool optAga3;
    stations::RegisterSize registers;
};

struct Place {
    bool coil;
    int position;
};

// The list position of a row, whether it is stored as one or as a register.
Place PlaceOf(const Row& row, const stations::RegisterSize& registers) {
    const std::string address = row.Text("startaddress");
    const std::string type = row.Text("type");
    const bool coil = type == "Boolean" || type == "Coil(Boolean)";
    EXPECT_TRUE(coil || type == "Float") << type;
    if (const auto dash = address.find('-'); dash != std::string::npos) {
        EXPECT_EQ(address.substr(0, dash), coil ? "55" : "54") << row.Text("description");
        return {coil, std::stoi(address.substr(dash + 1))};
    }
    const int number = std::stoi(address);
    return {coil, coil ? number : (number + registers.registerOffset) / registers.registerCount};
}

// Under which name the workbook of a run finds its list.
std::string WorkbookList(const std::string& modelno, const std::string& stream) {
    if (core::IsMultiStreamModel(modelno)) {
        return stream;
    }
    if (core::IsCwModel(modelno)) {
        return modelno;
    }
    return modelno.starts_with("TeleCorrector") ? "TC" : "TF";
}

struct DeliveredMapsTest : testing::Test {
    static inline std::unique_ptr<support::ScratchDesk> desk;
    static inline std::vector<Made> all;

    static void SetUpTestSuite() {
        desk = std::make_unique<support::ScratchDesk>();
        for (const std::string& model : stations::Models(desk->dbconn, "BB")) {
            const bool severalSizes = !core::IsCwModel(model);
            for (const bool optAga3 : {true, false}) {
                if (optAga3 && model.starts_with("TeleCorrector")) {
                    continue;
                }
                Save(model, "BSAP", optAga3, stations::TypeFloatTwoRegisters());
                Save(model, "Quantum", optAga3, stations::TypeFloatTwoRegisters());
                Save(model, "Modbus", optAga3, stations::TypeFloatTwoRegisters());
                if (severalSizes) {
                    Save(model, "Modbus", optAga3, stations::TypeFloatOneRegister());
                    Save(model, "Modbus", optAga3, stations::TypeInteger());
                }
            }
        }
    }
    static void TearDownTestSuite() {
        desk.reset();
        all.clear();
    }

    static void Save(const std::string& model, const std::string& protocol, bool optAga3,
                     const stations::RegisterSize& registers) {
        const auto rule = stations::RuleOfModel(model);
        if (rule.protocolLocked && rule.protocol != core::ProtocolOf(protocol)) {
            return;
        }
        const auto locationId = static_cast<std::int64_t>(all.size()) + 1;
        auto record =
            records::Filled(locationId, model + " " + protocol + (optAga3 ? " AGA3 " : " AGA7 ") +
                                            std::to_string(registers.registerCount) + registers.registerTypeName);
        record.modelno = model;
        record.protocol = protocol;
        record.aga3_7 = optAga3;
        record.Mode = "RTU";
        record.No_Stream = rule.streamCounts.empty() ? "1" : rule.streamCounts.back();
        record.stream = {rule.cmb_stm1, "AGA7", "AGA9", "AGA11"};
        stations::SaveStation(desk->dbconn, record, {.isNewStation = true, .registers = registers});
        all.push_back({core::ReadStation(desk->dbconn, locationId).value(), protocol == "Quantum", optAga3, registers});
    }

    static Names Texts(const std::string& sql, std::initializer_list<core::Value> values = {}) {
        return tables::Texts(desk->dbconn, sql, values);
    }

    // Of every station that is read by its lists.
    template <typename Check>
    void ForEachStream(const Check& check) {
        for (const Made& made : all) {
            for (int streamno = 1; streamno <= made.station.No_Stream; ++streamno) {
                SCOPED_TRACE(made.station.consumer + " stream " + std::to_string(streamno));
                const auto rows =
                    desk->dbconn.Query("select * from configdata_detail where locationID=? and StreamNo=?",
                                       {made.station.locationID, streamno});
                if (!made.isQuantum && !stations::RuleOfModel(made.station.modelno).isMicro) {
                    EXPECT_GT(rows.size(), 50U);
                    check(made, streamno, rows);
                }
            }
        }
    }
};

TEST_F(DeliveredMapsTest, EveryPlaceOfAListHasOneRowAndTheCountsCoverThemAll) {
    ForEachStream([&](const Made& made, int streamno, const std::vector<Row>& rows) {
        std::set<int> floats;
        std::set<int> coils;
        for (const Row& row : rows) {
            const Place place = PlaceOf(row, made.registers);
            EXPECT_GE(place.position, 1);
            EXPECT_TRUE(row.Long("RS") >= 1 && row.Long("WS") >= row.Long("RS") && row.Long("WS") <= 6) << "its levels";
            EXPECT_TRUE((place.coil ? coils : floats).insert(place.position).second) << row.Text("description");
        }
        const auto counts = core::ReadModelCounts(desk->dbconn, made.station, streamno).value();
        EXPECT_LE(*floats.rbegin(), std::min(counts.floatcount, 300)) << "the Modbus archive begins behind them";
        EXPECT_LE(*coils.rbegin(), std::min(counts.boolcount, 80));
    });
}

// A name is found by its text, and by screens of the history as a part of a longer text, in the order coils, floats.
// So no name stands in front of a longer one that contains it, nor twice.
TEST_F(DeliveredMapsTest, NoValueCanBeTakenForAnotherByItsName) {
    ForEachStream([&](const Made& made, int, const std::vector<Row>& rows) {
        std::map<std::pair<int, int>, std::string> inOrder;
        for (const Row& row : rows) {
            const Place place = PlaceOf(row, made.registers);
            inOrder[{place.coil ? 0 : 1, place.position}] = core::UpperText(row.Text("description"));
        }
        for (auto shorter = inOrder.begin(); shorter != inOrder.end(); ++shorter) {
            for (auto longer = std::next(shorter); longer != inOrder.end(); ++longer) {
                EXPECT_EQ(longer->second.find(shorter->second), std::string::npos)
                    << shorter->second << " before " << longer->second;
            }
        }
    });
}

TEST_F(DeliveredMapsTest, TheValuesPeopleAreBilledByAreInEveryMap) {
    ForEachStream([&](const Made& made, int, const std::vector<Row>& rows) {
        std::map<std::string, std::string> aga;
        Names totals;
        for (const Row& row : rows) {
            aga[row.Text("description")] = row.Text("aga");
            if (row.Text("aga") == "TOTRND") {
                totals.push_back(row.Text("description"));
            }
        }
        const bool isCW = made.station.isCW;
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
    ForEachStream([&](const Made& made, int streamno, const std::vector<Row>&) {
        const std::string kind = WorkbookList(made.station.modelno, made.station.ModelText(streamno));
        const auto list = desk->dbconn.Query("select * from sched_ParaList where RTU_Type=?", {kind});
        EXPECT_TRUE(list.size() >= 10 && list.size() <= 15) << kind;
        if (made.station.protocol != core::Protocol::Bsap) {
            return;  // the same places, as registers
        }
        for (const Row& row : list) {
            const auto names =
                Texts("select description from configdata_detail where locationID=? and StreamNo=? and startaddress=?",
                      {made.station.locationID, streamno, row[2]});
            ASSERT_EQ(names.size(), 1U);
            // The two families share the first place: a TeleRTU without an orifice reads its meter there.
            EXPECT_TRUE(names[0] == row.Text("description") ||
                        (kind == "TF" && !made.optAga3 && names[0] == "UnCorr.Flowrate"))
                << kind << " " << names[0];
        }
    });
}

}  // namespace
