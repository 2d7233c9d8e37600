#pragma once

#include <QDate>

#include "core/Clock.h"

// Days of a date field and of the engine.
namespace desk {

inline QDate DateOf(const core::DateTime& at) {
    return {at.year, at.month, at.day};
}

// The begin of the day.
inline core::DateTime DayOf(const QDate& date) {
    return {date.year(), date.month(), date.day(), 0, 0, 0};
}

}  // namespace desk
