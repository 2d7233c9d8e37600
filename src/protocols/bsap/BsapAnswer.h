#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocols/line/Conversation.h"

// The one way from the bytes of a line to the answers of a BSAP station: whole frames with a right check are found,
// whatever stands ahead of, between and behind them, their doubled bytes are undone, and only then positions count.
namespace protocols {

// What is known of a request when its answers are looked for.
struct BsapAsked {
    bool isCW = false;
    int address = -1;                      // of the station; -1: not known
    std::string body;                      // of the request, its doubled bytes undone
    std::string serials;                   // its link serial, and those of the polls for its answer
    std::string sequence;                  // its two application sequence bytes in their order; empty in link messages
    std::optional<LeadingByte> leading{};  // how this station was found to send

    // The request as it goes out.
    static BsapAsked By(std::string_view frame, bool isCW, int address = -1);
};

// Where the byte is that the long layout counts in front of everything. Stations send it ahead of DLE STX, and their
// head is then as short as that of the CW models; others have one byte more inside the head, behind the link serial.
// Noise may stand ahead of any frame and the leading byte may be lost, so what the frame itself says goes first. Of
// these the first that fits one of the two heads and not the other decides:
//
// 1. The message code, 86, 87 or 95 hex of a link message with the station's address behind it, or 0B hex of an
//    answer with A0 hex behind its application sequence. It is the third byte of the short head, the fourth of the
//    other one.
// 2. The request's serial and application sequence, given back.
// 3. The station's address in a link message without a known code.
// 4. Whether anything stands ahead of DLE STX. Where the station was found to send otherwise nothing decides: such a
//    frame is not read, since its values might be their neighbours'.
std::optional<LeadingByte> LeadingByteOf(std::string_view body, bool isLed, const BsapAsked& asked);

struct BsapAnswer {
    // The frame from DLE STX to its check, its doubled bytes undone, behind the leading byte where that is one: over
    // this the positions of BsapLayout.h count, and its length is the one by which replies are told apart.
    std::string text;
    LeadingByte leading = LeadingByte::None;
    // A message of the link, such as an acknowledgement, and no answer to a request.
    bool isLink = false;
    int serial = 0;
    std::string sequence;  // two bytes; empty in a message of the link

    // The byte at a position from 1; nothing behind the body.
    std::optional<int> At(std::size_t position) const;
};

// Whether a message whose head is like that is one of the link; `length` is that of BsapAnswer::text.
bool IsLinkMessage(std::string_view body, LeadingByte leading, std::size_t length);

// All answers in what was received, in their order. The request itself, given back by the line, is none.
std::vector<BsapAnswer> AnswersIn(std::string_view received, const BsapAsked& asked);

// Whose numbers an answer carries.
enum class Whose { Ours, Anothers, NotTold };

// Ours: the request's serial, or that of a poll for it, and both its sequence bytes. Another's: the numbers of an
// earlier request; or, where the station is known to give the numbers back, any others. Otherwise the station does not
// give them back, and the answer does not tell.
Whose WhoseIs(const BsapAnswer& answer, const BsapAsked& asked, const BsapCounters& counters, bool echoes);

}  // namespace protocols
