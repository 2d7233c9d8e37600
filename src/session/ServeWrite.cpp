#include "session/ServeWrite.h"

#include <array>

#include "core/Text.h"
#include "protocols/Bsap.h"
#include "protocols/ModbusTransact.h"
#include "session/Figures.h"
#include "session/Speaks.h"

namespace session {

namespace {

protocols::ModbusDatum DatumOf(DataKind kind) {
    switch (kind) {
        case DataKind::Logical:
            return protocols::ModbusDatum::Coil;
        case DataKind::Integer:
            return protocols::ModbusDatum::Integer;
        case DataKind::Float:
            break;
    }
    return protocols::ModbusDatum::Float;
}

protocols::Bsap Messages(protocols::Conversation& talk) {
    return {talk.counters, talk.bsap, talk.station.isCW};
}

// Clears what is waiting of an earlier answer, sends, waits and takes what comes.
void SendOnce(protocols::Conversation& talk, const std::string& frame) {
    talk.feedback.Status("Sending Request");
    const std::string reply = protocols::Exchange(talk, frame);
    if (!talk.Ended()) {
        talk.requests.Note(!reply.empty());
    }
}

}  // namespace

bool pending_write_request_mbus(protocols::Conversation& talk, const WriteRequest& request) {
    // The register on the wire is the stored address less 1, as in the read of the same row.
    const int reg = static_cast<int>(request.writeAddress) - 1;
    const auto outcome =
        protocols::ModbusWrite(talk, DatumOf(request.kind), reg, request.writeValue, protocols::onlineWrite);
    const bool done = outcome == protocols::WriteOutcome::Done;
    if (!done && outcome != protocols::WriteOutcome::NotBuilt && !talk.Ended()) {
        talk.feedback.Box("Data Could not be written");
        if (outcome == protocols::WriteOutcome::Refused) {
            talk.logs.WriteRtuErr("Modbus exception " + core::NumberText(talk.modbus.mbvalues[1]) +
                                  " to the write of " + request.Description + " [" +
                                  std::to_string(talk.station.locationID) + "]");
        }
    }
    return done;
}

void pending_write_request_bsap(protocols::Conversation& talk, const WriteRequest& request) {
    const auto kind = request.kind == DataKind::Logical ? protocols::ValueKind::Logical : protocols::ValueKind::Analog;
    SendOnce(talk, Messages(talk).Write_value(talk.station.slaveaddress, request.writeValue,
                                              static_cast<std::int32_t>(request.writeAddress), kind));
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

bool SetStationTime(protocols::Conversation& talk, const ParameterSet& set, const core::DateTime& time) {
    struct Element {
        Figure figure;
        int value;
    };
    const std::array<Element, 7> elements = {{{Figure::SetYear, time.year},
                                              {Figure::SetMonth, time.month},
                                              {Figure::SetDay, time.day},
                                              {Figure::SetHour, time.hour},
                                              {Figure::SetMinute, time.minute},
                                              {Figure::SetSecond, time.second},
                                              {Figure::SetTime, 1}}};
    const bool isBsap = Speaks(talk.station, "BSAP");
    std::vector<WriteRequest> requests;
    for (const Element& element : elements) {
        const ParameterRow* row = RowOf(set, element.figure, talk.station.isCW);
        if (row == nullptr || row->MSD <= 0 || (isBsap && !row->read)) {
            talk.feedback.Box("The clock of this station cannot be set: its map has no place for it");
            return false;
        }
        WriteRequest request;
        request.Description = row->Description;
        request.kind = row->kind;
        request.writeAddress = row->MSD;
        request.writeValue = element.value;
        requests.push_back(request);
    }
    for (const WriteRequest& request : requests) {
        if (isBsap) {
            pending_write_request_bsap(talk, request);
        } else if (!pending_write_request_mbus(talk, request)) {
            return false;
        }
        if (talk.Ended()) {
            return false;
        }
    }
    return true;
}

}  // namespace session
