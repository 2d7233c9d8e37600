#include "fieldsim/LineFaults.h"

#include <algorithm>
#include <array>
#include <utility>

#include "fieldsim/ModbusSlave.h"

namespace fieldsim {

namespace {

constexpr std::uint64_t kRequestGapMs = 200;

constexpr std::array<std::pair<std::string_view, Fault>, 10> kNames = {{
    {"None", Fault::None},
    {"Silence", Fault::Silence},
    {"NoiseBefore", Fault::NoiseBefore},
    {"NoiseAfter", Fault::NoiseAfter},
    {"BadCheck", Fault::BadCheck},
    {"Cut", Fault::Cut},
    {"Late", Fault::Late},
    {"Exception", Fault::Exception},
    {"Echo", Fault::Echo},
    {"NoCarrier", Fault::NoCarrier},
}};

}  // namespace

std::optional<Fault> FaultByName(std::string_view name) {
    const auto* const known =
        std::find_if(kNames.begin(), kNames.end(), [&](const auto& entry) { return entry.first == name; });
    return known != kNames.end() ? std::optional(known->second) : std::nullopt;
}

std::vector<Answer> LineFaults::Receive(std::string_view bytes, const Moment& now) {
    if (now.milliseconds > lastByteAt_ + kRequestGapMs) {
        request_.clear();
    }
    lastByteAt_ = now.milliseconds;
    request_ += bytes;
    std::vector<Answer> answers;
    for (Answer& answer : device_.Receive(bytes, now)) {
        exchanges_.push_back({now, request_, answer.bytes, Next()});
        Answer spoilt = Spoilt(std::move(answer), exchanges_.back().fault);
        if (!spoilt.bytes.empty()) {
            answers.push_back(std::move(spoilt));
        }
    }
    return answers;
}

int LineFaults::Count(Fault fault) const {
    return static_cast<int>(std::count_if(exchanges_.begin(), exchanges_.end(),
                                          [&](const Exchange& exchange) { return exchange.fault == fault; }));
}

Fault LineFaults::Next() {
    if (!options_.script.empty()) {
        const Fault fault = options_.script.front();
        options_.script.pop_front();
        return fault;
    }
    double drawn = static_cast<double>(random_()) / static_cast<double>(std::mt19937::max());
    for (const auto& [fault, chance] : options_.chances) {
        if (drawn < chance) {
            return fault;
        }
        drawn -= chance;
    }
    return Fault::None;
}

Answer LineFaults::Spoilt(Answer answer, Fault fault) {
    std::string& bytes = answer.bytes;
    switch (fault) {
        case Fault::None:
            break;
        case Fault::Silence:
            bytes.clear();
            break;
        case Fault::NoiseBefore:
            bytes.insert(0, Noise());
            break;
        case Fault::NoiseAfter:
            bytes += Noise();
            break;
        case Fault::BadCheck: {
            char& hit = bytes[random_() % bytes.size()];
            hit = static_cast<char>(hit ^ (1 << (random_() % 8)));
            break;
        }
        case Fault::Cut:
            bytes.resize((bytes.size() + 1) / 2);
            break;
        case Fault::Late:
            answer.delayMs += options_.lateMs;
            break;
        case Fault::Exception:
            bytes = ModbusException(request_, options_.exceptionCode);
            break;
        case Fault::Echo:
            bytes.insert(0, request_);
            break;
        case Fault::NoCarrier:
            bytes = bytes.substr(0, bytes.size() / 2) + "\r\nNO CARRIER\r\n";
            break;
    }
    return answer;
}

std::string LineFaults::Noise() {
    std::string noise(1 + random_() % 4, '\0');
    std::generate(noise.begin(), noise.end(), [this] { return static_cast<char>(random_()); });
    return noise;
}

}  // namespace fieldsim
