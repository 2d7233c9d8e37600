#include "protocols/line/LineLease.h"

#include <utility>

namespace protocols {

void LineLease::CommPort(int number) {
    if (Held()) {
        line_->CommPort(number);
    }
}

void LineLease::Settings(const std::string& settings) {
    if (Held()) {
        line_->Settings(settings);
    }
}

void LineLease::ClearInBuffer() {
    if (Held()) {
        line_->ClearInBuffer();
    }
}

void LineLease::ClearOutBuffer() {
    if (Held()) {
        line_->ClearOutBuffer();
    }
}

void LineLease::Output(const std::string& bytes) {
    if (Held()) {
        line_->Output(bytes);
    }
}

void LineLease::End(const std::string& reason, bool takeLine) {
    const bool first = !ended_;
    if (first) {
        ended_ = true;
        reason_ = reason;
        line_->StopOpening();
    }
    if (takeLine) {
        line_ = nullptr;
    }
    if (first && tell_) {
        tell_();
    }
}

KeptLine::KeptLine(std::shared_ptr<LineLease> lease) : lease_(std::move(lease)) {
    lease_->kept_ = true;
}

KeptLine::~KeptLine() {
    lease_->kept_ = false;
    if (lease_->released_) {
        lease_->released_();
    }
}

ConnectingLine::ConnectingLine(std::shared_ptr<LineLease> lease) : lease_(std::move(lease)) {
    lease_->connecting_ = true;
}

FieldLine::FieldLine(Line& line, core::Clock& clock) : line_(line), clock_(clock) {
    line_.WhenLost([this](const std::string& reason) {
        if (const auto holder = holder_.lock()) {
            holder->deviceLost_ = !holder->Ended();
        }
        EndConversation(reason);
    });
    line_.WhenReceived([this] { clock_.Wake(); });
}

FieldLine::~FieldLine() {
    line_.WhenLost({});
    line_.WhenReceived({});
}

std::shared_ptr<LineLease> FieldLine::TakeOver(const std::string& reason) {
    if (const auto holder = holder_.lock()) {
        holder->End(reason, true);
        clock_.Wake();
    }
    return Lease();
}

std::shared_ptr<LineLease> FieldLine::TakeIfFree() {
    return InUse() || reserved_ ? nullptr : Lease();
}

bool FieldLine::InUse() const {
    const auto holder = holder_.lock();
    return holder != nullptr && holder->Held();
}

bool FieldLine::Kept() const {
    const auto holder = holder_.lock();
    return holder != nullptr && holder->Held() && holder->Kept();
}

void FieldLine::EndConversation(const std::string& reason) {
    if (const auto holder = holder_.lock()) {
        holder->End(reason, false);
        clock_.Wake();
    }
}

void FieldLine::StopConnecting() {
    const auto holder = holder_.lock();
    if (holder != nullptr && holder->connecting_) {
        EndConversation("Stopped by the operator");
    }
}

std::shared_ptr<LineLease> FieldLine::Lease() {
    auto lease = std::make_shared<LineLease>(line_);
    lease->released_ = [this] {
        if (released_) {
            released_();
        }
    };
    holder_ = lease;
    return lease;
}

}  // namespace protocols
