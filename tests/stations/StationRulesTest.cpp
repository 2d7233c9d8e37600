#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/Station.h"
#include "stations/StationRules.h"
#include "support/ScratchDesk.h"

namespace {

using stations::Baud;
using stations::Metering;
using testing::Contains;
using testing::IsEmpty;

TEST(StationRulesTest, ModelsInAnyCase) {
    const struct {
        const char* model;
        const char* stream;
        Metering metering;
        const char* protocol;
        const char* No_Stream;
    } cases[] = {
        {"cwefm-aga3", "AGA3", Metering::Aga3, "", "1"},
        {"CWGFC-AGA9", "AGA9", Metering::Unchanged, "BSAP", "1"},
        {"CWGFC-MULTISTREAM", "AGA3", Metering::Unchanged, "BSAP", "1"},
        {"CW_MICRO", "", Metering::Unchanged, "BSAP", ""},
        {"TeleFlow+", "AGA3", Metering::Aga3, "", ""},
        {"TeleCorrector", "AGA7", Metering::Aga7, "", "1"},
        {"TeleRTU(M)", "AGA3", Metering::Unchanged, "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.model);
        const auto rule = stations::RuleOfModel(c.model);
        EXPECT_EQ(rule.isCW, core::IsCwModel(c.model));
        EXPECT_EQ(rule.streamsShown, core::IsMultiStreamModel(c.model));
        EXPECT_EQ(rule.cmb_stm1, c.stream);
        EXPECT_EQ(rule.metering, c.metering);
        EXPECT_EQ(rule.protocol, core::ProtocolOf(c.protocol));
        EXPECT_EQ(rule.No_Stream, c.No_Stream);
        EXPECT_EQ(rule.meteringHidden, std::string(c.model).starts_with("Tele"));
        EXPECT_EQ(rule.mbConfigEnabled, core::IsMultiStreamModel(c.model) || rule.isMicro);
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
    for (const std::string protocol : {"Quantum", "BSAP", "modbus", "Radio"}) {
        SCOPED_TRACE(protocol);
        const bool modbus = protocol == "modbus";
        const auto rule = stations::RuleOfProtocol(protocol);
        EXPECT_EQ(rule.modeVisible, modbus || protocol == "Radio");
        EXPECT_EQ(rule.mode, core::FramingOf(modbus ? "RTU" : ""));
        EXPECT_EQ(rule.mbConfigVisible && rule.setRegisterVisible, modbus);
        EXPECT_EQ(rule.saveWaitsForRegisters && rule.floatTwoRegisters, modbus);
        EXPECT_EQ(rule.setRegisterUnchanged, protocol == "Radio");
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
        {"cmbprotocol", stations::Protocols(), "Fieldbus", "Invalid Protocol", true},
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
        {"9600,N,8,1", "9600,N,8,1"},  {" 300 , e , 5 , 1.5 ", "300,E,5,1.5"}, {"19200", "9600,N,8,1"},
        {"19200,N,8", "9600,N,8,1"},   {"fast,N,8,1", "9600,N,8,1"},           {"19200,M,8,1", "9600,N,8,1"},
        {"19200,N,9,1", "9600,N,8,1"}, {"19200,N,8,3", "9600,N,8,1"},
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
