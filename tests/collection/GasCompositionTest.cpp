#include <gmock/gmock.h>

#include "collection/CollectionRun.h"
#include "collection/GasComposition.h"
#include "support/CollectionDesk.h"

using collection::GasComponent;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const char* const notComplete = "Gas composition write not complete / RTU not available\n";

struct GasCompositionTest : testing::Test {
    support::CollectionDesk desk;
    std::int64_t location = demo::AddStation(desk.dbconn, {"Mill", "TeleFlow", "Modbus", "RTU", 1, 3});
    fieldsim::Field* field = nullptr;

    // A conversation with the station whose line is up.
    protocols::Conversation Connect() {
        auto lease = desk.Line().TakeOver("");
        lease->CommPort(1);
        EXPECT_TRUE(lease->PortOpen(true));
        protocols::Conversation talk{lease,     desk.clock,    desk.feedback,
                                     desk.logs, desk.counters, core::ReadStation(desk.dbconn, location).value(),
                                     "operator"};
        talk.modbus.rtu32bit = talk.station.rtuBitsMode;
        return talk;
    }
    bool Write() {
        protocols::Conversation talk = Connect();
        return collection::write_gascomposition(desk.place, talk);
    }
    void Collect() {
        reading::RunState state;
        collection::collectiong_Data(desk.place, location, state);
        EXPECT_FALSE(state.runfailed) << desk.RtuErr();
    }
    // The first components of the station's map, with these values.
    void SaveFirst(std::initializer_list<double> values) {
        auto components = collection::GasComposition(desk.dbconn, location);
        components.resize(values.size());
        std::transform(values.begin(), values.end(), components.begin(), components.begin(),
                       [](double value, GasComponent one) {
                           one.value = value;
                           return one;
                       });
        collection::SaveGasComposition(desk.dbconn, location, components);
    }
    // What the station itself holds.
    double Held(const std::string& description) {
        const auto* values = field->Values(location, 1, description);
        return values->ValueAt(*values->Find(description), desk.clock.Now());
    }
};

TEST_F(GasCompositionTest, OnlyAModbusStationWithAga8DetailTakesOne) {
    for (const std::string change : {"aga8_fpv=false", "Gross_Detail=true", "aga8_fpv=null"}) {
        const auto other = demo::AddStation(desk.dbconn, {change, "TeleFlow", "Modbus", "RTU", 2, 1});
        desk.dbconn.Execute("update configdata_master set " + change + " where locationID=?", {other});
    }
    demo::AddStation(desk.dbconn, {"Hill", "TeleFlow+", "BSAP", "", 3, 5});
    demo::AddStation(desk.dbconn, {"O'Brien's", "TeleFlow", "Modbus", "ASCII", 4, 1});
    std::vector<std::string> names;
    for (const auto& station : collection::GasStations(desk.dbconn)) {
        names.push_back(station.consumer);
    }
    EXPECT_THAT(names, ElementsAre("Mill", "O'Brien's"));
}

TEST_F(GasCompositionTest, TheLastReadOneIsOfferedUntilOneIsSaved) {
    field = &desk.OpenField();
    Collect();
    auto components = collection::GasComposition(desk.dbconn, location);
    ASSERT_EQ(components.size(), 21U);
    EXPECT_EQ(components[0].description, "Methane");
    EXPECT_TRUE(field->WasServed(location, 1, "Methane", components[0].value.value()));
    components[0].value = 91.25;
    components[1].description = "it's";
    collection::SaveGasComposition(desk.dbconn, location, components);
    Collect();
    const auto wanted = collection::GasComposition(desk.dbconn, location);
    ASSERT_EQ(wanted.size(), 21U);
    EXPECT_EQ(wanted[0].value, 91.25);
    EXPECT_EQ(wanted[1].description, "it's");
    EXPECT_EQ(wanted[20].startaddress, components[20].startaddress);

    desk.dbconn.Execute(
        "create temp trigger full before insert on write_gc when new.description='Nitrogen' begin "
        "select raise(abort,'disk full'); end");
    EXPECT_THROW(collection::SaveGasComposition(desk.dbconn, location, {{"1", "Methane", 1}, {"3", "Nitrogen", 2}}),
                 core::DatabaseError);
    EXPECT_EQ(collection::GasComposition(desk.dbconn, location).size(), 21U);
}

// It would replace what the station calculates with.
TEST_F(GasCompositionTest, WhatWasNeverReadIsNoZero) {
    field = &desk.OpenField();
    ASSERT_TRUE(field->Values(location, 1, "Methane")->Fix("Methane", 90.5));
    auto components = collection::GasComposition(desk.dbconn, location);
    for (const GasComponent& component : components) {
        EXPECT_EQ(component.value, std::nullopt) << component.description;
    }
    components[1].value = 7;
    collection::SaveGasComposition(desk.dbconn, location, components);
    EXPECT_EQ(collection::GasComposition(desk.dbconn, location)[0].value, std::nullopt);
    EXPECT_EQ(collection::GasSum(components), 7);
    EXPECT_EQ(collection::GasSum({{"", "", 0.1}, {"", "", 0.2}}), 0.3);  // to four places
    ASSERT_TRUE(Write()) << desk.RtuErr();
    EXPECT_EQ(Held("Methane"), 90.5);
    EXPECT_EQ(Held("Nitrogen"), 7);
}

