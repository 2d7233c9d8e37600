#pragma once

#include <type_traits>

#include "fieldsim/SimLine.h"
#include "protocols/line/Conversation.h"
#include "support/ScratchDesk.h"
#include "support/ScriptedLine.h"

namespace support {

// A conversation with station 7 over a line of the test, on a desk of its own.
template <typename TestLine>
class FieldTalk {
    TestLine MakeLine() {
        if constexpr (std::is_constructible_v<TestLine, fieldsim::SimPorts&>) {
            return TestLine(ports);
        } else if constexpr (std::is_constructible_v<TestLine, fieldsim::VirtualClock&>) {
            return TestLine(desk.clock);
        } else {
            return TestLine();
        }
    }
    static core::Station Seven() {
        core::Station station;
        station.locationID = 7;
        station.phoneno = "0265-12";
        station.dialprefix = "atx3dt";
        return station;
    }

  public:
    ScratchDesk desk;
    fieldsim::SimPorts ports{desk.clock};
    TestLine line = MakeLine();
    protocols::FieldLine field{line, desk.clock};
    protocols::BsapCounters counters;
    protocols::Conversation talk{
        field.TakeOver(""), desk.clock, desk.feedback, desk.logs, counters, Seven(), "", 1, {}, {}};

    // The lines of RTU_Err.log without their stamps.
    std::vector<std::string> Errors() const {
        std::vector<std::string> errors;
        std::istringstream log(desk.RtuErr());
        for (std::string errorLine; std::getline(log, errorLine);) {
            errors.push_back(errorLine.substr(errorLine.find("--:") + 3));
        }
        return errors;
    }
};

using ScriptedTalk = FieldTalk<ScriptedLine>;
using SimulatedTalk = FieldTalk<fieldsim::SimLine>;

}  // namespace support
