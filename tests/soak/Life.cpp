#include "soak/Life.h"

#include "collection/Scheduler.h"
#include "reports/ReportMail.h"
#include "support/CollectionDesk.h"

namespace soak {

namespace {

using enum fieldsim::Fault;

// Ends everything on the stack, as a power cut does. No std::exception: nobody catches it.
struct PowerCut {};

// The program from its start to the power cut.
class Program final : public collection::RunWatcher {
  public:
    Program(Life& life, const std::function<void(const Turn&)>& taken)
        : shared_(life.scratch.path), dbconn_(life.database), life_(life), taken_(taken) {
        dbconn_.Execute("pragma synchronous=OFF");
        scheduler_.Watch(this);
        scheduler_.ResetDailyFlags();
    }

    void Tick() { scheduler_.Tick(); }

    void Collecting(std::int64_t location) override { begun_[location] = life_.clock.Elapsed(); }

    void Collected(std::int64_t location) override {
        const auto row =
            dbconn_.First("select * from outcome where locationID=? order by rowid desc limit 1", {location});
        const auto begun = begun_.extract(location);
        if (!row || begun.empty()) {
            return;  // selected, and not due
        }
        const std::uint64_t moment = begun.mapped();
        life_.turns.push_back({location, moment, life_.clock.Elapsed(), row->Text("gasday"), row->Text("how"),
                               row->Text("result"), row->Text("reason"), static_cast<int>(row->Long("asked")),
                               static_cast<int>(row->Long("received"))});
        taken_(life_.turns.back());
    }

  private:
    core::MAIN_Module shared_;
    core::Database dbconn_;
    Life& life_;
    const std::function<void(const Turn&)>& taken_;
    core::Logs logs_{dbconn_, shared_, life_.clock};
    support::RecordingFeedback feedback_;
    protocols::FieldLines lines_{life_.clock,
                                 [this](const core::Station& station) { return life_.ports.Line(station); }};
    protocols::BsapCounters counters_;
    reading::Workplace place_{dbconn_, shared_, life_.clock, feedback_, logs_, lines_, counters_};
    support::RecordingMail mail_;
    reports::ReportMail reportMail_{place_, mail_};
    collection::Scheduler scheduler_{place_, reportMail_};
    std::map<std::int64_t, std::uint64_t> begun_;  // by station
};

fieldsim::LineFaults::Options BadLine(const demo::DemoStation& station, std::uint32_t seed) {
    fieldsim::LineFaults::Options faults;
    faults.seed = seed;
    faults.chances = {{NoiseBefore, 0.01}, {NoiseAfter, 0.01}, {Cut, 0.005}, {Late, 0.005}, {Silence, 0.02}};
    // What has no check that is looked at cannot tell a wrong bit from a right one.
    if (station.mode != "ASCII" && station.protocol != "Quantum") {
        faults.chances[BadCheck] = 0.01;
    }
    return faults;
}

}  // namespace

Life::Life(std::uint32_t seed_) : seed(seed_) {
    std::filesystem::copy_file(NORWEN_DATABASE, database);
    OpenField();
    for (const TroubleSpan& trouble : plan.troubles) {
        Arrange(trouble);
    }
    for (const ClockStep& step : plan.steps) {
        clock.After(static_cast<std::uint32_t>(step.at), [this, &step] { clock.Step(step.seconds); });
    }
}

void Life::OpenField() {
    core::Database dbconn(database);
    dbconn.Execute("pragma synchronous=OFF");
    dbconn.Execute("insert into email_settings values('operator@station','','','','')");
    fieldsim::FieldOptions options;
    options.seed = seed;
    for (const PlannedStation& planned : plan.stations) {
        const auto location = demo::AddStation(dbconn, planned.station);
        if (planned.badLine) {
            options.faults[location] = BadLine(planned.station, seed * 64 + static_cast<std::uint32_t>(location));
        }
    }
    field = std::make_unique<fieldsim::Field>(dbconn, options);
    for (const auto& [port, device] : field->Ports()) {
        gates_[port] = std::make_unique<Gate>(*device);
        ports.Attach(port, *gates_[port]);
    }
}

void Life::Arrange(const TroubleSpan& trouble) {
    const auto set = [this, &trouble](bool on) {
        switch (trouble.trouble) {
            case Trouble::Dead:
                gates_.at(trouble.port)->cut = on;
                break;
            case Trouble::Refused:
                ports.Refuse(trouble.port, on);
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

void Life::Live(const std::function<void(const Turn&)>& taken) {
    for (const Running& time : running) {
        clock.Run(time.from - clock.Elapsed());
        RunUntilThePowerIsCut(time.until, taken);
    }
}

void Life::RunUntilThePowerIsCut(std::uint64_t until, const std::function<void(const Turn&)>& taken) {
    const auto program = std::make_shared<Program>(*this, taken);
    clock.Every(minuteMs, [alive = std::weak_ptr(program)] {
        if (const auto ticked = alive.lock()) {
            ticked->Tick();
        }
    });
    clock.After(static_cast<std::uint32_t>(until - clock.Elapsed()), [] { throw PowerCut{}; });
    try {
        clock.Run(2 * days * dayMs);
    } catch (const PowerCut&) {
        clock.EndWaits(std::make_exception_ptr(PowerCut{}));
    }
}

}  // namespace soak
