#include "reading/LogParam.h"

namespace reading {

namespace {

core::Value Nullable(const std::optional<double>& value) {
    return value ? core::Value(*value) : core::Value();
}

}  // namespace

void UpsertLogParam(core::Database& dbconn, std::int64_t locationID, const core::DateTime& stationDate,
                    const core::DateTime& now, const DayRow& values) {
    dbconn.InTransaction([&] {
        const auto row = dbconn.First(
            "select rowid from LogParam where day(date)=? and Month(date)=? and Year(date)=? and locationid=?",
            {stationDate.day, stationDate.month, stationDate.year, locationID});
        if (!row) {
            dbconn.Execute(
                "insert into LogParam(LocationId, date, \"desc\", CurrentDayFlow, CurrentMonthFlow, currentprs) "
                "values(?,?,?,?,?,?)",
                {locationID, core::IsoText(now), values.desc, Nullable(values.CurrentDayFlow),
                 Nullable(values.CurrentMonthFlow), Nullable(values.currentprs)});
            return;
        }
        dbconn.Execute(
            "update LogParam set date=?, \"desc\"=?, CurrentDayFlow=ifnull(?,CurrentDayFlow), "
            "CurrentMonthFlow=ifnull(?,CurrentMonthFlow), currentprs=ifnull(?,currentprs) where rowid=?",
            {core::IsoText(now), values.desc, Nullable(values.CurrentDayFlow), Nullable(values.CurrentMonthFlow),
             Nullable(values.currentprs), (*row)[0]});
    });
}

}  // namespace reading
