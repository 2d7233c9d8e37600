#include "archive/bsap/ArchiveRun.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "archive/bsap/Archive.h"
#include "archive/bsap/Tries.h"
#include "core/Text.h"

namespace archive {

namespace {

constexpr std::size_t mostNames = 71;
constexpr int numbers = 65536;  // a record number has two bytes
constexpr int repliesPastEnd = 2;
constexpr int fittingThree = 3;

std::vector<std::string> RowOf(const ArchiveRecord& record) {
    std::vector<std::string> row = {ShownTime(record.at), std::to_string(record.globalID),
                                    std::to_string(record.localID)};
    for (const double value : record.values) {
        row.push_back(core::NumberText(value));
    }
    return row;
}

// A number as it goes over the line.
int OnTheLine(int number) {
    return number & (numbers - 1);
}

class Run {
  public:
    Run(protocols::Conversation& talk, const ArchiveRoutine& routine, int file, const std::optional<DayRange>& range,
        RunView& view, ArchiveKeeper* keeper)
        : talk_(talk),
          routine_(routine),
          file_(file),
          range_(routine.order == ArchiveOrder::DateRange ? range : std::nullopt),
          view_(view),
          keeper_(keeper),
          tries_(talk, view, routine.layout) {}

    ArchiveResult Result() {
        if (ReadInformation() && ReadDefinitions()) {
            routine_.order == ArchiveOrder::NewestFirst ? NewestFirst() : OldestFirst();
        }
        if (result_.end == RunEnd::Whole && keeper_ != nullptr && top_ && !range_) {
            keeper_->Mark(OnTheLine(top_->number), top_->at);
        }
        return std::move(result_);
    }

  private:
    int Node() const { return talk_.station.slaveaddress; }

    bool Fail(RunEnd end, const std::string& failure, const std::string& reason) {
        result_.end = end;
        result_.failure = failure;
        result_.reason = reason;
        return false;
    }
    bool FailRequest(const std::string& failure) { return Fail(tries_.End(), failure, tries_.Reason()); }

    // What ends the download between two requests, other than a failure.
    bool Ends() {
        const bool stopped = view_.Stopped();
        result_.end = end_ ? RunEnd::Whole : talk_.Ended() ? RunEnd::LineLost : RunEnd::Stopped;
        return end_ || stopped || talk_.Ended();
    }

    bool ReadInformation() {
        const auto information =
            tries_.Insist([&] { return BuildArchiveInfoRequest(talk_.counters, Node(), file_); }, routine_.information,
                          [&](const std::string& answer) { return ParseFileInformation(answer, routine_.layout); },
                          {.endsAtRefusal = true});
        if (!information) {
            return FailRequest("Invalid Archive Number");
        }
        isEmpty_ = information->arcnewest == 0;
        oldest_ = information->arcoldest;
        newest_ = oldest_ + OnTheLine(information->arcnewest - oldest_);
        counter_ = newest_ == 0 ? 0 : 1;
        // The plain routine tells its place by the newest number, the others by how many there are.
        total_ = routine_.order == ArchiveOrder::OldestFirst ? newest_ : newest_ - oldest_;
        return true;
    }

    bool ReadDefinitions() {
        int received = 0;
        while (true) {
            const auto definitions = AskDefinitions(received);
            if (!definitions) {
                return FailRequest("Invalid File Defination");
            }
            TakeNames(*definitions);
            received += static_cast<int>(definitions->names.size());
            fields_ = static_cast<std::size_t>(definitions->fields);
            if (definitions->Refused() || received >= definitions->fields) {
                result_.download.fields.resize(std::min(result_.download.fields.size(), fields_));
                view_.Columns(Captions());
                return !definitions->Refused() || Fail(RunEnd::Failed, StatusText(*definitions),
                                                       RefusalText(std::to_string(definitions->status1) + ", " +
                                                                   std::to_string(definitions->status2)));
            }
            if (view_.Stopped()) {
                return Fail(RunEnd::Stopped, "", "");
            }
        }
    }

