#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fieldsim/Device.h"

namespace fieldsim {

// What becomes of one dial command.
struct DialOutcome {
    std::string result = "CONNECT 9600";  // any result text; empty: the modem never answers
    std::uint32_t afterMs = 4000;
    int requestsUntilLost = -1;  // so many answers, then "NO CARRIER" comes in the middle of the next; -1: never
};

// A Hayes modem with the devices that its numbers reach. It takes commands until it is connected and again after "+++"
// between two guard times, or when the carrier is lost or the port closed.
class HayesModem final : public Device {
  public:
    struct Options {
        bool echo = true;  // of commands
        std::uint32_t commandMs = 50;
        std::uint32_t guardMs = 1000;
        DialOutcome whenUnknown{"NO ANSWER", 12000};  // for a number that nobody has
    };

    HayesModem() = default;
    explicit HayesModem(Options options) : options_(std::move(options)) {}

    // The device that answers a number. It must outlive the modem.
    void PhoneBook(const std::string& number, Device& device) { phoneBook_[number] = &device; }
    // What the coming dials give, one each; after them every dial of a known number connects.
    void Script(std::deque<DialOutcome> script) { script_ = std::move(script); }
    // What a dial of this number gives, whenever no script is left.
    void Always(const std::string& number, const DialOutcome& outcome) { always_[number] = outcome; }

    std::vector<Answer> Receive(std::string_view bytes, const Moment& now) override;
    void LineClosed() override;

    bool Connected() const { return peer_ != nullptr; }
    // The numbers dialled so far.
    const std::vector<std::string>& Dialled() const { return dialled_; }

  private:
    enum class Mode { Command, Dialling, Data };

    std::vector<Answer> Commands(std::string_view bytes);
    std::vector<Answer> Command(const std::string& line);
    std::vector<Answer> Dial(const std::string& number);
    std::vector<Answer> Data(std::string_view bytes, const Moment& now);
    std::vector<Answer> LoseCarrier(std::vector<Answer> answers);
    void Settle(const Moment& now);
    void HangUp();
    std::vector<Answer> Say(const std::string& result, std::uint32_t afterMs) const;

    Options options_;
    std::map<std::string, Device*> phoneBook_;
    std::deque<DialOutcome> script_;
    std::map<std::string, DialOutcome> always_;
    std::vector<std::string> dialled_;

    Mode mode_ = Mode::Command;
    std::string command_;
    Device* called_ = nullptr;  // dialled and not yet connected
    Device* peer_ = nullptr;
    std::uint64_t now_ = 0;
    std::uint64_t connectAt_ = 0;
    std::uint64_t lastByteAt_ = 0;
    bool escaping_ = false;  // "+++" has come after its guard time
    int requestsUntilLost_ = -1;
};

}  // namespace fieldsim
