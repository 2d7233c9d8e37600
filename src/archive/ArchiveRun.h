#pragma once

#include <optional>
#include <string>

#include "archive/Download.h"
#include "archive/Routines.h"
#include "archive/RunView.h"
#include "protocols/Conversation.h"

namespace archive {

// From one day to another, both of them whole.
struct DayRange {
    core::DateTime first;
    core::DateTime last;
};

struct ArchiveResult {
    RunEnd end = RunEnd::Failed;
    // What the operator is told of a failure; some routines give up without a word.
    std::string failure{};
    ArchiveDownload download{};  // what came, also when it was not all
};

// Downloads an archive file of the station that is signed on. A range is taken by the routines of DateRange only.
//
// Four bad replies end it, in front of the records at once where the routine says so. It never asks for ever: a reply
// that brings nothing and says that there is more is a bad one.
ArchiveResult RunArchive(protocols::Conversation& talk, const ArchiveRoutine& routine, int file,
                         const std::optional<DayRange>& range, RunView& view);

}  // namespace archive
