#pragma once

#include <QString>
#include <cstdint>
#include <string>

#include "collection/DayLine.h"
#include "desk/kit/Desk.h"

// Collections that an operator asks for.
namespace desk {

// Whether the user may ask for them.
bool MayCollect(const Desk& desk);

// Asks the scheduler for a station, or for all that are missing. It collects them from the event loop, behind those
// that are due, and goes on when the page that asked is closed. What is not queued is told in the status bar. Both
// throw DatabaseError.
void CollectNow(Desk& desk, std::int64_t locationID, const std::string& consumer);
void CollectMissing(Desk& desk);

// A station's line now, with what the scheduler has of it in hand. Throws DatabaseError.
collection::DayLine LineNow(Desk& desk, std::int64_t locationID);

// How many stations wait behind those in hand, on one line or on all: ", 3 more wait"; empty: none. Throws
// DatabaseError.
QString Behind(Desk& desk, const std::string& line = {});

// Why a station cannot be deleted now: it is being collected, or waits for it. Empty: it can.
std::string WhyKept(const Desk& desk, std::int64_t locationID, const std::string& consumer);

}  // namespace desk
