#pragma once

#include <span>
#include <string>
#include <vector>

#include "protocols/line/Conversation.h"
#include "reading/BsapListRecords.h"
#include "reading/ListInfo.h"

namespace reading {

struct BsapList {
    // The whole list was read. Otherwise the conversation ended or the station failed; what was read until then is
    // here, but is not to be stored.
    bool collstatus = false;
    bool brokenOff = false;  // the line is wanted for something more urgent
    // By position in the list from 1; index 0 is not used. Signals behind the last position of the kind are left out.
    std::vector<ListSignal> signals = std::vector<ListSignal>(1);
    // "#", description, "=", value, "?", unit for each position that has a description; logical lists have their words
    // for the value and no unit.
    std::string resultline;
};

// Reads a list of the station that is signed on: floats, 400 positions at most, or logical values, 80. `names`
// are the entries of the list's positions, as in ListInfo; the line in log.txt for the answers to acknowledgements is
// the scheduled run's alone. Takes up to 4 sends for each reply of the list, one commtimeout each and more where the
// station first acknowledges.
BsapList getdata_BSAP(protocols::Conversation& talk, int listNumber, core::ValueKind kind,
                      std::span<const ListEntry> names, bool logAcknowledge = true);

}  // namespace reading
