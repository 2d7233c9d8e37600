#include "session/ParameterGroups.h"

#include "core/Text.h"

namespace session {

std::optional<std::size_t> GroupOf(std::string_view aga) {
    for (std::size_t group = 0; group < groupCount; ++group) {
        if (core::SameText(parameterGroups[group].aga, aga)) {
            return group;
        }
    }
    return std::nullopt;
}

}  // namespace session
