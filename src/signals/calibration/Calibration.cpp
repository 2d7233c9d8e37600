// The cycle: the signals are found, then read until something ends it.

#include "signals/calibration/Calibration.h"

#include <algorithm>
#include <span>
#include <utility>

#include "core/Text.h"
#include "session/WriteRequest.h"
#include "signals/lists/SignalWriting.h"

namespace signals {

namespace {

constexpr const char* noAnswer = "Error Occured in Communication";
constexpr std::size_t namesInMessage = 3;

std::vector<NamedSignal> Unfound(std::span<const std::string> names) {
    std::vector<NamedSignal> unfound;
    for (const std::string& name : names) {
        unfound.push_back({name});
    }
    return unfound;
}

}  // namespace

void Calibration::Turn(CalibrationState state) {
    state_ = state;
    view_.Changed();
}

void Calibration::Say(const std::string& text) {
    message_ = text;
    view_.Message(text);
}

std::string Calibration::WhyNot() const {
    return talk_->Ended() ? "The line is gone: " + talk_->line->Reason() : stopped_ ? "Stopped" : noAnswer;
}

void Calibration::Stop() {
    stopped_ = true;
    if (talk_ != nullptr) {
        talk_->clock.Wake();
    }
}

std::optional<Transmitter> Calibration::BusyWith() const {
    return request_ ? std::optional(request_->transmitter) : std::nullopt;
}

const NamedSignal& Calibration::Named(Transmitter transmitter, CalibrationPart part) const {
    const CalibrationPlace place = PlaceOf(transmitter, part);
    return place.isSystemSignal ? systemSignals_[place.index] : signals_[place.index];
}

void Calibration::Run(protocols::Conversation& talk) {
    talk_ = &talk;
    signals_ = Unfound(names_.signals);
    systemSignals_ = Unfound(names_.systemSignals);
    Turn(CalibrationState::Starting);
    Say("Please wait...");
    if (CheckSignals()) {
        Turn(CalibrationState::Reading);
        ReadingCycle();
    }
    talk_ = nullptr;
    MarkOld();
    Turn(CalibrationState::Stopped);
}

bool Calibration::CheckSignals() {
    if (const std::string missing = MissingName(names_); !missing.empty()) {
        Say(missing);
        return false;
    }
    const int total = static_cast<int>(systemSignals_.size() + signals_.size());
    int done = 0;
    for (auto* group : {&systemSignals_, &signals_}) {
        for (NamedSignal& signal : *group) {
            if (!check_signal_found(signal, group == &systemSignals_)) {
                return false;
            }
            view_.Progress(++done, total);
        }
    }
    Say("");
    return true;
}

bool Calibration::check_signal_found(NamedSignal& signal, bool isSystemSignal) {
    const ReadAnswer answer = ReadOne(signal);
    if (answer.answer == Answer::NoSignal) {
        Say((isSystemSignal ? "Error: System Signal " : "Error: Signal ") + signal.name + " Not Found");
        return false;
    }
    if (answer.answer != Answer::Good) {
        Say(WhyNot());
        return false;
    }
    if (!isSystemSignal && answer.signals.front().text) {
        Say("Error: Signal " + signal.name + " has no number");
        return false;
    }
    signal.address = answer.signals.front().MSD;
    return true;
}

// A late answer to the question before would give this signal the other one's address.
bool Calibration::IsOfAnother(const NamedSignal& signal, int address) const {
    const auto is = [&](const NamedSignal& other) {
        return other.address == address && !core::SameText(other.name, signal.name);
    };
    return std::any_of(systemSignals_.begin(), systemSignals_.end(), is) ||
           std::any_of(signals_.begin(), signals_.end(), is);
}

ReadAnswer Calibration::ReadOnce(std::span<const NamedSignal> named) {
    const ReadAnswer answer = ReadByName(*talk_, named, 1);
    lateMayCome_ |= answer.answer == Answer::None;
    return answer;
}

// As any read of one signal, but for the stop, which is looked at between its tries.
ReadAnswer Calibration::ReadOne(const NamedSignal& signal) {
    ReadAnswer answer;
    for (int sends = 0; sends < mostSends && Going(); ++sends) {
        answer = ReadOnce({&signal, 1});
        if (answer.answer == Answer::Good && IsOfAnother(signal, answer.signals.front().MSD)) {
            answer.answer = Answer::None;
        }
        if (answer.answer != Answer::None) {
            break;
        }
    }
    return answer;
}

void Calibration::ReadingCycle() {
    int failed = 0;
    while (Going() && failed < mostSends) {
        if (request_) {
            Serve();
            failed = 0;
            continue;
        }
        failed = ReadNext() ? 0 : failed + 1;
        view_.Changed();
    }
    const std::string why = WhyNot();
    if (request_) {
        const Request request = *std::exchange(request_, std::nullopt);
        Say(why + ": nothing was sent");
        LeaveAudit(request, {"", message_});
    } else if (!message_.starts_with(why)) {  // else a command's end has told it, and more
        Say(why);
    }
}

// The next three signals. After a failure they are the next again.
bool Calibration::ReadNext() {
    const std::size_t count = std::min(namesInMessage, signals_.size() - next_);
    const ReadAnswer answer = ReadOnce(std::span(signals_).subspan(next_, count));
    const bool good =
        answer.answer == Answer::Good && std::none_of(answer.signals.begin(), answer.signals.end(),
                                                      [](const Signal& signal) { return signal.text.has_value(); });
    if (!good) {
        MarkOld();
        return false;
    }
    for (std::size_t row = 0; row < count; ++row) {
        Take(next_ + row, answer.signals[row]);
    }
    next_ = (next_ + count) % signals_.size();
    return true;
}

void Calibration::Take(std::size_t row, const Signal& signal) {
    for (const Transmitter transmitter : transmitters) {
        TransmitterReading& reading = ReadingOf(transmitter);
        if (row == PlaceOf(transmitter, CalibrationPart::Live).index) {
            reading.live = signal.value;
            reading.unit = core::Trim(signal.unit);
            reading.at = talk_->clock.Now();
            reading.old = false;
        } else if (row == PlaceOf(transmitter, CalibrationPart::SpanValue).index) {
            reading.spanValue = signal.value;
        } else if (row == PlaceOf(transmitter, CalibrationPart::Status).index) {
            reading.status = signal.value;
        }
    }
}

void Calibration::MarkOld() {
    for (TransmitterReading& reading : readings_) {
        reading.old = reading.live.has_value();
    }
}

std::string Calibration::Ask(Transmitter transmitter, CalibrationCommand command, const std::string& applied) {
    if (state_ != CalibrationState::Reading || request_ || stopped_) {
        return {};
    }
    Request request{transmitter, command, 0};
    if (command == CalibrationCommand::Span) {
        const auto number = core::EnteredNumber(applied);
        if (!number) {
            return session::enterProperData;
        }
        request.applied = *number;
    }
    if (!MayCalibrate(dbconn_, talk_->currentuser)) {
        LeaveAudit(request, {"", lowerLevel});
        return lowerLevel;
    }
    ReadingOf(transmitter).result.clear();
    request_ = request;
    Turn(CalibrationState::Busy);
    return {};
}

}  // namespace signals
