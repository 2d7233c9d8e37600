#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "reading/Claim.h"

namespace collection {

// The station's workbook of a day: its name, "_", day, month and year without leading zeros, ".xls", in the scheduler
// directory. Of two dates that would read alike (1/11 and 11/1) the one with the short day has a "-" behind it. A name
// may hold any character: what cannot stand in a file name becomes "%" and its code, so the path never leaves the
// directory.
std::filesystem::path WorkbookPath(const core::MAIN_Module& shared, const std::string& consumer,
                                   const core::DateTime& date);

// The same without the "-": where earlier versions of the program put both dates.
std::filesystem::path SharedWorkbookPath(const core::MAIN_Module& shared, const std::string& consumer,
                                         const core::DateTime& date);

// Appends the block of a run to the workbook of today, making the directory where it is missing: the values of
// sched_temp behind their heading, tab-separated. `claims` are for the rows of sched_temp in their order. A value that
// this run did not bring has its mark in one more column, which the heading does not name and no other line has; where
// there is no figure to claim, the value's cell is empty. It is on the disk when this returns. A failure is reported in
// the status bar and RTU_Err.log, and the run goes on.
void WriteSchedulerFile(core::Database& dbconn, const core::MAIN_Module& shared, const core::Clock& clock,
                        core::Feedback& feedback, core::Logs& logs, const std::string& consumer, int streamno,
                        const std::string& model, std::span<const reading::Claim> claims = {});

}  // namespace collection
