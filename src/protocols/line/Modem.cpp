#include "protocols/line/Modem.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

namespace protocols {

namespace {

constexpr int mostDials = 3;
constexpr double stepMs = 1000;  // after each step of the dialogue
constexpr double pollMs = 50;    // while a result is awaited
constexpr const char* notReached = "No Dialtone/Line Engaged/Remote Modem not Responding";

// Results of a dial that failed.
constexpr std::array<const char*, 6> failures = {"NO CARRIER", "NO ANSWER",   "ERROR",
                                                 "BUSY",       "NO DIALTONE", "NO DIAL TONE"};

enum class DialResult { Connected, Failed, Silent };

bool Holds(const std::string& text, const char* word) {
    return text.find(word) != std::string::npos;
}

bool SaysFailed(const std::string& received) {
    return std::any_of(failures.begin(), failures.end(), [&](const char* result) { return Holds(received, result); });
}

bool HasResult(const std::string& received) {
    return SaysFailed(received) || Holds(received, "CONNECT");
}

void Report(Conversation& talk, const std::string& failure, const DialOptions& options) {
    if (options.unattended) {
        talk.logs.WriteRtuErr(failure + "[" + std::to_string(talk.station.locationID) + "]");
        talk.feedback.Status(failure);
    } else {
        talk.feedback.Box(failure);
    }
}

// Closes the port, reports, and gives the outcome on.
DialOutcome Fail(Conversation& talk, DialOutcome outcome, const std::string& failure, const DialOptions& options) {
    talk.line->PortOpen(false);
    Report(talk, failure, options);
    return outcome;
}

// False: the conversation was told to end, and nothing was dialled.
bool SendDialCommand(Conversation& talk, int attemptcount) {
    talk.feedback.Status("Redial Count:" + std::to_string(attemptcount));
    talk.line->ClearOutBuffer();
    talk.line->ClearInBuffer();
    if (!talk.Wait(stepMs)) {
        return false;
    }
    talk.feedback.Status("Dialing " + talk.station.phoneno);
    talk.line->ClearInBuffer();
    const std::string command = talk.station.dialprefix + talk.station.phoneno + "\r";
    talk.line->Output(command);
    talk.feedback.Lamp("TX", command);
    return true;
}

// What the modem said, up to a result or the time-out.
std::string AwaitResult(Conversation& talk, double timeoutMs) {
    std::string received;
    const std::uint32_t start = talk.clock.Milliseconds();
    const auto timedOut = [&] { return talk.clock.Milliseconds() - start >= timeoutMs; };
    while (!HasResult(received) && !timedOut() && talk.Wait(pollMs)) {
        const std::string bytes = talk.line->Input();
        if (!bytes.empty()) {
            talk.feedback.Lamp("RX", bytes);
        }
        received += bytes;
    }
    return received;
}

// One dial, from the open port to the modem's result.
DialResult DialOnce(Conversation& talk, int attemptcount, const DialOptions& options) {
    if (!SendDialCommand(talk, attemptcount)) {
        return DialResult::Silent;
    }
    const std::string received = AwaitResult(talk, options.resultTimeoutMs);
    if (talk.Wait(stepMs)) {
        talk.feedback.Status(HasResult(received) ? "Response From Modem:" + received : "TimeOut!!!! ");
    }
    talk.Wait(stepMs);
    return SaysFailed(received) ? DialResult::Failed : HasResult(received) ? DialResult::Connected : DialResult::Silent;
}

}  // namespace

std::string CheckModem(Conversation& talk) {
    return Exchange(talk, "at\r", stepMs);
}

DialOutcome Dial(Conversation& talk, int& attemptcount, const DialOptions& options) {
    const std::string answer = CheckModem(talk);
    if (talk.Ended()) {
        return DialOutcome::EndedEarly;
    }
    if (!Holds(answer, "OK")) {
        return Fail(talk, DialOutcome::NoModem, answer.empty() ? noModemText : options.wrongAnswer, options);
    }
    for (;;) {
        const DialResult result = DialOnce(talk, attemptcount, options);
        if (talk.Ended()) {
            return DialOutcome::Ended;
        }
        ++attemptcount;
        if (result == DialResult::Connected || (result == DialResult::Silent && options.silenceConnects)) {
            talk.feedback.Status(options.connected);
            return DialOutcome::Connected;
        }
        HangUp(*talk.line, talk.clock, talk.feedback, redialGuardMs);
        talk.line->PortOpen(false);
        if (result == DialResult::Silent) {
            const std::string seconds = std::to_string(static_cast<int>(options.resultTimeoutMs / 1000));
            return Fail(talk, DialOutcome::NotReached, "The modem gave no result within " + seconds + " s", options);
        }
        if (attemptcount >= mostDials) {
            return Fail(talk, DialOutcome::NotReached, notReached, options);
        }
        talk.Wait(options.redialMs);
        if (talk.Ended()) {
            return DialOutcome::Ended;
        }
        if (!talk.line->PortOpen(true)) {
            return Fail(talk, DialOutcome::NoPort, talk.line->LastError(), options);
        }
    }
}

void Drain(Line& line, core::Clock& clock) {
    constexpr double atMostMs = 3000;
    constexpr double stepMs = 10;
    for (double waited = 0; line.OutBufferCount() > 0 && waited < atMostMs; waited += stepMs) {
        clock.WaitMs(stepMs, [&line] { return !line.PortOpen(); });
    }
}

void HangUp(Line& line, core::Clock& clock, core::Feedback& feedback, double guardMs) {
    const auto send = [&](const std::string& command) {
        line.Output(command);
        feedback.Lamp("TX", command);
    };
    if (!line.PortOpen()) {
        return;
    }
    send("+++");
    clock.WaitMs(guardMs, [&line] { return !line.PortOpen(); });
    if (line.PortOpen()) {
        send("ath\r");
        Drain(line, clock);
    }
}

}  // namespace protocols
