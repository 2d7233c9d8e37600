#include <gmock/gmock.h>

#include "collection/SchedulerData.h"
#include "support/ScratchDesk.h"

namespace {

TEST(SchedulerData, OnlyADayOfTheCalendarHasAWorkbook) {
    const core::MAIN_Module shared("/app");
    const struct {
        const char* date;
        const char* file;  // null: no date
    } cases[] = {
        {"05/03/2026", "Mill_532026.xls"},
        {"5/3/2026", "Mill_532026.xls"},
        {" 29/02/2024 ", "Mill_2922024.xls"},
        {"29/02/2026", nullptr},
        {"03/25/2026", nullptr},
        {"2026-03-05", nullptr},
        {"5/3", nullptr},
        {"5/3/2026x", nullptr},
        {"5/3/99999999999", nullptr},
        {"-5/3/2026", nullptr},
        {"", nullptr},
        {"//", nullptr},
    };
    for (const auto& [date, file] : cases) {
        const auto workbook = collection::ScheduledWorkbook(shared, "Mill", date);
        EXPECT_EQ(workbook.has_value(), file != nullptr) << date;
        if (workbook && file != nullptr) {
            EXPECT_EQ(*workbook, std::filesystem::path("/app/scheduler") / file);
        }
    }
}

}  // namespace
