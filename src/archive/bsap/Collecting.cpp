#include "archive/bsap/Collecting.h"

#include "archive/bsap/AuditRun.h"
#include "archive/store/ArchiveStore.h"
#include "archive/store/ReportTables.h"
#include "core/BsapModels.h"
#include "core/Database.h"
#include "core/Text.h"

namespace archive {

namespace {

std::string Counted(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// The end of a download for the operator: "Archive Collected" is said of a whole one alone. `came` is what is on hand.
std::string Message(const char* collected, RunEnd end, const std::vector<std::string>& failure,
                    const std::string& came) {
    std::string message = end == RunEnd::Whole ? collected : end == RunEnd::Stopped ? "Stopped before the end" : "";
    for (const std::string& line :
         end == RunEnd::Whole || end == RunEnd::Stopped ? std::vector<std::string>() : failure) {
        message += (message.empty() || line.empty() ? "" : "\r") + line;
    }
    return message + (came.empty() ? "" : "\r" + came);
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

    std::vector<std::string> Failure(RunEnd end, const std::string& failure, const std::string& reason) const {
        return end == RunEnd::LineLost ? std::vector{talk_.line->Reason()} : std::vector{failure, reason};
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
        talk_.feedback.Status(collectingAudit);
        const AuditRoutine routine = AuditRoutineOf(wish_.screen, talk_.station.isCW, wish_.newFirst);
        const int commtimeout = talk_.station.commtimeout;
        talk_.station.commtimeout = routine.replydelay > 0 ? routine.replydelay : commtimeout;
        const AuditResult result = RunAudit(talk_, routine, view_);
        talk_.station.commtimeout = commtimeout;
        Stored([&] { FillAuditTable(dbconn_, result.events, talk_.station.consumer); });
        const std::string count = Counted(result.events.size(), "event");
        const std::string came = result.end != RunEnd::Whole ? count + " received."
                                 : result.bounded            ? count + ", there may be more."
                                                             : std::string();
        Over("Audit Collected", result.end, Failure(result.end, result.failure, result.reason), came,
             result.events.size());
    }

    void Archive() {
        talk_.feedback.Status("Collecting Archive.......");
        const ArchiveRoutine& routine = ArchiveRoutineOf(wish_.screen, talk_.station.isCW, wish_.newFirst);
        std::optional<ArchiveKeeper> keeper;
        if (wish_.screen == Screen::frmparaarchive) {
            keeper.emplace(dbconn_, ArchiveKey{talk_.station.locationID, talk_.streamno, File()});
        }
        const ArchiveResult result =
            RunArchive(talk_, routine, File(), wish_.range, view_, keeper ? &*keeper : nullptr);
        const std::vector<ArchiveRecord>& records = result.download.records;
        if (wish_.screen == Screen::frmarchive) {
            const std::string table = ArchiveReportTable(wish_.kind, talk_.station.modelno);
            Stored([&] { FillArchiveTable(dbconn_, table, records, talk_.station.consumer); });
        }
        std::string came = result.end == RunEnd::Whole ? "" : Counted(records.size(), "record") + " received.";
        if (keeper) {
            Stored([&] {
                if (!keeper->Failure().empty()) {
                    throw core::DatabaseError(keeper->Failure());
                }
            });
            const SaveOutcome& saved = keeper->Outcome();
            const std::string stored = " received, " + std::to_string(saved.added + saved.known) + " stored: ";
            came = Counted(records.size(), "record") + (result.end == RunEnd::Whole ? ": " : stored) +
                   std::to_string(saved.added) + " new, " + std::to_string(saved.known) + " known.";
            came += result.metStored ? " The older ones were stored before." : "";
        }
        Over("Archive Collected", result.end, Failure(result.end, result.failure, result.reason), came, records.size());
    }

    void Over(const char* collected, RunEnd end, const std::vector<std::string>& failure, const std::string& came,
              std::size_t records) {
        collected_.end = end;
        collected_.records = records;
        collected_.message = Message(collected, end, failure, came);
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
                         "select locationId,consumer,modelno,protocol from ConfigData_Master where drs<> 1 order by "
                         "locationID");
    std::vector<std::string> nodes;
    for (const core::Row& row : rows) {
        if (locationID || core::SpeaksBsap(row.Text("modelno"), row.Text("protocol"))) {
            nodes.push_back(row.Text("locationId") + "-" + row.Text("consumer"));
        }
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
