#pragma once

#include <exception>
#include <functional>
#include <stdexcept>
#include <vector>

#include "collection/Scheduler.h"
#include "demo/DemoRegister.h"
#include "fieldsim/Field.h"
#include "fieldsim/SimLine.h"
#include "reports/ReportMail.h"
#include "support/ScratchDesk.h"

namespace support {

// Mail that goes nowhere but into a list.
struct RecordingMail final : mail::MailTransport {
    std::vector<mail::MailMessage> sent;
    mail::MailOutcome Send(const mail::MailMessage& message, const mail::MailServer&, core::Clock&,
                           const std::function<bool()>&) override {
        sent.push_back(message);
        return {true, ""};
    }
};

// A desk whose scheduler is live: one tick a minute on the virtual clock, on a line to a simulated field.
class CollectionDesk : public ScratchDesk {
  public:
    using ScratchDesk::ScratchDesk;
    // What a test has left on the lines ends here, as by a power cut.
    ~CollectionDesk() {
        struct TheTestEnds {};
        clock.EndWaits(std::make_exception_ptr(TheTestEnds{}));
    }

    fieldsim::SimPorts ports{clock};
    protocols::FieldLines lines{clock, [this](const core::Station& station) { return ports.Line(station); }};
    protocols::BsapCounters counters;
    reading::Workplace place{dbconn, shared, clock, feedback, logs, lines, counters};
    RecordingMail mail;
    reports::ReportMail reportMail{place, mail};
    collection::Scheduler scheduler{place, reportMail};

    protocols::FieldLine& Line(int port = 1) {
        core::Station station;
        station.comport = port;
        return lines.Of(station);
    }

    // Every station of the register gets its far side.
    fieldsim::Field& OpenField(const fieldsim::FieldOptions& options = {}) {
        field_ = std::make_unique<fieldsim::Field>(dbconn, options);
        field_->AttachTo(ports);
        return *field_;
    }

    // One tick, and all that it begins.
    void Tick() {
        scheduler.Tick();
        clock.Finish();
    }
    void StartTicking() {
        clock.Every(60000, [this] { scheduler.Tick(); });
    }

    // Runs the clock until it holds, for half a day at most.
    void RunUntil(const std::function<bool()>& holds) {
        if (!clock.RunUntil(holds, 43'200'000)) {
            throw std::runtime_error("Nothing more happens");
        }
    }
    // The same until every conversation is over or waits for the operator.
    void Settle() {
        RunUntil([this] { return clock.Quiet(); });
    }
    // The same until none is left.
    void Finish() {
        RunUntil([this] { return clock.Conversations() == 0; });
    }

    core::Row Master(std::int64_t locationID) {
        return dbconn.First("select * from configdata_master where locationID=?", {locationID}).value();
    }
    std::int64_t Count(const std::string& sql, std::initializer_list<core::Value> values = {}) {
        return dbconn.First("select count(*) from " + sql, values).value()[0].Long();
    }

  private:
    std::unique_ptr<fieldsim::Field> field_;
};

}  // namespace support
