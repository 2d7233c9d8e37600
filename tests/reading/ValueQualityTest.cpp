// After any kind of run every row of the map says when its value was read and how that ended, and nothing that is made
// from it says more.

#include <gmock/gmock.h>

#include <functional>
#include <map>

#include "collection/Workbook.h"
#include "core/Text.h"
#include "support/CollectionDesk.h"
#include "support/OddDevices.h"

using core::Row;
using reading::Result;
using testing::HasSubstr;
using testing::Not;

namespace {

// One of each kind, and a map that was laid out by hand with a gap behind every row.
struct ValueQuality : testing::Test {
    support::CollectionDesk desk{{2026, 3, 9, 7, 59, 30}};
    std::vector<std::int64_t> locations;
    std::int64_t handLaid = 0;
    std::string begun;

    ValueQuality() {
        for (const auto& station : demo::OneOfEach("08:00")) {
            locations.push_back(demo::AddStation(desk.dbconn, station));
        }
        handLaid = demo::AddStation(desk.dbconn, {"By Hand", "TeleFlow", "Modbus", "RTU", 6, 9});
        locations.push_back(handLaid);
        desk.dbconn.Execute("update configdata_master set MB_CONFIG=1 where locationID=?", {handLaid});
        desk.dbconn.Execute("update configdata_detail set startaddress='0' where locationID=?", {handLaid});
        int address = 1001;
        for (const char* name : {"Volume Yesterday", "Volume Today", "Flowing Temperature", "Energy Today", "Methane",
                                 "Nitrogen", "Ethane", "Propane", "Board Temperature", "Main Battery Volt",
                                 "Volume Last Month", "Volume This Month"}) {
            desk.dbconn.Execute(
                "update configdata_detail set startaddress=? where rowid=(select min(rowid) from "
                "configdata_detail where locationID=? and description=?)",
                {std::to_string(address), handLaid, name});
            address += 4;
        }
    }

    reading::RunState Run(std::int64_t location) {
        desk.clock.Run(60000);
        begun = core::IsoText(desk.clock.Now());
        reading::RunState state;
        collection::collectiong_Data(desk.place, location, state);
        EXPECT_FALSE(desk.ports.PortOpen());
        return state;
    }
    // The rows that have an address, by their number.
    std::map<std::int64_t, Row> Rows(std::int64_t location) {
        std::map<std::int64_t, Row> rows;
        for (const Row& row : desk.dbconn.Query(
                 "select * from configdata_detail where locationID=? and startaddress<>'0'", {location})) {
            rows.emplace(row.Long("srno"), row);
        }
        return rows;
    }
    Row Named(std::int64_t location, const char* description) {
        return desk.dbconn
            .First("select * from configdata_detail where locationID=? and description=? order by startaddress='0'",
                   {location, description})
            .value();
    }
    bool IsFresh(const Row& row, const char* quality) const {
        return row.Text("quality") == quality && row.Text("readat") >= begun;
    }
    std::string Book(std::int64_t location) {
        return support::FileText(
            collection::WorkbookPath(desk.shared, desk.Master(location).Text("consumer"), desk.clock.Now()));
    }
};

TEST_F(ValueQuality, AWholeRunMakesEveryRowGoodAndASilentOneKeepsItsMoment) {
    for (const auto location : locations) {
        SCOPED_TRACE(desk.Master(location).Text("consumer"));
        desk.OpenField();
        auto state = Run(location);
        const auto whole = Rows(location);
        EXPECT_EQ(state.result, Result::Collected);
        EXPECT_EQ(state.asked, static_cast<int>(whole.size()));
        EXPECT_EQ(state.received, state.asked);
        EXPECT_EQ(state.reason, "");
        for (const auto& [number, row] : whole) {
            EXPECT_TRUE(IsFresh(row, "good")) << row.Text("description") << " " << row.Text("startaddress");
        }

        // The station falls silent: at its last register, list or message, and from the start.
        desk.OpenField({.silent = {location}});
        support::Silence mute;
        for (const bool fromTheStart : {false, true}) {
            const auto before = Rows(location);
            if (fromTheStart) {
                desk.OpenField();
                desk.ports.Attach(static_cast<int>(core::Val(desk.Master(location).Text("comport").substr(3))), mute);
            }
            state = Run(location);
            int fresh = 0;
            for (const auto& [number, row] : Rows(location)) {
                const Row& earlier = before.at(number);
                const bool kept = row.Text("quality") == "not received" &&
                                  row.Text("readat") == earlier.Text("readat") &&
                                  row.Number("lastvalue") == earlier.Number("lastvalue");
                fresh += IsFresh(row, "good") ? 1 : 0;
                EXPECT_TRUE(kept || IsFresh(row, "good")) << row.Text("description") << " " << row.Text("quality");
            }
            const bool dialled = !desk.Master(location).Text("phoneno").empty();
            if (fromTheStart && dialled) {
                continue;  // the modem does not answer: nothing was asked for
            }
            EXPECT_TRUE(state.runfailed);
            EXPECT_EQ(state.received, fresh);
            EXPECT_EQ(state.asked, static_cast<int>(before.size()));
            EXPECT_EQ(state.result, fresh > 0 ? Result::Partly : Result::NoAnswer);
            EXPECT_NE(state.reason, "");
        }
    }
}

TEST_F(ValueQuality, WhatAStationRefusesIsNoFigureAndTheDayIsPartly) {
    const auto location = locations[0];
    auto& field = desk.OpenField();
    support::RefusingSlave refusing(*field.Station(location)->device, [](int reg) { return reg == 125; });
    desk.ports.Attach(1, refusing);
    auto state = Run(location);
    EXPECT_EQ(state.result, Result::Partly);
    EXPECT_EQ(state.reason, "62 values refused by the station (exception 2 at register 125)");
    EXPECT_EQ(state.asked - state.received, 62);
    for (const auto& [number, row] : Rows(location)) {
        const auto reg = row.Long("startaddress");
        const bool refused = row.Text("type") == "Float" && reg >= 125 && reg < 249;
        EXPECT_TRUE(IsFresh(row, refused ? "refused" : "good")) << row.Text("description");
        if (refused) {
            EXPECT_EQ(row.Number("lastvalue"), reg == 125 ? 2 : 0) << "as operators know a block that is not there";
        }
    }
    const auto day = desk.dbconn.First("select * from LogParam where LocationId=?", {location}).value();
    EXPECT_TRUE(day.IsNull("CurrentDayFlow")) << "a zero that nobody sent";
    EXPECT_FALSE(day.IsNull("currentprs"));
    EXPECT_THAT(day.Text("desc"), Not(HasSubstr("Volume Yesterday")));
    EXPECT_THAT(day.Text("desc"), testing::ContainsRegex("#Flowing Pressure=[0-9.]+[?]kg/cm2#"));
    EXPECT_THAT(Book(location), HasSubstr("\tVolume Yesterday\t\tSCM\trefused\r\n"));
    EXPECT_THAT(Book(location), testing::ContainsRegex("\tFlowing Pressure\t[0-9.]+\tkg/cm2\r\n"));

    refusing.refuses = [](int) { return true; };
    state = Run(location);
    EXPECT_EQ(state.result, Result::Refused);
    EXPECT_EQ(state.received, 0);
    EXPECT_THAT(state.reason, HasSubstr("(exception 2 at coil 1)"));
}

TEST_F(ValueQuality, ANumberThatTheWireCannotHoldIsNoZero) {
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const auto& field = desk.OpenField();
        for (const auto& [value, quality] : {std::pair(3e9, "out of range"), std::pair(-2147483648.0, "out of range"),
                                             std::pair(2147483520.0, "good"), std::pair(1e-12, "good")}) {
            ASSERT_TRUE(field.Values(locations[i], 1, "Flowing Pressure")->Fix("Flowing Pressure", value));
            const auto state = Run(locations[i]);
            const Row row = Named(locations[i], "Flowing Pressure");
            EXPECT_TRUE(IsFresh(row, quality)) << value << " " << row.Text("quality") << " " << row.Number("lastvalue");
            EXPECT_EQ(state.result, Result::Collected);
            const std::string book = Book(locations[i]);
            EXPECT_EQ(book.find("\tout of range\r\n", book.rfind("RTU Name")) != std::string::npos,
                      quality == std::string("out of range"))
                << value;
        }
    }
}

