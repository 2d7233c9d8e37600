#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "fieldsim/ArchiveFile.h"

// How a BSAP station answers for its history. It does so as follows.
//
// - The numbers of a file: first the one behind the record that is being formed, so two more than the newest; then the
//   oldest; then how many there are. 0, 0, 0 for an empty file.
// - A read gives the records from the given number on, as many as were asked (0: no limit), as there are and as fit, at
//   least one. 0 and whatever is below the oldest mean the oldest. When the numbers have gone round behind 65,535, 0 is
//   a number like any other, and below the oldest is the half of the circle there.
// - A request by date gives as many as fit from the first record whose day is the given one or a later one, and the
//   number of that record.
// - The end byte is 0 when the newest record is in the reply, or none; else 1.
// - The audit trail: with the cursors 0, 0 from the given position on, which counts from 1 (0 is taken as 1); with
//   others from where the reply that gave them left off, whatever the position. The record count is that of all events,
//   and 0 in a reply without any. Four events fit in a reply when their names have at most 15 characters.
// - A file that is not there, or a field behind the last, has a refusal as its status; for the definitions this is an
//   answer of the usual form that holds 0 of 0 fields, otherwise one too short for any number, and too long for an
//   acknowledgement.
namespace fieldsim {

struct HistoryReply {
    std::array<std::uint8_t, 2> status{};  // the first two of the three bytes behind the station's status
    std::string data;                      // what follows the third
};

// The answer to the function part of a request, in a reply with this much room for data; nothing when it is none of
// the five requests, or not of its length.
std::optional<HistoryReply> AnswerHistory(StationHistory& history, std::string_view function, std::size_t room,
                                          const core::DateTime& now);

}  // namespace fieldsim
