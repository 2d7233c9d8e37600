#include "session/LivePoll.h"

#include <algorithm>

#include "protocols/quantum/Quantum.h"
#include "reading/BsapList.h"
#include "reading/QuantumRead.h"
#include "reading/StreamLists.h"

namespace session {

namespace {

using reading::ReadOutcome;

}  // namespace

bool LivePoll::Prepare() {
    byRegister_.clear();
    byPosition_.clear();
    unstored_.clear();
    refused_.clear();
    set_.ForEach([this](ParameterRow& row) {
        byRegister_[{row.kind, static_cast<int>(row.MSD)}].push_back(&row);
        byPosition_[row.startaddress].push_back(&row);
    });
    if (talk_.station.protocol != core::Protocol::Modbus) {
        return true;
    }
    const auto counts = core::ReadModelCounts(place_.dbconn, talk_.station, talk_.streamno);
    auto plan = reading::PlanBlocks(place_.dbconn, place_.logs, talk_.station, talk_.streamno,
                                    counts.value_or(core::ModelCounts{}));
    blocks_ = std::move(plan.blocks);
    if (!plan.fault.empty()) {
        place_.logs.WriteRtuErr(plan.fault + " [" + std::to_string(talk_.station.locationID) + "]");
    }
    return plan.fault.empty();
}

// A reading that was broken off for something more urgent is none that a row can have missed.
ReadOutcome LivePoll::Read() {
    done_ = 0;
    set_.ForEach([](ParameterRow& row) { ++row.missedPolls; });
    const ReadOutcome outcome = ReadByProtocol();
    if (outcome == ReadOutcome::Whole && talk_.station.protocol != core::Protocol::Quantum) {
        MarkMissed();
    } else if (outcome == ReadOutcome::BrokenOff) {
        set_.ForEach([](ParameterRow& row) { row.missedPolls -= row.missedPolls > 0 ? 1 : 0; });
    }
    return outcome;
}

// What a whole reading asked for and did not bring: a list without the signal, a block that the station refuses.
void LivePoll::MarkMissed() {
    set_.ForEach([this](ParameterRow& row) {
        // A value that was written and not seen yet stays "not confirmed".
        if (row.missedPolls > 0 && !row.pending && !row.startaddress.empty() && row.startaddress != "0") {
            row.quality = row.quality == core::Quality::Refused ? row.quality : core::Quality::NotReceived;
            unstored_.push_back(&row);
        }
    });
}

ReadOutcome LivePoll::ReadByProtocol() {
    if (talk_.station.protocol == core::Protocol::Bsap) {
        return ReadBsap();
    }
    return talk_.station.protocol == core::Protocol::Quantum ? ReadQuantumUnit() : ReadModbus();
}

ReadOutcome LivePoll::ReadModbus() {
    std::erase_if(blocks_, [this](const reading::Block& block) {
        return refused_.contains({block.type, block.start});
    });
    if (blocks_.empty()) {
        return ReadOutcome::Failed;
    }
    total_ = 0;
    for (const reading::Block& block : blocks_) {
        total_ += block.count / reading::RegistersPerValue(block.type, talk_.modbus.rtu32bit);
    }
    progress_(0, total_);
    return reading::ReadBlocks(talk_, blocks_, protocols::onlineTransact,
                               [this](const reading::BlockReply& reply) { TakeBlock(reply); });
}

void LivePoll::TakeBlock(const reading::BlockReply& reply) {
    const int step = reading::RegistersPerValue(reply.block.type, talk_.modbus.rtu32bit);
    for (std::size_t k = 0; k < reply.values.size(); ++k) {
        const auto rows = byRegister_.find({reply.block.type, reply.block.start + static_cast<int>(k) * step});
        if (rows == byRegister_.end()) {
            continue;
        }
        for (ParameterRow* row : rows->second) {
            if (reply.exception != 0) {
                row->quality = core::Quality::Refused;
            } else {
                Take(*row, reply.values[k], reply.QualityOf(k));
            }
        }
    }
    if (reply.exception != 0) {
        refused_.insert({reply.block.type, reply.block.start});
    }
    done_ += static_cast<int>(reply.values.size());
    progress_(done_, total_);
}

ReadOutcome LivePoll::ReadBsap() {
    progress_(0, total_);
    const auto lists = reading::ListsOf(talk_.station, talk_.streamno);
    ReadOutcome outcome = ReadOutcome::Whole;
    if (ReadList(lists.boolean, true, outcome) && ReadList(lists.real, false, outcome)) {
        total_ = done_;
        progress_(done_, total_);
    }
    return outcome;
}

// A list counts when it was read whole. Its rows have the number of the first stream's list, whatever the stream.
bool LivePoll::ReadList(int number, bool boolean, ReadOutcome& outcome) {
    const auto kind = boolean ? core::ValueKind::Logical : core::ValueKind::Float;
    const auto list = reading::getdata_BSAP(talk_, number, kind, {}, false);
    if (!list.collstatus) {
        outcome = list.brokenOff ? ReadOutcome::BrokenOff : ReadOutcome::Failed;
        return false;
    }
    const std::string prefix = boolean ? "55-" : "54-";
    for (std::size_t n = 1; n < list.signals.size(); ++n) {
        const auto rows = byPosition_.find(prefix + std::to_string(n));
        if (rows == byPosition_.end()) {
            continue;
        }
        for (ParameterRow* row : rows->second) {
            row->MSD = list.signals[n].MSD;
            row->unit = list.signals[n].unit.empty() ? row->unit : list.signals[n].unit;
            Take(*row, list.signals[n].value, reading::QualityOf(list.signals[n]));
        }
    }
    done_ += static_cast<int>(list.signals.size()) - 1;
    progress_(done_, std::max(done_, total_));
    return true;
}

ReadOutcome LivePoll::ReadQuantumUnit() {
    const auto stored = [this](int message, const protocols::QuantumReply& reply) {
        const auto& names = protocols::QuantumNames(message);
        for (std::size_t i = 0; i < reply.fields.size(); ++i) {
            const auto place = set_.Find("Quantum", names[i]);
            if (place && reply.fields[i]) {
                TakeValue(set_.At(*place), *reply.fields[i], place_.clock.Now());
            } else if (place) {
                set_.At(*place).quality = core::Quality::NotReceived;
                set_.At(*place).readat.reset();
            }
        }
        progress_(message, protocols::quantum::messages);
    };
    progress_(0, protocols::quantum::messages);
    const reading::QuantumOptions options{false, static_cast<double>(talk_.CommTimeout())};
    reading::ValueStore store(place_.dbconn, talk_.station, talk_.streamno);
    return reading::ReadQuantum(place_, talk_, options, store, stored) ? ReadOutcome::Whole : ReadOutcome::Failed;
}

void LivePoll::Take(ParameterRow& row, double value, core::Quality quality) {
    TakeValue(row, value, place_.clock.Now(), quality);
    unstored_.push_back(&row);
}

void LivePoll::Store() {
    reading::ValueStore store(place_.dbconn, talk_.station, talk_.streamno);
    const bool isBsap = talk_.station.protocol == core::Protocol::Bsap;
    const auto typeOf = [&](const ParameterRow& row) { return isBsap ? std::string() : row.type; };
    place_.dbconn.InTransaction([&] {
        for (const ParameterRow* row : unstored_) {
            if (row->missedPolls > 0) {
                store.Miss(row->startaddress, typeOf(*row), *row->quality);
                continue;
            }
            store.Put(row->startaddress, typeOf(*row),
                      {row->lastvalue, *row->quality, core::IsoText(*row->readat), isBsap ? row->unit : std::string(),
                       isBsap ? std::optional(row->MSD) : std::nullopt});
        }
    });
    unstored_.clear();
}

}  // namespace session
