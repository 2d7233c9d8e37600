#include "session/LivePoll.h"

#include <algorithm>

#include "collection/BsapList.h"
#include "collection/QuantumRead.h"
#include "collection/StreamLists.h"
#include "core/Text.h"
#include "protocols/Quantum.h"
#include "session/Speaks.h"

namespace session {

namespace {

using collection::ReadOutcome;

DataKind KindOf(collection::BlockType type) {
    switch (type) {
        case collection::BlockType::Coil:
            return DataKind::Logical;
        case collection::BlockType::Integer:
            return DataKind::Integer;
        case collection::BlockType::Float:
            break;
    }
    return DataKind::Float;
}

}  // namespace

bool LivePoll::Prepare() {
    byRegister_.clear();
    byPosition_.clear();
    unstored_.clear();
    set_.ForEach([this](ParameterRow& row) {
        byRegister_[{row.kind, static_cast<int>(row.MSD)}].push_back(&row);
        byPosition_[row.startaddress].push_back(&row);
    });
    if (!Speaks(talk_.station, "Modbus")) {
        return true;
    }
    if (talk_.station.MB_CONFIG) {
        blocks_ = collection::Collect_StartAddress(place_.dbconn, place_.logs, talk_.station, talk_.streamno);
    } else {
        const auto counts = core::ReadModelCounts(place_.dbconn, talk_.station, talk_.streamno);
        blocks_ = collection::Collect_StartAddress1(counts.value_or(core::ModelCounts{}), talk_.modbus.rtu32bit);
    }
    return !blocks_.empty();
}

ReadOutcome LivePoll::Read() {
    done_ = 0;
    if (Speaks(talk_.station, "BSAP")) {
        return ReadBsap();
    }
    return Speaks(talk_.station, "Quantum") ? ReadQuantumUnit() : ReadModbus();
}

ReadOutcome LivePoll::ReadModbus() {
    total_ = 0;
    for (const collection::Block& block : blocks_) {
        total_ += block.count / collection::RegistersPerValue(block.type, talk_.modbus.rtu32bit);
    }
    progress_(0, total_);
    return collection::ReadBlocks(talk_, blocks_, protocols::onlineTransact,
                                  [this](const collection::Block& block, auto values) {
                                      const int step = collection::RegistersPerValue(block.type, talk_.modbus.rtu32bit);
                                      int address = block.start;
                                      for (const double value : values) {
                                          const auto rows = byRegister_.find({KindOf(block.type), address});
                                          if (rows != byRegister_.end()) {
                                              std::for_each(rows->second.begin(), rows->second.end(),
                                                            [&](ParameterRow* row) { Take(*row, value); });
                                          }
                                          address += step;
                                      }
                                      done_ += static_cast<int>(values.size());
                                      progress_(done_, total_);
                                  });
}

ReadOutcome LivePoll::ReadBsap() {
    progress_(0, total_);
    const auto lists = collection::ListsOf(talk_.station, talk_.streamno);
    ReadOutcome outcome = ReadOutcome::Whole;
    if (ReadList(lists.boolean, true, outcome) && ReadList(lists.real, false, outcome)) {
        total_ = done_;
        progress_(done_, total_);
    }
    return outcome;
}

// A list counts when it was read whole. Its rows have the number of the first stream's list, whatever the stream.
bool LivePoll::ReadList(int number, bool boolean, ReadOutcome& outcome) {
    const auto kind = boolean ? collection::ListKind::Boolean : collection::ListKind::Float;
    const auto list = collection::getdata_BSAP(talk_, number, kind, {}, false);
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
            Take(*row, list.signals[n].value);
        }
    }
    done_ += static_cast<int>(list.signals.size()) - 1;
    progress_(done_, std::max(done_, total_));
    return true;
}

ReadOutcome LivePoll::ReadQuantumUnit() {
    const auto stored = [this](int message, const std::array<double, 8>& values) {
        const auto& names = protocols::QuantumNames(message);
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (const auto place = set_.Find("Quantum", names[i])) {
                TakeValue(set_.At(*place), values[i]);
            }
        }
        progress_(message, protocols::quantumMessages);
    };
    progress_(0, protocols::quantumMessages);
    const collection::QuantumOptions options{false, static_cast<double>(talk_.CommTimeout())};
    return collection::ReadQuantum(place_, talk_, options, stored) ? ReadOutcome::Whole : ReadOutcome::Failed;
}

void LivePoll::Take(ParameterRow& row, double value) {
    TakeValue(row, value);
    unstored_.push_back(&row);
}

void LivePoll::Store() {
    const core::Station& station = talk_.station;
    const bool isBsap = Speaks(station, "BSAP");
    place_.dbconn.InTransaction([&] {
        for (const ParameterRow* row : unstored_) {
            const double value = core::RoundTo(row->lastvalue, 4);
            if (isBsap) {
                place_.dbconn.Execute(
                    "update configData_detail set lastvalue=?, unit=?, MSD=? where startaddress=? and streamNo=? and "
                    "locationid=?",
                    {value, core::ReplaceAll(row->unit, " ", ""), row->MSD, row->startaddress, talk_.streamno,
                     station.locationID});
            } else {
                place_.dbconn.Execute(
                    "update configData_detail set lastvalue=? where startaddress=? and locationid=? and streamNo=? and "
                    "type=?",
                    {value, row->startaddress, station.locationID, talk_.streamno, row->type});
            }
        }
    });
    unstored_.clear();
}

}  // namespace session
