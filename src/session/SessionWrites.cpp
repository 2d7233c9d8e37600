// What the operator of a session has asked to be written: on the line, at the next polls, and in the end its answer.

#include <algorithm>
#include <utility>

#include "core/Database.h"
#include "core/Text.h"
#include "protocols/modbus/ModbusReadBack.h"
#include "session/Figures.h"
#include "session/ServeWrite.h"
#include "session/Session.h"

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

WriteContext Session::Context() const {
    return {place_.dbconn, place_.logs, station_, streamno_, place_.shared.currentuser};
}

std::string Session::Check(const RowPlace& place, const std::string& text) const {
    return CheckWrite(Context(), set_, place, text).refusal;
}

std::string Session::AskWrite(const RowPlace& place, const std::string& text) {
    return AskMultipleWrite({{place, text}});
}

std::string Session::AskMultipleWrite(const std::vector<Entry>& entries) {
    if (!PollingActive() || WritePending()) {
        return WritePending() ? requestPending : "Not connected";
    }
    std::vector<WriteRequest> requests;
    for (const Entry& entry : entries) {
        const WriteCheck check = CheckWrite(Context(), set_, entry.place, entry.text);
        if (!check.request) {
            return check.refusal;
        }
        requests.push_back(*check.request);
    }
    return Enter(requests);
}

std::string Session::Enter(const std::vector<WriteRequest>& requests) {
    if (requests.empty()) {
        return {};
    }
    place_.dbconn.InTransaction([&] {
        for (const WriteRequest& request : requests) {
            EnterWrite(Context(), request);
        }
    });
    for (const WriteRequest& request : requests) {
        ParameterRow& row = set_.At(request.place);
        row.lastvalue = request.writeValue;
        row.pending = true;
    }
    pending_ = requests;
    view_.Request(requestPending);
    view_.Refreshed();
    return {};
}

void Session::AskTime() {
    if (PollingActive() && !TimePending()) {
        timeRequest_ = place_.shared.currentuser;
        LeaveAudit(place_.logs, *timeRequest_, "asked to set the time of RTU " + station_.consumer + ".");
        view_.Request(requestPending);
        view_.StateChanged();
    }
}

void Session::ServeWrites() {
    writing_ = true;
    for (const WriteRequest& request : pending_) {
        set_.At(request.place).pending = true;  // what a read brought since the request is older than the write
    }
    if (station_.protocol == core::Protocol::Modbus) {
        ServeModbusWrites();
    } else if (pending_.size() == 1) {
        pending_write_request_bsap(*talk_, pending_.front());
    } else {
        pending_mul_write_request_bsap(*talk_, pending_);
    }
    // Cut off on its way: whoever ended the session finds it still in the list.
    if (talk_->Ended()) {
        return;
    }
    writing_ = false;
    for (const WriteRequest& request : std::exchange(pending_, {})) {
        sent_.push_back({request, {}, place_.clock.Now(), 0});
    }
    TellAnswers(true);
}