// A written composition is what the station then gives out, and nothing beside it has moved.
TEST_F(GasCompositionTest, TheStationHoldsWhatWasWritten) {
    for (const bool rtubits : {false, true}) {
        desk.dbconn.Execute("update configdata_master set rtubits=?", {rtubits});
        if (rtubits) {
            desk.dbconn.Execute("update configdata_detail set startaddress=(startaddress+1)/2 where type='Float'");
            desk.dbconn.Execute("delete from write_gc");
        }
        field = &desk.OpenField();
        ASSERT_TRUE(field->Values(location, 1, "Flowing Pressure")->Fix("Flowing Pressure", 18.5));
        auto components = collection::GasComposition(desk.dbconn, location);
        for (std::size_t i = 0; i < components.size(); ++i) {
            components[i].value = rtubits ? 0.5 * static_cast<double>(i) : 80 - 3.25 * static_cast<double>(i);
        }
        collection::SaveGasComposition(desk.dbconn, location, components);
        ASSERT_TRUE(Write()) << desk.RtuErr();
        for (const GasComponent& component : components) {
            EXPECT_EQ(Held(component.description), component.value) << component.description;
        }
        EXPECT_EQ(Held("Flowing Pressure"), 18.5);
    }
    EXPECT_EQ(desk.feedback.status.front(), "Writing Gas Composition");
    EXPECT_EQ(desk.RtuErr(), "");
}

// Rows go by the number of their register. One without a register on the wire ends the write where it stands.
TEST_F(GasCompositionTest, TheFirstRowThatFailsEndsIt) {
    const struct {
        const char* address;
        bool nitrogen;  // written before it
        bool all;
    } cases[] = {{"9999", true, false}, {"9", true, true},      {"-5", false, false}, {"54-94", false, false},
                 {"1e2", false, false}, {"40.0", false, false}, {"", false, false},   {"0", false, false}};
    const auto nitrogen = collection::GasComposition(desk.dbconn, location)[1].startaddress;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.address);
        field = &desk.OpenField();
        const double before = Held("Nitrogen");
        collection::SaveGasComposition(desk.dbconn, location, {{c.address, "X", 1}, {nitrogen, "Nitrogen", 7}});
        std::filesystem::remove(desk.shared.rtuErrPath);
        EXPECT_EQ(Write(), c.all);
        EXPECT_EQ(Held("Nitrogen"), c.nitrogen ? 7 : before);
        EXPECT_EQ(desk.RtuErr().find(notComplete) != std::string::npos, !c.all);
    }
}

// A station that acknowledges and keeps its own value has not taken it.
TEST_F(GasCompositionTest, EachRowIsReadBack) {
    SaveFirst({88, 7});
    fieldsim::FieldOptions options;
    options.writes[location].script = {fieldsim::WriteFault::None, fieldsim::WriteFault::Ignore};
    field = &desk.OpenField(options);
    EXPECT_FALSE(Write());
    EXPECT_THAT(desk.RtuErr(), HasSubstr(notComplete));
    const auto trail = desk.dbconn.Texts("select LOG from TTS_table where LOG like '%asked for%'");
    EXPECT_THAT(trail, ElementsAre(HasSubstr("asked for 88 in Methane of the gas composition of RTU Mill: confirmed."),
                                   HasSubstr("in Nitrogen of the gas composition of RTU Mill: not confirmed, the "
                                             "station has ")));
}

TEST_F(GasCompositionTest, AFaultOrATakeoverAtARowEndsIt) {
    using fieldsim::Fault;
    SaveFirst({88, 7, 5});
    for (const Fault fault : {Fault::Silence, Fault::BadCheck, Fault::Cut, Fault::Exception, Fault::Echo}) {
        fieldsim::FieldOptions options;
        options.faults[location].script = {Fault::None, fault};
        field = &desk.OpenField(options);
        const double before = Held("Carbon Dioxide");
        std::filesystem::remove(desk.shared.rtuErrPath);
        EXPECT_FALSE(Write());
        EXPECT_EQ(Held("Methane"), 88);
        EXPECT_EQ(Held("Carbon Dioxide"), before);
        EXPECT_THAT(desk.RtuErr(), HasSubstr(notComplete)) << static_cast<int>(fault);
    }
    field = &desk.OpenField();
    std::filesystem::remove(desk.shared.rtuErrPath);
    auto talk = Connect();
    const auto taken = desk.clock.Elapsed() + 1250;
    desk.clock.After(1250, [this] { desk.Line().TakeOver("A scheduled collection has taken the line"); });
    EXPECT_FALSE(collection::write_gascomposition(desk.place, talk));
    EXPECT_EQ(desk.clock.Elapsed(), taken);
    EXPECT_THAT(desk.RtuErr(), HasSubstr(notComplete));
}

}  // namespace
