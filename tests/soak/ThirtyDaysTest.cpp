#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <numeric>
#include <sstream>

#include "soak/Life.h"

using namespace soak;

namespace {

bool GaveNoData(const Turn& turn) {
    return turn.result != "collected" && turn.result != "partly";
}

class ThirtyDays : public testing::TestWithParam<std::uint32_t> {
  protected:
    void ExpectTheDues() const;
    void ExpectTheRetries() const;
    void ExpectTheResults() const;
    void ExpectOnlyWhatWasSent(std::int64_t location) const;
    void ExpectWhatItCounts(const Turn& turn) const;

    const PlannedStation& Planned(std::int64_t location) const {
        return life.plan.stations[static_cast<std::size_t>(location - 1)];
    }
    std::vector<const Turn*> TurnsOf(std::int64_t location) const {
        std::vector<const Turn*> own;
        for (const Turn& turn : life.turns) {
            if (turn.location == location) {
                own.push_back(&turn);
            }
        }
        return own;
    }
    std::string LocalText(std::uint64_t moment) const {
        return core::IsoText(core::FromSeconds(life.local.At(moment)));
    }
    std::string Name(const Turn& turn) const {
        return Planned(turn.location).station.consumer + " " + turn.gasday + " " + turn.how + " begun " +
               LocalText(turn.begun) + " " + turn.result + " (" + turn.reason + ")";
    }
    // The line of a station served others from one moment to the other, apart from the time that the program needs
    // between two.
    void ExpectTheLineWasBusy(const demo::DemoStation& station, std::uint64_t from, std::uint64_t until,
                              const std::string& who) const;

