#pragma once

#include <string>
#include <vector>

#include "archive/Download.h"
#include "archive/RunView.h"
#include "archive/bsap/Routines.h"
#include "protocols/line/Conversation.h"

namespace archive {

struct AuditResult {
    RunEnd end = RunEnd::Failed;
    std::string failure{};             // the text that operators know for it; may be empty
    std::string reason{};              // why it ended early: a sentence
    std::vector<AuditEvent> events{};  // what came, in the order of the grid
    bool bounded = false;              // there may be more than the routine takes in one download
};

inline constexpr const char* collectingAudit = "Collecting Audit.......";

// Downloads the audit trail of the station that is signed on: in the order of arrival, or the newest event first. The
// fourth bad reply to a request ends it.
AuditResult RunAudit(protocols::Conversation& talk, const AuditRoutine& routine, RunView& view);

}  // namespace archive
