#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>

#include "reports/ReportMail.h"
#include "support/CollectionDesk.h"

namespace {

// What a child process has reported as stored before it was killed.
struct Report {
    std::int64_t location;
    int schedulerRows;
};

// Tells over the pipe when a station's outcome is recorded: from then on the operator may rely on its rows.
class ReportingFeedback final : public core::Feedback {
  public:
    ReportingFeedback(core::Database& dbconn, int pipe) : dbconn_(dbconn), pipe_(pipe) {}
    void Status(const std::string&) override {
        for (const core::Row& row : dbconn_.Query("select locationID, (select count(*) from Scheduler where RTUName = "
                                                  "consumer) from configdata_master where sampledtoday")) {
            const Report report{row[0].Long(), static_cast<int>(row[1].Long())};
            EXPECT_EQ(write(pipe_, &report, sizeof report), static_cast<ssize_t>(sizeof report));
        }
    }
    void Box(const std::string&) override {}

  private:
    core::Database& dbconn_;
    int pipe_;
};

// Collects all stations of the directory again and again until it is killed.
[[noreturn]] void CollectForEver(const std::filesystem::path& directory, int pipe) {
    core::MAIN_Module shared(directory);
    core::Database dbconn(shared.DatabasePath());
    fieldsim::VirtualClock clock({2026, 3, 9, 7, 59, 30});
    core::Logs logs(dbconn, shared, clock);
    ReportingFeedback feedback(dbconn, pipe);
    fieldsim::SimPorts ports(clock);
    protocols::FieldLines lines(clock, [&](const core::Station& station) { return ports.Line(station); });
    protocols::BsapCounters counters;
    reading::Workplace place{dbconn, shared, clock, feedback, logs, lines, counters};
    support::RecordingMail mail;
    reports::ReportMail reportMail(place, mail);
    collection::Scheduler scheduler(place, reportMail);
    fieldsim::Field field(dbconn, {});
    field.AttachTo(ports);
    for (;;) {
        clock.Run(24 * 3600000 - clock.Elapsed() % (24 * 3600000) + 30000);
        scheduler.Tick();
    }
}

TEST(Kill, AtAnyMomentLosesNothingThatWasReported) {
    std::mt19937 random(7);
    for (int round = 0; round < 12; ++round) {
        const support::ScratchDirectory scratch;
        std::filesystem::copy_file(NORWEN_DATABASE, scratch.path / "Kolmar.mdb");
        std::filesystem::create_directory(scratch.path / "scheduler");
        {
            core::Database dbconn(scratch.path / "Kolmar.mdb");
            for (const auto& station : demo::OneOfEach("08:00")) {
                demo::AddStation(dbconn, station);
            }
        }
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            close(ends[0]);
            CollectForEver(scratch.path, ends[1]);
        }
        close(ends[1]);
        usleep(std::uniform_int_distribution<useconds_t>(50000, 700000)(random));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        std::map<std::int64_t, int> reported;
        for (Report report{}; read(ends[0], &report, sizeof report) == static_cast<ssize_t>(sizeof report);) {
            reported[report.location] = std::max(reported[report.location], report.schedulerRows);
        }
        close(ends[0]);

        core::Database dbconn(scratch.path / "Kolmar.mdb");  // the next start
        EXPECT_EQ(dbconn.First("pragma integrity_check")->operator[](0).Text(), "ok");
        for (const auto& [location, rows] : reported) {
            const auto row = dbconn.First(
                "select (select count(*) from Scheduler where RTUName = consumer) n, "
                "(select count(*) from LogParam where LocationId = locationID) d from "
                "configdata_master where locationID = ?",
                {location});
            EXPECT_GE(row->Long("n"), rows);
            EXPECT_GE(row->Long("d"), 1);
        }
    }
}

}  // namespace
