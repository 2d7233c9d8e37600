#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>

#include "collection/Scheduler.h"
#include "fieldsim/Field.h"
#include "fieldsim/SimLine.h"
#include "soak/Expectation.h"
#include "support/CollectionDesk.h"

using namespace soak;

namespace {

// Ends everything on the stack, as a power cut does. No std::exception: nobody catches it.
struct PowerCut {};

// A run as the watcher saw it, with its row.
struct Turn {
    std::int64_t location = 0;
    std::uint64_t begun = 0;
    std::uint64_t ended = 0;
    std::string gasday, how, result, reason;
    int asked = 0;
    int received = 0;
};

bool GaveNoData(const Turn& run) {
    return run.result != "collected" && run.result != "partly";
}

// The program from its start to the power cut.
struct Program final : collection::RunWatcher {
    Program(const std::filesystem::path& directory, fieldsim::VirtualClock& clock_, protocols::Line& line,
            std::vector<Turn>& runs_)
        : shared(directory),
          dbconn(shared.DatabasePath()),
          clock(clock_),
          logs(dbconn, shared, clock),
          fieldLine(line, clock),
          runs(runs_) {
        scheduler.Watch(this);
        scheduler.ResetDailyFlags();
    }

    void Collecting(std::int64_t) override { begun = clock.Elapsed(); }
    void Collected(std::int64_t location) override {
        const auto row = dbconn.First("select * from outcome order by rowid desc limit 1");
        if (!row || row->Long("locationID") != location || row->Text("begun") != TextAt(begun)) {
            return;  // selected, and not due
        }
        runs.push_back({location, begun, clock.Elapsed(), row->Text("gasday"), row->Text("how"), row->Text("result"),
                        row->Text("reason"), static_cast<int>(row->Long("asked")),
                        static_cast<int>(row->Long("received"))});
        begun = 0;
    }
    std::string TextAt(std::uint64_t moment) const { return core::IsoText(core::FromSeconds(local->At(moment))); }

    core::MAIN_Module shared;
    core::Database dbconn;
    fieldsim::VirtualClock& clock;
    core::Logs logs;
    support::RecordingFeedback feedback;
    protocols::FieldLine fieldLine;
    protocols::BsapCounters counters;
    collection::Workplace place{dbconn, shared, clock, feedback, logs, fieldLine, counters};
    support::RecordingMail mail;
    collection::Scheduler scheduler{place, mail};
    std::vector<Turn>& runs;
    const LocalTime* local = nullptr;
    std::uint64_t begun = 0;
};

class ThirtyDays : public testing::TestWithParam<std::uint32_t> {
  protected:
    static constexpr core::DateTime start{2026, 3, 20, 12, 0, 7};

    void Live();
    void ExpectTheDues() const;
    void ExpectTheRetries() const;
    void ExpectTheResults() const;
    void ExpectOnlyWhatWasSent(std::int64_t location);

    const PlannedStation& Planned(std::int64_t location) const {
        return plan.stations[static_cast<std::size_t>(location - 1)];
    }
    std::vector<const Turn*> RunsOf(std::int64_t location) const {
        std::vector<const Turn*> own;
        for (const Turn& run : runs) {
            if (run.location == location) {
                own.push_back(&run);
            }
        }
        return own;
    }
    // The line served others from one moment to the other, apart from the time that the program needs between two.
    void ExpectTheLineWasBusy(std::uint64_t from, std::uint64_t until, const std::string& who) const;
    std::string Name(const Turn& run) const {
        return Planned(run.location).station.consumer + " " + run.gasday + " " + run.how + " begun " +
               core::IsoText(core::FromSeconds(local.At(run.begun))) + " " + run.result + " (" + run.reason + ")";
    }

