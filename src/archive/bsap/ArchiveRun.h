#pragma once

#include <optional>
#include <string>

#include "archive/Download.h"
#include "archive/RunView.h"
#include "archive/bsap/Routines.h"
#include "archive/store/ArchiveStore.h"
#include "protocols/line/Conversation.h"

namespace archive {

// From one day to another, both of them whole.
struct DayRange {
    core::DateTime first;
    core::DateTime last;
};

struct ArchiveResult {
    RunEnd end = RunEnd::Failed;
    std::string failure{};       // the text that operators know for it; some routines have none
    std::string reason{};        // why it ended early: a sentence
    bool metStored = false;      // newest first: the records below the last one are in the store
    ArchiveDownload download{};  // what came, also when it was not all
};

// Downloads an archive file of the station that is signed on. A range is taken by the routines of DateRange only: two
// replies in a row that lie behind its last day end the download, a single record there (a clock that was set wrong)
// does not.
//
// Four bad replies to one request end it. It never asks for ever: a reply that brings nothing and says that there is
// more is a bad one. With a store (null: none), the records of each reply are stored before the next request, and
// newest first ends where everything below is in the store.
//
// Record numbers have two bytes: behind 65,535 comes 0. The run counts on from the oldest number, so that a file whose
// numbers have gone round is read like any other.
ArchiveResult RunArchive(protocols::Conversation& talk, const ArchiveRoutine& routine, int file,
                         const std::optional<DayRange>& range, RunView& view, ArchiveKeeper* keeper);

}  // namespace archive
