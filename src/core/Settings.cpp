#include "core/Settings.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>
#include <vector>

#include "core/Text.h"

namespace core {

namespace {

struct Known {
    std::string_view name;
    int delivered;
    std::size_t digits = 6;  // at most
};

// In the order of Setting.
constexpr std::array<Known, 7> known = {{{"calibrationlevel", 5},
                                         {"dialoutacknowledged", 4170253, 9},
                                         {"dialoutnoted", 3508216, 9},
                                         {"failedpolls", 2},
                                         {"retryrounds", 4},
                                         {"signalwritelevel", 4},
                                         {"stationminutes", 30}}};
constexpr std::array<int, 2> deliveredRetryMinutes = {15, 60};
constexpr int mostMinutes = 1440;

// Of at most so many digits, nine or fewer.
std::optional<int> WholeNumber(const std::string& text, std::size_t most = 6) {
    const std::string digits = Trim(text);
    const bool whole =
        !digits.empty() && digits.size() <= most && digits.find_first_not_of("0123456789") == std::string::npos;
    return whole ? std::optional(std::stoi(digits)) : std::nullopt;
}

std::string TextOf(Database& dbconn, std::string_view name) {
    const auto row = dbconn.First("select value from settings where name=?", {name});
    return row ? (*row)[0].Text() : std::string();
}

}  // namespace

int ReadSetting(Database& dbconn, Setting setting) {
    const auto& [name, delivered, digits] = known[static_cast<std::size_t>(setting)];
    return WholeNumber(TextOf(dbconn, name), digits).value_or(delivered);
}

int RetryMinutes(Database& dbconn, int round) {
    std::vector<int> minutes;
    std::istringstream list(TextOf(dbconn, "retryminutes"));
    for (std::string part; std::getline(list, part, ',');) {
        const auto number = WholeNumber(part);
        if (!number || *number == 0) {
            minutes.clear();
            break;
        }
        minutes.push_back(std::min(*number, mostMinutes));
    }
    if (minutes.empty()) {
        minutes.assign(deliveredRetryMinutes.begin(), deliveredRetryMinutes.end());
    }
    return minutes[static_cast<std::size_t>(std::clamp(round, 1, static_cast<int>(minutes.size()))) - 1];
}

}  // namespace core
