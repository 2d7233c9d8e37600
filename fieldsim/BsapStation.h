#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fieldsim/ArchiveFile.h"
#include "fieldsim/BsapFrame.h"
#include "fieldsim/BsapRecords.h"
#include "fieldsim/Signals.h"
#include "fieldsim/WritableStation.h"

namespace fieldsim {

// The lists of a station by their numbers, such as 54 and 55.
using SignalLists = std::map<int, std::shared_ptr<SignalList>>;

// How a station gives out lists, archives and the audit trail.
enum class DataAnswer {
    AtOnce,
    AcknowledgeFirst,  // an acknowledgement; the answer waits for the next poll
    Alternate,         // now the one, now the other
};

struct BsapOptions {
    // The CW models. The others have one byte more in front of everything: see `leadingByte`.
    bool shortLayout = false;
    // FF or 00 goes out ahead of DLE STX, now the one, now the other. Otherwise the byte stands inside the head, behind
    // the link sequence number.
    bool leadingByte = true;
    std::string password;  // with one, all data are open only after a sign-on with it; empty: any sign-on will do
    std::uint8_t loadVersion1 = 0x12;
    std::uint8_t loadVersion2 = 0x34;
    std::uint8_t status = 0;  // of every reply; above 1 the station is not fit
    DataAnswer answers = DataAnswer::AtOnce;
    // One answer in so many makes its request and the first poll wait with an acknowledgement; 0: none does.
    int notReadyOneIn = 6;
    std::uint32_t seed = 1;  // of what comes by chance
    // The link and application sequence numbers of a reply, and the number that it acknowledges, are the request's.
    // Otherwise they are 0 and the station's own count, which goes round below 10 hex, so that no doubled byte stands
    // in front of the fixed places; and what the station does not have gets an acknowledgement, not an answer that says
    // so.
    bool echoSequences = true;
    std::set<int> silentLists;   // requests for these are never answered
    bool answersWrites = false;  // by a frame of their own instead of an acknowledgement
    std::uint32_t answerMs = 50;
    // Is done before each reply of a list or a search but its first: what may happen while a master reads on.
    std::function<void()> betweenReplies{};

    // A station of the other kind in all this: it counts for itself, has its byte inside the head and is always ready.
    static BsapOptions CountsForItself() {
        BsapOptions options;
        options.leadingByte = false;
        options.notReadyOneIn = 0;
        options.echoSequences = false;
        return options;
    }
};

// A BSAP station: poll, acknowledge, sign-on, load version, signal lists with and without names, single signals by MSD
// address or by name, the search for names, archive files and the audit trail, and writes of values, on and off, and
// texts by MSD address or by name. Requests for other addresses or with a bad check get silence, those that it cannot
// serve (other load versions, unknown lists, addresses and names) an answer without data. A write is taken whole or not
// at all: not with another load version, to an address or a name without a signal, or of a value that is not of the
// signal's kind. Its answer does not tell.
//
// A name is the signal's description, in any case; the first of that name is meant. A signal keeps its MSD address as
// long as it is there, wherever it moves in its list, and no other gets it: one that is gone takes no write.
class BsapStation final : public WritableStation {
  public:
    BsapStation(int address, SignalLists lists, BsapOptions options = {});

    std::vector<Answer> Receive(std::string_view bytes, const Moment& now) override;

    const SignalLists& Lists() const { return lists_; }
    BsapOptions& Options() { return options_; }
    // Another program is loaded: each signal gets the address that another one of its list had, the load version is a
    // new one, and whoever was signed on is so no longer.
    void LoadProgram();
    // Its archive files and its audit trail, which may be changed at any time; what comes of it on the line stands in
    // BsapArchive.h. A station has none of its own.
    StationHistory& History() { return history_; }
    std::map<int, ArchiveFile>& Archives() { return history_.archives; }
    AuditTrail& Audit() { return history_.audit; }
    // Sign-ons with the right password so far.
    int SignOns() const { return signOns_; }
    bool SignedOn() const { return signedOn_; }
    // The text that was written into a signal; empty: none was.
    std::string TextOf(int list, int position) const;