// The first value that the station does not take ends it: what belongs together is not to be torn further apart.
void Session::ServeModbusWrites() {
    while (!pending_.empty()) {
        const WriteRequest request = pending_.front();
        const WriteSent sent = pending_write_request_mbus(*talk_, request);
        if (talk_->Ended()) {
            return;
        }
        pending_.erase(pending_.begin());
        if (sent.mayFollow) {
            sent_.push_back({request, sent.answer.reason, place_.clock.Now(), 0});
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

void Session::Answer(const WriteRequest& request, const WriteAnswer& answer) {
    answered_.push_back({request, answer});
    Settle(Context(), place_.clock.Now(), answered_.back());
    ParameterRow& row = set_.At(request.place);
    const bool unchanged = answer.result == WriteResult::Refused || answer.result == WriteResult::NotSent;
    if (answer.has) {
        TakeValue(row, *answer.has, place_.clock.Now());
    } else if (unchanged && row.pending) {
        row.lastvalue = request.oldValue;
        row.pending = false;
    }
    view_.Refreshed();
}

// Once all that was asked for together has its answer.
void Session::TellAnswers(bool inBox) {
    if (WritePending()) {
        view_.Request("Waiting for the station to show the value");
        return;
    }
    const auto answered = std::exchange(answered_, {});
    const bool boxed = std::exchange(boxed_, false);
    if (answered.empty()) {
        return;
    }
    const std::string text = lastAnswer_ = AnswerText(answered, station_.isCW);
    view_.Request(text);
    const bool confirmed = std::all_of(answered.begin(), answered.end(), [](const AnsweredWrite& write) {
        return write.answer.result == WriteResult::Confirmed;
    });
    if (inBox && !confirmed && (!boxed || answered.size() > 1)) {
        view_.Box(text);
    }
}

void Session::Judge(reading::ReadOutcome outcome, const core::DateTime& begun) {
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

bool Session::IsLate(const core::DateTime& sentAt) const {
    return core::ToSeconds(place_.clock.Now()) - core::ToSeconds(sentAt) >= secondsToShow;
}

// True: it has its answer.
bool Session::JudgeWrite(SentWrite& sent, bool counts) {
    ParameterRow& row = set_.At(sent.request.place);
    const bool last = (counts || !row.pending) && ++sent.polls >= pollsToShow && IsLate(sent.at);
    if (row.pending) {
        if (last) {
            Answer(sent.request,
                   {WriteResult::NotConfirmed, std::nullopt, sent.reason.empty() ? noAnswer : sent.reason});
        }
        return last;
    }
    // Over BSAP the last digits of a value are cut off, not rounded.
    const auto same = station_.protocol == core::Protocol::Modbus ? protocols::IsShown : core::SameSingle;
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

void Session::ServeTime() {
    writing_ = true;
    const TimeSent sent = SetStationTime(*talk_, set_);
    if (talk_->Ended()) {
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
    view_.Request("Waiting for the station's clock to show the time");
}

// The station's clock, from the year to the second; empty when its map has none.
std::vector<ParameterRow*> Session::ClockRows() {
    std::vector<ParameterRow*> rows;
    for (const Figure figure :
         {Figure::Year, Figure::Month, Figure::Day, Figure::Hour, Figure::Minute, Figure::Second}) {
        const auto place = PlaceOf(set_, figure, station_.isCW);
        if (!place || (station_.protocol == core::Protocol::Modbus && set_.At(*place).MSD <= 0)) {
            return {};
        }
        rows.push_back(&set_.At(*place));
    }
    return rows;
}

// The clock was read somewhere between the begin of the poll and now.
void Session::JudgeTime(bool counts, const core::DateTime& begun) {
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
            seconds <= core::ToSeconds(place_.clock.Now()) + clockSlackSeconds) {
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

void Session::AnswerTime(const std::string& user, WriteResult result, const std::string& reason) {
    const std::string why = reason.empty() ? "" : ": " + reason;
    const std::string whose = "the time of RTU " + station_.consumer;
    if (result == WriteResult::Confirmed) {
        LeaveAudit(place_.logs, user, "set " + whose + ".");
        view_.Request("The clock of the station is set");
        return;
    }
    const std::string how = result == WriteResult::Refused        ? "refused by the station"
                            : result == WriteResult::NotConfirmed ? "not confirmed"
                            : result == WriteResult::CutOff       ? "cut off on its way, whether it is set is not known"
                                                                  : "not sent";
    LeaveAudit(place_.logs, user, "asked to set " + whose + ": " + how + why + ".");
    const std::string text = "The clock of the station: " + how + why;
    view_.Request(text);
    if (collstatus_ && !talk_->Ended()) {
        view_.Box(text);
    }
}

// What was asked for and never went out is not sent any more, and to no other station: the map and the trail say so.
// Of what was cut off on its way nobody knows whether the station has it.
void Session::DropRequests(const std::string& reason) {
    const auto requests = std::exchange(pending_, {});
    const auto sent = std::exchange(sent_, {});
    const bool onItsWay = std::exchange(writing_, false);
    pendingStream_.reset();
    if (auto guest = std::exchange(guest_, std::nullopt)) {
        guest->work(nullptr);
    }
    for (const SentWrite& write : sent) {
        Answer(write.request, {WriteResult::NotConfirmed, std::nullopt, "not read back: " + reason});
    }
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const bool cut = onItsWay && (i == 0 || station_.protocol != core::Protocol::Modbus);
        Answer(requests[i], {cut ? WriteResult::CutOff : WriteResult::NotSent, std::nullopt, reason});
    }
    if (auto user = std::exchange(timeRequest_, std::nullopt)) {
        AnswerTime(*user, onItsWay && requests.empty() ? WriteResult::CutOff : WriteResult::NotSent, reason);
    }
    if (auto time = std::exchange(timeSent_, std::nullopt)) {
        AnswerTime(time->user, WriteResult::NotConfirmed, "not read back: " + reason);
    }
    TellAnswers(false);
}

}  // namespace session
