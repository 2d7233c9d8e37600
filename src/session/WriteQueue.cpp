#include "session/WriteQueue.h"

#include <algorithm>
#include <utility>

#include "core/Database.h"
#include "core/Text.h"
#include "protocols/modbus/ModbusReadBack.h"
#include "session/Figures.h"
#include "session/ServeWrite.h"

namespace session {

namespace {

// A station may show a value later than it took it. After so many polls and seconds without it, it is not confirmed.
constexpr int pollsToShow = 2;
constexpr std::int64_t secondsToShow = 10;

constexpr const char* noAnswer = "no value came back";

// Between the reading of a clock and that of this computer.
constexpr std::int64_t clockSlackSeconds = 2;

std::string ClockText(const core::DateTime& time) {
    return core::DateText(time) + " " + core::TimeText(time);
}

}  // namespace

std::string WriteQueue::Ask(const std::vector<WriteEntry>& entries) {
    std::vector<WriteRequest> requests;
    for (const WriteEntry& entry : entries) {
        const WriteCheck check = CheckWrite(shown_.Context(), shown_.set, entry.place, entry.text);
        if (!check.request) {
            return check.refusal;
        }
        requests.push_back(*check.request);
    }
    return Enter(requests);
}

std::string WriteQueue::Enter(const std::vector<WriteRequest>& requests) {
    if (requests.empty()) {
        return {};
    }
    shown_.place.dbconn.InTransaction([&] {
        for (const WriteRequest& request : requests) {
            EnterWrite(shown_.Context(), request);
        }
    });
    for (const WriteRequest& request : requests) {
        ParameterRow& row = shown_.set.At(request.place);
        row.lastvalue = request.writeValue;
        row.pending = true;
    }
    pending_ = requests;
    shown_.view.Request(requestPending);
    shown_.view.Refreshed();
    return {};
}

void WriteQueue::AskTime() {
    timeRequest_ = shown_.place.shared.currentuser;
    LeaveAudit(shown_.place.logs, *timeRequest_, "asked to set the time of RTU " + shown_.station.consumer + ".");
    shown_.view.Request(requestPending);
    shown_.view.StateChanged();
}

void WriteQueue::Serve(protocols::Conversation& talk) {
    if (!pending_.empty()) {
        ServeWrites(talk);
    }
    if (timeRequest_ && !talk.Ended()) {
        ServeTime(talk);
    }
}

void WriteQueue::ServeWrites(protocols::Conversation& talk) {
    writing_ = true;
    for (const WriteRequest& request : pending_) {
        shown_.set.At(request.place).pending = true;  // what a read brought since the request is older than the write
    }
    if (shown_.station.protocol == core::Protocol::Modbus) {
        ServeModbusWrites(talk);
    } else if (pending_.size() == 1) {
        pending_write_request_bsap(talk, pending_.front());
    } else {
        pending_mul_write_request_bsap(talk, pending_);
    }
    // Cut off on its way: whoever ended the session finds it still in the list.
    if (talk.Ended()) {
        return;
    }
    writing_ = false;
    for (const WriteRequest& request : std::exchange(pending_, {})) {
        sent_.push_back({request, {}, shown_.place.clock.Now(), 0});
    }
    TellAnswers(true);
}

// The first value that the station does not take ends it: what belongs together is not to be torn further apart.
void WriteQueue::ServeModbusWrites(protocols::Conversation& talk) {
    while (!pending_.empty()) {
        const WriteRequest request = pending_.front();
        const WriteSent sent = pending_write_request_mbus(talk, request);
        if (talk.Ended()) {
            return;
        }
        pending_.erase(pending_.begin());
        if (sent.mayFollow) {
            sent_.push_back({request, sent.answer.reason, shown_.place.clock.Now(), 0});
        } else {
            Answer(request, sent.answer);
        }
        if (sent.answer.result == WriteResult::Confirmed) {
            continue;
        }
        boxed_ = sent.answer.result == WriteResult::Refused || !sent.answer.reason.empty();
        for (const WriteRequest& rest : std::exchange(pending_, {})) {
            Answer(rest, {WriteResult::NotSent, std::nullopt, request.Description + " was not taken"});
        }
    }
}

void WriteQueue::Answer(const WriteRequest& request, const WriteAnswer& answer) {
    answered_.push_back({request, answer});
    Settle(shown_.Context(), shown_.place.clock.Now(), answered_.back());
    ParameterRow& row = shown_.set.At(request.place);
    const bool unchanged = answer.result == WriteResult::Refused || answer.result == WriteResult::NotSent;
    if (answer.has) {
        TakeValue(row, *answer.has, shown_.place.clock.Now());
    } else if (unchanged && row.pending) {
        row.lastvalue = request.oldValue;
        row.pending = false;
    }
    shown_.view.Refreshed();
}

// Once all that was asked for together has its answer.
void WriteQueue::TellAnswers(bool inBox) {
    if (WritePending()) {
        shown_.view.Request("Waiting for the station to show the value");
        return;
    }
    const auto answered = std::exchange(answered_, {});
    const bool boxed = std::exchange(boxed_, false);
    if (answered.empty()) {
        return;
    }
    const std::string text = shown_.lastAnswer = AnswerText(answered, shown_.station.isCW);
    shown_.view.Request(text);
    const bool confirmed = std::all_of(answered.begin(), answered.end(), [](const AnsweredWrite& write) {
        return write.answer.result == WriteResult::Confirmed;
    });
    if (inBox && !confirmed && (!boxed || answered.size() > 1)) {
        shown_.view.Box(text);
    }
}

void WriteQueue::Judge(reading::ReadOutcome outcome, const core::DateTime& begun) {
    const bool counts = outcome != reading::ReadOutcome::BrokenOff;
    if (!sent_.empty()) {
        std::erase_if(sent_, [&](SentWrite& sent) { return JudgeWrite(sent, counts); });
        if (sent_.empty()) {
            TellAnswers(true);
        }
    }
    if (timeSent_) {
        JudgeTime(counts, begun);
    }
}

bool WriteQueue::IsLate(const core::DateTime& sentAt) const {
    return core::ToSeconds(shown_.place.clock.Now()) - core::ToSeconds(sentAt) >= secondsToShow;
}

// True: it has its answer.
bool WriteQueue::JudgeWrite(SentWrite& sent, bool counts) {
    ParameterRow& row = shown_.set.At(sent.request.place);
    const bool last = (counts || !row.pending) && ++sent.polls >= pollsToShow && IsLate(sent.at);
    if (row.pending) {
        if (last) {
            Answer(sent.request,
                   {WriteResult::NotConfirmed, std::nullopt, sent.reason.empty() ? noAnswer : sent.reason});
        }
        return last;
    }
    // Over BSAP the last digits of a value are cut off, not rounded.
    const auto same = shown_.station.protocol == core::Protocol::Modbus ? protocols::IsShown : core::SameSingle;
    if (same(row.lastvalue, sent.request.writeValue)) {
        Answer(sent.request, {WriteResult::Confirmed, row.lastvalue, {}});
        return true;
    }
    if (last || !same(row.lastvalue, sent.request.oldValue)) {
        Answer(sent.request, {WriteResult::NotConfirmed, row.lastvalue, sent.reason});
        return true;
    }
    row.pending = true;
    return false;
}

void WriteQueue::ServeTime(protocols::Conversation& talk) {
    writing_ = true;
    const TimeSent sent = SetStationTime(talk, shown_.set);
    if (talk.Ended()) {
        return;
    }
    writing_ = false;
    const std::string user = *std::exchange(timeRequest_, std::nullopt);
    if (sent.result != WriteResult::NotConfirmed) {
        AnswerTime(user, sent.result, sent.reason);
        return;
    }
    const auto clock = ClockRows();
    if (clock.empty()) {
        AnswerTime(user, WriteResult::NotConfirmed, "its map has no clock");
        return;
    }
    timeSent_ = SentTime{user, sent.time, 0};
    for (ParameterRow* row : clock) {
        row->pending = true;
    }
    shown_.view.Request("Waiting for the station's clock to show the time");
}

// The station's clock, from the year to the second; empty when its map has none.
std::vector<ParameterRow*> WriteQueue::ClockRows() {
    std::vector<ParameterRow*> rows;
    for (const Figure figure :
         {Figure::Year, Figure::Month, Figure::Day, Figure::Hour, Figure::Minute, Figure::Second}) {
        const auto place = PlaceOf(shown_.set, figure, shown_.station.isCW);
        if (!place || (shown_.station.protocol == core::Protocol::Modbus && shown_.set.At(*place).MSD <= 0)) {
            return {};
        }
        rows.push_back(&shown_.set.At(*place));
    }
    return rows;
}

// The clock was read somewhere between the begin of the poll and now.
void WriteQueue::JudgeTime(bool counts, const core::DateTime& begun) {
    const auto rows = ClockRows();
    const bool read = std::none_of(rows.begin(), rows.end(), [](auto* row) { return row->pending; });
    timeSent_->polls += counts || read ? 1 : 0;
    const bool last = timeSent_->polls >= pollsToShow && IsLate(timeSent_->time);
    std::string shows;
    if (read) {
        const auto part = [&](std::size_t i) { return static_cast<int>(rows[i]->lastvalue); };
        const int year = part(0) < 100 ? 2000 + part(0) : part(0);
        const core::DateTime clock{year, part(1), part(2), part(3), part(4), part(5)};
        const std::int64_t seconds = clock.Valid() ? core::ToSeconds(clock) : 0;
        if (seconds >= core::ToSeconds(begun) - clockSlackSeconds &&
            seconds <= core::ToSeconds(shown_.place.clock.Now()) + clockSlackSeconds) {
            AnswerTime(std::exchange(timeSent_, std::nullopt)->user, WriteResult::Confirmed, {});
            return;
        }
        shows = "its clock shows " + ClockText(clock);
        std::for_each(rows.begin(), rows.end(), [&](auto* row) { row->pending = !last; });
    }
    if (last) {
        AnswerTime(std::exchange(timeSent_, std::nullopt)->user, WriteResult::NotConfirmed,
                   shows.empty() ? noAnswer : shows);
    }
}

void WriteQueue::AnswerTime(const std::string& user, WriteResult result, const std::string& reason, bool inBox) {
    const std::string why = reason.empty() ? "" : ": " + reason;
    const std::string whose = "the time of RTU " + shown_.station.consumer;
    if (result == WriteResult::Confirmed) {
        LeaveAudit(shown_.place.logs, user, "set " + whose + ".");
        shown_.view.Request("The clock of the station is set");
        return;
    }
    const std::string how = result == WriteResult::Refused        ? "refused by the station"
                            : result == WriteResult::NotConfirmed ? "not confirmed"
                            : result == WriteResult::CutOff       ? "cut off on its way, whether it is set is not known"
                                                                  : "not sent";
    LeaveAudit(shown_.place.logs, user, "asked to set " + whose + ": " + how + why + ".");
    const std::string text = "The clock of the station: " + how + why;
    shown_.view.Request(text);
    if (inBox) {
        shown_.view.Box(text);
    }
}

void WriteQueue::Drop(const std::string& reason) {
    const auto requests = std::exchange(pending_, {});
    const auto sent = std::exchange(sent_, {});
    const bool onItsWay = std::exchange(writing_, false);
    for (const SentWrite& write : sent) {
        Answer(write.request, {WriteResult::NotConfirmed, std::nullopt, "not read back: " + reason});
    }
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const bool cut = onItsWay && (i == 0 || shown_.station.protocol != core::Protocol::Modbus);
        Answer(requests[i], {cut ? WriteResult::CutOff : WriteResult::NotSent, std::nullopt, reason});
    }
    if (auto user = std::exchange(timeRequest_, std::nullopt)) {
        AnswerTime(*user, onItsWay && requests.empty() ? WriteResult::CutOff : WriteResult::NotSent, reason, false);
    }
    if (auto time = std::exchange(timeSent_, std::nullopt)) {
        AnswerTime(time->user, WriteResult::NotConfirmed, "not read back: " + reason, false);
    }
    TellAnswers(false);
}

}  // namespace session
