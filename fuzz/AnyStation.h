#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "core/Database.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "fieldsim/BsapFrame.h"
#include "fieldsim/VirtualClock.h"
#include "protocols/line/Conversation.h"

// A BSAP station that answers with the fuzzer's bytes, and the desk in front of it.
namespace fuzz {

inline void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Takes the fuzzer's bytes one after the other; zeros when they are used up.
class Bytes {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

    int Take() {
        const int byte = rest_.empty() ? 0 : static_cast<unsigned char>(rest_[0]);
        rest_.remove_prefix(rest_.empty() ? 0 : 1);
        return byte;
    }
    std::string Take(int count) {
        const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(count));
        rest_.remove_prefix(taken.size());
        return std::string(taken);
    }

  private:
    std::string_view rest_;
};

// Each send is answered with the next bytes: a byte that says how, a length, the bytes.
class AnyStation final : public protocols::Line {
  public:
    explicit AnyStation(Bytes& bytes) : bytes_(bytes) {}

    bool PortOpen() const override { return true; }
    bool PortOpen(bool) override { return true; }
    void CommPort(int) override {}
    void Settings(const std::string&) override {}
    std::size_t InBufferCount() override { return waiting_.size(); }
    std::size_t OutBufferCount() override { return 0; }
    void ClearInBuffer() override { waiting_.clear(); }
    void ClearOutBuffer() override {}
    void Output(const std::string& frame) override {
        Check(frame.size() >= 9);
        const bool wellFormed = bytes_.Take() % 4 != 0;
        const std::string reply = bytes_.Take(bytes_.Take());
        waiting_ += wellFormed ? fieldsim::BsapFrame(reply) : reply;
    }
    std::string Input() override {
        std::string taken;
        taken.swap(waiting_);
        return taken;
    }

  private:
    Bytes& bytes_;
    std::string waiting_;
};

struct Silent final : core::Feedback {
    void Status(const std::string&) override {}
    void Box(const std::string&) override {}
};

// An empty database, in which every line of the audit trail fails.
struct Desk {
    Desk() {
        const std::ofstream empty(shared.DatabasePath());
        shared.rtuErrPath = "/dev/null";
        shared.logpath = "/dev/null";
        shared.logGenflag = true;
    }
    ~Desk() { std::filesystem::remove_all(shared.directory); }

    static std::filesystem::path Directory() {
        std::filesystem::path path = std::filesystem::temp_directory_path() / ("fuzz-" + std::to_string(getpid()));
        std::filesystem::create_directories(path);
        return path;
    }

    core::MAIN_Module shared{Directory()};
};

// A conversation with such a station.
struct AnyTalk {
    AnyTalk(core::Database& dbconn, const core::MAIN_Module& shared, Bytes& bytes)
        : line(bytes), logs(dbconn, shared, clock) {}

    AnyStation line;
    fieldsim::VirtualClock clock{{2026, 3, 9, 8, 0, 0}};
    protocols::FieldLine field{line, clock};
    Silent feedback;
    core::Logs logs;
    protocols::BsapCounters counters;
    protocols::Conversation talk{field.TakeOver(""), clock, feedback, logs, counters, {}, "", 1, {}, {}};
};

}  // namespace fuzz
