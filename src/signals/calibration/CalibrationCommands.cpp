// A command to a transmitter: what is sent for it, what the station says, and the line in the audit trail.

#include <algorithm>
#include <exception>
#include <utility>

#include "core/Text.h"
#include "signals/calibration/Calibration.h"

namespace signals {

namespace {

// What a station may take for a zero or a span, behind the answer to the command.
constexpr double workMs = 5000;
constexpr double limit = 0.05;
constexpr int valuePlaces = 6;  // to which live values are read
constexpr int shownPlaces = 4;  // behind them single precision shows what nobody measures

// The words of a transmitter's messages.
struct Texts {
    const char* limitExceeds;
    const char* written;
    const char* pleaseWait;
    const char* completed;
};
constexpr std::array<Texts, 3> texts = {{{"DP:-Limit exceeds from +(-) 5%", "DP:-Signal Write Success",
                                          "DP:-Calibrate Span... Please Wait...", "DP Calibration Completed"},
                                         {"SP Limit exceeds from +(-) 5%", "SP:-Signal Write Success",
                                          "SP:-Calibrate Span... Please Wait...", "SP Calibration Completed"},
                                         {"Temp:-Limit exceeds from +(-) 5%", "Temp:-Signal Write Success",
                                          "Temp:-Calibrate Span... Please Wait...", "Temp Calibration Completed"}}};

const Texts& TextsOf(Transmitter transmitter) {
    return texts[static_cast<std::size_t>(transmitter)];
}

CalibrationPart CommandPart(CalibrationCommand command) {
    return command == CalibrationCommand::Zero   ? CalibrationPart::Zero
           : command == CalibrationCommand::Span ? CalibrationPart::Span
                                                 : CalibrationPart::Restore;
}

const char* CommandName(CalibrationCommand command) {
    return command == CalibrationCommand::Zero   ? "Calibrate Zero"
           : command == CalibrationCommand::Span ? "Calibrate Span"
                                                 : "Restore";
}

constexpr const char* unknown = "Unknown";
constexpr const char* notKnown = ", whether the station has done it is not known";

}  // namespace

// Both ends to the places of a live value, or an end such as 0.315 would miss it by the last bit of a sum.
SpanLimit LimitOf(double applied) {
    return {core::RoundTo(applied + applied * -limit, valuePlaces),
            core::RoundTo(applied + applied * limit, valuePlaces)};
}

bool WithinSpanLimit(double applied, double live) {
    const SpanLimit span = LimitOf(applied);
    return span.low <= live && live <= span.high;
}

// Whatever happens on its way, the state is clear before the audit trail is written.
void Calibration::Serve() {
    const Request request = *request_;
    const End end = CarryOut(request);
    request_.reset();
    ReadingOf(request.transmitter).result = end.result;
    Say(end.message);
    Turn(CalibrationState::Reading);
    LeaveAudit(request, end);
    // What was live before a command says nothing of what it did: the live values come next.
    if (!end.result.empty()) {
        MarkOld();
        next_ = 0;
        view_.Changed();
    }
}

Calibration::End Calibration::CarryOut(const Request& request) {
    if (request.command == CalibrationCommand::Span) {
        if (const auto refused = WriteSpanValue(request)) {
            return *refused;
        }
    }
    return GiveCommand(request);
}

// Nothing when the station has answered to the span value; then the command may follow.
std::optional<Calibration::End> Calibration::WriteSpanValue(const Request& request) {
    const Texts& words = TextsOf(request.transmitter);
    TransmitterReading& reading = ReadingOf(request.transmitter);
    const ReadAnswer fresh = ReadOne(Named(request.transmitter, CalibrationPart::Live));
    if (fresh.answer != Answer::Good || fresh.signals.front().text) {
        reading.old = reading.live.has_value();
        return End{"", WhyNot(), WhyNot() + ", nothing was written"};
    }
    Take(PlaceOf(request.transmitter, CalibrationPart::Live).index, fresh.signals.front());
    view_.Changed();
    if (!WithinSpanLimit(request.applied, *reading.live)) {
        return End{"", words.limitExceeds};
    }
    LetLateAnswerPass();
    if (!Going()) {
        return End{"", WhyNot() + ": nothing was written"};
    }
    Say(words.pleaseWait);
    const NamedSignal& spanValue = Named(request.transmitter, CalibrationPart::SpanValue);
    const Answer answer = WriteByName(*talk_, spanValue.name, request.applied, core::ValueKind::Float);
    if (answer != Answer::Good) {
        return End{"", WhyNot() + ": no answer to the span value, no command was sent"};
    }
    // An answer does not tell whether the value was taken, and the command would span to an earlier one.
    const ReadAnswer taken = Going() ? ReadOne(spanValue) : ReadAnswer{Answer::None};
    if (taken.answer != Answer::Good || taken.signals.front().text || !Going()) {
        return End{"", WhyNot() + ": the span value was sent, no command was sent"};
    }
    Take(PlaceOf(request.transmitter, CalibrationPart::SpanValue).index, taken.signals.front());
    if (!core::SameSingle(request.applied, *reading.spanValue)) {
        return End{"", "The station has not taken the span value, it has " + core::NumberText(*reading.spanValue) +
                           ": no command was sent"};
    }
    return std::nullopt;
}

// It would pass for the answer to what is sent next.
void Calibration::LetLateAnswerPass() {
    if (std::exchange(lateMayCome_, false)) {
        talk_->Wait(talk_->CommTimeout());
    }
}

Calibration::End Calibration::GiveCommand(const Request& request) {
    const CalibrationPart part = CommandPart(request.command);
    const bool isSpan = request.command == CalibrationCommand::Span;
    LetLateAnswerPass();
    if (!Going()) {
        return {"", WhyNot() + (isSpan ? ": the span value was sent, no command was sent" : ": nothing was sent")};
    }
    const Answer answer = WriteByName(*talk_, Named(request.transmitter, part).name, 1, core::ValueKind::Logical);
    if (answer != Answer::Good) {
        return {unknown, WhyNot() + notKnown};
    }
    if (!isSpan) {
        Say(TextsOf(request.transmitter).written);
    }
    if (request.command != CalibrationCommand::Restore) {
        talk_->clock.WaitMs(workMs, [this] { return !Going(); });
    }
    return Going() ? ReadStatus(request) : End{unknown, WhyNot() + notKnown};
}

Calibration::End Calibration::ReadStatus(const Request& request) {
    const ReadAnswer status = ReadOne(Named(request.transmitter, CalibrationPart::Status));
    if (status.answer != Answer::Good || status.signals.front().text) {
        return {unknown, WhyNot() + notKnown};
    }
    const double value = status.signals.front().value;
    Take(PlaceOf(request.transmitter, CalibrationPart::Status).index, status.signals.front());
    const Texts& words = TextsOf(request.transmitter);
    const std::string result = value == 0 ? "Success" : "Failure";
    return {result, request.command == CalibrationCommand::Restore ? words.written : words.completed,
            result + ", status " + core::NumberText(value)};
}

std::string Calibration::Audited(const Request& request, const End& end) const {
    const TransmitterReading& reading = Of(request.transmitter);
    std::string line = talk_->logs.Stamp() + ": User " + talk_->currentuser + " gave " + CommandName(request.command) +
                       " for " + NameOf(request.transmitter) + " of RTU " + talk_->station.consumer;
    if (request.command == CalibrationCommand::Span) {
        line += ", applied " + core::NumberText(request.applied);
    }
    line += reading.live ? ", live " + core::NumberText(core::RoundTo(*reading.live, shownPlaces)) +
                               (reading.unit.empty() ? "" : " ") + reading.unit + (reading.old ? " (old)" : "")
                         : std::string(", live not read");
    line += ": " + (end.answer.empty() ? end.message : end.answer);
    return line + (line.ends_with('.') ? "" : ".");
}

void Calibration::LeaveAudit(const Request& request, const End& end) {
    const std::string line = Audited(request, end);
    try {
        talk_->logs.WriteAudit(line);
    } catch (const std::exception& failure) {
        talk_->logs.WriteRtuErr(line + " Not in the audit trail: " + failure.what());
        Say(end.message + " (not in the audit trail, see the error log)");
    }
}

}  // namespace signals
