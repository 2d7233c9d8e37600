#include "soak/FieldOfForty.h"

#include <array>

namespace soak {

namespace {

class Draw {
  public:
    explicit Draw(std::uint32_t seed) : random_(seed) {}

    int From(int least, int most) {
        return static_cast<int>(least + random_() % static_cast<unsigned>(most - least + 1));
    }
    bool Chance(int percent) { return From(1, 100) <= percent; }
    std::uint64_t Moment() { return static_cast<std::uint64_t>(From(0, days * 24 * 60 - 1)) * minuteMs; }

  private:
    std::mt19937 random_;
};

// The kinds of the field. Ports 1 to 4 are direct, 5 to 9 have a modem.
std::vector<demo::DemoStation> Kinds() {
    std::vector<demo::DemoStation> kinds(8);
    kinds[0] = {"TeleFlow RTU", "TeleFlow", "Modbus", "RTU"};
    kinds[1] = {"TeleCorrector ASCII", "TeleCorrector", "Modbus", "ASCII"};
    kinds[2] = {"TeleFlow+", "TeleFlow+", "BSAP", ""};
    kinds[3] = {"Two Streams", "CWGFC-MultiStream", "BSAP", ""};
    kinds[3].No_Stream = 2;
    kinds[3].stream = {"AGA3", "AGA7", "", ""};
    kinds[4] = {"Quantum", "Quantum", "Quantum", ""};
    kinds[5] = {"CW AGA3", "CWEFM-AGA3", "BSAP", ""};
    kinds[5].stream = {"AGA3", "", "", ""};
    kinds[6] = {"CW AGA7", "CWGFC-AGA7", "BSAP", ""};
    kinds[6].stream = {"AGA7", "", "", ""};
    kinds[7] = {"TeleRTU", "TeleRTU", "BSAP", ""};
    return kinds;
}

// Hours at which contracts begin, with those that summer time skips and repeats, and both sides of midnight.
constexpr std::array hours = {"00:00", "02:30", "06:00", "08:00", "08:00", "09:15", "14:30", "23:59"};

std::vector<PlannedStation> DrawStations(Draw& draw) {
    const auto kinds = Kinds();
    std::vector<PlannedStation> stations;
    for (int i = 0; i < 40; ++i) {
        PlannedStation planned{kinds[static_cast<std::size_t>(i) % kinds.size()], draw.Chance(25)};
        demo::DemoStation& station = planned.station;
        station.consumer += " " + std::to_string(i);
        station.slaveaddress = i + 1;
        station.port = i % 9 + 1;
        station.phoneno = station.port >= 5 ? "55501" + std::to_string(10 + i) : "";
        station.groupno = i / 10 + 1;
        station.contracthour = hours[static_cast<std::size_t>(draw.From(0, hours.size() - 1))];
        if (i >= 34) {
            station.duration = i < 36 ? "Weekly" : i < 38 ? "Monthly" : "NO";
            station.day = i < 36 ? std::to_string(draw.From(1, 7)) : i < 38 ? std::to_string(draw.From(1, 28)) : "100";
            station.contracthour = i < 38 ? station.contracthour : "00:00";
        }
        stations.push_back(std::move(planned));
    }
    return stations;
}

// Spans of one kind that do not touch each other.
void Add(std::vector<TroubleSpan>& troubles, const TroubleSpan& more) {
    const bool inTheWay = std::any_of(troubles.begin(), troubles.end(), [&](const TroubleSpan& other) {
        return other.port == more.port &&
               other.span.Overlaps(std::max<std::uint64_t>(more.span.from, 1) - 1, more.span.until + 1);
    });
    if (!inTheWay) {
        troubles.push_back(more);
    }
}

std::vector<TroubleSpan> DrawTroubles(Draw& draw, const std::vector<PlannedStation>& stations) {
    std::vector<TroubleSpan> troubles;
    for (int i = 0; i < 40; ++i) {
        const auto from = draw.Moment();
        const Span span{from, from + static_cast<std::uint64_t>(draw.From(10, 30 * 60)) * minuteMs};
        const demo::DemoStation& station = stations[static_cast<std::size_t>(draw.From(0, 39))].station;
        const auto trouble = static_cast<Trouble>(draw.From(0, station.phoneno.empty() ? 1 : 2));
        Add(troubles, {trouble, station.port, trouble == Trouble::Busy ? station.phoneno : "", span});
    }
    return troubles;
}

// Power cuts, some across contract hours, two of them for more than a day.
std::vector<Span> DrawOff(Draw& draw) {
    std::vector<Span> off;
    for (int i = 0; i < 6; ++i) {
        // In five days each, so that they never meet; at any millisecond, since a power cut does not wait for a minute.
        const auto from = static_cast<std::uint64_t>(i) * 5 * dayMs + dayMs +
                          static_cast<std::uint64_t>(draw.From(0, 2 * 24 * 60 * 60 * 1000));
        const auto minutes = i % 3 == 2 ? draw.From(25 * 60, 40 * 60) : draw.From(1, 12 * 60);
        off.push_back({from, from + static_cast<std::uint64_t>(minutes) * minuteMs +
                                 static_cast<std::uint64_t>(draw.From(0, 59999))});
    }
    return off;
}

// The spring night, the autumn night, and three steps by hand. The thirty days begin at noon.
std::vector<ClockStep> DrawSteps(Draw& draw) {
    std::vector<ClockStep> steps = {{9 * dayMs + 14 * hourMs, 3600}, {19 * dayMs + 14 * hourMs, -3600}};
    for (const int day : {4, 14, 24}) {
        const int seconds = draw.Chance(50) ? draw.From(60, 4 * 3600) : -draw.From(60, 50 * 60);
        steps.push_back(
            {static_cast<std::uint64_t>(day) * dayMs + static_cast<std::uint64_t>(draw.From(0, 86399)) * 1000,
             seconds});
    }
    std::sort(steps.begin(), steps.end(), [](const ClockStep& a, const ClockStep& b) { return a.at < b.at; });
    return steps;
}

}  // namespace

Plan DrawPlan(std::uint32_t seed) {
    Draw draw(seed);
    Plan plan;
    plan.stations = DrawStations(draw);
    plan.troubles = DrawTroubles(draw, plan.stations);
    plan.off = DrawOff(draw);
    plan.steps = DrawSteps(draw);
    return plan;
}

}  // namespace soak
