#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fieldsim/BsapFrame.h"
#include "fieldsim/Device.h"
#include "fieldsim/Signals.h"

namespace fieldsim {

// The lists of a station by their numbers, such as 54 and 55.
using SignalLists = std::map<int, std::shared_ptr<SignalList>>;

enum class ListAnswer {
    AtOnce,
    AcknowledgeFirst,  // an acknowledgement; the answer waits for the next poll
    Alternate,         // now the one, now the other
};

struct BsapOptions {
    // The reply layout of the CW models: one byte less in front of everything that follows the sequence number.
    bool shortLayout = false;
    std::string password;  // with one, lists are open only after a sign-on with it; empty: any sign-on will do
    std::uint8_t loadVersion1 = 0x12;
    std::uint8_t loadVersion2 = 0x34;
    std::uint8_t status = 0;  // of every reply; above 1 the station is not fit
    ListAnswer lists = ListAnswer::AtOnce;
    // The link sequence number of a reply and the number that it acknowledges are the request's. Otherwise they are the
    // station's own count, which goes round below 10 hex, so that no doubled byte stands in front of the fixed places.
    bool echoSequences = false;
    std::set<int> silentLists;  // requests for these are never answered
    std::uint32_t answerMs = 50;
};

// A BSAP station: poll, acknowledge, sign-on, load version and signal lists. Requests for other addresses or with a bad
// check get silence, those that it cannot serve (other load versions, unknown lists) an acknowledgement.
class BsapStation final : public Device {
  public:
    BsapStation(int address, SignalLists lists, BsapOptions options = {})
        : address_(address), lists_(std::move(lists)), options_(std::move(options)) {}

    std::vector<Answer> Receive(std::string_view bytes, const Moment& now) override;

    const SignalLists& Lists() const { return lists_; }
    BsapOptions& Options() { return options_; }
    // Sign-ons with the right password so far.
    int SignOns() const { return signOns_; }
    bool SignedOn() const { return signedOn_; }

    // The MSD address of a signal: its list and its place there.
    static int Msd(int list, int position) { return list * 512 + position; }

  private:
    struct Request {
        std::uint8_t sequence = 0;
        std::string applicationSequence;  // two bytes, as they came
        std::string_view function;
    };

    // The body of the reply to a body; nothing for silence.
    std::optional<std::string> Reply(std::string_view body, const Moment& now);
    std::optional<std::string> Application(std::string_view body, const Moment& now);
    std::optional<std::string> List(const Request& request, const Moment& now);
    std::string Page(const Request& request, int list, int from, bool units, const Moment& now);
    std::string Record(int list, int position, bool units, const Moment& now);
    std::string SignOn(const Request& request);
    std::string Version(const Request& request);

    std::string Acknowledgement(std::uint8_t sequence);
    // The start of an answer, up to the two bytes that are the load version or the place where a list goes on.
    std::string AnswerHead(const Request& request);
    char Sequence(std::uint8_t requested) const;

    int address_;
    SignalLists lists_;
    BsapOptions options_;
    BsapReader reader_;
    std::string waiting_;  // the answer that the next poll will get
    int ownSequence_ = 0;
    int listRequests_ = 0;
    int signOns_ = 0;
    bool signedOn_ = false;
};

}  // namespace fieldsim
