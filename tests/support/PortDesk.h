#pragma once

#include <string>
#include <utility>

#include "desk/platform/EventLoopClock.h"
#include "desk/platform/SerialLine.h"
#include "reports/ReportMail.h"
#include "support/CollectionDesk.h"
#include "support/LoopClock.h"

namespace support {

// A desk on the real clock, whose only port is a pseudo-terminal.
struct PortDesk {
    explicit PortDesk(std::string devicePath) : path(std::move(devicePath)) { shared.currentuser = "WARDEN"; }

    std::string path;
    ScratchDesk scratch;
    core::MAIN_Module& shared = scratch.shared;
    core::Database& dbconn = scratch.dbconn;
    LoopClock clock;
    core::Logs logs{dbconn, shared, clock};
    RecordingFeedback feedback;
    protocols::FieldLines lines{clock, [this](const core::Station&) {
                                    return std::make_unique<desk::SerialLine>([this](int) { return path; });
                                }};
    protocols::BsapCounters counters;
    reading::Workplace place{dbconn, shared, clock, feedback, logs, lines, counters};
    RecordingMail mail;
    reports::ReportMail reportMail{place, mail};
    collection::Scheduler scheduler{place, reportMail};

    std::int64_t AddStation() {
        return demo::AddStation(dbconn, {"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 17, "", 1, {}, "00:00", 60});
    }
};

}  // namespace support
