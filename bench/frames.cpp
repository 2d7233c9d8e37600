// The checks of both protocols, and one large Modbus reply from request to values.

#include <benchmark/benchmark.h>

#include <map>

#include "bench/Figure.h"
#include "protocols/bsap/BsapCheck.h"
#include "protocols/modbus/ModbusCheck.h"
#include "protocols/modbus/ModbusReply.h"
#include "protocols/modbus/ModbusRequest.h"

namespace {

using bench::Goal;

std::string Frame() {
    std::string frame = "\x10\x02";
    for (int i = 0; i < 250; ++i) {
        frame += static_cast<char>(i % 15 + 0x20);
    }
    return frame + "\x10\x03\x01\x02";
}

void ModbusCheck(benchmark::State& state) {
    const std::string frame(256, '\x5A');
    for (auto _ : state) {
        benchmark::DoNotOptimize(protocols::ModbusCrc(frame));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * frame.size()));
}

void BsapCheck(benchmark::State& state) {
    const std::string frame = Frame();
    for (auto _ : state) {
        benchmark::DoNotOptimize(protocols::BsapCheck(frame));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * frame.size()));
}

void BuildRequest(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<float> data{124};
        benchmark::DoNotOptimize(protocols::BuildRtuRequest(3, 1, 100, data));
    }
}

// 62 floats as a station sends them, the wandering values of a meter.
std::string Reply() {
    std::string reply = "\x01\x03\xF8";
    for (int i = 0; i < 62; ++i) {
        reply += std::string({'\x42', static_cast<char>(i * 4), static_cast<char>(i * 7), static_cast<char>(i)});
    }
    const int crc = protocols::ModbusCrc(reply);
    reply += static_cast<char>(crc % 256);
    reply += static_cast<char>(crc / 256);
    return reply;
}

void ParseReply(benchmark::State& state) {
    protocols::ModbusState modbus;
    modbus.floatread = true;
    const std::string reply = Reply();
    for (auto _ : state) {
        benchmark::DoNotOptimize(protocols::ParseRtuReply(modbus, reply));
    }
}

// Keeps what the runs measured instead of printing a table of its own.
class Keeper final : public benchmark::BenchmarkReporter {
  public:
    std::map<std::string, Run> runs;
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& reported) override {
        for (const Run& run : reported) {
            runs[run.benchmark_name()] = run;
        }
    }
};

BENCHMARK(ModbusCheck);
BENCHMARK(BsapCheck);
BENCHMARK(BuildRequest);
BENCHMARK(ParseReply);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    Keeper keeper;
    benchmark::RunSpecifiedBenchmarks(&keeper);
    const auto rate = [&](const char* name) { return keeper.runs.at(name).counters.at("bytes_per_second") / 1e6; };
    const auto time = [&](const char* name) { return keeper.runs.at(name).GetAdjustedCPUTime() / 1e3; };
    bool met = bench::Report("modbus check, 256 bytes", rate("ModbusCheck"), "MB/s", Goal::AtLeast, 200);
    met &= bench::Report("bsap check, 256 bytes", rate("BsapCheck"), "MB/s", Goal::AtLeast, 200);
    met &= bench::Report("build a request", time("BuildRequest"), "us", Goal::AtMost, 5);
    met &= bench::Report("parse 124 registers", time("ParseReply"), "us", Goal::AtMost, 5);
    return met ? 0 : 1;
}
