#include "collection/LineRun.h"

#include <utility>

#include "collection/Schedule.h"
#include "core/Text.h"
#include "stations/SampledMark.h"

namespace collection {

namespace {

constexpr int maxAttempts = 3;
constexpr double pauseMs = 500;
constexpr std::uint32_t msAMinute = 60000;
constexpr std::int64_t secondsADay = 86400;

std::string LineText(const core::Station& station) {
    if (!station.ip.empty()) {
        return "IP " + station.ip;
    }
    return "COM" + std::to_string(station.comport) + (station.phoneno.empty() ? "" : " " + station.phoneno);
}

}  // namespace

LineRun::LineRun(const reading::Workplace& place, std::string name, protocols::FieldLine& line, Owner owner)
    : name_(std::move(name)),
      feedback_(place.feedback, name_),
      place_{place.dbconn, place.shared, place.clock, feedback_, place.logs, place.lines, place.counters},
      line_(line),
      owner_(std::move(owner)) {}

void LineRun::Serve() {
    if (running_ || queue_.Empty() || leaving_) {
        return;
    }
    line_.Reserve(true);
    if (line_.Kept()) {
        place_.feedback.Status("Stations are due: their collection waits for the line");
        return;
    }
    running_ = true;
    place_.clock.Start([this] { Run(); });
}

void LineRun::Leave() {
    leaving_ = true;
    line_.EndConversation(programEnds);
    place_.clock.Wake();
}

void LineRun::EndOverdue(int minutes) {
    if (inHand_ && minutes > 0 &&
        (place_.clock.Milliseconds() - attemptBegun_) / msAMinute >= static_cast<std::uint32_t>(minutes)) {
        overdue_ = true;
        line_.EndConversation("The " + std::to_string(minutes) + " minutes of an attempt were up");
    }
}

void LineRun::Run() {
    while (const auto turn = leaving_ ? std::nullopt : Next()) {
        if (HasMoved(turn->locationID)) {
            owner_.moved(*turn);
            continue;
        }
        core::Guarded(place_.logs, [&] { ServeTurn(*turn); });
        inHand_.reset();
        core::Guarded(place_.logs, [&] { owner_.over(*turn); });
    }
    call_.End(place_);
    running_ = false;
    line_.Reserve(false);
    place_.feedback.Status("");
    owner_.idle();
}

// While a call is up, who is behind the same number goes first among those that are as urgent.
std::optional<Turn> LineRun::Next() {
    if (!call_.Up()) {
        return queue_.Next();
    }
    return queue_.Next([this](const Turn& turn) { return BehindTheSameNumber(turn); });
}

bool LineRun::BehindTheSameNumber(const Turn& turn) const {
    const auto station = core::ReadStation(place_.dbconn, turn.locationID);
    return station && call_.Reaches(*station);
}

// An operator has put it on another line while its turn waited.
bool LineRun::HasMoved(std::int64_t locationID) const {
    const auto station = core::ReadStation(place_.dbconn, locationID);
    return station && protocols::LineName(*station) != name_;
}

void LineRun::ServeTurn(const Turn& turn) {
    const auto station = core::ReadStation(place_.dbconn, turn.locationID);
    if (!station || !owner_.stillWanted(turn)) {
        return;
    }
    inHand_ = turn;
    owner_.begins(turn);
    Collect(turn, *station);
}

void LineRun::Collect(const Turn& turn, const core::Station& station) {
    Outcome outcome;
    outcome.locationID = turn.locationID;
    outcome.how = turn.how;
    outcome.line = LineText(station);
    const core::DateTime begun = place_.clock.Now();
    outcome.begun = core::IsoText(begun);
    // By hand: the latest contract hour that has passed.
    Turn served = turn;
    if (turn.how == How::Hand) {
        const auto schedule = ReadSchedule(place_.dbconn, turn.locationID);
        served.due = schedule ? LatestDue(*schedule, begun) : std::nullopt;
    }
    outcome.gasday = served.GasDay(begun);
    outcome.due = served.due ? core::IsoText(*served.due) : std::string();

    place_.feedback.Status("Data Collecting from Location " + turn.consumer);
    if (core::SameText(turn.duration, "Daily")) {
        place_.clock.WaitMs(pauseMs, [this] { return leaving_; });
    }
    const reading::RunState state = Attempts(turn, outcome);
    outcome.ended = core::IsoText(place_.clock.Now());
    Record(served, state, outcome);
}

reading::RunState LineRun::Attempts(const Turn& turn, Outcome& outcome) {
    reading::RunState state;
    state.runfailed = true;
    std::optional<reading::RunState> best;
    overdue_ = false;
    while (state.runfailed && state.attemptcount < maxAttempts && !leaving_ && !overdue_ &&
           !HasMoved(turn.locationID)) {
        state.runfailed = false;
        if (core::SameText(turn.duration, "Weekly")) {
            place_.feedback.Status("Collecting Data");
        }
        attemptBegun_ = place_.clock.Milliseconds();
        collectiong_Data(place_, turn.locationID, state, call_, [this] {
            return queue_.NextIs([this](const Turn& next) { return BehindTheSameNumber(next); });
        });
        // A later attempt that got less does not undo what an earlier one stored.
        if (!best || Rank(state.result) <= Rank(best->result)) {
            best = state;
        }
        place_.clock.WaitMs(pauseMs, [this] { return leaving_; });
        ++state.attemptcount;
        ++outcome.attempts;
    }
    if (!best) {
        state.result = reading::Result::BrokenOff;
        state.reason = programEnds;
        best = state;
    }
    outcome.attempts = state.dials > 0 ? state.dials : outcome.attempts;
    outcome.asked = best->asked;
    outcome.received = best->received;
    outcome.result = best->result;
    outcome.reason = best->reason;
    best->runfailed = state.runfailed;
    return *best;
}

void LineRun::Record(const Turn& turn, const reading::RunState& state, const Outcome& outcome) {
    const core::DateTime now = place_.clock.Now();
    // A figure that was read a day after its contract hour is another day's.
    const bool isOfTheDay = !turn.due || core::ToSeconds(now) - core::ToSeconds(*turn.due) < secondsADay;
    const bool byItself = turn.how == How::Schedule || turn.how == How::Late;
    place_.dbconn.InTransaction([&] {
        if (isOfTheDay) {
            RecordGasDay(place_.dbconn, turn.locationID, outcome.gasday, now, state.figures);
        }
        RecordOutcome(place_.dbconn, outcome);
        // A station that was cut off by the end of the program keeps its mark, as does one that is collected and was
        // only tried once more.
        const auto today = byItself ? std::nullopt : OutcomeOfToday(place_.dbconn, turn.locationID, now);
        const bool collected = today && today->result == reading::Result::Collected;
        if (!leaving_) {
            stations::MarkSampled(place_.dbconn, now, turn.locationID, !state.runfailed || collected);
        }
    });
    inHand_.reset();
    const bool partlyAsItIs = outcome.result == reading::Result::Partly && !state.runfailed;
    owner_.recorded(turn, outcome, !partlyAsItIs);
}

}  // namespace collection
