#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace core {
class Database;
}

namespace signals {

struct BsapStation {
    std::int64_t locationID = 0;
    std::string consumer;
};

// The stations that have signals: those on BSAP, by their locations. Throws DatabaseError.
std::vector<BsapStation> BsapStations(core::Database& dbconn);

}  // namespace signals
