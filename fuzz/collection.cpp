// Whole collections of a station of each protocol and framing, in both pacings, on the virtual clock: what comes for
// each message is the station's own answer, as it is, spoilt, in parts or late, or any bytes, raw or as a frame.
#include <array>
#include <filesystem>
#include <functional>

#include "AnyStation.h"
#include "collection/CollectionRun.h"
#include "demo/DemoRegister.h"
#include "fieldsim/Field.h"
#include "fieldsim/ModbusSlave.h"
#include "fieldsim/SimLine.h"

using namespace fuzz;

namespace {

using Frame = std::function<std::string(std::string_view body, std::string_view sent)>;

struct Kind {
    demo::DemoStation station;
    const char* mode;
    Frame frame;
};

Frame Modbus(fieldsim::Framing framing) {
    return [framing](std::string_view body, std::string_view sent) {
        return fieldsim::ModbusFrame(framing, body, sent.size() < 2 ? std::string_view("\0\0", 2) : sent.substr(0, 2));
    };
}

std::array<Kind, 6> Kinds() {
    const Frame bsap = [](std::string_view body, std::string_view) { return fieldsim::BsapFrame(body); };
    const Frame plain = [](std::string_view body, std::string_view) { return std::string(body); };
    return {{{{"RTU", "TeleFlow", "Modbus", "RTU", 1, 1}, "RTU", Modbus(fieldsim::Framing::Rtu)},
             {{"ASCII", "TeleCorrector", "Modbus", "ASCII", 2, 2}, "ASCII", Modbus(fieldsim::Framing::Ascii)},
             {{"TCP", "TeleFlow", "Modbus", "RTU", 3, 3}, "TCP", Modbus(fieldsim::Framing::Tcp)},
             {{"Long", "TeleFlow", "BSAP", "", 4, 4}, "", bsap},
             {{"Short", "CW", "BSAP", "", 5, 5, "", 1, {"AGA3"}}, "", bsap},
             {{"Quantum", "Quantum", "Quantum", "", 6, 6}, "", plain}}};
}

class AnyDevice final : public fieldsim::Device {
  public:
    AnyDevice(fieldsim::Device& station, const Frame& frame, Bytes& bytes)
        : station_(station), frame_(frame), bytes_(bytes) {}

    // The station's own when the bytes are used up.
    std::vector<fieldsim::Answer> Receive(std::string_view sent, const fieldsim::Moment& now) override {
        std::vector<fieldsim::Answer> answers = station_.Receive(sent, now);
        switch (bytes_.Take() % 6) {
            case 1:
                return {};
            case 2:
                return {{bytes_.Take(bytes_.Take()), Delay()}};
            case 3:
                return {{frame_(bytes_.Take(bytes_.Take()), sent), Delay()}};
            case 4:
                for (fieldsim::Answer& answer : answers) {
                    const auto at = static_cast<std::size_t>(bytes_.Take());
                    if (at < answer.bytes.size()) {
                        answer.bytes[at] = static_cast<char>(bytes_.Take());
                    }
                }
                return answers;
            case 5:
                if (!answers.empty()) {
                    const auto at = std::min(static_cast<std::size_t>(bytes_.Take()), answers[0].bytes.size());
                    answers.push_back({answers[0].bytes.substr(at), Delay()});
                    answers[0].bytes.resize(at);
                }
                return answers;
            default:
                return answers;
        }
    }

  private:
    std::uint32_t Delay() { return 10 * static_cast<std::uint32_t>(bytes_.Take()); }

    fieldsim::Device& station_;
    const Frame& frame_;
    Bytes& bytes_;
};

// The delivered database with a station of each kind.
struct Register {
    Register() {
        std::filesystem::copy_file(NORWEN_DATABASE, desk.shared.DatabasePath(),
                                   std::filesystem::copy_options::overwrite_existing);
        dbconn = std::make_unique<core::Database>(desk.shared.DatabasePath());
        dbconn->Execute("pragma synchronous=off");
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            locations[i] = demo::AddStation(*dbconn, kinds[i].station);
            dbconn->Execute("update configdata_master set mode=? where locationID=?", {kinds[i].mode, locations[i]});
        }
    }

    Desk desk;
    std::unique_ptr<core::Database> dbconn;
    std::array<Kind, 6> kinds = Kinds();
    std::array<std::int64_t, 6> locations{};
};

void Collect(Register& all, Bytes& bytes) {
    const int flags = bytes.Take();
    const std::size_t which = static_cast<std::size_t>(flags) % all.kinds.size();
    core::Database& dbconn = *all.dbconn;
    fieldsim::VirtualClock clock({2026, 3, 9, 8, 0, 0});
    fieldsim::Field field(dbconn, {});
    const demo::DemoStation& known = all.kinds[which].station;
    AnyDevice device(*field.Ports().at(known.port), all.kinds[which].frame, bytes);
    fieldsim::SimPorts ports(clock);
    ports.Attach(known.port, device);
    protocols::FieldLines lines(clock, [&](const core::Station& station) { return ports.Line(station); });
    Silent feedback;
    core::Logs logs(dbconn, all.desk.shared, clock);
    protocols::BsapCounters counters;
    reading::Workplace place{dbconn, all.desk.shared, clock, feedback, logs, lines, counters};
    dbconn.Execute(
        "update configdata_master set delaytime=1000, pacing=?, wordorder=? where locationID=?",
        {(flags & 64) != 0 ? "prompt" : "stated", (flags & 128) != 0 ? "low" : "high", all.locations[which]});
    reading::RunState state;
    clock.Start([&] { collection::collectiong_Data(place, all.locations[which], state); });
    clock.Finish();
    Check(clock.Conversations() == 0);
    Check(state.received <= state.asked);
    Check(clock.Elapsed() < 24ULL * 3600 * 1000);
    const auto tooLarge = dbconn.First("select count(*) from configdata_detail where abs(lastvalue) > 1e39");
    Check((*tooLarge)[0].Long() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Register all;
    Bytes bytes(data, size);
    Collect(all, bytes);
    return 0;
}
