#include "archive/ArchiveRun.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "archive/Archive.h"
#include "archive/Asking.h"
#include "core/Text.h"

namespace archive {

namespace {

constexpr int forgiven = 3;
constexpr std::size_t mostNames = 71;
constexpr std::size_t mostRecords = 65536;  // record numbers have two bytes

std::vector<std::string> RowOf(const ArchiveRecord& record) {
    std::vector<std::string> row = {ShownTime(record.at), std::to_string(record.globalID),
                                    std::to_string(record.localID)};
    for (const double value : record.values) {
        row.push_back(core::NumberText(value));
    }
    return row;
}

class Run {
  public:
    Run(protocols::Conversation& talk, const ArchiveRoutine& routine, int file, const std::optional<DayRange>& range,
        RunView& view)
        : talk_(talk), routine_(routine), file_(file), range_(range), view_(view) {}

    ArchiveResult Result() {
        if (ReadInformation() && ReadDefinitions()) {
            routine_.order == ArchiveOrder::NewestFirst ? NewestFirst() : OldestFirst();
        }
        return std::move(result_);
    }

  private:
    int Node() const { return talk_.station.slaveaddress; }

    bool Fail(const std::string& failure) {
        result_.end = talk_.Ended() ? RunEnd::LineLost : RunEnd::Failed;
        result_.failure = talk_.Ended() ? std::string() : failure;
        return false;
    }

    // The fourth bad reply of the download, or the end of the conversation.
    bool GivesUp(int& failures, const std::string& failure) {
        if (!talk_.Ended() && ++failures <= forgiven) {
            return false;
        }
        Fail(failure);
        return true;
    }

    // What ends the download between two requests, other than a failure.
    bool Ends() {
        const bool stopped = view_.Stopped();
        result_.end = end_ ? RunEnd::Whole : talk_.Ended() ? RunEnd::LineLost : RunEnd::Stopped;
        return end_ || stopped || talk_.Ended();
    }

    bool ReadInformation() {
        const auto answer = Ask(talk_, BuildArchiveInfoRequest(talk_.counters, Node(), file_),
                                {routine_.informationOver, routine_.polls, routine_.information});
        const auto information = answer ? ParseFileInformation(*answer, routine_.layout) : std::nullopt;
        if (!information) {
            return Fail("Invalid Archive Number");
        }
        newest_ = information->arcnewest;
        oldest_ = information->arcoldest;
        counter_ = newest_ == 0 ? 0 : 1;
        // The plain routine tells its place by the newest number, the others by how many there are.
        total_ = routine_.order == ArchiveOrder::OldestFirst ? newest_ : newest_ - oldest_;
        return true;
    }

    bool ReadDefinitions() {
        int failures = 0;
        int received = 0;
        while (true) {
            const auto definitions = AskDefinitions(received);
            if (!definitions && GivesUp(failures, "Invalid File Defination")) {
                return false;
            }
            if (!definitions) {
                continue;
            }
            TakeNames(*definitions);
            received += static_cast<int>(definitions->names.size());
            fields_ = static_cast<std::size_t>(definitions->fields);
            if (Refused(*definitions) || received >= definitions->fields) {
                result_.download.fields.resize(std::min(result_.download.fields.size(), fields_));
                view_.Columns(Captions());
                return !Refused(*definitions) || Fail(StatusText(*definitions));
            }
        }
    }

    // A reply without a definition, where one is missing, is none.
    std::optional<FieldDefinitions> AskDefinitions(int index) {
        const auto answer = Ask(talk_, BuildArchiveFieldRequest(talk_.counters, Node(), file_, index),
                                {routine_.definitionOver, routine_.polls, routine_.definition});
        auto definitions = answer ? ParseFieldDefinitions(*answer, routine_.layout) : std::nullopt;
        const bool empty = definitions && definitions->names.empty() && definitions->fields > index;
        return empty && !Refused(*definitions) ? std::nullopt : definitions;
    }

    static bool Refused(const FieldDefinitions& definitions) {
        return definitions.status1 != 0 || definitions.status2 != 0;
    }

    void TakeNames(const FieldDefinitions& definitions) {
        for (const std::string& name : definitions.names) {
            if (result_.download.fields.size() < mostNames) {
                result_.download.fields.push_back(name);
            }
        }
    }

    std::vector<std::string> Captions() const {
        std::vector<std::string> captions = {routine_.timeHeader, routine_.globalHeader, "Local ID        "};
        captions.insert(captions.end(), result_.download.fields.begin(), result_.download.fields.end());
        return captions;
    }

    std::optional<RecordReply> AskRecords(const std::string& frame) {
        const auto answer = Ask(talk_, frame, {routine_.recordOver, routine_.polls, routine_.records});
        auto reply = answer ? ParseRecordReply(*answer, routine_.layout, fields_) : std::nullopt;
        return reply && reply->records.empty() && reply->more ? std::nullopt : reply;
    }

    const char* BadReply() const { return routine_.tellsBadReply ? "Bad Response" : ""; }

