#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapLink.h"
#include "protocols/line/Conversation.h"
#include "signals/lists/SignalText.h"

// Single signals of a station that is signed on, by their addresses or by their names.
namespace signals {

// How often a read is sent before its station counts as silent, repeated polls counted as well.
inline constexpr int mostSends = protocols::mostSends;

enum class Answer {
    Good,
    NoSignal,  // the station has no such signal
    None,      // silence or bad replies, as often as it was sent
    Ended,     // the line was taken away, or the program ends
};

struct ReadAnswer {
    Answer answer = Answer::None;
    std::vector<Signal>
        signals{};  // Good: one for each that was asked for, in their order; few stations name them here
};

// Reads the signal with an address. An answer that is of another signal is none.
ReadAnswer ReadByAddress(protocols::Conversation& talk, std::int32_t address);

// A signal that is read by its name. Its answer need not hold the name: once its address is known, an answer that is of
// another signal is none. 0: not known yet.
struct NamedSignal {
    std::string name;
    int address = 0;
};

// Reads up to 99 signals in one message. One that the station does not have makes all of them NoSignal. With `sends` 1
// it is tried once, with its polls, for whoever has something to look at between two tries.
ReadAnswer ReadByName(protocols::Conversation& talk, std::span<const NamedSignal> named, int sends = mostSends);

// Writes a signal by its name, once: a logical one is switched on, whatever the value. Good: the station has answered,
// which does not tell whether it took the value.
Answer WriteByName(protocols::Conversation& talk, const std::string& name, double value, core::ValueKind kind);

// Writes a signal by its address, once, with the same sense.
Answer WriteNumber(protocols::Conversation& talk, std::int32_t address, double value, core::ValueKind kind);
Answer WriteText(protocols::Conversation& talk, std::int32_t address, const std::string& text);

}  // namespace signals
