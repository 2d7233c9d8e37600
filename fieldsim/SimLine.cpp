#include "fieldsim/SimLine.h"

#include <algorithm>
#include <numeric>

#include "core/Address.h"

namespace fieldsim {

void SimPorts::Refuse(int port, bool refused) {
    const std::string name = "COM" + std::to_string(port);
    if (refused) {
        refused_.insert(name);
    } else {
        refused_.erase(name);
    }
}

std::unique_ptr<protocols::Line> SimPorts::Line(const core::Station& station) {
    return station.ip.empty()
               ? std::make_unique<SimLine>(*this)
               : std::make_unique<SimLine>(
                     *this, core::AddressText(core::AddressOf(station).value_or(core::Address{station.ip, 0})));
}

bool SimPorts::PortOpen() const {
    return std::any_of(lines_.begin(), lines_.end(), [](const SimLine* line) { return line->PortOpen(); });
}

std::uint64_t SimPorts::BytesSent() const {
    return std::accumulate(lines_.begin(), lines_.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const SimLine* line) { return sum + line->BytesSent(); });
}

std::uint64_t SimPorts::BytesRead() const {
    return std::accumulate(lines_.begin(), lines_.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const SimLine* line) { return sum + line->BytesRead(); });
}

int SimPorts::TimesOpened() const {
    return std::accumulate(lines_.begin(), lines_.end(), 0,
                           [](int sum, const SimLine* line) { return sum + line->TimesOpened(); });
}

bool SimLine::PortOpen(bool open) {
    if (open_) {
        Close();
    }
    if (!open) {
        return true;
    }
    if (ports_.devices_.count(name_) == 0 || ports_.refused_.count(name_) != 0) {
        lastError_ = ports_.devices_.count(name_) == 0 ? "No such device" : "Permission denied";
        return false;
    }
    lastError_.clear();
    SimPorts::Arrivals& arrivals = ports_.arrivals_[name_];
    arrivals.erase(arrivals.begin(), arrivals.upper_bound(ports_.clock_.Elapsed()));
    open_ = true;
    ++timesOpened_;
    return true;
}

void SimLine::Close() {
    open_ = false;
    received_.clear();
    ports_.devices_[name_]->LineClosed();
}

void SimLine::CommPort(int number) {
    if (!open_) {
        name_ = "COM" + std::to_string(number);
    }
}

void SimLine::Settings(const std::string& settings) {
    if (!open_) {
        settings_ = settings;
    }
}

std::size_t SimLine::InBufferCount() {
    Arrive();
    return received_.size();
}

void SimLine::ClearInBuffer() {
    Arrive();
    received_.clear();
}

void SimLine::Output(const std::string& bytes) {
    if (!open_) {
        return;
    }
    bytesSent_ += bytes.size();
    for (Answer& answer : ports_.devices_[name_]->Receive(bytes, Now())) {
        ports_.arrivals_[name_].emplace(ports_.clock_.Elapsed() + answer.delayMs, std::move(answer.bytes));
        ports_.clock_.After(answer.delayMs, [this, lives = std::weak_ptr(lives_)] {
            if (!lives.expired()) {
                Received();
            }
        });
    }
}

std::string SimLine::Input() {
    Arrive();
    bytesRead_ += received_.size();
    std::string taken;
    taken.swap(received_);
    return taken;
}

void SimLine::Arrive() {
    if (!open_) {
        return;
    }
    SimPorts::Arrivals& arrivals = ports_.arrivals_[name_];
    const auto later = arrivals.upper_bound(ports_.clock_.Elapsed());
    for (auto due = arrivals.begin(); due != later; ++due) {
        received_ += due->second;
    }
    arrivals.erase(arrivals.begin(), later);
}

}  // namespace fieldsim