TEST_F(ValueQuality, AHandLaidMapIsReadWholeAndItsWorkbookFindsItsRowsByName) {
    desk.OpenField();
    desk.dbconn.Execute(
        "update configdata_detail set lastvalue=7.5, readat='2026-03-08 08:00:07', quality='good' where "
        "locationID=? and description='Flowing Pressure' and aga='AGA3'",
        {handLaid});
    EXPECT_EQ(Run(handLaid).asked, 12);
    const std::string book = Book(handLaid);
    for (const char* name : {"Volume Yesterday", "Volume Today", "Volume This Month", "Flowing Temperature"}) {
        EXPECT_THAT(book, testing::ContainsRegex("\t" + std::string(name) + "\t[0-9.]+\t[^\t]*\r\n"));
    }
    EXPECT_THAT(book, HasSubstr("\tFlowing Pressure\t7.5\tkg/cm2\tof 08/03/2026 08:00:07\r\n"));
    EXPECT_THAT(book, HasSubstr("\tDifferential Pressure\t\tmmWC\tnot read yet\r\n"));
}

// A value at every register, read as if each took two: every second one stood under another's name.
TEST_F(ValueQuality, AMapOfIntegersThatIsNotConfigurableIsNotRead) {
    desk.dbconn.Execute(
        "update configdata_detail set startaddress=(startaddress+1)/2 where locationID=? and type='Float'",
        {locations[0]});
    desk.OpenField();
    const auto state = Run(locations[0]);
    EXPECT_TRUE(state.runfailed);
    EXPECT_EQ(state.received, 0);
    EXPECT_THAT(desk.RtuErr(), HasSubstr("Type Integer"));
    EXPECT_EQ(desk.Count("configdata_detail where locationID=? and quality is not null", {locations[0]}), 0);
    EXPECT_EQ(desk.Count("LogParam where LocationId=?", {locations[0]}), 0);
}

// A station whose units are blank has those of its map, in the run as in every other reading.
TEST_F(ValueQuality, ABlankUnitLeavesThatOfTheMap) {
    const auto location = locations[2];
    const std::string unit = Named(location, "Flowing Pressure").Text("unit");
    ASSERT_NE(unit, "");
    desk.dbconn.Execute("update configdata_detail set unit='' where locationID=?", {location});
    desk.OpenField();  // it sends what its map had when the field was made
    desk.dbconn.Execute("update configdata_detail set unit=? where locationID=?", {unit, location});
    Run(location);
    EXPECT_EQ(Named(location, "Flowing Pressure").Text("unit"), unit);
}

}  // namespace
