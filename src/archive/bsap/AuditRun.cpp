#include "archive/bsap/AuditRun.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "archive/bsap/Archive.h"
#include "archive/bsap/Tries.h"

namespace archive {

namespace {

constexpr int blockOfEvents = 4;
constexpr int highestPosition = 65535;

class Run {
  public:
    Run(protocols::Conversation& talk, const AuditRoutine& routine, RunView& view)
        : talk_(talk),
          routine_(routine),
          view_(view),
          tries_(talk, view, routine.layout),
          archivecount_(routine.archivecount) {}

    AuditResult Result() {
        view_.Columns(AuditCaptions(routine_.numbered));
        routine_.newestFirst ? NewestFirst() : InOrder();
        return std::move(result_);
    }

  private:
    void Fail(RunEnd end, const std::string& failure, const std::string& reason) {
        result_.end = end;
        result_.failure = failure;
        result_.reason = reason;
    }

    bool Ends() {
        const bool stopped = view_.Stopped();
        result_.end = end_ ? RunEnd::Whole : talk_.Ended() ? RunEnd::LineLost : RunEnd::Stopped;
        return end_ || stopped || talk_.Ended();
    }

    std::optional<AuditReply> AskEvents(const AuditCursors& cursors, int position, int count,
                                        const char* failure = "Error In response", Tries::Patience patience = {}) {
        auto reply = tries_.Insist(
            [&] { return BuildAuditRequest(talk_.counters, talk_.station.slaveaddress, cursors, position, count); }, {},
            [&](const std::string& answer) { return ParseAuditReply(answer, routine_.layout); }, patience);
        if (!reply) {
            Fail(tries_.End(), failure, tries_.Reason());
        }
        return reply;
    }

    void InOrder() {
        AuditCursors cursors;
        int position = routine_.firstPosition;
        bool first = true;
        while (!Ends()) {
            const bool isLast = !routine_.endsByCount && archivecount_ == 1;
            const auto reply = AskEvents(cursors, position, archivecount_);
            if (!reply) {
                return;
            }
            if (first || routine_.endsByCount) {
                auditcount_ = reply->events;
                counter_ = std::min(1, auditcount_);
            }
            first = false;
            cursors = reply->cursors;
            position += static_cast<int>(reply->records.size());
            Take(reply->records);
            if (!routine_.endsByCount && reply->events == 0) {
                archivecount_ = 1;
            }
            const bool stuck = reply->records.empty() && reply->events != 0;
            if (stuck && static_cast<int>(result_.events.size()) < auditcount_) {
                Fail(RunEnd::Failed, "", "The station announced " + std::to_string(auditcount_) + " events.");
                return;
            }
            end_ = end_ || isLast || stuck || (routine_.endsByCount && position >= auditcount_);
        }
    }

    // A station gives its audit forwards only: first its end is looked for, then blocks are read backwards from there.
    void NewestFirst() {
        auto position = FindEnd();
        talk_.feedback.Status(collectingAudit);
        while (position && !Ends()) {
            const bool isLowest = *position <= blockOfEvents + 1;
            const int first = isLowest ? 1 : *position - blockOfEvents;
            std::vector<std::string> records;
            const bool good = ReadBlock(first, *position - first, records);
            // Above the newest event there may be places without one.
            const bool gap = good && !isLowest && records.empty() && !result_.events.empty();
            end_ = isLowest;
            std::reverse(records.begin(), records.end());
            Take(records);
            if (gap) {
                Fail(RunEnd::Failed, "", "The station gave no event at position " + std::to_string(first) + ".");
            }
            if (!good || gap) {
                return;
            }
            position = first;
        }
    }

    // The place behind the newest event, or one a little above. Nothing: the download has ended.
    std::optional<int> FindEnd() {
        constexpr Tries::Patience patience = {3};
        const auto reply = AskEvents({}, 1, blockOfEvents, "Error In Communication", patience);
        if (!reply) {
            return std::nullopt;
        }
        auditcount_ = reply->events;
        counter_ = std::min(1, auditcount_);
        if (&routine_.layout == &protocols::longArchive) {
            return auditcount_ + 1;
        }
        const int first = static_cast<int>(reply->records.size());
        return reply->events == 0 ? first + 1 : SearchEnd(std::max(first, 1));
    }

    // The short layout does not say how many events there are. From `last`, which has one, the position is doubled
    // until it has none; then the range between is halved until a block covers it.
    std::optional<int> SearchEnd(int last) {
        int behind = 0;
        while (behind == 0 || behind - last > blockOfEvents) {
            const int next = behind == 0 ? std::min(2 * last, highestPosition) : (last + behind) / 2;
            talk_.feedback.Status("Looking for the newest event: " + std::to_string(last) + " so far");
            if (view_.Stopped()) {
                Fail(RunEnd::Stopped, "", "");
                return std::nullopt;
            }
            const auto reply = AskEvents({}, next, blockOfEvents);
            if (!reply) {
                return std::nullopt;
            }
            const bool has = reply->events != 0 && !reply->records.empty();
            (has ? last : behind) = has ? next + static_cast<int>(reply->records.size()) - 1 : next;
            behind = last >= highestPosition ? highestPosition + 1 : behind;
        }
        return behind;
    }

    // `count` events from a position on, in as many replies as they take.
    bool ReadBlock(int first, int count, std::vector<std::string>& records) {
        while (static_cast<int>(records.size()) < count) {
            const int got = static_cast<int>(records.size());
            const auto reply = AskEvents({}, first + got, count - got);
            if (!reply) {
                return false;
            }
            if (reply->records.empty()) {
                break;
            }
            records.insert(records.end(), reply->records.begin(), reply->records.end());
        }
        return true;
    }

    void Take(const std::vector<std::string>& records) {
        std::vector<std::vector<std::string>> rows;
        for (const std::string& bytes : records) {
            if (routine_.mostEvents != 0 && result_.events.size() >= routine_.mostEvents) {
                result_.bounded = end_ = true;
                break;
            }
            AuditEvent event = DecodeAuditRecord(bytes, routine_.codes);
            view_.Record(counter_, auditcount_);
            counter_ += counter_ < auditcount_ ? 1 : 0;
            rows.push_back(RowOf(event, result_.events.size() + 1));
            result_.events.push_back(std::move(event));
        }
        view_.Rows(rows);
    }

    std::vector<std::string> RowOf(const AuditEvent& event, std::size_t number) const {
        std::vector<std::string> row = {ShownTime(event.at), event.description, std::to_string(event.localID),
                                        std::to_string(event.globalID)};
        if (routine_.numbered) {
            row.insert(row.begin(), std::to_string(number));
        }
        return row;
    }

    protocols::Conversation& talk_;
    const AuditRoutine& routine_;
    RunView& view_;
    Tries tries_;
    AuditResult result_;
    int archivecount_;
    int auditcount_ = 0;
    int counter_ = 1;  // what the operator sees
    bool end_ = false;
};

}  // namespace

AuditResult RunAudit(protocols::Conversation& talk, const AuditRoutine& routine, RunView& view) {
    return Run(talk, routine, view).Result();
}

}  // namespace archive
