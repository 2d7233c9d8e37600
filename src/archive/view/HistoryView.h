#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/store/ArchiveStore.h"

// What was stored of an archive, in order of time.
namespace archive {

// What an operator asks for.
struct HistoryChoice {
    int streamno = 0;                   // 0: none is chosen
    std::optional<ArchiveKind> kind{};  // without one the kind of the view before stays
    bool all = true;                    // else from the beginning of one day to the beginning of the other
    core::DateTime from{};
    core::DateTime to{};
};

// How many streams there are to choose from, numbered from 1: one a row of the station's, and all that it has.
int CountStreams(core::Database& dbconn, std::int64_t locationID);

// The message why nothing can be viewed; empty when it can.
std::string CheckChoice(const HistoryChoice& choice);

// The day that a view begins with. Equal dates move the start to the next day, and it stays there: operators know that
// such a view finds nothing, and choose the day behind the last one.
core::DateTime StartDay(const core::DateTime& from, const core::DateTime& to);

// The HistoryTypeId of a choice; `former` is that of the view before.
int HistoryTypeOf(const HistoryChoice& choice, int former);

struct HistoryValue {
    std::size_t column = 0;  // of HistoryView::Columns
    double value = 0;
};

struct HistoryRow {
    std::string shown;                   // its time stamp as ShownTime has it
    std::optional<core::DateTime> at{};  // none when the station's clock had no real time
    std::vector<HistoryValue> values{};  // in the order of the columns
};

// The cells of a row as the grid shows them. A value that lacks leaves no empty cell: the later ones stand one column
// further left, and a time stamp without any value is an empty row. That is how operators know this grid, from here and
// from the files that they saved.
std::vector<std::string> ShownCells(const HistoryRow& row);

// One look into the store. It is read in portions, and no statement stays open between them: the desk can turn its
// events, and what is stored meanwhile moves nothing. Throws core::DatabaseError.
class HistoryView {
  public:
    // Reads the columns and the time stamps. `choice` is one that CheckChoice lets pass; from its days both beginnings
    // count. `kind` is the HistoryTypeId to be read.
    HistoryView(core::Database& dbconn, std::int64_t locationID, const HistoryChoice& choice, int historyType);

    // The names of the fields as they are stored, the oldest first, those that a station has no longer too.
    const std::vector<std::string>& Columns() const { return names_; }

    // How many rows there are, and how many of them were read.
    std::size_t Total() const { return timeStamps_.size(); }
    std::size_t Done() const { return done_; }

    // The next rows, at most so many; none when all were read.
    std::vector<HistoryRow> Next(std::size_t atMost);

  private:
    struct TimeStamp {
        std::int64_t id;
        std::string time;
    };

    HistoryRow Read(const TimeStamp& timeStamp);

    core::Database& dbconn_;
    std::vector<std::int64_t> ids_;  // of the columns, ascending
    std::vector<std::string> names_;
    std::vector<TimeStamp> timeStamps_;
    std::size_t done_ = 0;
};

}  // namespace archive
