#pragma once

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "protocols/line/Conversation.h"
#include "protocols/line/FieldLines.h"

namespace reading {

// What every routine of the collection works with: the desk's shared things and the lines to the field.
struct Workplace {
    core::Database& dbconn;
    const core::MAIN_Module& shared;
    core::Clock& clock;
    core::Feedback& feedback;
    core::Logs& logs;
    protocols::FieldLines& lines;
    protocols::BsapCounters& counters;
};

}  // namespace reading
