#pragma once

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "protocols/line/Conversation.h"

namespace reading {

// What every routine of the collection works with: the desk's shared things and the line to the field.
struct Workplace {
    core::Database& dbconn;
    const core::MAIN_Module& shared;
    core::Clock& clock;
    core::Feedback& feedback;
    core::Logs& logs;
    protocols::FieldLine& line;
    protocols::BsapCounters& counters;
};

}  // namespace reading
