#include "protocols/line/FieldLines.h"

#include <algorithm>

#include "core/Address.h"
#include "core/Text.h"

namespace protocols {

std::string LineName(const core::Station& station) {
    if (station.ip.empty()) {
        return "COM" + std::to_string(station.comport);
    }
    const auto address = core::AddressOf(station);
    return address ? core::AddressText(*address) : core::Trim(station.ip);
}

FieldLine& FieldLines::Of(const core::Station& station) {
    Known& known = lines_[LineName(station)];
    if (known.line == nullptr) {
        known.device = make_(station);
        known.line = std::make_unique<FieldLine>(*known.device, clock_);
        known.line->WhenReleased([this] {
            if (released_) {
                released_();
            }
        });
    }
    return *known.line;
}

bool FieldLines::InUse() const {
    return std::any_of(lines_.begin(), lines_.end(), [](const auto& known) { return known.second.line->InUse(); });
}

void FieldLines::EndConversations(const std::string& reason) {
    ForEach([&](const std::string&, FieldLine& line) { line.EndConversation(reason); });
}

void FieldLines::StopConnecting() {
    ForEach([](const std::string&, FieldLine& line) { line.StopConnecting(); });
}

void FieldLines::ForEach(const std::function<void(const std::string& name, FieldLine& line)>& visit) {
    for (auto& [name, known] : lines_) {
        visit(name, *known.line);
    }
}

}  // namespace protocols
