#include "fieldsim/HayesModem.h"

#include "core/Text.h"

namespace fieldsim {

namespace {

// The number of a dial command, such as "ATX3DT0265-12" or "atd,555"; empty for any other command.
std::string DialledNumber(const std::string& command) {
    const std::size_t dial = command.find('D', 2);
    if (dial == std::string::npos) {
        return {};
    }
    const bool toneOrPulse = dial + 1 < command.size() && (command[dial + 1] == 'T' || command[dial + 1] == 'P');
    return core::Trim(command.substr(dial + (toneOrPulse ? 2 : 1)));
}

}  // namespace

std::vector<Answer> HayesModem::Receive(std::string_view bytes, const Moment& now) {
    now_ = now.milliseconds;
    Settle(now);
    std::vector<Answer> answers;
    if (mode_ == Mode::Data) {
        answers = Data(bytes, now);
    } else if (mode_ == Mode::Command) {
        answers = Commands(bytes);
    }
    lastByteAt_ = now_;
    return answers;
}

// What time alone has changed since the last bytes.
void HayesModem::Settle(const Moment& now) {
    if (mode_ == Mode::Dialling && called_ != nullptr && now.milliseconds >= connectAt_) {
        peer_ = called_;
        called_ = nullptr;
        mode_ = Mode::Data;
    } else if (mode_ == Mode::Dialling && connectAt_ != 0 && now.milliseconds >= connectAt_) {
        mode_ = Mode::Command;
    }
    // Without a result in sight any key ends the dialling.
    if (mode_ == Mode::Dialling && connectAt_ == 0) {
        mode_ = Mode::Command;
    }
    if (escaping_ && now.milliseconds >= lastByteAt_ + options_.guardMs) {
        mode_ = Mode::Command;
    }
    escaping_ = false;
}

std::vector<Answer> HayesModem::Commands(std::string_view bytes) {
    std::vector<Answer> answers;
    for (const char c : bytes) {
        if (c != '\r') {
            command_ += c;
            continue;
        }
        if (options_.echo) {
            answers.push_back({command_ + '\r', 0});
        }
        // A line may have noise in front of its "AT", as when the master took the modem for a station.
        const std::string line = core::UpperText(command_);
        const std::size_t at = line.find("AT");
        command_.clear();
        if (at != std::string::npos) {
            for (Answer& answer : Command(line.substr(at))) {
                answers.push_back(std::move(answer));
            }
        }
    }
    return answers;
}

std::vector<Answer> HayesModem::Command(const std::string& line) {
    if (line.starts_with("ATH")) {
        HangUp();
        return Say("OK", options_.commandMs);
    }
    if (line == "ATO") {
        mode_ = peer_ != nullptr ? Mode::Data : Mode::Command;
        return Say(peer_ != nullptr ? "CONNECT" : "NO CARRIER", options_.commandMs);
    }
    const std::string number = DialledNumber(line);
    return number.empty() ? Say("OK", options_.commandMs) : Dial(number);
}

std::vector<Answer> HayesModem::Dial(const std::string& number) {
    HangUp();
    dialled_.push_back(number);
    const auto known = phoneBook_.find(number);
    const auto always = always_.find(number);
    DialOutcome outcome = always != always_.end() ? always->second : DialOutcome{};
    if (!script_.empty()) {
        outcome = script_.front();
        script_.pop_front();
    }
    if (known == phoneBook_.end() && outcome.result.starts_with("CONNECT")) {
        outcome = options_.whenUnknown;
    }
    mode_ = Mode::Dialling;
    connectAt_ = 0;
    if (outcome.result.empty()) {
        return {};
    }
    connectAt_ = now_ + outcome.afterMs;
    if (outcome.result.starts_with("CONNECT")) {
        called_ = known->second;
        requestsUntilLost_ = outcome.requestsUntilLost;
    }
    return Say(outcome.result, outcome.afterMs);
}

std::vector<Answer> HayesModem::Data(std::string_view bytes, const Moment& now) {
    if (bytes == "+++" && now.milliseconds >= lastByteAt_ + options_.guardMs) {
        escaping_ = true;
        return Say("OK", options_.guardMs);
    }
    std::vector<Answer> answers = peer_->Receive(bytes, now);
    if (answers.empty() || requestsUntilLost_ < 0) {
        return answers;
    }
    return requestsUntilLost_-- > 0 ? answers : LoseCarrier(std::move(answers));
}

std::vector<Answer> HayesModem::LoseCarrier(std::vector<Answer> answers) {
    HangUp();
    answers.resize(1);
    answers[0].bytes = answers[0].bytes.substr(0, answers[0].bytes.size() / 2) + "\r\nNO CARRIER\r\n";
    return answers;
}

void HayesModem::HangUp() {
    if (peer_ != nullptr) {
        peer_->LineClosed();
    }
    peer_ = nullptr;
    called_ = nullptr;
    mode_ = Mode::Command;
}

void HayesModem::LineClosed() {
    HangUp();
    command_.clear();
    escaping_ = false;
}

std::vector<Answer> HayesModem::Say(const std::string& result, std::uint32_t afterMs) const {
    return {{"\r\n" + result + "\r\n", afterMs}};
}

}  // namespace fieldsim
