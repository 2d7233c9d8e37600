#include "protocols/LineLease.h"

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
    }
    if (takeLine) {
        line_ = nullptr;
    }
    if (first && tell_) {
        tell_();
    }
}

std::shared_ptr<LineLease> FieldLine::TakeOver(const std::string& reason) {
    if (const auto holder = holder_.lock()) {
        holder->End(reason, true);
        clock_.Wake();
    }
    return Lease();
}

std::shared_ptr<LineLease> FieldLine::TakeIfFree() {
    return InUse() ? nullptr : Lease();
}

bool FieldLine::InUse() const {
    const auto holder = holder_.lock();
    return holder != nullptr && holder->Held();
}

void FieldLine::EndConversation(const std::string& reason) {
    if (const auto holder = holder_.lock()) {
        holder->End(reason, false);
        clock_.Wake();
    }
}

std::shared_ptr<LineLease> FieldLine::Lease() {
    auto lease = std::make_shared<LineLease>(line_);
    holder_ = lease;
    return lease;
}

}  // namespace protocols
