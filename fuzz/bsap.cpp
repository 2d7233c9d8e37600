// A BSAP station that answers with any bytes, raw or as well-formed frames, to a sign-on and to a read of a list; and
// the records of a list reply alone.
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "collection/BsapList.h"
#include "core/Database.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "fieldsim/BsapFrame.h"
#include "fieldsim/VirtualClock.h"
#include "protocols/BsapLink.h"

namespace {

void Check(bool holds) {
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
        std::filesystem::path path = std::filesystem::temp_directory_path() / ("fuzz-bsap-" + std::to_string(getpid()));
        std::filesystem::create_directories(path);
        return path;
    }

    core::MAIN_Module shared{Directory()};
};

void CheckSignals(const std::vector<collection::ListSignal>& signals) {
    for (const collection::ListSignal& signal : signals) {
        Check(std::isfinite(signal.value) && signal.MSD >= 0 && signal.MSD <= 0xFFFF);
        Check(!signal.logical || signal.value == 0 || signal.value == 1);
    }
}

void Converse(core::Database& dbconn, const core::MAIN_Module& shared, Bytes& bytes) {
    const int flags = bytes.Take();
    AnyStation line(bytes);
    fieldsim::VirtualClock clock({2026, 3, 9, 8, 0, 0});
    protocols::FieldLine field(line, clock);
    Silent feedback;
    core::Logs logs(dbconn, shared, clock);
    protocols::BsapCounters counters;
    core::Station station;
    station.isCW = (flags & 1) != 0;
    station.isTeleCorrector = (flags & 2) != 0;
    station.phoneno = (flags & 4) != 0 ? "1" : "";
    protocols::Conversation talk{field.TakeOver(""), clock, feedback, logs, counters, station, "", 1, {}, {}};
    talk.bsap.usepoll = (flags & 8) != 0;
    talk.bsap.listunits = (flags & 16) == 0;

    protocols::SignOn(talk);
    const auto kind = (flags & 32) != 0 ? collection::ListKind::Boolean : collection::ListKind::Float;
    const std::vector<collection::ListEntry> names(20, {"Tap Type", ""});
    const collection::BsapList list = collection::getdata_BSAP(talk, 54, kind, names);
    Check(!list.signals.empty() && list.signals.size() <= 401);
    CheckSignals(list.signals);
    // At most 400 replies of 4 sends with their polls, and what late ones are waited for.
    Check(clock.Elapsed() < 400ULL * 15 * 2000 + 3 * 2000 + 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Desk desk;
    static core::Database dbconn(desk.shared.DatabasePath());
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckSignals(collection::ReadRecords(text, {1 + size % 20, size % 2 == 0, size % 3 == 0}).signals);
    Bytes bytes(data, size);
    Converse(dbconn, desk.shared, bytes);
    return 0;
}
