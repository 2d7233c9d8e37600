#pragma once

#include <QTest>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "desk/platform/EventLoopClock.h"
#include "desk/platform/SerialLine.h"
#include "reports/ReportMail.h"
#include "support/CollectionDesk.h"

namespace support {

// Turns the event loop until it holds, for a minute at most.
inline void TurnUntil(const std::function<bool()>& holds) {
    if (!QTest::qWaitFor(holds, 60000)) {
        throw std::runtime_error("Nothing more happens");
    }
}

// Has a conversation, and turns the event loop until it is over.
inline void Converse(core::Clock& clock, const std::function<void()>& conversation) {
    bool over = false;
    clock.Start([&] {
        conversation();
        over = true;
    });
    TurnUntil([&] { return over; });
}

// A desk on the real clock, whose only port is a pseudo-terminal.
struct PortDesk {
    explicit PortDesk(std::string devicePath) : path(std::move(devicePath)) { shared.currentuser = "WARDEN"; }

    std::string path;
    ScratchDesk scratch;
    core::MAIN_Module& shared = scratch.shared;
    core::Database& dbconn = scratch.dbconn;
    desk::EventLoopClock clock;
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