    // A reply without a definition, where one is missing, is none.
    std::optional<FieldDefinitions> AskDefinitions(int index) {
        return tries_.Insist([&] { return BuildArchiveFieldRequest(talk_.counters, Node(), file_, index); },
                             routine_.definition,
                             [&](const std::string& answer) {
                                 const auto definitions = ParseFieldDefinitions(answer, routine_.layout);
                                 return definitions && Counts(*definitions, index) ? definitions : std::nullopt;
                             });
    }

    bool Counts(const FieldDefinitions& definitions, int index) const {
        if (definitions.Refused()) {
            return routine_.takesShortRefusal || !definitions.endsBehindStatus;
        }
        return !definitions.names.empty() || definitions.fields <= index;
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

    template <typename Build>
    std::optional<RecordReply> AskRecords(const Build& build) {
        auto reply = tries_.Insist(build, routine_.records, [&](const std::string& answer) {
            auto parsed = ParseRecordReply(answer, routine_.layout, fields_);
            return parsed && parsed->records.empty() && parsed->more ? std::nullopt : parsed;
        });
        if (!reply) {
            FailRequest(routine_.order == ArchiveOrder::NewestFirst ? "" : "Bad Response");
        }
        return reply;
    }

    std::optional<RecordReply> AskRecords(int record, int count) {
        return AskRecords(
            [&] { return BuildArchiveReadRequest(talk_.counters, Node(), file_, OnTheLine(record), count); });
    }

    // From the oldest record, or from that of a day, upwards.
    void OldestFirst() {
        const bool adapts = routine_.order == ArchiveOrder::DateRange;
        int record = oldest_;
        int archivecount = routine_.archivecount;
        bool byDate = range_.has_value();
        while (!Ends()) {
            auto reply =
                byDate
                    ? AskRecords([&] { return BuildArchiveDateRequest(talk_.counters, Node(), file_, range_->first); })
                    : AskRecords(record, archivecount);
            if (!reply) {
                return;
            }
            const int count = static_cast<int>(reply->records.size());
            record = byDate ? Unwrapped(reply->found) : record + count;
            archivecount = adapts ? count : archivecount;
            if (count > 0) {
                top_ = Top{record - 1, DecodeArchiveRecord(reply->records.back()).at};
            }
            DropRepeated(reply->records);
            if (byDate) {
                found_.assign(reply->records.begin(), reply->records.end());
                byDate = false;
            }
            Take(Decoded(reply->records));
            end_ = end_ || !reply->more || (adapts && counter_ == total_ && record > newest_);
            if (!end_ && taken_ > numbers) {
                Fail(RunEnd::Failed, "", "The station gives more records than it has numbers for.");
                return;
            }
        }
    }

    // A number from the line, counted on from the oldest one.
    int Unwrapped(int number) const {
        const int above = OnTheLine(number - oldest_);
        return oldest_ + (above <= newest_ - oldest_ ? above : above - numbers);
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
        while (!Ends()) {
            const Block block = BlockBelow(record, blockLength_);
            const bool isTop = !top_;
            std::vector<ArchiveRecord> records;
            const BlockEnd read = ReadBlock(block, records);
            record = block.first;
            const bool empty = records.empty();
            const int missing = block.first + static_cast<int>(records.size());
            const bool whole = missing >= block.first + block.count || (isTop && !empty) || (isEmpty_ && taken_ == 0);
            std::reverse(records.begin(), records.end());
            Show(std::move(records));
            if (read == BlockEnd::Failed) {
                return;
            }
            if (!whole && !block.isLowest) {
                Fail(RunEnd::Failed, "",
                     "The station gave no record of number " + std::to_string(OnTheLine(missing)) + ".");
                return;
            }
            result_.metStored = read == BlockEnd::Known && metMark_ && !block.isLowest;
            end_ = block.isLowest || empty || result_.metStored;
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

    enum class BlockEnd { Failed, Read, Known };

    // A station gives fewer records than were asked for when they do not fit its reply: the others are asked for too.
    BlockEnd ReadBlock(const Block& block, std::vector<ArchiveRecord>& records) {
        bool known = keeper_ != nullptr;
        bool more = true;
        while (more) {
            const int got = static_cast<int>(records.size());
            const auto reply = AskRecords(block.first + got, block.count - got);
            if (!reply) {
                return BlockEnd::Failed;
            }
            const int count = static_cast<int>(reply->records.size());
            NoteLength(block.count - got, count);
            const auto decoded = Decoded(reply->records);
            known = Keep(decoded) && known;
            for (int i = 0; i < count; ++i) {
                metMark_ = metMark_ || (keeper_ != nullptr && keeper_->IsMark(OnTheLine(block.first + got + i),
                                                                              decoded[static_cast<std::size_t>(i)].at));
            }
            records.insert(records.end(), decoded.begin(), decoded.end());
            // Only above the newest record there are places without one.
            const bool follow = reply->more || (top_ && !block.isLowest);
            more = follow && count > 0 && static_cast<int>(records.size()) < block.count;
        }
        if (!top_ && !records.empty()) {
            top_ = Top{block.first + static_cast<int>(records.size()) - 1, records.back().at};
        }
        return known && !records.empty() ? BlockEnd::Known : BlockEnd::Read;
    }

    // A station whose replies hold three records is asked for three: the fourth costs a request of its own. Fewer than
    // that need no other block; nor does a single short reply.
    void NoteLength(int asked, int count) {
        if (asked != blockLength_ || asked <= fittingThree) {
            return;
        }
        shortReplies_ = count == fittingThree && top_ ? shortReplies_ + 1 : 0;
        blockLength_ = shortReplies_ > 1 ? fittingThree : blockLength_;
    }

    std::vector<ArchiveRecord> Decoded(const std::vector<std::string>& records) const {
        std::vector<ArchiveRecord> decoded;
        for (const std::string& bytes : records) {
            decoded.push_back(DecodeArchiveRecord(bytes));
            auto& values = decoded.back().values;
            values.resize(std::min(values.size(), result_.download.fields.size()));
        }
        return decoded;
    }

    // Stores records, if they are to be stored. True: the store had them.
    bool Keep(const std::vector<ArchiveRecord>& records) {
        return keeper_ != nullptr && (records.empty() || keeper_->Add(result_.download.fields, records));
    }

    void Show(std::vector<ArchiveRecord> records) {
        std::vector<std::vector<std::string>> rows;
        for (ArchiveRecord& record : records) {
            Count();
            rows.push_back(RowOf(record));
            result_.download.records.push_back(std::move(record));
        }
        view_.Rows(rows);
    }

    void Count() {
        ++taken_;
        view_.Record(counter_, total_);
        counter_ += counter_ < total_ ? 1 : 0;
    }

    // Hands the records of a reply on, but for those behind the last day of the range.
    void Take(std::vector<ArchiveRecord> records) {
        const auto past = std::stable_partition(records.begin(), records.end(), [&](const ArchiveRecord& record) {
            return !range_ || ArchiveDay(record.at) <= ArchiveDay(range_->last);
        });
        if (!records.empty()) {
            pastEnd_ = past == records.begin() ? pastEnd_ + 1 : 0;
            end_ = end_ || pastEnd_ == repliesPastEnd;
        }
        std::for_each(past, records.end(), [&](const ArchiveRecord&) { Count(); });
        records.erase(past, records.end());
        Keep(records);
        Show(std::move(records));
    }

    // The newest record of the download.
    struct Top {
        int number;
        core::DateTime at;
    };

    protocols::Conversation& talk_;
    const ArchiveRoutine& routine_;
    int file_;
    std::optional<DayRange> range_;
    RunView& view_;
    ArchiveKeeper* keeper_;
    Tries tries_;
    ArchiveResult result_;
    bool isEmpty_ = false;
    int newest_ = 0;  // counted on from the oldest
    int oldest_ = 0;
    int total_ = 0;
    int counter_ = 0;  // what the operator sees
    int taken_ = 0;    // records
    std::size_t fields_ = 0;
    std::deque<std::string> found_;  // by the date request
    int pastEnd_ = 0;                // replies in a row that lie behind the range
    int blockLength_ = routine_.archivecount;
    int shortReplies_ = 0;  // blocks in a row whose reply held three
    std::optional<Top> top_;
    bool metMark_ = false;
    bool end_ = false;
};

}  // namespace

ArchiveResult RunArchive(protocols::Conversation& talk, const ArchiveRoutine& routine, int file,
                         const std::optional<DayRange>& range, RunView& view, ArchiveKeeper* keeper) {
    return Run(talk, routine, file, range, view, keeper).Result();
}

}  // namespace archive
