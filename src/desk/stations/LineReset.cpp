#include "desk/stations/LineReset.h"

#include <memory>
#include <vector>

#include "core/Clock.h"
#include "core/Feedback.h"
#include "protocols/line/FieldLines.h"

namespace desk {

void ResetLine(Desk& desk) {
    std::vector<std::shared_ptr<protocols::LineLease>> free;
    bool inUse = false;
    desk.lines.ForEach([&](const std::string&, protocols::FieldLine& line) {
        if (auto lease = line.TakeIfFree()) {
            free.push_back(std::move(lease));
        } else {
            inUse = true;
        }
    });
    if (inUse && free.empty()) {
        desk.feedback.Status("The line is in use and was not reset");
        return;
    }
    desk.clock.Start([&desk, free] {
        for (int turn = 1; turn <= 2; ++turn) {
            for (const auto& lease : free) {
                lease->PortOpen(false);
            }
            desk.clock.WaitMs(100);
        }
        desk.feedback.Status("The line was reset");
    });
}

}  // namespace desk
