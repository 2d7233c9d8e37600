#pragma once

#include <cstdio>
#include <string>

namespace bench {

enum class Goal { AtMost, AtLeast };

// Prints a figure as one line: name, value, unit, goal, "ok" or "short". Tells whether the goal is met.
inline bool Report(const std::string& name, double value, const std::string& unit, Goal goal, double limit) {
    const bool met = goal == Goal::AtMost ? value <= limit : value >= limit;
    std::printf("%-34s %12.3f %-6s %s %g  %s\n", name.c_str(), value, unit.c_str(),
                goal == Goal::AtMost ? "<=" : ">=", limit, met ? "ok" : "short");
    std::fflush(stdout);
    return met;
}

}  // namespace bench
