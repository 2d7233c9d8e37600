#include "fieldsim/Transmitters.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

namespace fieldsim {

namespace {

constexpr std::int64_t kCommandSeconds = 3;

struct Coefficients {
    double offset = 0;
    double gain = 1;
};

// The result of the last command that a status speaks of.
struct Board {
    std::int64_t doneAt = 0;
    int result = CalibrationStatus::done;

    bool Busy(std::int64_t seconds) const { return seconds < doneAt; }
};

struct Instrument {
    TransmitterManner manner;
    Coefficients before;  // until the last command was done
    Coefficients after;
    std::int64_t changedAt = 0;
    std::optional<std::int64_t> driftsFrom{};

    const Coefficients& At(std::int64_t seconds) const { return seconds < changedAt ? before : after; }
    double Drift(std::int64_t seconds) {
        driftsFrom = manner.driftPerMinute != 0 ? driftsFrom.value_or(seconds) : seconds;
        return manner.driftPerMinute * static_cast<double>(seconds - *driftsFrom) / 60;
    }
    double Process() const { return manner.vented ? 0 : manner.process; }
    double Live(std::int64_t seconds) {
        const Coefficients& now = At(seconds);
        return (Process() + now.offset) * now.gain + Drift(seconds);
    }
};

std::vector<Signal> Signals() {
    std::vector<Signal> signals;
    const auto add = [&](std::string_view name, Kind kind, std::string_view unit = {}) {
        const auto known = std::find_if(signals.begin(), signals.end(),
                                        [&](const Signal& signal) { return signal.description == name; });
        if (known == signals.end()) {
            signals.push_back({static_cast<int>(signals.size()) + 1, std::string(name), std::string(unit), kind});
        }
    };
    for (const TransmitterNames& names : kTransmitterNames) {
        add(names.live, Kind::Float, names.unit);
        add(names.spanValue, Kind::Float, names.unit);
        add(names.status, Kind::Float);
    }
    for (const TransmitterNames& names : kTransmitterNames) {
        add(names.zero, Kind::Logical);
        add(names.span, Kind::Logical);
        add(names.restore, Kind::Logical);
    }
    return signals;
}

}  // namespace

struct Transmitters::Instruments {
    std::array<Instrument, kTransmitters> all;
    std::array<Board, kTransmitters> boards;  // that of a status stands at the first transmitter that has it

    Board& BoardOf(std::size_t transmitter) {
        std::size_t first = 0;
        while (kTransmitterNames[first].status != kTransmitterNames[transmitter].status) {
            ++first;
        }
        return boards[first];
    }
    double Value(const Signal& signal, std::int64_t seconds) {
        for (std::size_t i = 0; i < kTransmitters; ++i) {
            if (signal.description == kTransmitterNames[i].live) {
                return all[i].Live(seconds);
            }
            if (signal.description == kTransmitterNames[i].status) {
                return BoardOf(i).Busy(seconds) ? CalibrationStatus::busy : BoardOf(i).result;
            }
        }
        return signal.value;
    }
};

Transmitters::Transmitters() : instruments_(std::make_shared<Instruments>()) {
    list_ = std::make_shared<SignalList>(Signals(),
                                         [instruments = instruments_](const Signal& signal, const core::DateTime& at) {
                                             return instruments->Value(signal, core::ToSeconds(at));
                                         });
    Manner(Transmitter::DP).process = 99.5;
    Manner(Transmitter::SP).process = 20.25;
    Manner(Transmitter::Temp).process = 24.75;
}

// Only a span value stays as it was written: the others show what they stand for.
void Transmitters::Taken(const Write& write) {
    const Signal* signal = list_->Find(write.description);
    for (std::size_t i = 0; i < kTransmitters && signal != nullptr; ++i) {
        const TransmitterNames& names = kTransmitterNames[i];
        const std::int64_t seconds = core::ToSeconds(write.at.local);
        if (write.description == names.spanValue) {
            return;
        }
        if (write.value == 0) {
            continue;
        }
        if (write.description == names.zero) {
            Begin(i, Command::Zero, seconds);
        } else if (write.description == names.span) {
            Begin(i, Command::Span, seconds);
        } else if (write.description == names.restore) {
            Begin(i, Command::Restore, seconds);
        }
    }
    if (signal != nullptr) {
        list_->Release(*signal);
    }
}

void Transmitters::Begin(std::size_t transmitter, Command command, std::int64_t seconds) {
    Instrument& instrument = instruments_->all[transmitter];
    Board& board = instruments_->BoardOf(transmitter);
    if (board.Busy(seconds)) {
        return;
    }
    board = {seconds + kCommandSeconds, CalibrationStatus::done};
    if (instrument.manner.refuses) {
        board.result = CalibrationStatus::refused;
        return;
    }
    const double drift = instrument.Drift(seconds);
    Coefficients now = instrument.At(seconds);
    if (command == Command::Zero) {
        now.offset = -instrument.Process() - drift / now.gain;
    } else if (command == Command::Restore) {
        now = {};
    } else {
        const Signal* spanValue = list_->Find(kTransmitterNames[transmitter].spanValue);
        const double wanted = list_->ValueAt(*spanValue, core::FromSeconds(seconds));
        const double gain = (wanted - drift) / (instrument.Process() + now.offset);
        if (!std::isfinite(gain) || gain == 0) {
            board.result = CalibrationStatus::impossible;
            return;
        }
        now.gain = gain;
    }
    instrument.before = instrument.At(seconds);
    instrument.after = now;
    instrument.changedAt = board.doneAt;
}

TransmitterManner& Transmitters::Manner(Transmitter transmitter) {
    return instruments_->all[static_cast<std::size_t>(transmitter)].manner;
}

}  // namespace fieldsim
