#include "fieldsim/SimLine.h"

namespace fieldsim {

void SimLine::Refuse(int port, bool refused) {
    if (refused) {
        refused_.insert(port);
    } else {
        refused_.erase(port);
    }
}

bool SimLine::PortOpen(bool open) {
    if (open_) {
        Close();
    }
    if (!open) {
        return true;
    }
    if (devices_.count(port_) == 0 || refused_.count(port_) != 0) {
        lastError_ = devices_.count(port_) == 0 ? "No such device" : "Permission denied";
        return false;
    }
    lastError_.clear();
    Arrivals& arrivals = arrivals_[port_];
    arrivals.erase(arrivals.begin(), arrivals.upper_bound(clock_.Elapsed()));
    open_ = true;
    ++timesOpened_;
    return true;
}

void SimLine::Close() {
    open_ = false;
    received_.clear();
    devices_[port_]->LineClosed();
}

void SimLine::CommPort(int number) {
    if (!open_) {
        port_ = number;
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
    for (Answer& answer : devices_[port_]->Receive(bytes, Now())) {
        arrivals_[port_].emplace(clock_.Elapsed() + answer.delayMs, std::move(answer.bytes));
        clock_.After(answer.delayMs, [this, lives = std::weak_ptr(lives_)] {
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
    Arrivals& arrivals = arrivals_[port_];
    const auto later = arrivals.upper_bound(clock_.Elapsed());
    for (auto due = arrivals.begin(); due != later; ++due) {
        received_ += due->second;
    }
    arrivals.erase(arrivals.begin(), later);
}

}  // namespace fieldsim
