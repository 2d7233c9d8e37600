#include "collection/SchedulerData.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "collection/Workbook.h"
#include "core/Text.h"

namespace collection {

namespace {

// Day, month and year, the text being nothing else.
std::optional<core::DateTime> DateOf(const std::string& text) {
    core::DateTime date;
    const std::string trimmed = core::Trim(text);
    const char* at = trimmed.data();
    const char* const end = at + trimmed.size();
    for (int* const part : {&date.day, &date.month, &date.year}) {
        if (part != &date.day && (at == end || *at++ != '/')) {
            return std::nullopt;
        }
        const auto number = std::from_chars(at, end, *part);
        if (number.ec != std::errc()) {
            return std::nullopt;
        }
        at = number.ptr;
    }
    return at == end && date.Valid() ? std::optional(date) : std::nullopt;
}

}  // namespace

std::vector<std::string> ScheduledNames(core::Database& dbconn) {
    return dbconn.Texts("select distinct(RTUName) from Scheduler order by RTUName");
}

std::vector<std::string> ScheduledDates(core::Database& dbconn, const std::string& consumer) {
    auto dates = dbconn.Texts("select distinct(Sch_date) from Scheduler where RTUName=?", {consumer});
    std::stable_sort(dates.begin(), dates.end(),
                     [](const std::string& a, const std::string& b) { return DateOf(a) > DateOf(b); });
    return dates;
}

std::optional<std::filesystem::path> ScheduledWorkbook(const core::MAIN_Module& shared, const std::string& consumer,
                                                       const std::string& date) {
    const auto day = DateOf(date);
    if (!day) {
        return std::nullopt;
    }
    const auto path = WorkbookPath(shared, consumer, *day);
    const auto older = SharedWorkbookPath(shared, consumer, *day);
    std::error_code failure;
    return !std::filesystem::exists(path, failure) && std::filesystem::exists(older, failure) ? older : path;
}

}  // namespace collection
