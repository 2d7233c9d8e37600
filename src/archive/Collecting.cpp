#include "archive/Collecting.h"

#include "archive/ArchiveStore.h"
#include "archive/AuditRun.h"
#include "archive/ReportTables.h"
#include "core/Database.h"
#include "core/Text.h"

namespace archive {

namespace {

std::string Counted(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// The end of a download for the operator. The text that says it is collected comes in every case; what happened stands
// with it.
std::string Message(const char* collected, RunEnd end, const std::string& failure, const std::string& came) {
    switch (end) {
        case RunEnd::Whole:
            return std::string(collected) + (came.empty() ? "" : "\r" + came);
        case RunEnd::Stopped:
            return std::string(collected) + "\rStopped before the end: " + came;
        case RunEnd::LineLost:
        case RunEnd::Failed:
            break;
    }
    return failure + "\r" + collected + ", but not to the end: " + came;
}

class Job {
  public:
    Job(core::Database& dbconn, protocols::Conversation& talk, const Wish& wish, RunView& view)
        : dbconn_(dbconn), talk_(talk), wish_(wish), view_(view) {}

    Collected Do() {
        wish_.audit ? Audit() : Archive();
        // A full disk keeps nobody from the rows that came.
        Stored([&] {
            talk_.logs.WriteAudit(talk_.logs.Stamp() + ": User " + talk_.currentuser + " collected " + What() +
                                  " from RTU " + talk_.station.consumer + ".");
        });
        collected_.message += problems_;
        return collected_;
    }

  private:
    std::string What() const {
        if (wish_.audit) {
            return "Audit";
        }
        if (wish_.screen == Screen::frmCW_archive) {
            return "Archive File Number";
        }
        return wish_.kind == ArchiveKind::Daily    ? "Daily Archive"
               : wish_.kind == ArchiveKind::Hourly ? "Hourly Archive"
                                                   : "Minute Archive";
    }

    // The online screen reads the files of the stream that the session has when its turn comes.
    int File() const {
        return wish_.screen == Screen::frmCW_archive ? wish_.file : HistoryType(talk_.streamno, wish_.kind);
    }

    std::string FailureText(RunEnd end, const std::string& failure) const {
        if (end == RunEnd::LineLost) {
            return talk_.line->Reason();
        }
        return failure.empty() ? "The station does not answer any more" : failure;
    }

    template <typename Work>
    void Stored(const Work& work) {
        try {
            work();
        } catch (const core::DatabaseError& failure) {
            talk_.logs.WriteRtuErr(failure.what());
            problems_ += std::string("\rNot stored: ") + failure.what();
        }
    }

    void Audit() {
        talk_.feedback.Status("Collecting Audit.......");
        const AuditRoutine routine = AuditRoutineOf(wish_.screen, talk_.station.isCW, wish_.newFirst);
        const int commtimeout = talk_.station.commtimeout;
        talk_.station.commtimeout = routine.replydelay > 0 ? routine.replydelay : commtimeout;
        const AuditResult result = RunAudit(talk_, routine, view_);
        talk_.station.commtimeout = commtimeout;
        Stored([&] { FillAuditTable(dbconn_, result.events, talk_.station.consumer); });
        collected_.end = result.end;
        collected_.records = result.events.size();
        const std::string came =
            result.end == RunEnd::Whole && !result.bounded
                ? std::string()
                : Counted(result.events.size(), "event") + (result.bounded ? ", there may be more." : ".");
        collected_.message = Message("Audit Collected", result.end, FailureText(result.end, result.failure), came);
    }

    void Archive() {
        talk_.feedback.Status("Collecting Archive.......");
        const ArchiveRoutine& routine = ArchiveRoutineOf(wish_.screen, talk_.station.isCW, wish_.newFirst);
        const ArchiveResult result = RunArchive(talk_, routine, File(), wish_.range, view_);
        const std::vector<ArchiveRecord>& records = result.download.records;
        std::string came = result.end == RunEnd::Whole ? std::string() : Counted(records.size(), "record") + ".";
        if (wish_.screen == Screen::frmarchive) {
            const std::string table = ArchiveReportTable(wish_.kind, talk_.station.modelno);
            Stored([&] { FillArchiveTable(dbconn_, table, records, talk_.station.consumer); });
        }
        // What a station gave before it fell silent stays in the grid alone; the operators know it so.
        if (wish_.screen == Screen::frmparaarchive && result.end != RunEnd::Failed) {
            Stored([&] {
                const SaveOutcome saved =
                    SaveArchive(dbconn_, {talk_.station.locationID, talk_.streamno, File()}, result.download);
                came = Counted(records.size(), "record") + ": " + std::to_string(saved.added) + " new, " +
                       std::to_string(saved.known) + " known.";
            });
        } else if (wish_.screen == Screen::frmparaarchive) {
            came += " Nothing was stored.";
        }
        collected_.end = result.end;
        collected_.records = records.size();
        collected_.message = Message("Archive Collected", result.end, FailureText(result.end, result.failure), came);
    }

    core::Database& dbconn_;
    protocols::Conversation& talk_;
    const Wish& wish_;
    RunView& view_;
    Collected collected_;
    std::string problems_;
};

}  // namespace

Collected Collect(core::Database& dbconn, protocols::Conversation& talk, const Wish& wish, RunView& view) {
    return Job(dbconn, talk, wish, view).Do();
}

std::vector<std::string> ArchiveNodes(core::Database& dbconn, std::optional<std::int64_t> locationID) {
    const auto rows =
        locationID ? dbconn.Query("select locationId,consumer from ConfigData_Master where locationID=?", {*locationID})
                   : dbconn.Query(
                         "select locationId,consumer,modelno from ConfigData_Master where "
                         "protocol = 'BSAP' and drs<> 1 order by locationID");
    std::vector<std::string> nodes;
    for (const core::Row& row : rows) {
        nodes.push_back(row.Text("locationId") + "-" + row.Text("consumer"));
    }
    return nodes;
}

std::optional<Node> SplitNode(const std::string& text) {
    const std::size_t dash = text.find('-');
    if (dash == std::string::npos || core::Val(text) < 1) {
        return std::nullopt;
    }
    return Node{static_cast<std::int64_t>(core::Val(text)), text.substr(dash + 1)};
}

}  // namespace archive
