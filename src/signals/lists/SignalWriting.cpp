#include "signals/lists/SignalWriting.h"

#include "core/Settings.h"
#include "core/Text.h"
#include "core/Users.h"
#include "session/WriteAnswer.h"
#include "session/WriteLevels.h"
#include "signals/lists/SignalAccess.h"

namespace signals {

namespace {

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
    const auto kind = write.signal.logical ? core::ValueKind::Logical : core::ValueKind::Float;
    return WriteNumber(talk, write.signal.MSD, write.value, kind);
}

// Some stations show a value a moment after they took it: one that still shows the old value is asked again.
ReadAnswer ReadBack(protocols::Conversation& talk, const SignalWrite& write) {
    constexpr int mostReads = 3;
    ReadAnswer back{Answer::Ended};
    for (int reads = 0; reads < mostReads && !talk.Ended(); ++reads) {
        back = ReadByAddress(talk, write.signal.MSD);
        const bool stillOld = back.answer == Answer::Good && !Shows(back.signals.front(), write) &&
                              ValueText(back.signals.front()) == ValueText(write.signal);
        if (!stillOld) {
            break;
        }
    }
    return talk.Ended() ? ReadAnswer{Answer::Ended} : back;
}

bool HasLevel(core::Database& dbconn, const std::string& currentuser, core::Setting level) {
    constexpr int lowestReadLevel = 1;
    return core::CheckWriteLevel(dbconn, "", lowestReadLevel, core::ReadSetting(dbconn, level), currentuser) ==
           core::AccessLevel::ReadWrite;
}

}  // namespace

bool MayWriteSignals(core::Database& dbconn, const std::string& currentuser) {
    return HasLevel(dbconn, currentuser, core::Setting::SignalWriteLevel);
}

bool MayWriteSignal(core::Database& dbconn, const core::Station& station, const Signal& signal,
                    const std::string& currentuser) {
    return MayWriteSignals(dbconn, currentuser) &&
           (core::IsSuperUser(currentuser) || !session::IsMeasuredSignal(dbconn, station, signal.MSD));
}

bool MayCalibrate(core::Database& dbconn, const std::string& currentuser) {
    return HasLevel(dbconn, currentuser, core::Setting::CalibrationLevel);
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
    const std::string change = "value of " + signal + " from " + ValueText(write.signal) + " to " + write.shown + ".";
    talk.logs.WriteAudit(talk.logs.Stamp() + ": User " + talk.currentuser + " asked to change " + change);
    WriteResult result{WriteEnd::Unknown, write.signal, {}};
    if (write.program && *write.program != ProgramOf(talk)) {
        result.end = WriteEnd::NotSent;
        result.message = "Not sent: the station's program has changed. Fetch the signal again";
        session::LeaveAudit(talk.logs, talk.currentuser + ":",
                            "value " + write.shown + " of " + signal + ": " + result.message + ".");
        return result;
    }
    Send(talk, write);
    const ReadAnswer back = ReadBack(talk, write);
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
        session::LeaveAudit(talk.logs, talk.currentuser, "changed " + change);
        return result;
    }
    result.message = result.end == WriteEnd::NotTaken ? "Not confirmed: the station has " + ValueText(result.signal)
                     : result.end == WriteEnd::Gone   ? signalNotFound
                     : back.answer == Answer::Ended
                         ? "The line is gone: whether the station has the value is not known"
                         : "Error Occured in Communication: whether the station has the value is not known";
    session::LeaveAudit(talk.logs, talk.currentuser + ":",
                        "value " + write.shown + " of " + signal + ": " + result.message + ".");
    return result;
}

}  // namespace signals
