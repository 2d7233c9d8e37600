#pragma once

#include <memory>

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

    // The same with another place for what the operator is told.
    Workplace With(core::Feedback& other) const { return {dbconn, shared, clock, other, logs, lines, counters}; }

    // A conversation with a station, its stream 1, on a line that the caller holds. Audit lines name the user of now.
    protocols::Conversation Begin(std::shared_ptr<protocols::LineLease> lease, core::Station station) const;
};

}  // namespace reading
