#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/Database.h"

// What the overview of the stations shows.
namespace reports {

constexpr int groups = 4;
constexpr int stationsAGroup = 10;
constexpr int nodeButtons = groups * stationsAGroup + 1;  // cmdLoc(0) to cmdLoc(40)

struct Node {
    std::int64_t locationId = 0;
    std::string consumer;
    bool sampledtoday = false;
    int index = 0;  // of its button: (groupno - 1) * 10 + groupcnt
};

// The register's stations by group and location. A station whose group and count give no button has the index -1.
// Throws DatabaseError.
std::vector<Node> ReadNodes(core::Database& dbconn);

// The sums of what the groups' stations have collected this month, "1234.5 SCM"; "0 SCM" for a group without a value.
// Throws DatabaseError.
std::array<std::string, groups> GroupTotals(core::Database& dbconn);

// A station's line in the list of a group. One without a value has "0" and "MSCFH".
struct GroupVolume {
    std::int64_t locationId = 0;
    std::string consumer;
    std::string lastvalue;  // the sum over its streams
    std::string unit;
    bool known = false;    // a value has been read; else `lastvalue` stands for nothing
    std::string readat{};  // of its oldest value, as stored; empty: not known
};

// The stations of a group by location; together they are the group's sum. Throws DatabaseError.
std::vector<GroupVolume> GroupVolumes(core::Database& dbconn, int groupno);

}  // namespace reports
