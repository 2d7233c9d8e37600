#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "archive/Download.h"
#include "core/Station.h"

// What the records are that a Modbus station shows in its archive window.
namespace archive {

// The offsets of a record's time.
struct TimeOffsets {
    int day;
    int month;
    int year;
    int hour;
};

// One kind of record: how its floats lie in the window, and under which names its values go into the grid and into the
// report table. Offsets count from 1 within a record. Its values are the offsets from 1 on, one under each name.
struct ModbusRecordKind {
    int floats;  // of a record
    TimeOffsets time;
    std::string_view header;  // of the grid, its columns separated by "|"; the first is that of the time
    std::string_view table;   // the report table
    bool hasIDs;              // which begins with two columns that no reply fills
    std::span<const std::string_view> columns;  // and names its values like this

    std::size_t Values() const { return columns.size(); }
};

// The kind that a station's stream keeps of its days or hours; null when it shows none in a window: a CW stream that is
// metered by neither AGA3 nor AGA7, and minutes.
const ModbusRecordKind* RecordKindOf(const core::Station& station, int streamno, ArchiveKind kind);

// A statement that adds a record to the kind's report table: the time's text, a value for each further column, the
// consumer.
std::string InsertRecord(const ModbusRecordKind& kind);

}  // namespace archive
