#include "session/WriteAnswer.h"

#include <algorithm>
#include <exception>

#include "core/Logs.h"
#include "core/Quality.h"
#include "core/Text.h"
#include "reading/ValueStore.h"
#include "session/ValueText.h"

namespace session {

namespace {

std::string Shown(const WriteRequest& request, double value, bool isCW) {
    ParameterRow row;
    row.Description = request.Description;
    row.kind = request.kind;
    row.lastvalue = value;
    row.pending = true;  // shown as a figure
    return ValueCell(row, isCW);
}

// How one value went, without its name.
std::string Words(const AnsweredWrite& write, bool isCW) {
    const WriteAnswer& answer = write.answer;
    const std::string reason = answer.reason.empty() ? "" : ", " + answer.reason;
    switch (answer.result) {
        case WriteResult::Confirmed:
            return "confirmed";
        case WriteResult::Refused:
            return "refused by the station" + reason;
        case WriteResult::NotConfirmed:
            return "not confirmed" + reason +
                   (answer.has ? ", the station has " + Shown(write.request, *answer.has, isCW) : std::string());
        case WriteResult::NotSent:
            return "not sent" + reason;
        case WriteResult::CutOff:
            break;
    }
    return "cut off on its way" + reason + ", whether the station has it is not known";
}

// The same for the audit trail, which names the station.
std::string TrailWords(const AnsweredWrite& write, const core::Station& station) {
    const WriteAnswer& answer = write.answer;
    std::string words;
    switch (answer.result) {
        case WriteResult::Confirmed:
            words = "was confirmed by RTU " + station.consumer;
            break;
        case WriteResult::Refused:
            words = "was refused by RTU " + station.consumer;
            break;
        case WriteResult::NotConfirmed:
            words = "was not confirmed by RTU " + station.consumer;
            break;
        case WriteResult::NotSent:
            words = "was not sent to RTU " + station.consumer;
            break;
        case WriteResult::CutOff:
            words = "was cut off on its way to RTU " + station.consumer + ", whether it has it is not known";
            break;
    }
    words += answer.reason.empty() ? "" : ": " + answer.reason;
    if (answer.has && answer.result == WriteResult::NotConfirmed) {
        words += (answer.reason.empty() ? ": it has " : ", it has ") + Shown(write.request, *answer.has, station.isCW);
    }
    return words;
}

void EnterInMap(const WriteContext& context, const core::DateTime& now, const AnsweredWrite& write) {
    const WriteRequest& request = write.request;
    reading::WrittenValue written{request.writeValue, std::string(core::QualityText(core::Quality::NotConfirmed))};
    if (write.answer.has) {
        written = {core::RoundTo(*write.answer.has, 4), std::string(core::QualityText(core::Quality::Good)),
                   core::IsoText(now)};
    } else if (write.answer.result == WriteResult::Refused || write.answer.result == WriteResult::NotSent) {
        written = {core::RoundTo(request.oldValue, 4), request.oldQuality, {}, true};
    }
    reading::ValueStore(context.dbconn, context.station, context.streamno)
        .PutWritten(request.Description, request.aga, written);
}

}  // namespace

void LeaveAudit(core::Logs& logs, const std::string& user, const std::string& what) {
    const std::string line = logs.Stamp() + ": User " + user + " " + what;
    try {
        logs.WriteAudit(line);
    } catch (const std::exception& failure) {
        logs.WriteRtuErr(line + " Not in the audit trail: " + failure.what());
    }
}

void Settle(const WriteContext& context, const core::DateTime& now, const AnsweredWrite& write) {
    const WriteRequest& request = write.request;
    core::Guarded(context.logs, [&] { EnterInMap(context, now, write); });
    const bool changed = request.newText != request.oldText || request.writeValue != request.oldValue;
    if (write.answer.result == WriteResult::Confirmed && changed) {
        LeaveAudit(context.logs, request.user,
                   "changed value of parameter " + request.Description + " from " + request.oldText + " to " +
                       request.newText + ".");
        return;
    }
    LeaveAudit(context.logs, request.user + ":",
               "value " + request.newText + " of parameter " + request.Description + " " +
                   TrailWords(write, context.station) + ".");
}

std::string AnswerText(const std::vector<AnsweredWrite>& writes, bool isCW) {
    std::string taken;
    std::string others;
    std::string unsent;
    for (const AnsweredWrite& write : writes) {
        const std::string& name = write.request.Description;
        if (writes.size() > 1 && write.answer.result == WriteResult::Confirmed) {
            taken += (taken.empty() ? "Confirmed: " : ", ") + name;
        } else if (writes.size() > 1 && write.answer.result == WriteResult::NotSent) {
            unsent += (unsent.empty() ? "Not sent: " : ", ") + name;
        } else {
            others += (others.empty() ? "" : ". ") + name + ": " + Words(write, isCW);
        }
    }
    std::string text;
    for (const std::string& part : {taken, others, unsent}) {
        text += (text.empty() || part.empty() ? "" : ". ") + part;
    }
    return text;
}

}  // namespace session
