#include <gtest/gtest.h>

#include "collection/ProtocolRuns.h"
#include "support/CollectionDesk.h"

using core::Pacing;

namespace {

struct Outcome {
    reading::Result result;
    int received;
    std::uint64_t elapsed;
};

// One collection from each stored value of which the station has served it under its name.
class Collected : public support::CollectionDesk {
  public:
    Collected(demo::DemoStation station, const fieldsim::FieldOptions& options,
              const std::optional<fieldsim::LineFaults::Options>& faults)
        : location_(Add(std::move(station))) {
        fieldsim::FieldOptions own = options;
        if (faults) {
            own.faults[location_] = *faults;
        }
        field_ = &OpenField(own);
    }

    Outcome Run(Pacing pacing) {
        core::Station station = core::ReadStation(dbconn, location_).value();
        station.pacing = pacing;
        station.commtimeout = 1000;
        auto talk = place.Begin(lines.Of(station).TakeOver(""), station);
        talk.line->CommPort(station.comport);
        talk.line->PortOpen(true);
        const auto counts = core::ReadModelCounts(dbconn, station, 1).value_or(core::ModelCounts{});
        reading::RunState state;
        const std::uint64_t start = clock.Elapsed();
        if (station.protocol == core::Protocol::Bsap) {
            collection::CollectBsap(place, talk, state);
        } else if (station.protocol == core::Protocol::Quantum) {
            collection::CollectQuantum(place, talk, state);
        } else {
            collection::CollectModbus(place, talk, counts, state);
        }
        ExpectServedValues();
        return {state.result, state.received, clock.Elapsed() - start};
    }

  private:
    std::int64_t Add(demo::DemoStation station) {
        station.phoneno.clear();
        const std::int64_t location = demo::AddStation(dbconn, station);
        if (station.consumer.ends_with("TCP")) {
            dbconn.Execute("update configdata_master set mode='TCP' where locationID=?", {location});
        }
        return location;
    }

    void ExpectServedValues() {
        for (const core::Row& row :
             dbconn.Query("select * from configdata_detail where locationID=? and quality='good'", {location_})) {
            EXPECT_TRUE(field_->WasServed(location_, static_cast<int>(row.Long("StreamNo")), row.Text("description"),
                                          row.Number("lastvalue")))
                << row.Text("description") << " " << row.Number("lastvalue");
        }
    }

    std::int64_t location_;
    fieldsim::Field* field_ = nullptr;
};

std::vector<demo::DemoStation> Stations() {
    auto stations = demo::OneOfEach("00:00");
    stations.push_back(stations[0]);
    stations.back().consumer += " by TCP";
    return stations;
}

}  // namespace

TEST(Prompt, ACollectionBringsWhatAStatedOneBringsInTheTimeOfItsReplies) {
    for (const auto& station : Stations()) {
        const bool isBsap = station.protocol == "BSAP";
        for (const auto answers :
             {fieldsim::DataAnswer::AtOnce, fieldsim::DataAnswer::AcknowledgeFirst, fieldsim::DataAnswer::Alternate}) {
            for (const bool countsForItself : {false, true}) {
                if (!isBsap && (countsForItself || answers != fieldsim::DataAnswer::AtOnce)) {
                    continue;  // it has no such manners
                }
                fieldsim::FieldOptions options;
                options.answers = answers;
                options.bsapCountsForItself = countsForItself;
                const Outcome stated = Collected(station, options, {}).Run(Pacing::Stated);
                const Outcome prompt = Collected(station, options, {}).Run(Pacing::Prompt);
                EXPECT_EQ(prompt.result, reading::Result::Collected) << station.consumer;
                EXPECT_EQ(prompt.result, stated.result) << station.consumer;
                EXPECT_EQ(prompt.received, stated.received) << station.consumer;
                EXPECT_LT(prompt.elapsed, stated.elapsed / 5) << station.consumer;
            }
        }
    }
}

// Noise, and replies that are cut or late, spoil no value.
TEST(Prompt, ACollectionOnABadLineTakesNoWrongValue) {
    using enum fieldsim::Fault;
    for (const auto& station : Stations()) {
        for (std::uint32_t seed = 1; seed <= 2; ++seed) {
            fieldsim::LineFaults::Options faults;
            faults.chances = {{Silence, 0.08},    {Cut, 0.08},  {NoiseBefore, 0.08},
                              {NoiseAfter, 0.08}, {Late, 0.15}, {Echo, 0.03}};
            faults.seed = seed;
            faults.lateMs = 700 + 150 * seed;
            fieldsim::FieldOptions options;
            options.bsapCountsForItself = seed % 2 == 0;
            Collected desk(station, options, faults);
            for (int run = 0; run < 3; ++run) {
                desk.Run(Pacing::Prompt);
            }
        }
    }
}
