#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "core/Clock.h"
#include "core/Station.h"
#include "protocols/line/LineLease.h"

namespace protocols {

// What tells the line of a station from others: "COM3" for its port, with or without a modem, or its
// address on the network.
std::string LineName(const core::Station& station);

// All lines to the field, each with its own leases. A line is made when its first station is met, and stays.
class FieldLines {
  public:
    // Makes the device behind the line of a station. Its port is not opened yet.
    using MakeDevice = std::function<std::unique_ptr<Line>(const core::Station& station)>;

    FieldLines(core::Clock& clock, MakeDevice make) : clock_(clock), make_(std::move(make)) {}

    FieldLine& Of(const core::Station& station);

    // A conversation holds one of the lines.
    bool InUse() const;

    // Tells the conversations of all lines to end, because the program does; see FieldLine.
    void EndConversations(const std::string& reason);
    // The same for an operator's Stop, for those that are on their way to their station.
    void StopConnecting();

    // Called when a kept line may be taken over again. It must not wait.
    void WhenReleased(std::function<void()> tell) { released_ = std::move(tell); }

    // Calls `visit` with each line by its name.
    void ForEach(const std::function<void(const std::string& name, FieldLine& line)>& visit);

  private:
    struct Known {
        std::unique_ptr<Line> device;
        std::unique_ptr<FieldLine> line;
    };

    core::Clock& clock_;
    MakeDevice make_;
    std::map<std::string, Known> lines_;
    std::function<void()> released_;
};

}  // namespace protocols