    // The MSD address that a signal at this place has from the start: for the first 511 places of a list. Those behind
    // them, and signals that come later, get one that nobody has.
    static int Msd(int list, int position) { return list * 512 + position; }

  private:
    struct Request {
        std::uint8_t sequence = 0;
        std::string applicationSequence;  // two bytes, as they came
        std::string_view function;
    };

    // The body of the reply to a body; nothing for silence.
    std::optional<Answer> Reply(std::string_view body, const Moment& now);
    std::optional<Answer> Application(std::string_view body, const Moment& now);
    std::optional<Answer> AnswerWrite(const Request& request, const Moment& now);
    bool Elements(std::string_view function, std::vector<Change>& changes) const;
    bool NamedElement(std::string_view function, std::vector<Change>& changes) const;
    static bool Value(std::string_view& rest, Change& change);
    Change ChangeAt(int msd) const;
    Change ChangeOf(int list, int position, const Signal* signal) const;
    std::optional<std::string> List(const Request& request, const Moment& now);
    std::string Page(const Request& request, int list, int from, const RecordForm& form, const Moment& now);
    std::string Record(int list, int position, const RecordForm& form, const Moment& now);
    std::string EmptyRecord(int list, int position, const RecordForm& form) const;

    // A signal and where it stands; null: there is none.
    struct Place {
        int list = 0;
        const Signal* signal = nullptr;
    };
    Place ByMsd(int msd) const;
    Place ByName(std::string_view name) const;
    // Gives the signal an address if it has none.
    int MsdOf(int list, const Signal& signal);
    std::string RecordOf(const Place& place, const RecordForm& form, const Moment& now);
    // The answers to requests for single signals and to a search; nothing: it is none of them, or asks for what is not
    // there.
    std::optional<std::string> Singles(const Request& request, const Moment& now);
    std::optional<std::string> SinglesOf(const Request& request, const std::vector<Place>& places, const Moment& now);
    std::optional<std::string> Search(const Request& request, const Moment& now);
    std::vector<Place> Matches(std::string_view pattern, bool byAttribute) const;
    std::optional<std::string> FromHistory(const Request& request, const Moment& now);
    // The answer, or an acknowledgement when it waits for a poll.
    std::string AtOnceOrOnPoll(std::string answer, const Request& request);
    std::string SignOn(const Request& request);
    std::string Version(const Request& request);

    // A body as it goes over the line.
    std::string OnLine(std::string_view body);
    std::string WhatWaits(std::uint8_t sequence);
    std::string Acknowledgement(std::uint8_t sequence);
    // The answer to a request for what is not there: its head up to the error byte.
    std::string Refusal(const Request& request);
    // The start of an answer, up to the two bytes that are the load version or the place where a list goes on.
    std::string AnswerHead(const Request& request);
    Answer InTime(std::string bytes) const { return {std::move(bytes), options_.answerMs}; }
    // Whether the station serves whoever asks now.
    bool Open() const { return signedOn_ || options_.password.empty(); }
    std::string LoadVersion() const {
        return {static_cast<char>(options_.loadVersion1), static_cast<char>(options_.loadVersion2)};
    }
    char Sequence(std::uint8_t requested) const;
    std::string HeadStart(std::uint8_t sequence) const;

    int address_;
    SignalLists lists_;
    BsapOptions options_;
    StationHistory history_;
    BsapReader reader_;
    static constexpr int kHighestMsd = 0xFFFF;
    std::set<int> addresses_;    // the MSD addresses that were ever given
    int freeMsd_ = kHighestMsd;  // none above this one is free
    std::string waiting_;        // the answer that a poll will get
    int pollsInFront_ = 0;       // that will find it not ready
    std::minstd_rand random_;
    int ownSequence_ = 0;
    int dataRequests_ = 0;
    int signOns_ = 0;
    bool signedOn_ = false;
};

}  // namespace fieldsim