    Plan plan = DrawPlan(GetParam());
    LocalTime local{start, plan.steps};
    std::vector<Running> running = RunningTimes(plan.off);
    support::ScratchDirectory scratch;
    fieldsim::VirtualClock clock{start};
    fieldsim::SimLine line{clock};
    std::unique_ptr<fieldsim::Field> field;
    std::map<int, std::unique_ptr<Gate>> gates;
    std::vector<Turn> runs;
};

using enum fieldsim::Fault;

// The register, the field, and what goes wrong with it, each at its moment.
void ThirtyDays::Live() {
    std::filesystem::copy_file(NORWEN_DATABASE, scratch.path / "Kolmar.mdb");
    core::Database dbconn(scratch.path / "Kolmar.mdb");
    dbconn.Execute("pragma synchronous=OFF");
    dbconn.Execute("insert into email_settings values('operator@station','','','','')");
    fieldsim::FieldOptions options;
    options.seed = GetParam();
    for (const PlannedStation& planned : plan.stations) {
        const auto location = demo::AddStation(dbconn, planned.station);
        if (planned.badLine) {
            fieldsim::LineFaults::Options faults;
            faults.seed = GetParam() * 64 + static_cast<std::uint32_t>(location);
            faults.chances = {{NoiseBefore, 0.01}, {NoiseAfter, 0.01}, {Cut, 0.005}, {Late, 0.005}, {Silence, 0.02}};
            if (planned.station.mode != "ASCII" && planned.station.protocol != "Quantum") {
                faults.chances[BadCheck] = 0.01;
            }
            options.faults[location] = faults;
        }
    }
    field = std::make_unique<fieldsim::Field>(dbconn, options);
    for (const auto& [port, device] : field->Ports()) {
        gates[port] = std::make_unique<Gate>(*device);
        line.Attach(port, *gates[port]);
    }
    for (const TroubleSpan& trouble : plan.troubles) {
        const auto set = [this, &trouble](bool on) {
            switch (trouble.trouble) {
                case Trouble::Dead:
                    gates.at(trouble.port)->cut = on;
                    break;
                case Trouble::Refused:
                    line.Refuse(trouble.port, on);
                    break;
                case Trouble::Busy:
                    field->Modem(trouble.port)
                        ->Always(trouble.phoneno, on ? fieldsim::DialOutcome{"BUSY", 6000} : fieldsim::DialOutcome{});
                    break;
            }
        };
        clock.After(static_cast<std::uint32_t>(trouble.span.from), [set] { set(true); });
        clock.After(static_cast<std::uint32_t>(trouble.span.until), [set] { set(false); });
    }
    for (const ClockStep& step : plan.steps) {
        clock.After(static_cast<std::uint32_t>(step.at), [this, &step] { clock.Step(step.seconds); });
    }
    for (const Running& time : running) {
        clock.Run(time.from - clock.Elapsed());
        auto program = std::make_shared<Program>(scratch.path, clock, line, runs);
        program->dbconn.Execute("pragma synchronous=OFF");
        program->local = &local;
        const std::weak_ptr<Program> alive = program;
        clock.Every(minuteMs, [alive] {
            if (const auto ticked = alive.lock()) {
                ticked->scheduler.Tick();
            }
        });
        clock.After(static_cast<std::uint32_t>(time.until - clock.Elapsed()), [] { throw PowerCut{}; });
        try {
            clock.Run(2 * days * dayMs);
        } catch (const PowerCut&) {
            line.PortOpen(false);
        }
    }
    for (std::size_t i = 0; i < plan.stations.size(); ++i) {
        ExpectOnlyWhatWasSent(static_cast<std::int64_t>(i) + 1);
    }
}

void ThirtyDays::ExpectTheLineWasBusy(std::uint64_t from, std::uint64_t until, const std::string& who) const {
    std::uint64_t busy = 0;
    std::uint64_t others = 0;
    for (const Turn& run : runs) {
        const std::uint64_t begin = std::max(run.begun, from);
        const std::uint64_t end = std::min(run.ended, until);
        busy += begin < end ? end - begin : 0;
        others += begin < end ? 1 : 0;
    }
    EXPECT_LE(until - from, busy + (others + 1) * 5000 + 65000) << who << " waited while the line was free";
}

// A run for each contract hour, and none besides; those that a power cut took away are there after the next start.
void ThirtyDays::ExpectTheDues() const {
    const std::int64_t firstTick = local.At(minuteMs);
    for (std::size_t i = 0; i < plan.stations.size(); ++i) {
        const auto location = static_cast<std::int64_t>(i) + 1;
        const demo::DemoStation& station = plan.stations[i].station;
        std::vector<const Turn*> primary;
        for (const Turn* run : RunsOf(location)) {
            if (run->how != "retry") {
                primary.push_back(run);
            }
        }
        std::size_t next = 0;
        std::vector<std::string> served;
        for (const Running& time : running) {
            auto counted = served;
            for (const Due& due : DuesOf(station, time, local, firstTick, counted)) {
                const std::string who = station.consumer + " (contract hour " + station.contracthour + ", " +
                                        station.duration + ") gas day " + due.gasday;
                if (next < primary.size() && primary[next]->gasday == due.gasday && primary[next]->ended < time.until) {
                    const Turn& run = *primary[next++];
                    EXPECT_EQ(run.how, due.late ? "late" : "schedule") << Name(run);
                    ExpectTheLineWasBusy(due.from, run.begun, Name(run));
                    served.push_back(due.gasday);
                } else {
                    // Cut off before its end: other runs and its own filled the time until then.
                    std::uint64_t last = due.from;
                    for (const Turn& run : runs) {
                        last = run.ended < time.until ? std::max(last, run.ended) : last;
                    }
                    EXPECT_LE(time.until - last, 35 * minuteMs) << who << " has no run";
                }
            }
        }
        for (; next < primary.size(); ++next) {
            ADD_FAILURE() << "not due: " << Name(*primary[next]);
        }
    }
}

// After a run without data: 15 and 60 minutes, then 60 again, four in all, until one gives data or the next day is due.
void ThirtyDays::ExpectTheRetries() const {
    constexpr std::uint64_t pauses[] = {15 * minuteMs, 60 * minuteMs, 60 * minuteMs, 60 * minuteMs};
    for (std::size_t i = 0; i < plan.stations.size(); ++i) {
        const auto own = RunsOf(static_cast<std::int64_t>(i) + 1);
        std::size_t round = 0;
        for (std::size_t k = 0; k < own.size(); ++k) {
            const Turn& run = *own[k];
            round = run.how == "retry" ? round + 1 : 0;
            const Turn* following = k + 1 < own.size() ? own[k + 1] : nullptr;
            const bool retried = following != nullptr && following->how == "retry";
            if (!GaveNoData(run) || round == std::size(pauses)) {
                EXPECT_FALSE(retried) << Name(run) << "\n  then " << Name(*following);
                continue;
            }
            const std::uint64_t due = run.ended + pauses[round];
            const std::uint64_t end = following != nullptr ? following->begun : days * dayMs;
            const bool disturbed = local.Steps(run.begun, end) ||
                                   std::any_of(plan.off.begin(), plan.off.end(),
                                               [&](const Span& off) { return off.Overlaps(run.ended, end); });
            if (retried) {
                EXPECT_EQ(following->gasday, run.gasday);
                if (!disturbed) {
                    EXPECT_GE(following->begun + 1000, due) << Name(run) << "\n  then " << Name(*following);
                    ExpectTheLineWasBusy(due, following->begun, Name(*following));
                }
            } else if (!disturbed && due < end) {
                ExpectTheLineWasBusy(due, end, "the retry of " + Name(run));
            }
        }
    }
}

void ThirtyDays::ExpectTheResults() const {
    for (const Turn& run : runs) {
        const PlannedStation& planned = Planned(run.location);
        const demo::DemoStation& station = planned.station;
        const TroubleSpan* touching = nullptr;
        for (const TroubleSpan& trouble : plan.troubles) {
            const bool mine =
                trouble.port == station.port && (trouble.phoneno.empty() || trouble.phoneno == station.phoneno);
            if (mine && trouble.span.Overlaps(run.begun, run.ended)) {
                touching = &trouble;
            }
        }
        if (touching == nullptr && !planned.badLine) {
            EXPECT_EQ(run.result, "collected") << Name(run);
        } else if (touching != nullptr && touching->span.Covers(run.begun, run.ended)) {
            const bool silent = touching->trouble == Trouble::Dead && station.phoneno.empty();
            EXPECT_EQ(run.result, silent ? "no answer" : "not reached") << Name(run);
        }
        if (run.result == "collected") {
            EXPECT_EQ(run.received, run.asked) << Name(run);
            EXPECT_GT(run.received, 0) << Name(run);
        } else {
            EXPECT_LT(run.received, run.asked == 0 ? 1 : run.asked) << Name(run);
            EXPECT_NE(run.reason, "") << Name(run);
        }
        if (GaveNoData(run) && run.result != "broken off") {
            EXPECT_EQ(run.received, 0) << Name(run);
        }
    }
}

// No value without its moment, and none that the station did not send under that name.
void ThirtyDays::ExpectOnlyWhatWasSent(std::int64_t location) {
    core::Database dbconn(scratch.path / "Kolmar.mdb");
    bool everReached = false;
    for (const core::Row& row : dbconn.Query("select * from configdata_detail where locationID=?", {location})) {
        const std::string what = Planned(location).station.consumer + " " + row.Text("description");
        const double value = row.Number("lastvalue");
        if (row.IsNull("readat")) {
            EXPECT_TRUE(value == 0 && row.Text("quality") != "good") << what << " = " << value << ", never read";
            continue;
        }
        everReached = true;
        const bool inARun = std::any_of(runs.begin(), runs.end(), [&](const Turn& run) {
            return run.location == location &&
                   row.Text("readat") >= core::IsoText(core::FromSeconds(local.At(run.begun))) &&
                   row.Text("readat") <= core::IsoText(core::FromSeconds(local.At(run.ended)));
        });
        // A run that a power cut ended has no row in `runs`; its values are good all the same.
        EXPECT_TRUE(inARun || row.Text("quality") == "good") << what << " read at " << row.Text("readat");
        EXPECT_TRUE(field->WasServed(location, static_cast<int>(row.Long("StreamNo")), row.Text("description"), value))
            << what << " = " << value << ", quality " << row.Text("quality");
    }
    for (const core::Row& day : dbconn.Query("select * from gasday where locationID=?", {location})) {
        EXPECT_FALSE(day.IsNull("readat"));
        if (Planned(location).station.No_Stream == 1 && Planned(location).station.protocol != "Quantum") {
            const bool pressure =
                day.IsNull("pressure") || field->WasServed(location, 1, "Flowing Pressure", day.Number("pressure"));
            EXPECT_TRUE(pressure) << Planned(location).station.consumer << " " << day.Text("gasday");
        }
    }
    const auto green = dbconn.First(
        "select count(*) from outcome where locationID=? and result='collected' and (asked<>received or asked=0)",
        {location});
    EXPECT_EQ((*green)[0].Long(), 0);
    static_cast<void>(everReached);
}

TEST_P(ThirtyDays, LeaveWhatTheFieldGave) {
    std::cout << "seed " << GetParam() << " (again: NORWEN_SOAK=" << GetParam() << ":1)\n";
    Live();
    EXPECT_GT(runs.size(), 500U);
    ExpectTheDues();
    ExpectTheRetries();
    ExpectTheResults();
}

// NORWEN_SOAK is "first:count".
std::vector<std::uint32_t> Seeds() {
    const char* text = std::getenv("NORWEN_SOAK");
    const auto number = [](const char* digits) {
        return static_cast<std::uint32_t>(std::strtoul(digits, nullptr, 10));
    };
    const char* colon = text != nullptr ? std::strchr(text, ':') : nullptr;
    const std::uint32_t first = text != nullptr ? number(text) : 1;
    const std::uint32_t count = colon != nullptr ? number(colon + 1) : NORWEN_SOAK_SEEDS;
    std::vector<std::uint32_t> seeds;
    for (std::uint32_t seed = first; seed < first + count; ++seed) {
        seeds.push_back(seed);
    }
    return seeds;
}

INSTANTIATE_TEST_SUITE_P(Seed, ThirtyDays, testing::ValuesIn(Seeds()), testing::PrintToStringParamName());

}  // namespace
