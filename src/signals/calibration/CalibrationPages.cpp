#include "signals/calibration/CalibrationPages.h"

#include <algorithm>
#include <array>

#include "core/Database.h"
#include "core/Text.h"

namespace signals {

std::vector<std::string> CalibrationModels(core::Database& dbconn) {
    return dbconn.Texts("select distinct modelno from product_model order by modelno");
}

bool MeasuresDifferentialPressure(std::string_view modelno) {
    static constexpr std::array<std::string_view, 7> without = {
        "CWEFM-AGA7", "CWEFM-AGA9", "CWGFC-AGA7", "CWGFC-AGA9", "CWEPAC-AGA11", "TeleCorrector", "TeleCorrector+"};
    return std::none_of(without.begin(), without.end(),
                        [modelno](std::string_view model) { return core::SameText(model, modelno); });
}

}  // namespace signals
