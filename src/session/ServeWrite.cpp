#include "session/ServeWrite.h"

#include <array>
#include <optional>
#include <vector>

#include "core/Text.h"
#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapLink.h"
#include "protocols/modbus/ModbusReadBack.h"
#include "session/Figures.h"

namespace session {

namespace {

protocols::Bsap Messages(protocols::Conversation& talk) {
    return {talk.counters, talk.bsap, talk.station.isCW};
}

// Clears what is waiting of an earlier answer, sends, waits and takes what comes.
void SendOnce(protocols::Conversation& talk, const std::string& frame) {
    talk.feedback.Status("Sending Request");
    const std::string reply = protocols::ExchangeBsap(talk, frame);
    if (!talk.Ended()) {
        talk.requests.Note(!reply.empty());
    }
}

// The register on the wire is the stored address less 1, as in the read of the same row.
protocols::WriteOutcome Put(protocols::Conversation& talk, const WriteRequest& request) {
    const int reg = static_cast<int>(request.writeAddress) - 1;
    const auto outcome = protocols::ModbusWrite(talk, request.kind, reg, request.writeValue, protocols::onlineWrite);
    if (outcome == protocols::WriteOutcome::Refused && !talk.Ended()) {
        talk.logs.WriteRtuErr("Modbus exception " + core::NumberText(talk.modbus.mbvalues[1]) + " to the write of " +
                              request.Description + " [" + std::to_string(talk.station.locationID) + "]");
    }
    return outcome;
}

constexpr double turnMs = 50;

// The elements of a station's clock, the switch last. Nothing when one is not there or was not read.
std::optional<std::vector<WriteRequest>> ClockRequests(const protocols::Conversation& talk, const ParameterSet& set) {
    constexpr std::array<Figure, 7> elements = {Figure::SetYear,   Figure::SetMonth,  Figure::SetDay, Figure::SetHour,
                                                Figure::SetMinute, Figure::SetSecond, Figure::SetTime};
    std::vector<WriteRequest> requests;
    for (const Figure element : elements) {
        const ParameterRow* row = RowOf(set, element, talk.station.isCW);
        if (row == nullptr || row->MSD <= 0 || !row->read) {
            return std::nullopt;
        }
        WriteRequest request;
        request.Description = row->Description;
        request.kind = row->kind;
        request.writeAddress = row->MSD;
        requests.push_back(request);
    }
    return requests;
}

// Each of the six elements takes a commtimeout. Whole seconds, with one to spare.
std::int64_t SecondsToLatch(const protocols::Conversation& talk) {
    constexpr int elements = 6;
    return (elements * talk.CommTimeout() + 999) / 1000 + 1;
}

constexpr const char* notWritten = "Data Could not be written";

std::optional<double> ReadBack(protocols::Conversation& talk, const WriteRequest& request) {
    return protocols::ModbusReadBack(talk, request.kind, static_cast<int>(request.writeAddress) - 1,
                                     protocols::onlineWrite);
}

// Confirmed: the line has carried it.
WriteResult PutElement(protocols::Conversation& talk, WriteRequest request, double value) {
    request.writeValue = value;
    if (talk.station.protocol == core::Protocol::Bsap) {
        pending_write_request_bsap(talk, request);
        return talk.Ended() ? WriteResult::CutOff : WriteResult::Confirmed;
    }
    const auto outcome = Put(talk, request);
    if (talk.Ended()) {
        return WriteResult::CutOff;
    }
    if (outcome != protocols::WriteOutcome::Done && outcome != protocols::WriteOutcome::NotBuilt) {
        talk.feedback.Box(notWritten);
    }
    return outcome == protocols::WriteOutcome::Done       ? WriteResult::Confirmed
           : outcome == protocols::WriteOutcome::Refused  ? WriteResult::Refused
           : outcome == protocols::WriteOutcome::NotBuilt ? WriteResult::NotSent
                                                          : WriteResult::NotConfirmed;
}

// Nothing when all six are out.
std::optional<TimeSent> PutElements(protocols::Conversation& talk, const std::vector<WriteRequest>& requests,
                                    const core::DateTime& time) {
    const std::array<int, 6> values = {time.year, time.month, time.day, time.hour, time.minute, time.second};
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (const auto result = PutElement(talk, requests[i], values[i]); result != WriteResult::Confirmed) {
            const bool untaken = result == WriteResult::NotConfirmed;
            return TimeSent{untaken ? WriteResult::NotSent : result, time, requests[i].Description + " was not taken"};
        }
    }
    return std::nullopt;
}

}  // namespace

