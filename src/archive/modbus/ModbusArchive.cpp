#include "archive/modbus/ModbusArchive.h"

#include <algorithm>
#include <cmath>

#include "core/Text.h"
#include "protocols/modbus/ModbusConstants.h"
#include "protocols/modbus/ModbusTransact.h"

namespace archive {

namespace {

using protocols::Conversation;
using protocols::ModbusReply;

constexpr int recordsPerBlock = 4;
constexpr double largestIndex = 32767;

// A read has one try, and only the station's own reply to it is taken. Each failure is told in a box.
constexpr protocols::TransactOptions WindowRead() {
    protocols::TransactOptions options = protocols::onlineTransact;
    options.tries = 1;
    options.onlyItsOwn = true;
    return options;
}

constexpr protocols::TransactOptions IndexWrite() {
    protocols::TransactOptions options = protocols::onlineWrite;
    options.tries = 1;
    options.failures = protocols::FailureReport::Box;
    return options;
}

constexpr protocols::TransactOptions windowRead = WindowRead();
constexpr protocols::TransactOptions indexWrite = IndexWrite();

// A register of the model's archive as it goes over the line. The numbers count floats of two registers. They are sent
// like this to a station with a float in one register, too: there is no second set of them in the table.
constexpr int OnTheLine(int number) {
    return 2 * number - 1;
}

bool IsRegister(int number) {
    return number >= 1 && OnTheLine(number) <= protocols::modbus::highestRegister;
}

std::vector<std::string> Captions(std::string_view header) {
    std::vector<std::string> captions(1);
    for (const char c : header) {
        if (c == '|') {
            captions.emplace_back();
        } else {
            captions.back() += c;
        }
    }
    return captions;
}

class Run {
  public:
    Run(Conversation& talk, core::Database& dbconn, ArchiveKind kind, RunView& view, ModbusArchiveOutcome& outcome)
        : talk_(talk), dbconn_(dbconn), view_(view), outcome_(outcome), hourly_(kind == ArchiveKind::Hourly) {
        talk_.modbus.floatread = true;
    }

    // Each step tells whether the run goes on; what went wrong stands in the outcome.
    void Collect(const ModbusRecordKind* kind) {
        if (kind == nullptr) {
            Fail("This model has no such archive");
            return;
        }
        dbconn_.Execute("delete from " + std::string(kind->table));
        view_.Columns(Captions(kind->header));
        if (!TakeRegisters() || !TakeNewest()) {
            return;
        }
        for (int x = outcome_.newest; x >= 1 && !outcome_.stopped; x -= recordsPerBlock) {
            const int count = std::min(recordsPerBlock, x);
            if (!WriteIndex(x) || !Read(data_, count * kind->floats)) {
                return;
            }
            TakeBlock(*kind, count);
            outcome_.stopped = view_.Stopped() && x > recordsPerBlock;
        }
    }

  private:
    bool Fail(const std::string& failure) {
        outcome_.failure = failure;
        return false;
    }

    // What a transaction failed by, unless the conversation was told to end meanwhile.
    bool FailTransaction(const std::string& failure) {
        return Fail(talk_.Ended() ? talk_.line->Reason() : core::ReplaceAll(failure, "\r", " "));
    }

    bool TakeRegisters() {
        const auto counts = core::ReadModelCounts(dbconn_, talk_.station, talk_.streamno);
        const core::ModelCounts model = counts.value_or(core::ModelCounts{});
        pointer_ = model.archive[hourly_ ? 1 : 0];
        index_ = model.archive[hourly_ ? 3 : 2];
        data_ = model.archive[hourly_ ? 5 : 4];
        return (IsRegister(pointer_) && IsRegister(index_) && IsRegister(data_)) ||
               Fail("modbus_para has no registers for the archive of this model");
    }

    // Reads as many floats into mbvalues.
    bool Read(int number, int floats) {
        const int registers = talk_.modbus.rtu32bit ? floats : 2 * floats;
        const ModbusReply reply = protocols::ModbusTransact(talk_, OnTheLine(number), registers,
                                                            protocols::modbus::readHoldingRegisters, windowRead);
        return protocols::IsAnswer(reply, windowRead) || FailTransaction(protocols::FailureText(reply.kind));
    }

    // A number of 0 or below: the station has no record.
    bool TakeNewest() {
        if (!Read(pointer_, 1)) {
            return false;
        }
        const double newest = std::nearbyint(talk_.modbus.mbvalues[1]);
        if (std::fabs(newest) > largestIndex) {
            return Fail("The station says that its newest record is number " + core::NumberText(newest));
        }
        outcome_.newest = static_cast<int>(newest);
        return true;
    }

