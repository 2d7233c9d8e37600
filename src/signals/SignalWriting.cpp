#include "signals/SignalWriting.h"

#include "core/Text.h"
#include "core/Users.h"
#include "signals/SignalAccess.h"

namespace signals {

namespace {

constexpr int lowestLevel = 1;

bool Shows(const Signal& now, const SignalWrite& write) {
    if (write.text) {
        return now.text && *now.text == core::FromCodePage(*write.text);
    }
    return !now.text && core::SameSingle(now.value, write.value);
}

Answer Send(protocols::Conversation& talk, const SignalWrite& write) {
    if (write.text) {
        return WriteText(talk, write.signal.MSD, *write.text);
    }
    const auto kind = write.signal.logical ? protocols::ValueKind::Logical : protocols::ValueKind::Analog;
    return WriteNumber(talk, write.signal.MSD, write.value, kind);
}

std::string Event(const protocols::Conversation& talk, const std::string& what) {
    return talk.logs.Stamp() + ": User " + talk.currentuser + " " + what;
}

}  // namespace

bool MayWriteSignals(core::Database& dbconn, const std::string& currentuser) {
    return core::CheckWriteLevel(dbconn, "", lowestLevel, lowestLevel, currentuser) == core::AccessLevel::ReadWrite;
}

std::optional<SignalWrite> CheckEntry(const Signal& signal, const std::string& entered) {
    const std::string text = core::Trim(entered);
    SignalWrite write{signal, 0, std::nullopt, text};
    if (text.empty()) {
        return std::nullopt;
    }
    if (signal.logical) {
        write.value = text == WordsOf(signal).first ? 1 : 0;
        return write;
    }
    if (const auto number = core::EnteredNumber(text)) {
        write.value = *number;
        return write;
    }
    write.text = core::ToCodePage(text);
    return write.text ? std::optional(write) : std::nullopt;
}

WriteResult pending_request(protocols::Conversation& talk, const SignalWrite& write) {
    const std::string signal = "signal " + write.signal.name + " of RTU " + talk.station.consumer;
    talk.logs.WriteAudit(
        Event(talk, "changed value of " + signal + " from " + ValueText(write.signal) + " to " + write.shown + "."));
    WriteResult result{WriteEnd::Unknown, write.signal, {}};
    Send(talk, write);
    const ReadAnswer back = talk.Ended() ? ReadAnswer{Answer::Ended} : ReadByAddress(talk, write.signal.MSD);
    switch (back.answer) {
        case Answer::Good:
            result.signal = back.signals.front();
            result.signal.name = write.signal.name;
            result.end = Shows(result.signal, write) ? WriteEnd::Taken : WriteEnd::NotTaken;
            break;
        case Answer::NoSignal:
            result.signal = Signal{};
            result.end = WriteEnd::Gone;
            break;
        case Answer::None:
        case Answer::Ended:
            break;
    }
    if (result.end == WriteEnd::Taken) {
        return result;
    }
    result.message = result.end == WriteEnd::NotTaken ? "The station has " + ValueText(result.signal)
                     : result.end == WriteEnd::Gone   ? signalNotFound
                     : back.answer == Answer::Ended
                         ? "The line is gone: whether the station has the value is not known"
                         : "Error Occured in Communication: whether the station has the value is not known";
    talk.logs.WriteAudit(Event(talk, "value " + write.shown + " of " + signal + ": " + result.message + "."));
    return result;
}

}  // namespace signals
