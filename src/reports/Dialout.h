#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "core/Database.h"

// The alarm calls of the stations, table dialout. All functions throw DatabaseError.
namespace reports {

// The two numbers of the alarm dial-out. They are not the same one, and the operators know them so.
constexpr std::int32_t alarmPhone = 3508216;         // what a call that comes in is entered under
constexpr std::int32_t acknowledgedPhone = 4170253;  // whose calls are acknowledged

struct DialoutRow {
    std::string Phone_Num;
    std::string Date_Time;
    bool Ack = false;
};

std::vector<DialoutRow> ReadDialout(core::Database& dbconn);

// Enters a call of the present date, not acknowledged.
void AddDialoutRow(core::Database& dbconn, const core::DateTime& now, std::int32_t phone);

// Acknowledges what is open of acknowledgedPhone.
void AcknowledgeAlarms(core::Database& dbconn);

}  // namespace reports
