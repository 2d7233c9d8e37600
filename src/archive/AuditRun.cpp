#include "archive/AuditRun.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "archive/Archive.h"
#include "archive/Asking.h"

namespace archive {

namespace {

constexpr int forgiven = 3;
constexpr int blockOfEvents = 4;

class Run {
  public:
    Run(protocols::Conversation& talk, const AuditRoutine& routine, RunView& view)
        : talk_(talk), routine_(routine), view_(view), archivecount_(routine.archivecount) {}

    AuditResult Result() {
        view_.Columns(AuditCaptions(routine_.numbered));
        routine_.newestFirst ? NewestFirst() : InOrder();
        return std::move(result_);
    }

  private:
    void Fail(const std::string& failure) {
        result_.end = talk_.Ended() ? RunEnd::LineLost : RunEnd::Failed;
        result_.failure = talk_.Ended() ? std::string() : failure;
    }

    bool GivesUp(int& failures) {
        if (!talk_.Ended() && ++failures <= forgiven) {
            return false;
        }
        Fail("Error In response");
        return true;
    }

    bool Ends() {
        const bool stopped = view_.Stopped();
        result_.end = end_ ? RunEnd::Whole : talk_.Ended() ? RunEnd::LineLost : RunEnd::Stopped;
        return end_ || stopped || talk_.Ended();
    }

    std::optional<AuditReply> AskEvents(const AuditCursors& cursors, int position, int count, std::size_t over) {
        const auto answer =
            Ask(talk_, BuildAuditRequest(talk_.counters, talk_.station.slaveaddress, cursors, position, count),
                {over, routine_.polls});
        return answer ? ParseAuditReply(*answer, routine_.layout) : std::nullopt;
    }

    void InOrder() {
        AuditCursors cursors;
        int position = routine_.firstPosition;
        int failures = 0;
        bool first = true;
        while (!Ends()) {
            const bool isLast = !routine_.endsByCount && archivecount_ == 1;
            const auto reply = AskEvents(cursors, position, archivecount_, routine_.over);
            if (!reply && GivesUp(failures)) {
                return;
            }
            if (!reply) {
                continue;
            }
            failures = routine_.forgivesLater ? 0 : failures;
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
            end_ = end_ || isLast || stuck || (routine_.endsByCount && position >= auditcount_);
        }
    }

    // A station gives its audit forwards only: first its end is looked for, then blocks are read backwards from there.
    void NewestFirst() {
        auto position = FindEnd();
        bool isFirst = true;
        int failures = 0;
        while (position && !Ends()) {
            const int below = *position + (isFirst ? 1 : 0);
            const bool isLowest = *position <= blockOfEvents;
            const int first = isLowest ? 1 : below - blockOfEvents;
            std::vector<std::string> records;
            const bool good = ReadBlock(first, below - first, records, failures);
            // Above the newest event there may be places without one.
            end_ = isLowest || first == 1 || (records.empty() && !result_.events.empty());
            std::reverse(records.begin(), records.end());
            Take(records);
            if (!good) {
                return;
            }
            position = first;
            isFirst = false;
        }
    }

    // The place behind the newest event, or of it. Nothing: the download has ended.
    std::optional<int> FindEnd() {
        auto reply = FirstReply();
        int position = 1;
        int failures = 0;
        if (!reply) {
            Fail("Error In Communication");
            return std::nullopt;
        }
        auditcount_ = reply->events;
        counter_ = std::min(1, auditcount_);
        if (&routine_.layout == &longArchive) {
            return std::max(auditcount_, 1);
        }
        while (reply->events != 0 && !view_.Stopped()) {
            const int next = position + static_cast<int>(reply->records.size()) + blockOfEvents;
            const auto further = AskEvents({}, next, blockOfEvents, routine_.over);
            if (!further && GivesUp(failures)) {
                return std::nullopt;
            }
            if (further) {
                reply = further;
                position = next;
            }
        }
        return position;
    }

    std::optional<AuditReply> FirstReply() {
        constexpr int tries = 3;
        constexpr std::size_t over = 20;
        std::optional<AuditReply> reply;
        for (int i = 0; i < tries && !reply && !talk_.Ended(); ++i) {
            reply = AskEvents({}, 1, blockOfEvents, over);
        }
        return reply;
    }

    // `count` events from a position on, in as many replies as they take.
    bool ReadBlock(int first, int count, std::vector<std::string>& records, int& failures) {
        while (static_cast<int>(records.size()) < count) {
            const int got = static_cast<int>(records.size());
            const auto reply = AskEvents({}, first + got, count - got, routine_.over);
            if (!reply && GivesUp(failures)) {
                return false;
            }
            if (!reply) {
                continue;
            }
            failures = 0;
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
