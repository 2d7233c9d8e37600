#include "collection/BulkRead.h"

#include <functional>

#include "collection/LogicalText.h"
#include "core/Text.h"
#include "protocols/ModbusTransact.h"

namespace collection {

namespace {

constexpr int readCoils = 1;
constexpr int readHoldingRegisters = 3;

const char* TypeText(BlockType type) {
    switch (type) {
        case BlockType::Coil:
            return "Coil(Boolean)";
        case BlockType::Integer:
            return "Integer";
        case BlockType::Float:
            break;
    }
    return "Float";
}

void MarkNotSampled(Workplace& place, const core::Station& station) {
    place.dbconn.Execute("update configdata_master set sampledtoday = false, sampleddate=? where locationid=?",
                         {place.clock.Now().day, station.locationID});
}

using Take = std::function<void(const Block& block, int address, double value)>;

// The scheduled run's reading. `take` is given every value of a good reply, inside one transaction a reply.
bool ReadStation(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks, const Take& take) {
    const auto takeReply = [&](const Block& block, std::span<const double> values) {
        const int step = RegistersPerValue(block.type, talk.modbus.rtu32bit);
        place.dbconn.InTransaction([&] {
            for (std::size_t k = 0; k < values.size(); ++k) {
                take(block, block.start + static_cast<int>(k) * step, values[k]);
            }
        });
    };
    const ReadOutcome outcome = ReadBlocks(talk, blocks, protocols::scheduledTransact, takeReply);
    if (outcome != ReadOutcome::Whole && !talk.Ended()) {
        MarkNotSampled(place, talk.station);
    }
    return outcome == ReadOutcome::Whole;
}

}  // namespace

ReadOutcome ReadBlocks(protocols::Conversation& talk, const std::vector<Block>& blocks,
                       const protocols::TransactOptions& options, const TakeReply& take) {
    for (const Block& block : blocks) {
        if (talk.Wanted()) {
            return ReadOutcome::BrokenOff;
        }
        talk.modbus.floatread = block.type == BlockType::Float;
        const int command = block.type == BlockType::Coil ? readCoils : readHoldingRegisters;
        const auto reply = ModbusTransact(talk, block.start - 1, block.count, command, options);
        if (!protocols::IsAnswer(reply, options)) {
            return talk.Wanted() && !talk.Ended() ? ReadOutcome::BrokenOff : ReadOutcome::Failed;
        }
        // An exception passes as a block of zeros with its code as the first value: operators know a block that the
        // station does not have by that sight. The log says so.
        if (reply.kind == protocols::ModbusReply::Kind::Exception) {
            talk.logs.WriteRtuErr("Modbus exception " + core::NumberText(talk.modbus.mbvalues[1]) + " to register " +
                                  std::to_string(block.start) + " [" + std::to_string(talk.station.locationID) + "]");
        }
        const int values = block.count / RegistersPerValue(block.type, talk.modbus.rtu32bit);
        take(block, std::span(talk.modbus.mbvalues).subspan(1, static_cast<std::size_t>(values)));
        if (!talk.Wanted() && !talk.Wait(talk.CommTimeout())) {
            return ReadOutcome::Failed;
        }
    }
    return ReadOutcome::Whole;
}

bool GetDataInBunches(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks,
                      RunFigures& figures) {
    const core::Station& station = talk.station;
    return ReadStation(place, talk, blocks, [&](const Block& block, int address, double value) {
        const std::string text = std::to_string(address);
        place.dbconn.Execute(
            "update configData_detail set lastvalue=? where startaddress=? and type=? and StreamNo=? "
            "and locationid=?",
            {core::RoundTo(value, 4), text, TypeText(block.type), talk.streamno, station.locationID});
        const auto row = place.dbconn.First(
            "select description from configdata_detail where startaddress=? and "
            "type=? and StreamNo=? and locationid=?",
            {text, TypeText(block.type), talk.streamno, station.locationID});
        const std::string description = row ? core::Trim((*row)[0].Text()) : std::string();
        figures.Note(description, value);
        figures.resultline += "#" + description + "=" + core::NumberText(value);
    });
}

bool GetDataInBunches1(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks,
                       const ListInfo& names, ListValues& values, RunFigures& figures) {
    int floats = 0;
    int booleans = 0;
    return ReadStation(place, talk, blocks, [&](const Block& block, int, double value) {
        if (block.type == BlockType::Coil) {
            if (booleans == maxBooleans) {
                return;
            }
            const auto n = static_cast<std::size_t>(++booleans);
            values.booleans[n] = {true, value, {}, 0};
            const std::string& name = names.booleans[n].description;
            figures.resultline += "#" + name + "=" + LogicalText(name, value);
            return;
        }
        if (floats == maxFloats) {
            return;
        }
        const auto n = static_cast<std::size_t>(++floats);
        values.floats[n] = {true, value, {}, 0};
        const ListEntry& entry = names.floats[n];
        figures.Note(entry.description, value);
        if (!entry.description.empty()) {
            figures.resultline += "#" + entry.description + "=" + core::NumberText(value) + "?" + entry.unit;
        }
    });
}

}  // namespace collection
