#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fieldsim/Field.h"
#include "fieldsim/SimLine.h"
#include "soak/Expectation.h"
#include "soak/FieldOfForty.h"
#include "support/ScratchDesk.h"

namespace soak {

// A station's turn as it was watched, with its row of `outcome`. Moments are milliseconds from the start.
struct Turn {
    std::int64_t location = 0;
    std::uint64_t begun = 0;
    std::uint64_t ended = 0;
    std::string gasday, how, result, reason;
    int asked = 0;
    int received = 0;
};

// The thirty days of a plan: the program in front of the field, from start to power cut and from start to power cut.
struct Life {
    explicit Life(std::uint32_t seed);

    // `taken` is called behind each turn.
    void Live(const std::function<void(const Turn&)>& taken);

    std::uint32_t seed;
    Plan plan = DrawPlan(seed);
    LocalTime local{start, plan.steps};
    std::vector<Running> running = RunningTimes(plan.off);
    support::ScratchDirectory scratch;
    std::filesystem::path database = scratch.path / "Kolmar.mdb";
    fieldsim::VirtualClock clock{start};
    fieldsim::SimPorts ports{clock};
    std::unique_ptr<fieldsim::Field> field;
    std::vector<Turn> turns;

  private:
    static constexpr core::DateTime start{2026, 3, 20, 12, 0, 7};

    void OpenField();
    void Arrange(const TroubleSpan& trouble);
    void RunUntilThePowerIsCut(std::uint64_t until, const std::function<void(const Turn&)>& taken);

    std::map<int, std::unique_ptr<Gate>> gates_;
};

}  // namespace soak