    Life life{GetParam()};
};

void ThirtyDays::ExpectTheLineWasBusy(const demo::DemoStation& station, std::uint64_t from, std::uint64_t until,
                                      const std::string& who) const {
    std::uint64_t busy = 0;
    std::uint64_t others = 0;
    for (const Turn& turn : life.turns) {
        if (Planned(turn.location).station.port != station.port) {
            continue;
        }
        const std::uint64_t begin = std::max(turn.begun, from);
        const std::uint64_t end = std::min(turn.ended, until);
        busy += begin < end ? end - begin : 0;
        others += begin < end ? 1 : 0;
    }
    EXPECT_LE(until, from + busy + (others + 1) * 5000 + 65000) << who << " waited while the line was free";
}

// A turn for each contract hour, and none besides; those that a power cut took away are there after the next start.
void ThirtyDays::ExpectTheDues() const {
    const std::int64_t firstTick = life.local.At(minuteMs);
    for (std::size_t i = 0; i < life.plan.stations.size(); ++i) {
        const auto location = static_cast<std::int64_t>(i) + 1;
        const demo::DemoStation& station = life.plan.stations[i].station;
        std::vector<const Turn*> primary;
        for (const Turn* turn : TurnsOf(location)) {
            if (turn->how != "retry") {
                primary.push_back(turn);
            }
        }
        std::size_t next = 0;
        std::vector<std::string> served;
        for (const Running& time : life.running) {
            auto counted = served;
            const std::vector<Due> dues = DuesOf(station, time, life.local, firstTick, counted);
            for (std::size_t k = 0; k < dues.size(); ++k) {
                const Due& due = dues[k];
                const std::string who = station.consumer + " (contract hour " + station.contracthour + ", " +
                                        station.duration + ") gas day " + due.gasday;
                if (next < primary.size() && primary[next]->gasday == due.gasday && primary[next]->ended < time.until) {
                    const Turn& turn = *primary[next++];
                    EXPECT_EQ(turn.how, due.late ? "late" : "schedule") << Name(turn);
                    ExpectTheLineWasBusy(station, due.from, turn.begun, Name(turn));
                    served.push_back(due.gasday);
                } else if (k + 1 < dues.size()) {
                    // Others had their turns until the next contract hour came.
                    ExpectTheLineWasBusy(station, due.from, dues[k + 1].from, who + ", which has no turn,");
                } else {
                    // Cut off before its end: the turns of others and its own filled the time until then.
                    std::uint64_t last = due.from;
                    for (const Turn& turn : life.turns) {
                        const bool itsLine = Planned(turn.location).station.port == station.port;
                        last = itsLine && turn.ended < time.until ? std::max(last, turn.ended) : last;
                    }
                    EXPECT_LE(time.until - last, 35 * minuteMs) << who << " has no turn";
                }
            }
        }
        for (; next < primary.size(); ++next) {
            ADD_FAILURE() << "not due: " << Name(*primary[next]);
        }
    }
}

// After a turn without data: 15 and 60 minutes, then 60 again, four in all, until one gives data or the next day is
// due.
void ThirtyDays::ExpectTheRetries() const {
    constexpr std::uint64_t pauses[] = {15 * minuteMs, 60 * minuteMs, 60 * minuteMs, 60 * minuteMs};
    for (std::size_t i = 0; i < life.plan.stations.size(); ++i) {
        const auto own = TurnsOf(static_cast<std::int64_t>(i) + 1);
        std::size_t round = 0;
        for (std::size_t k = 0; k < own.size(); ++k) {
            const Turn& turn = *own[k];
            round = turn.how == "retry" ? round + 1 : 0;
            const Turn* following = k + 1 < own.size() ? own[k + 1] : nullptr;
            const bool retried = following != nullptr && following->how == "retry";
            if (turn.result == "partly" && round < std::size(pauses)) {
                continue;  // what a bad line cut short may be tried again
            }
            if (!GaveNoData(turn) || round == std::size(pauses)) {
                EXPECT_FALSE(retried) << Name(turn) << "\n  then " << Name(*following);
                continue;
            }
            const std::uint64_t due = turn.ended + pauses[round];
            const std::uint64_t end = following != nullptr ? following->begun : days * dayMs;
            const bool disturbed = life.local.Steps(turn.begun, end) ||
                                   std::any_of(life.plan.off.begin(), life.plan.off.end(),
                                               [&](const Span& off) { return off.Overlaps(turn.ended, end); });
            if (retried) {
                EXPECT_EQ(following->gasday, turn.gasday);
                if (!disturbed) {
                    EXPECT_GE(following->begun + 1000, due) << Name(turn) << "\n  then " << Name(*following);
                    ExpectTheLineWasBusy(life.plan.stations[i].station, due, following->begun, Name(*following));
                }
            } else if (!disturbed && due < end) {
                ExpectTheLineWasBusy(life.plan.stations[i].station, due, end, "the retry of " + Name(turn));
            }
        }
    }
}

void ThirtyDays::ExpectTheResults() const {
    for (const Turn& turn : life.turns) {
        const PlannedStation& planned = Planned(turn.location);
        const demo::DemoStation& station = planned.station;
        const TroubleSpan* touching = nullptr;
        for (const TroubleSpan& trouble : life.plan.troubles) {
            const bool mine =
                trouble.port == station.port && (trouble.phoneno.empty() || trouble.phoneno == station.phoneno);
            if (mine && trouble.span.Overlaps(turn.begun, turn.ended)) {
                touching = &trouble;
            }
        }
        if (touching == nullptr && !planned.badLine) {
            EXPECT_EQ(turn.result, "collected") << Name(turn);
        } else if (touching != nullptr && touching->span.Covers(turn.begun, turn.ended)) {
            const bool silent = touching->trouble == Trouble::Dead && station.phoneno.empty();
            EXPECT_EQ(turn.result, silent ? "no answer" : "not reached") << Name(turn);
        }
        if (turn.result == "collected") {
            EXPECT_EQ(turn.received, turn.asked) << Name(turn);
            EXPECT_GT(turn.received, 0) << Name(turn);
        } else {
            EXPECT_LT(turn.received, turn.asked == 0 ? 1 : turn.asked) << Name(turn);
            EXPECT_NE(turn.reason, "") << Name(turn);
        }
        if (GaveNoData(turn) && turn.result != "broken off") {
            EXPECT_EQ(turn.received, 0) << Name(turn);
        }
    }
}

// No value without its moment, and none that the station did not send under that name: in the map and in the gas days.
void ThirtyDays::ExpectOnlyWhatWasSent(std::int64_t location) const {
    core::Database dbconn(life.database);
    const demo::DemoStation& station = Planned(location).station;
    for (const core::Row& row : dbconn.Query("select * from configdata_detail where locationID=?", {location})) {
        const std::string what = station.consumer + " " + row.Text("description") + " = " + row.Text("lastvalue") +
                                 ", " + row.Text("quality") + ", read at " + row.Text("readat");
        if (row.IsNull("readat")) {
            EXPECT_TRUE(row.Number("lastvalue") == 0 && row.Text("quality") != "good") << what;
        } else {
            EXPECT_TRUE(life.field->WasServed(location, static_cast<int>(row.Long("StreamNo")), row.Text("description"),
                                              row.Number("lastvalue")))
                << what;
        }
    }
    for (const core::Row& day :
         dbconn.Query("select * from gasday where locationID=? order by gasday desc limit 3", {location})) {
        EXPECT_FALSE(day.IsNull("readat"));
        for (const auto& [column, description] : {std::pair{"dayflow", "Volume Yesterday"},
                                                  {"monthflow", "Volume This Month"},
                                                  {"pressure", "Flowing Pressure"}}) {
            const bool isOne = station.No_Stream == 1 && station.protocol != "Quantum" && !day.IsNull(column);
            EXPECT_TRUE(!isOne || life.field->WasServed(location, 1, description, day.Number(column)))
                << station.consumer << " " << day.Text("gasday") << " " << description << " = " << day.Text(column);
        }
    }
}

// What a turn counts as received is in the map, read in this turn. Its other attempts may have brought other values.
void ThirtyDays::ExpectWhatItCounts(const Turn& turn) const {
    if (life.local.Steps(turn.begun, turn.ended)) {
        return;  // the moments of its values are in no order
    }
    core::Database dbconn(life.database);
    const auto rows =
        dbconn.First("select count(*) from configdata_detail where locationID=? and readat between ? and ?",
                     {turn.location, LocalText(turn.begun), LocalText(turn.ended)});
    EXPECT_GE((*rows)[0].Long(), turn.received) << Name(turn);
}

TEST_P(ThirtyDays, LeaveWhatTheFieldGave) {
    std::cout << "seed " << GetParam() << " (again: NORWEN_SOAK=" << GetParam() << ":1)\n";
    life.Live([this](const Turn& turn) {
        ExpectWhatItCounts(turn);
        // Not of each: the rows of a station are many.
        if (life.turns.size() % 5 == 0) {
            ExpectOnlyWhatWasSent(turn.location);
        }
    });
    for (std::size_t i = 0; i < life.plan.stations.size(); ++i) {
        ExpectOnlyWhatWasSent(static_cast<std::int64_t>(i) + 1);
    }
    EXPECT_GT(life.turns.size(), 500U);
    ExpectTheDues();
    ExpectTheRetries();
    ExpectTheResults();
}

// NORWEN_SOAK is "first:count".
std::vector<std::uint32_t> Seeds() {
    std::uint32_t first = 1;
    std::uint32_t count = NORWEN_SOAK_SEEDS;
    if (const char* text = std::getenv("NORWEN_SOAK")) {
        std::istringstream numbers(text);
        char colon = ':';
        numbers >> first >> colon >> count;
    }
    std::vector<std::uint32_t> seeds(count);
    std::iota(seeds.begin(), seeds.end(), first);
    return seeds;
}

INSTANTIATE_TEST_SUITE_P(Seed, ThirtyDays, testing::ValuesIn(Seeds()), testing::PrintToStringParamName());

}  // namespace
