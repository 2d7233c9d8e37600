#pragma once

#include "core/Station.h"

namespace reading {

// The numbers of a stream's two lists on a BSAP station. A multistream station has a pair for each metering method of
// a stream.
struct ListNumbers {
    int boolean;
    int real;
};

inline ListNumbers ListsOf(const core::Station& station, int streamno) {
    const std::string method = station.isMultiStream ? station.ModelText(streamno) : std::string();
    const int offset = method == "AGA7" ? 2 : method == "AGA9" ? 4 : method == "AGA11" ? 6 : 0;
    return {streamno * 10 + 45 + offset, streamno * 10 + 44 + offset};
}

}  // namespace reading
