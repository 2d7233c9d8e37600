#include "reading/BsapList.h"

#include "core/Text.h"
#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapLayout.h"
#include "reading/ListReplies.h"
#include "reading/LogicalText.h"

namespace reading {

namespace {

ListReplies RepliesOf(protocols::Conversation& talk, int listNumber, bool logAcknowledge) {
    ListReading reading;
    reading.request = [&talk, listNumber](bool first) {
        return protocols::Bsap(talk.counters, talk.bsap, talk.station.isCW)
            .get_LIST(talk.station.slaveaddress, listNumber, first);
    };
    reading.form = {.firstRecord = protocols::ReplyLayout(talk.station.isCW).firstRecord,
                    .units = talk.bsap.listunits,
                    .isTeleCorrector = talk.station.isTeleCorrector,
                    .fields = RecordFields::Values};
    reading.tooShort = protocols::LongestWithoutData(talk.bsap.usepoll);
    reading.log = {"Get List " + std::to_string(listNumber) + " Response", logAcknowledge};
    return {talk, std::move(reading)};
}

void AppendPiece(std::string& resultline, const std::string& description, const ListSignal& signal,
                 core::ValueKind kind) {
    if (description.empty()) {
        return;
    }
    resultline += "#" + description + "=";
    if (kind == core::ValueKind::Logical) {
        resultline += LogicalText(description, signal.value);
    } else {
        resultline += core::NumberText(signal.value) + "?" + signal.unit;
    }
}

// Puts the records of a reply at the positions that follow.
void TakeReply(BsapList& list, const ListReply& reply, std::size_t positions, core::ValueKind kind,
               std::span<const ListEntry> names) {
    for (const ListSignal& signal : reply.signals) {
        const std::size_t position = list.signals.size();
        if (position > positions) {
            return;
        }
        if (position < names.size()) {
            AppendPiece(list.resultline, names[position].description, signal, kind);
        }
        list.signals.push_back(signal);
    }
}

// Tells whether the list came to its end, or to the last position that the kind has. A station that sends no more than
// replies without signals, with always another place to go on, has failed: no list has more replies than positions.
bool ReadReplies(protocols::Conversation& talk, ListReplies replies, BsapList& list, core::ValueKind kind,
                 std::span<const ListEntry> names) {
    const std::size_t positions = kind == core::ValueKind::Float ? maxFloats : maxBooleans;
    for (std::size_t count = 0; count < positions && !talk.Wanted(); ++count) {
        const auto reply = replies.Next();
        if (!reply) {
            return false;
        }
        TakeReply(list, *reply, positions, kind, names);
        if (reply->next == 0 || list.signals.size() > positions) {
            return true;
        }
    }
    return false;
}

}  // namespace

BsapList getdata_BSAP(protocols::Conversation& talk, int listNumber, core::ValueKind kind,
                      std::span<const ListEntry> names, bool logAcknowledge) {
    talk.feedback.Status("Collecting Data.....");
    BsapList list;
    list.collstatus = ReadReplies(talk, RepliesOf(talk, listNumber, logAcknowledge), list, kind, names);
    list.brokenOff = !list.collstatus && talk.Wanted() && !talk.Ended();
    if (!list.collstatus && !list.brokenOff) {
        talk.feedback.Status("Error Occured in Communication");
    }
    return list;
}

}  // namespace reading
