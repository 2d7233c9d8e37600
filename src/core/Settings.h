#pragma once

#include <string>

#include "core/Database.h"

// What an owner may choose: the table `settings`. A missing row, or one that does not read as a number, counts as
// delivered. All throw DatabaseError.
namespace core {

enum class Setting {
    CalibrationLevel,     // write level, 1 to 6
    DialoutAcknowledged,  // telephone number
    DialoutNoted,         // telephone number
    FailedPolls,          // in a row, that a session survives
    RetryRounds,          // 0: none
    SignalWriteLevel,     // write level, 1 to 6
    StationMinutes,       // that one attempt may take
};

// A whole number, 0 or more.
int ReadSetting(Database& dbconn, Setting setting);

// Minutes before the retry of a round from 1. The last one of the list repeats.
int RetryMinutes(Database& dbconn, int round);

}  // namespace core