    bool WriteIndex(int record) {
        switch (protocols::ModbusWrite(talk_, core::ValueKind::Float, OnTheLine(index_), record, indexWrite)) {
            case protocols::WriteOutcome::Done:
                return true;
            case protocols::WriteOutcome::NotBuilt:
                return Fail("Modbus ASCII cannot write the number of a record");
            case protocols::WriteOutcome::Refused:
            case protocols::WriteOutcome::Failed:
                break;
        }
        return FailTransaction("The station did not take record number " + std::to_string(record));
    }

    double Value(const ModbusRecordKind& kind, int place, int offset) const {
        return talk_.modbus.mbvalues[static_cast<std::size_t>(place * kind.floats + offset)];
    }

    // Day, month, year and hour as the station has them: they need not be a date.
    std::string TimeText(const ModbusRecordKind& kind, int place) const {
        const auto text = [&](int offset) { return core::NumberText(Value(kind, place, offset)); };
        return text(kind.time.day) + "/" + text(kind.time.month) + "/" + text(kind.time.year) + " " +
               text(kind.time.hour) + ":00:00";
    }

    void TakeBlock(const ModbusRecordKind& kind, int count) {
        std::vector<std::vector<std::string>> rows;
        std::vector<std::vector<core::Value>> records;
        for (int place = 0; place < count; ++place) {
            auto& row = rows.emplace_back(std::vector<std::string>{TimeText(kind, place)});
            auto& record = records.emplace_back(std::vector<core::Value>{row.front()});
            if (kind.hasIDs) {
                // What lies in front of the values; no reply fills it.
                record.insert(record.end(), 2, talk_.modbus.mbvalues[0]);
            }
            for (std::size_t value = 1; value <= kind.Values(); ++value) {
                record.emplace_back(Value(kind, place, static_cast<int>(value)));
                row.push_back(core::NumberText(Value(kind, place, static_cast<int>(value))));
            }
            record.emplace_back(talk_.station.consumer);
        }
        outcome_.records += count;
        view_.Rows(rows);
        view_.Record(outcome_.records, outcome_.newest);
        const std::string insert = InsertRecord(kind);
        dbconn_.InTransaction([&] {
            for (const auto& record : records) {
                dbconn_.Execute(insert, record);
            }
        });
        outcome_.stored += count;
    }

    Conversation& talk_;
    core::Database& dbconn_;
    RunView& view_;
    ModbusArchiveOutcome& outcome_;
    bool hourly_;
    int pointer_ = 0;
    int index_ = 0;
    int data_ = 0;
};

// The line of a download in the audit trail. It keeps nobody from the records that came.
void LeaveDownload(Conversation& talk, ArchiveKind kind) {
    core::Guarded(talk.logs, [&] {
        talk.logs.WriteAudit(talk.logs.Stamp() + ": User " + talk.currentuser + " collected " +
                             (kind == ArchiveKind::Hourly ? "Hourly Archive" : "Daily Archive") + " from RTU " +
                             talk.station.consumer + ".");
    });
}

}  // namespace

std::string RecordText(int records, int newest) {
    return "Record (" + std::to_string(records) + "/" + std::to_string(newest) + " )";
}

std::string ArchiveCollected(const ModbusArchiveOutcome& outcome) {
    if (outcome.failure.empty() && !outcome.stopped) {
        return "Archive Collected";
    }
    const std::string why = outcome.failure.empty() ? "Stopped before the end" : outcome.failure;
    if (outcome.newest == 0) {
        return why + "\rNo records received.";
    }
    return why + "\r" + std::to_string(outcome.records) + " of " + std::to_string(outcome.newest) +
           " records received, " + std::to_string(outcome.stored) + " stored.";
}

ModbusArchiveOutcome CollectModbusArchive(Conversation& talk, core::Database& dbconn, ArchiveKind kind, RunView& view) {
    ModbusArchiveOutcome outcome;
    try {
        Run(talk, dbconn, kind, view, outcome).Collect(RecordKindOf(talk.station, talk.streamno, kind));
    } catch (const core::DatabaseError& failure) {
        talk.logs.WriteRtuErr(failure.what());
        outcome.failure = failure.what();
    }
    if (outcome.records > 0 || outcome.failure.empty()) {
        LeaveDownload(talk, kind);
    }
    return outcome;
}

}  // namespace archive
