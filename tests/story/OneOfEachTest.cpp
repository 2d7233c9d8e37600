#include <gmock/gmock.h>

#include "collection/Workbook.h"
#include "support/CollectionDesk.h"

using testing::HasSubstr;

namespace {

// What a row holds that no collection has touched.
constexpr double untouched = -999999;

// One station of each protocol, collected at its contract hour from a simulated field, as the demo does it.
struct OneOfEach : testing::Test {
    support::CollectionDesk desk{{2026, 3, 9, 7, 59, 30}};
    std::vector<std::int64_t> locations;

    OneOfEach() {
        for (const auto& station : demo::OneOfEach("08:00")) {
            locations.push_back(demo::AddStation(desk.dbconn, station));
        }
        desk.dbconn.Execute("insert into email_settings values('operator@station','','','','')");
        Forget();
    }
    void Forget() { desk.dbconn.Execute("update configdata_detail set lastvalue=?", {untouched}); }
    std::vector<core::Row> Rows(std::int64_t location) {
        return desk.dbconn.Query("select * from configdata_detail where locationID=?", {location});
    }
    int Stored(std::int64_t location) {
        return static_cast<int>(
            desk.Count("configdata_detail where locationID=? and lastvalue<>?", {location, untouched}));
    }
    // Every value that is in the map now is one that the station gave out under that name.
    void ExpectOnlyServedValues(const fieldsim::Field& field, std::int64_t location) {
        for (const core::Row& row : Rows(location)) {
            const double value = row.Number("lastvalue");
            const bool missing = value == 0 && row.Text("quality") == "not received";
            EXPECT_TRUE(
                value == untouched || missing ||
                field.WasServed(location, static_cast<int>(row.Long("StreamNo")), row.Text("description"), value))
                << location << " " << row.Text("description") << " = " << value;
        }
    }
};

TEST_F(OneOfEach, IsCollectedWholeAtItsContractHour) {
    fieldsim::FieldOptions options;
    options.modems[3] = {{"NO CARRIER", 6000}, {"CONNECT 9600", 5000}};
    const auto& field = desk.OpenField(options);
    desk.StartTicking();
    desk.clock.Run(20 * 60000);

    const int mapped[] = {263 + 75, 259 + 75, 242 + 75, 179 + 43 + 204 + 41, 24};
    for (std::size_t i = 0; i < locations.size(); ++i) {
        EXPECT_TRUE(desk.Master(locations[i]).Bool("sampledtoday")) << desk.RtuErr();
        EXPECT_EQ(Stored(locations[i]), mapped[i]) << locations[i];
        ExpectOnlyServedValues(field, locations[i]);
        EXPECT_EQ(desk.Count("LogParam where LocationId=?", {locations[i]}), 1);
    }
    EXPECT_EQ(desk.Count("Scheduler"), 5);  // one a stream; a Quantum unit has none
    EXPECT_EQ(desk.mail.sent.size(), 1U);
    EXPECT_EQ(desk.RtuErr(), "");
    EXPECT_FALSE(desk.ports.PortOpen());

    const auto day = desk.dbconn.First("select * from LogParam where LocationId=?", {locations[0]}).value();
    EXPECT_TRUE(field.WasServed(locations[0], 1, "Volume Yesterday", day.Number("CurrentDayFlow")));
    EXPECT_TRUE(field.WasServed(locations[0], 1, "Volume This Month", day.Number("CurrentMonthFlow")));
    EXPECT_TRUE(field.WasServed(locations[0], 1, "Flowing Pressure", day.Number("currentprs")));
    EXPECT_THAT(day.Text("desc"), HasSubstr("#Volume Yesterday="));

    const std::string book = support::FileText(
        collection::WorkbookPath(desk.shared, desk.Master(locations[3]).Text("consumer"), desk.clock.Now()));
    EXPECT_THAT(book, HasSubstr("RTU Name:- O'Brien's Works\r\n"));
    EXPECT_THAT(book, HasSubstr("Stream:- 2\r\n"));
    EXPECT_THAT(book, HasSubstr("Model Name:- AGA7\r\n"));
}

TEST_F(OneOfEach, ADayLaterEveryRowIsUpdatedAndNoneIsDoubled) {
    desk.OpenField();
    desk.StartTicking();
    desk.clock.Run(30ULL * 3600000);
    EXPECT_EQ(desk.Count("LogParam"), 10);
    EXPECT_EQ(desk.Count("Scheduler"), 10);
    desk.dbconn.Execute("update configdata_master set contracthour='15:00'");
    desk.clock.Run(2 * 3600000);
    EXPECT_EQ(desk.Count("LogParam"), 10);  // the second run of a day updates its row
    EXPECT_EQ(desk.Count("Scheduler"), 15);
}

// Every conversation of every station, with each kind of fault at each of its exchanges: the run ends, the port is
// closed, and no row holds a value that the station did not give out under that name.
class FaultAtEveryPoint : public OneOfEach, public testing::WithParamInterface<std::tuple<int, fieldsim::Fault>> {};

TEST_P(FaultAtEveryPoint, EndsWithoutAWrongValue) {
    using fieldsim::Fault;
    const auto [index, fault] = GetParam();
    const std::int64_t location = locations[static_cast<std::size_t>(index)];
    constexpr int exchanges = 24;
    for (int at = 0; at < exchanges; ++at) {
        Forget();
        fieldsim::LineFaults::Options faults;
        faults.script.assign(static_cast<std::size_t>(at), Fault::None);
        faults.script.push_back(fault);
        auto& field = desk.OpenField({.faults = {{location, faults}}});
        desk.clock.Run(60000);  // what is still on its way is lost on the closed port
        reading::RunState state;
        const auto before = desk.clock.Elapsed();
        collection::collectiong_Data(desk.place, location, state);
        EXPECT_LT(desk.clock.Elapsed() - before, 10U * 60000);
        EXPECT_FALSE(desk.ports.PortOpen());
        ExpectOnlyServedValues(field, location);
        if (!state.runfailed) {
            EXPECT_GT(Stored(location), 0);
        }
        if (field.Station(location)->faults->Count(fault) == 0) {
            break;  // the conversation is over before this point
        }
    }
}

using enum fieldsim::Fault;

INSTANTIATE_TEST_SUITE_P(ModbusRtu, FaultAtEveryPoint,
                         testing::Combine(testing::Values(0), testing::Values(Silence, NoiseBefore, NoiseAfter,
                                                                              BadCheck, Cut, Late, Echo, NoCarrier)));
// The check of this framing is not looked at, so a bit that falls over on the line is not noticed.
INSTANTIATE_TEST_SUITE_P(ModbusAscii, FaultAtEveryPoint,
                         testing::Combine(testing::Values(1), testing::Values(Silence, NoiseBefore, NoiseAfter, Cut,
                                                                              Late, Echo, NoCarrier)));
INSTANTIATE_TEST_SUITE_P(Bsap, FaultAtEveryPoint,
                         testing::Combine(testing::Values(2, 3),
                                          testing::Values(Silence, NoiseBefore, NoiseAfter, BadCheck, Cut, Late, Echo,
                                                          NoCarrier)));
// Noise before the reply of a Quantum unit moves its fields, which have fixed places.
INSTANTIATE_TEST_SUITE_P(Quantum, FaultAtEveryPoint,
                         testing::Combine(testing::Values(4), testing::Values(Silence, NoiseAfter, Cut, Late, Echo)));

}  // namespace
