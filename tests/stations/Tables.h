#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

#include "core/Database.h"
#include "core/Text.h"

// Short questions to the tables.
namespace tables {

using Names = std::vector<std::string>;

// The first column of a statement's rows.
inline Names Texts(core::Database& dbconn, const std::string& sql, std::initializer_list<core::Value> values = {}) {
    Names texts;
    for (const core::Row& row : dbconn.Query(sql, values)) {
        texts.push_back(row[0].Text());
    }
    return texts;
}

// The number of rows of "table where ...".
inline std::int64_t Count(core::Database& dbconn, const std::string& from) {
    return dbconn.First("select count(*) from " + from).value()[0].Long();
}

inline std::set<std::string> Sorted(const Names& names) {
    return {names.begin(), names.end()};
}

}  // namespace tables