    // From the oldest record, or from that of a day, upwards.
    void OldestFirst() {
        const bool adapts = routine_.order == ArchiveOrder::DateRange;
        int record = oldest_;
        int archivecount = routine_.archivecount;
        int failures = 0;
        bool byDate = adapts && range_;
        while (!Ends()) {
            auto reply =
                AskRecords(byDate ? BuildArchiveDateRequest(talk_.counters, Node(), file_, range_->first)
                                  : BuildArchiveReadRequest(talk_.counters, Node(), file_, record, archivecount));
            if (!reply && GivesUp(failures, BadReply())) {
                return;
            }
            if (!reply) {
                continue;
            }
            const int count = static_cast<int>(reply->records.size());
            record = byDate ? reply->found : record + count;
            archivecount = adapts ? count : archivecount;
            DropRepeated(reply->records);
            if (byDate) {
                found_.assign(reply->records.begin(), reply->records.end());
                byDate = false;
            }
            Take(reply->records);
            end_ = end_ || !reply->more || (adapts && counter_ == total_ && record > newest_) ||
                   result_.download.records.size() > mostRecords;
        }
    }

    // Reading goes on at the number that the date request found: what it brought comes a second time.
    void DropRepeated(std::vector<std::string>& records) {
        while (!found_.empty() && !records.empty() && found_.front() == records.front()) {
            found_.pop_front();
            records.erase(records.begin());
        }
        if (!records.empty()) {
            found_.clear();
        }
    }

    // From the newest record downwards, block by block; the newest of a block comes first.
    void NewestFirst() {
        int record = newest_ + (routine_.startsAbove && newest_ > 0 ? 1 : 0);
        int archivecount = routine_.archivecount;
        int failures = 0;
        bool good = true;
        while (good && !Ends()) {
            const Block block = BlockBelow(record, archivecount);
            std::vector<std::string> records;
            good = ReadBlock(block, records, failures);
            record = block.first;
            archivecount = static_cast<int>(records.size());
            end_ = block.isLowest || records.empty();
            std::reverse(records.begin(), records.end());
            Take(records);
        }
    }

    struct Block {
        int first;
        int count;
        bool isLowest;
    };

    // The block below a record number. At the end of the file it is as many as there still are: by the counter, which
    // begins at 1 and so leaves the record out that is being formed, or by the numbers, where a station counts
    // otherwise.
    Block BlockBelow(int record, int archivecount) const {
        const int left = record - oldest_;
        if (record > archivecount) {
            const int first = record - archivecount;
            return first < oldest_ ? Block{oldest_, std::max(total_ - counter_, left), true}
                                   : Block{first, archivecount, first == oldest_};
        }
        const int rest = total_ >= archivecount ? total_ - counter_ : total_;
        return {0, std::max({rest, left, 0}), true};
    }

    // A station gives fewer records than were asked for when they do not fit its reply: the others are asked for too.
    bool ReadBlock(const Block& block, std::vector<std::string>& records, int& failures) {
        bool more = true;
        while (more) {
            const int got = static_cast<int>(records.size());
            const auto reply = AskRecords(
                BuildArchiveReadRequest(talk_.counters, Node(), file_, block.first + got, block.count - got));
            if (!reply && GivesUp(failures, BadReply())) {
                return false;
            }
            if (!reply) {
                continue;
            }
            records.insert(records.end(), reply->records.begin(), reply->records.end());
            more = reply->more && !reply->records.empty() && static_cast<int>(records.size()) < block.count;
        }
        return true;
    }

    // Decodes records and hands them on. One behind the last day of the range ends the download.
    void Take(const std::vector<std::string>& records) {
        std::vector<std::vector<std::string>> rows;
        for (const std::string& bytes : records) {
            ArchiveRecord record = DecodeArchiveRecord(bytes);
            record.values.resize(std::min(record.values.size(), result_.download.fields.size()));
            view_.Record(counter_, total_);
            counter_ += counter_ < total_ ? 1 : 0;
            if (range_ && routine_.order == ArchiveOrder::DateRange &&
                ArchiveDay(record.at) > ArchiveDay(range_->last)) {
                end_ = true;
                break;
            }
            rows.push_back(RowOf(record));
            result_.download.records.push_back(std::move(record));
        }
        view_.Rows(rows);
    }

    protocols::Conversation& talk_;
    const ArchiveRoutine& routine_;
    int file_;
    const std::optional<DayRange>& range_;
    RunView& view_;
    ArchiveResult result_;
    int newest_ = 0;
    int oldest_ = 0;
    int total_ = 0;
    int counter_ = 0;  // what the operator sees
    std::size_t fields_ = 0;
    std::deque<std::string> found_;  // by the date request
    bool end_ = false;
};

}  // namespace

ArchiveResult RunArchive(protocols::Conversation& talk, const ArchiveRoutine& routine, int file,
                         const std::optional<DayRange>& range, RunView& view) {
    return Run(talk, routine, file, range, view).Result();
}

}  // namespace archive
