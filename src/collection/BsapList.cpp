#include "collection/BsapList.h"

#include <algorithm>
#include <optional>

#include "collection/LogicalText.h"
#include "core/Text.h"
#include "protocols/Bsap.h"
#include "protocols/BsapLink.h"
#include "protocols/BsapReply.h"

namespace collection {

namespace {

using protocols::BsapState;

constexpr int mostSends = 4;

// A reply of a list: its records, and where the list goes on; 0 when that was the last.
struct Page {
    int next = 0;
    std::vector<ListSignal> signals;
};

// The two bytes from which a list goes on, as one number.
int Continuation(int first, int second) {
    return first + 256 * second;
}

class ListFetch {
  public:
    ListFetch(protocols::Conversation& talk, int listNumber, bool logAcknowledge)
        : talk_(talk), listNumber_(listNumber) {
        log_.title = "Get List " + std::to_string(listNumber) + " Response";
        log_.acknowledge = logAcknowledge;
        talk_.bsap.listnext1 = 0;
        talk_.bsap.listnext2 = 0;
    }

    // The next reply of the list; nothing after four that were not good, or when the conversation ended.
    std::optional<Page> NextPage() {
        for (int sends = 1; sends <= mostSends; ++sends) {
            const std::string frame = protocols::Bsap(talk_.counters, talk_.bsap, talk_.station.isCW)
                                          .get_LIST(talk_.station.slaveaddress, listNumber_, asked_.empty());
            const std::string reply = protocols::ReadReply(talk_, frame, log_);
            if (talk_.Ended()) {
                return std::nullopt;
            }
            auto page = ReadPage(reply);
            talk_.requests.Note(page.has_value());
            if (page) {
                LetLateRepliesPass(sends - 1);
                asked_.push_back(page->next);
                return page;
            }
            if (talk_.Wanted()) {
                return std::nullopt;
            }
        }
        return std::nullopt;
    }

  private:
    // A good reply is long enough to be one. It also has to be what it seems: a cut, doubled or repeated reply would
    // move every later signal to another's position, and so under another's name.
    std::optional<Page> ReadPage(const std::string& received) {
        BsapState& state = talk_.bsap;
        const std::string reply = protocols::UndoDoubling(received);
        const std::size_t tooShort = state.usepoll ? 22 : 18;
        if (reply.size() <= tooShort || !protocols::IsWholeFrame(received) || !protocols::HasRightCheck(received)) {
            return std::nullopt;
        }
        const auto& layout = protocols::ReplyLayout(talk_.station.isCW);
        const int next1 = protocols::ByteAtPosition(reply, layout.listNext).value_or(0);
        const int next2 = protocols::ByteAtPosition(reply, layout.listNext + 1).value_or(0);
        const int next = Continuation(next1, next2);
        ListRecords records = ReadRecords(reply, {layout.firstRecord, state.listunits, talk_.station.isTeleCorrector});
        if (!records.whole || AlreadyAsked(next)) {
            return std::nullopt;
        }
        state.listnext1 = next1;
        state.listnext2 = next2;
        return Page{next, std::move(records.signals)};
    }

    // A reply that goes on where this list has already gone on is the late answer to an earlier request.
    bool AlreadyAsked(int next) const { return std::find(asked_.begin(), asked_.end(), next) != asked_.end(); }

    // A good reply after `repeats` sends may be the answer to the first of them. The others' are then on their way, as
    // late as this one was, and must not be taken for those to the next requests.
    void LetLateRepliesPass(int repeats) {
        if (repeats > 0) {
            talk_.Wait(static_cast<double>(repeats) * talk_.CommTimeout());
        }
    }

    protocols::Conversation& talk_;
    int listNumber_;
    protocols::RequestLog log_;
    std::vector<int> asked_;  // from where the list went on so far
};

void AppendPiece(std::string& resultline, const std::string& description, const ListSignal& signal, ListKind kind) {
    if (description.empty()) {
        return;
    }
    resultline += "#" + description + "=";
    if (kind == ListKind::Boolean) {
        resultline += LogicalText(description, signal.value);
    } else {
        resultline += core::NumberText(signal.value) + "?" + signal.unit;
    }
}

// Puts the records of a reply at the positions that follow.
void TakePage(BsapList& list, const Page& page, std::size_t positions, ListKind kind,
              std::span<const ListEntry> names) {
    for (const ListSignal& signal : page.signals) {
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
bool ReadPages(protocols::Conversation& talk, ListFetch& fetch, BsapList& list, ListKind kind,
               std::span<const ListEntry> names) {
    const std::size_t positions = kind == ListKind::Float ? maxFloats : maxBooleans;
    for (std::size_t reply = 0; reply < positions && !talk.Wanted(); ++reply) {
        const auto page = fetch.NextPage();
        if (!page) {
            return false;
        }
        TakePage(list, *page, positions, kind, names);
        if (page->next == 0 || list.signals.size() > positions) {
            return true;
        }
    }
    return false;
}

}  // namespace

BsapList getdata_BSAP(protocols::Conversation& talk, int listNumber, ListKind kind, std::span<const ListEntry> names,
                      bool logAcknowledge) {
    talk.feedback.Status("Collecting Data.....");
    ListFetch fetch(talk, listNumber, logAcknowledge);
    BsapList list;
    list.collstatus = ReadPages(talk, fetch, list, kind, names);
    list.brokenOff = !list.collstatus && talk.Wanted() && !talk.Ended();
    if (!list.collstatus && !list.brokenOff) {
        talk.feedback.Status("Error Occured in Communication");
    }
    return list;
}

}  // namespace collection