WriteSent pending_write_request_mbus(protocols::Conversation& talk, const WriteRequest& request) {
    const auto outcome = Put(talk, request);
    if (talk.Ended()) {
        return {{WriteResult::CutOff}};
    }
    if (outcome == protocols::WriteOutcome::NotBuilt) {
        return {{WriteResult::NotSent, std::nullopt, "no request of this station's framing carries it"}};
    }
    if (outcome == protocols::WriteOutcome::Refused) {
        talk.feedback.Box(notWritten);
        return {{WriteResult::Refused, std::nullopt, "Modbus exception " + core::NumberText(talk.modbus.mbvalues[1])}};
    }
    WriteSent sent;
    sent.answer.has = ReadBack(talk, request);
    if (sent.answer.has && protocols::IsShown(*sent.answer.has, request.writeValue)) {
        sent.answer.result = WriteResult::Confirmed;
        return sent;
    }
    sent.mayFollow = !sent.answer.has || protocols::IsShown(*sent.answer.has, request.oldValue);
    if (outcome == protocols::WriteOutcome::Failed) {
        sent.answer.reason = "no answer to the write";
        if (!talk.Ended()) {
            talk.feedback.Box(notWritten);
        }
    }
    return sent;
}

void pending_write_request_bsap(protocols::Conversation& talk, const WriteRequest& request) {
    SendOnce(talk, Messages(talk).Write_value(talk.station.slaveaddress, request.writeValue,
                                              static_cast<std::int32_t>(request.writeAddress), request.kind));
}

void pending_mul_write_request_bsap(protocols::Conversation& talk, std::span<const WriteRequest> requests) {
    std::vector<double> values;
    std::vector<std::int32_t> addresses;
    for (const WriteRequest& request : requests) {
        values.push_back(request.writeValue);
        addresses.push_back(static_cast<std::int32_t>(request.writeAddress));
    }
    SendOnce(talk, Messages(talk).Write_Mul_value(talk.station.slaveaddress, values, addresses, 0, values.size()));
}

TimeSent SetStationTime(protocols::Conversation& talk, const ParameterSet& set) {
    const auto requests = ClockRequests(talk, set);
    if (!requests) {
        return {WriteResult::NotSent, {}, "its map has no place for it, or the place was not read in this connection"};
    }
    constexpr int mostTries = 3;
    for (int tries = 0; tries < mostTries; ++tries) {
        const std::int64_t due = core::ToSeconds(talk.clock.Now()) + SecondsToLatch(talk);
        const core::DateTime time = core::FromSeconds(due);
        if (const auto failure = PutElements(talk, *requests, time)) {
            return *failure;
        }
        while (core::ToSeconds(talk.clock.Now()) < due && talk.Wait(turnMs)) {
        }
        // A time that has passed would set the clock back: its elements are sent anew.
        if (!talk.Ended() && core::ToSeconds(talk.clock.Now()) == due) {
            const WriteResult latch = PutElement(talk, requests->back(), 1);
            return {latch == WriteResult::Confirmed ? WriteResult::NotConfirmed : latch, time, {}};
        }
        if (talk.Ended()) {
            return {WriteResult::CutOff, time, {}};
        }
    }
    return {WriteResult::NotSent, {}, "the line is too slow for it"};
}

}  // namespace session
