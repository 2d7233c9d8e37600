#include "reading/BulkRead.h"

#include <functional>

#include "core/Text.h"
#include "protocols/modbus/ModbusConstants.h"
#include "protocols/modbus/ModbusTransact.h"
#include "reading/LogicalText.h"
#include "stations/SampledMark.h"

namespace reading {

namespace {

std::string Place(const Block& block) {
    return (block.type == core::ValueKind::Logical ? "coil " : "register ") + std::to_string(block.start);
}

using Take = std::function<void(const BlockReply& reply, std::size_t k)>;

// The scheduled run's reading. `take` is given every value of a good reply, inside one transaction a reply.
bool ReadStation(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks, RunTally& tally,
                 const Take& take) {
    const auto takeReply = [&](const BlockReply& reply) {
        if (reply.exception != 0) {
            tally.Refusal("exception " + std::to_string(reply.exception) + " at " + Place(reply.block));
        }
        place.dbconn.InTransaction([&] {
            for (std::size_t k = 0; k < reply.values.size(); ++k) {
                take(reply, k);
            }
        });
    };
    std::string why;
    const ReadOutcome outcome = ReadBlocks(talk, blocks, protocols::scheduledTransact, takeReply, &why);
    if (outcome != ReadOutcome::Whole) {
        tally.Failure(why);
        if (!talk.Ended()) {
            stations::MarkSampled(place.dbconn, place.clock.Now(), talk.station.locationID, false);
        }
    }
    return outcome == ReadOutcome::Whole;
}

}  // namespace

core::Quality BlockReply::QualityOf(std::size_t k) const {
    return exception != 0 ? core::Quality::Refused : outOfRange[k] ? core::Quality::OutOfRange : core::Quality::Good;
}

ReadOutcome ReadBlocks(protocols::Conversation& talk, const std::vector<Block>& blocks,
                       const protocols::TransactOptions& options, const TakeReply& take, std::string* why) {
    using Kind = protocols::ModbusReply::Kind;
    for (const Block& block : blocks) {
        if (talk.Wanted()) {
            return ReadOutcome::BrokenOff;
        }
        talk.modbus.floatread = block.type == core::ValueKind::Float;
        const int command = block.type == core::ValueKind::Logical ? protocols::modbus::readCoils
                                                                   : protocols::modbus::readHoldingRegisters;
        const auto reply = ModbusTransact(talk, block.start - 1, block.count, command, options);
        if (!reply.Answered()) {
            if (why != nullptr) {
                *why =
                    (reply.kind == Kind::CrcError ? "Bad check in the answer for " : "No answer for ") + Place(block);
            }
            return talk.Wanted() && !talk.Ended() ? ReadOutcome::BrokenOff : ReadOutcome::Failed;
        }
        const auto count = static_cast<std::size_t>(block.count / RegistersPerValue(block.type, talk.modbus.rtu32bit));
        BlockReply answer{block, std::span(talk.modbus.mbvalues).subspan(1, count), reply.outOfRange >> 1};
        // An exception passes as a block of zeros with its code as the first value: operators know a block that the
        // station does not have by that sight. The log says so, and its rows are marked.
        if (reply.kind == Kind::Exception) {
            answer.exception = static_cast<int>(talk.modbus.mbvalues[1]);
            talk.logs.WriteRtuErr("Modbus exception " + std::to_string(answer.exception) + " to register " +
                                  std::to_string(block.start) + " [" + std::to_string(talk.station.locationID) + "]");
        }
        take(answer);
        if (!talk.Wanted() && !talk.Pause(talk.CommTimeout())) {
            return ReadOutcome::Failed;
        }
    }
    return ReadOutcome::Whole;
}

bool GetDataInBunches(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks,
                      ValueStore& store, RunFigures& figures, RunTally& tally) {
    const core::Station& station = talk.station;
    return ReadStation(place, talk, blocks, tally, [&](const BlockReply& reply, std::size_t k) {
        const std::string type = core::TextOf(reply.block.type);
        const int step = RegistersPerValue(reply.block.type, talk.modbus.rtu32bit);
        const std::string address = std::to_string(reply.block.start + static_cast<int>(k) * step);
        const double value = reply.values[k];
        const core::Quality quality = reply.QualityOf(k);
        store.Put(address, type, {value, quality, core::IsoText(place.clock.Now())});
        if (quality != core::Quality::Good) {
            return;
        }
        const auto row = place.dbconn.First(
            "select description from configdata_detail where startaddress=? and "
            "type=? and StreamNo=? and locationid=?",
            {address, type, talk.streamno, station.locationID});
        const std::string description = row ? core::Trim((*row)[0].Text()) : std::string();
        figures.Note(description, value);
        figures.resultline += "#" + description + "=" + core::NumberText(value);
    });
}

bool GetDataInBunches1(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks,
                       const ListInfo& names, ListValues& values, RunFigures& figures, RunTally& tally) {
    std::size_t floats = 0;
    std::size_t booleans = 0;
    return ReadStation(place, talk, blocks, tally, [&](const BlockReply& reply, std::size_t k) {
        const bool coil = reply.block.type == core::ValueKind::Logical;
        std::size_t& n = coil ? booleans : floats;
        if (n == static_cast<std::size_t>(coil ? maxBooleans : maxFloats)) {
            return;
        }
        ++n;
        const double value = reply.values[k];
        const core::Quality quality = reply.QualityOf(k);
        (coil ? values.booleans[n] : values.floats[n]) = StoredValue{value, quality, core::IsoText(place.clock.Now())};
        const ListEntry& entry = coil ? names.booleans[n] : names.floats[n];
        if (quality != core::Quality::Good) {
            return;
        }
        if (coil) {
            figures.resultline += "#" + entry.description + "=" + LogicalText(entry.description, value);
            return;
        }
        figures.Note(entry.description, value);
        if (!entry.description.empty()) {
            figures.resultline += "#" + entry.description + "=" + core::NumberText(value) + "?" + entry.unit;
        }
    });
}

}  // namespace reading
