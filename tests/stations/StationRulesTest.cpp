#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/Station.h"
#include "stations/StationRules.h"
#include "stations/TemplateQueries.h"
#include "support/ScratchDesk.h"

namespace {

using stations::Baud;
using stations::Metering;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// Every model that is offered leads to a station that a run can collect: its streams have a list, its protocol is
// offered.
TEST(StationRulesTest, TheRuleOfEveryDeliveredModelFitsWhatARunMakesOfIt) {
    support::ScratchDesk desk;
    const auto makes = stations::Makes(desk.dbconn);
    ASSERT_THAT(makes, ElementsAre("BB", "Bristol Babcock"));
    for (const std::string& make : makes) {
        const auto models = stations::Models(desk.dbconn, make);
        EXPECT_EQ(models.size(), 16U) << make;
        for (const std::string& model : models) {
            SCOPED_TRACE(model);
            const auto rule = stations::RuleOfModel(model);
            EXPECT_EQ(rule.isCW, core::IsCwModel(model));
            EXPECT_EQ(rule.streamsShown, core::IsMultiStreamModel(model));
            EXPECT_EQ(rule.streamCounts.empty(), !core::IsMultiStreamModel(model));
            EXPECT_EQ(stations::CwTable(rule.cmb_stm1).empty(), rule.isMicro);
            EXPECT_FALSE(stations::CwTable(rule.cmb_stm2to4).empty());
            EXPECT_TRUE(!rule.protocol || stations::IsInList(stations::Protocols(), core::TextOf(*rule.protocol)));
        }
    }
    EXPECT_THAT(stations::Models(desk.dbconn, "O'Brien"), IsEmpty());
}

TEST(StationRulesTest, Models) {
    const struct {
        const char* model;
        const char* stream;
        Metering metering;
        const char* protocol;
        const char* No_Stream;
        bool hidden, mbConfig;
        std::size_t counts;
    } cases[] = {
        {"cwefm-aga3", "AGA3", Metering::Aga3, "", "1", false, false, 0},
        {"CWGFC-AGA7", "AGA7", Metering::Aga7, "", "1", false, false, 0},
        {"CWGFC-AGA9", "AGA9", Metering::Unchanged, "BSAP", "1", false, false, 0},
        {"CWEPAC-AGA11", "AGA11", Metering::Unchanged, "BSAP", "1", false, false, 0},
        {"CWGFC-MULTISTREAM", "AGA3", Metering::Unchanged, "BSAP", "1", false, true, 2},
        {"CWEFM-MultiStream", "AGA3", Metering::Unchanged, "BSAP", "1", false, true, 4},
        {"CW_MICRO", "", Metering::Unchanged, "BSAP", "", false, true, 0},
        {"TeleFlow+", "AGA3", Metering::Aga3, "", "", true, false, 0},
        {"TeleCorrector", "AGA7", Metering::Aga7, "", "1", true, false, 0},
        {"TeleRTU(M)", "AGA3", Metering::Unchanged, "", "", true, false, 0},
        {"Quantum", "AGA3", Metering::Unchanged, "", "", true, false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.model);
        const auto rule = stations::RuleOfModel(c.model);
        EXPECT_EQ(rule.cmb_stm1, c.stream);
        EXPECT_EQ(rule.metering, c.metering);
        EXPECT_EQ(rule.protocol, core::ProtocolOf(c.protocol));
        EXPECT_EQ(rule.No_Stream, c.No_Stream);
        EXPECT_EQ(rule.meteringHidden, c.hidden);
        EXPECT_EQ(rule.mbConfigEnabled, c.mbConfig);
        EXPECT_EQ(rule.streamCounts.size(), c.counts);
        EXPECT_EQ(rule.protocolLocked, rule.isMicro);
        EXPECT_EQ(rule.scheduleEnabled, !rule.isMicro);
    }
}

TEST(StationRulesTest, CommunicationTypesAndProtocolsOfStoredRowsToo) {
    const struct {
        const char* comtype;
        bool phone, setting, settingEnabled, ip;
        Baud baud;
        const char* delaytime;
    } lines[] = {
        {"DialUp Modem", true, true, true, false, Baud::Enabled, "4000"},
        {"gsm modem", true, true, true, false, Baud::Enabled, "6000"},
        {"IP", false, false, true, true, Baud::Unchanged, "500"},
        {"Radio", false, true, false, false, Baud::Radio, "500"},
        {"Direct Comport", false, true, true, false, Baud::Enabled, "500"},
    };
    for (const auto& c : lines) {
        SCOPED_TRACE(c.comtype);
        const auto rule = stations::RuleOfCommunication(c.comtype);
        EXPECT_TRUE(rule.portVisible);
        EXPECT_EQ(rule.phoneVisible, c.phone);
        EXPECT_EQ(rule.settingVisible, c.setting);
        EXPECT_EQ(rule.settingEnabled, c.settingEnabled);
        EXPECT_EQ(rule.ipVisible, c.ip);
        EXPECT_EQ(rule.lineHiddenOnDisplay, c.ip);
        EXPECT_EQ(rule.baud, c.baud);
        EXPECT_EQ(rule.delaytime, c.delaytime);
    }
    const struct {
        const char* protocol;
        bool mode, modbus, setRegisterUnchanged;
    } protocols[] = {{"Quantum", false, false, false},
                     {"BSAP", false, false, false},
                     {"modbus", true, true, false},
                     {"Radio", true, false, true}};
    for (const auto& c : protocols) {
        SCOPED_TRACE(c.protocol);
        const auto rule = stations::RuleOfProtocol(c.protocol);
        EXPECT_EQ(rule.modeVisible, c.mode);
        EXPECT_EQ(rule.mode, core::FramingOf(c.modbus ? "RTU" : ""));
        EXPECT_EQ(rule.mbConfigVisible, c.modbus);
        EXPECT_EQ(rule.setRegisterVisible, c.modbus);
        EXPECT_EQ(rule.saveWaitsForRegisters, c.modbus);
        EXPECT_EQ(rule.floatTwoRegisters, c.modbus);
        EXPECT_EQ(rule.setRegisterUnchanged, c.setRegisterUnchanged);
    }
}

TEST(StationRulesTest, TypedTextsThatNoListHas) {
    support::ScratchDesk desk;
    const auto comports = stations::Comports(desk.dbconn);
    const auto baudrates = stations::Baudrates(desk.dbconn);
    EXPECT_THAT(comports, Contains("COM9"));
    const struct {
        const char* control;
        const std::vector<std::string>& list;
        const char* text;
        const char* message;
        bool cleared;
    } cases[] = {
        {"cmbrtumake", stations::Makes(desk.dbconn), "Nobody", "Invalid RTU", false},
        {"cmbrtumake", stations::Makes(desk.dbconn), " bb ", "", false},
        {"cmbmodelno", stations::Models(desk.dbconn, "BB"), "O'Model", "Invalid Model", false},
        {"cmbcommtype", stations::CommunicationTypes(), "Pigeon", "Invalid Communication Type", true},
        {"cmbcommport", comports, "COM10", "Invalid Comport", true},
        {"cmbcommport", comports, "", "", false},
        {"cmbprotocol", stations::Protocols(), "Fieldbus", "Invalid Protocol", true},
        {"cmbprotocol", stations::Protocols(), "Quantum", "", false},
        {"cmbbautrate", baudrates, "9601", "Invalid Baudrate", false},
        {"cmbdatabits", stations::DataBits(), "9", "Invlaid Databits", false},
        {"cmbparity", stations::Parities(), "Mark", "Invalid Parity", false},
        {"cmbstopbits", stations::StopBits(), "1.50", "Invalid Stopbits", false},
        {"cmbstopbits", stations::StopBits(), "1.5", "", false},
        {"txtconsumer", {}, "anything", "", false},
    };
    for (const auto& c : cases) {
        const auto refusal = stations::CheckTyped(c.control, c.list, c.text);
        EXPECT_EQ(refusal ? refusal->message : "", c.message) << c.control << " " << c.text;
        EXPECT_EQ(refusal && refusal->textCleared, c.cleared) << c.control << " " << c.text;
    }
}

TEST(StationRulesTest, LineSettingsAreTakenApartAndJoined) {
    const struct {
        const char* settings;
        const char* joined;
    } cases[] = {
        {"9600,N,8,1", "9600,N,8,1"},
        {"19200,O,7,2", "19200,O,7,2"},
        {" 300 , e , 5 , 1.5 ", "300,E,5,1.5"},
        {"", "9600,N,8,1"},
        {"19200", "9600,N,8,1"},
        {"19200,N,8", "9600,N,8,1"},
        {"19200,N,8,1,", "9600,N,8,1"},
        {"fast,N,8,1", "9600,N,8,1"},
        {"19200,M,8,1", "9600,N,8,1"},
        {"19200,N,9,1", "9600,N,8,1"},
        {"19200,N,8,3", "9600,N,8,1"},
        {"19200,,8,1", "9600,N,8,1"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(stations::JoinPortChoices(stations::ReadPortChoices(c.settings)), c.joined) << c.settings;
    }
    const auto blanks = stations::BlankPortChoices({"", " ", "", ""});
    ASSERT_EQ(blanks.size(), 4U);
    EXPECT_EQ(blanks[0].message, "Baudrate should not be Blank");
    EXPECT_EQ(blanks[1].message, "Databits should not be Blank");
    EXPECT_EQ(blanks[2].control, "cmbparity");
    EXPECT_EQ(blanks[3].control, "cmbstopbits");
    EXPECT_THAT(stations::BlankPortChoices({}), IsEmpty());
}

}  // namespace
