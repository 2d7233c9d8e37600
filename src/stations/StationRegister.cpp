#include "stations/StationRegister.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/Station.h"
#include "core/Text.h"
#include "stations/MapBuilder.h"

namespace stations {

namespace {

using core::Trim;
using core::Val;
using core::Value;
using Columns = std::vector<std::pair<std::string, Value>>;

bool IsModbus(const StationRecord& record) {
    return core::ProtocolOf(record.protocol) == core::Protocol::Modbus;
}

// The schedule as the form offers it and as the row holds it.
struct Schedule {
    const char* offered;
    const char* stored;
    const char* day;  // null: the day that was chosen
    int StationRecord::*chosen;
    bool hasHour;
};
constexpr std::array<Schedule, 4> schedules = {{
    {"None", "NO", "100", nullptr, false},
    {"Daily", "Daily", "0", nullptr, true},
    {"Weekly", "Weekly", nullptr, &StationRecord::weekday, true},
    {"Monthly", "Monthly", nullptr, &StationRecord::monthday, true},
}};

// What is no schedule at all is none.
const Schedule& ScheduleBy(const char* Schedule::*name, const std::string& text) {
    const auto found = std::find_if(schedules.begin(), schedules.end(),
                                    [&](const Schedule& each) { return core::SameText(each.*name, Trim(text)); });
    return found == schedules.end() ? schedules.front() : *found;
}

// What fixes the parameter rows: written on a new station, kept by an edit.
Columns FixedColumns(const StationRecord& record) {
    const std::string modelno = Trim(record.modelno);
    Columns columns = {
        {"modelno", modelno},
        {"drs", DrsOf(modelno)},
        {"protocol", Trim(record.protocol)},
        {"groupno", Val(record.groupno)},
        {"No_Stream", core::IsMultiStreamModel(modelno) ? Val(record.No_Stream) : 1},
        {"rtubits", record.rtubits},
    };
    for (std::size_t i = 0; i < record.stream.size(); ++i) {
        columns.emplace_back("stream" + std::to_string(i + 1), Trim(record.stream[i]));
    }
    return columns;
}

Columns LineColumns(const StationRecord& record) {
    const bool isIp = core::SameText(Trim(record.comtype), "IP");
    const bool isAscii = IsModbus(record) && core::FramingOf(record.Mode) == core::Framing::Ascii;
    const auto wordOrder = IsModbus(record) ? record.wordOrder : core::WordOrder::HighFirst;
    const auto onLine = [&](const std::string& text) { return isIp ? std::string() : Trim(text); };
    return {{"comtype", Trim(record.comtype)},
            {"ip", isIp ? Trim(record.ip) : std::string()},
            {"comport", onLine(record.comport)},
            {"baudrate", onLine(record.baudrate)},
            {"phoneno", onLine(record.phoneno)},
            {"delaytime", Val(record.delaytime)},
            {"slaveaddress", Val(record.slaveaddress)},
            {"mode", IsModbus(record) ? Trim(record.Mode) : std::string()},
            {"framing", isAscii && record.standardFraming ? "standard" : "required"},
            {"pacing", std::string(core::TextOf(core::pacingTexts, record.pacing))},
            {"wordorder", std::string(core::TextOf(core::wordOrderTexts, wordOrder))},
            {"MB_CONFIG", record.MB_CONFIG}};
}

// A choice under a method that is off is not written: it stays as it was.
Columns GasColumns(const StationRecord& record) {
    Columns columns = {{"aga3_7", record.aga3_7}, {"aga8_fpv", record.aga8_fpv}};
    if (record.aga8_fpv) {
        columns.emplace_back("Gross_Detail", record.Gross_Detail);
    }
    if (record.aga8_fpv && !record.Gross_Detail) {
        columns.emplace_back("gasauto", record.gasauto);
    }
    return columns;
}

Columns ScheduleColumns(const StationRecord& record) {
    const Schedule& schedule = ScheduleBy(&Schedule::offered, record.duration);
    return {{"duration", schedule.stored},
            {"day", schedule.day != nullptr ? std::string(schedule.day) : std::to_string(record.*schedule.chosen)},
            {"contracthour", schedule.hasHour ? Trim(record.contracthour) : "00:00"}};
}

Columns OtherColumns(const StationRecord& record) {
    return {{"consumer", Trim(record.consumer)},        {"presentallocation", Val(record.presentallocation)},
            {"rtumake", Trim(record.rtumake)},          {"systemtype", Trim(record.systemtype)},
            {"voltlimit", Val(record.voltlimit)},       {"Mgo_Qty", Val(record.Mgo_Qty)},
            {"Cont_Pr", Val(record.Cont_Pr)},           {"emailto", Trim(record.emailto)},
            {"emailcc", Trim(record.emailcc)},          {"emailbcc", Trim(record.emailbcc)},
            {"emailsubject", Trim(record.emailsubject)}};
}

void Append(Columns& columns, Columns more) {
    columns.insert(columns.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

Columns FreeColumns(const StationRecord& record) {
    Columns columns = OtherColumns(record);
    Append(columns, LineColumns(record));
    Append(columns, GasColumns(record));
    Append(columns, ScheduleColumns(record));
    return columns;
}

void Insert(core::Database& dbconn, const Columns& columns) {
    std::string names;
    std::string places;
    std::vector<Value> values;
    for (const auto& [name, value] : columns) {
        names += (names.empty() ? "" : ",") + name;
        places += places.empty() ? "?" : ",?";
        values.push_back(value);
    }
    dbconn.Execute("insert into configdata_master(" + names + ") values(" + places + ")", values);
}

void Update(core::Database& dbconn, const Columns& columns, std::int64_t locationId) {
    std::string assignments;
    std::vector<Value> values;
    for (const auto& [name, value] : columns) {
        assignments += (assignments.empty() ? "" : ",") + name + "=?";
        values.push_back(value);
    }
    values.emplace_back(locationId);
    dbconn.Execute("update configdata_master set " + assignments + " where locationID= ?", values);
}

// An edited record with what an edit cannot change as it is in the register.
StationRecord Kept(core::Database& dbconn, const StationRecord& record) {
    const auto stored = ReadRecord(dbconn, record.locationId);
    if (!stored) {
        throw core::DatabaseError("no station at location " + std::to_string(record.locationId));
    }
    StationRecord kept = record;
    kept.modelno = stored->modelno;
    kept.protocol = stored->protocol;
    kept.groupno = stored->groupno;
    kept.No_Stream = stored->No_Stream;
    kept.stream = stored->stream;
    kept.rtubits = stored->rtubits;
    return kept;
}

void InsertNew(core::Database& dbconn, const StationRecord& record) {
    if (ReadRecord(dbconn, record.locationId)) {
        throw core::DatabaseError("location " + std::to_string(record.locationId) + " has a station");
    }
    Columns columns = {{"locationID", record.locationId}, {"sampledtoday", false}, {"sampleddate", 0}};
    Append(columns, FixedColumns(record));
    Append(columns, FreeColumns(record));
    Insert(dbconn, columns);
}

// Numbers the rows of a group from 1 in their stored order; a new row is the last one.
void RenumberGroup(core::Database& dbconn, const StationRecord& record) {
    dbconn.Execute(
        "update configdata_master set groupcnt = (select count(*) from configdata_master as earlier "
        "where earlier.groupno = configdata_master.groupno and earlier.rowid <= configdata_master.rowid) "
        "where groupno = ?",
        {Val(record.groupno)});
}

void AddSummary(core::Database& dbconn, std::int64_t locationId) {
    if (dbconn.First("select 1 from SummaryPara where locationId=? limit 1", {locationId})) {
        return;
    }
    for (const char* description : {"Todays Allocation", "Additional", "Locking Position"}) {
        dbconn.Execute("insert into SummaryPara values(?,?,0)", {locationId, description});
    }
}

int Whole(const std::string& text, double low, double high) {
    return static_cast<int>(std::clamp(Val(text), low, high));
}

// "08:05 PM" as "20:05".
std::string HourText(const std::string& twelveHour) {
    if (twelveHour.size() != 8) {
        return "00:00";
    }
    const int hour = Whole(twelveHour.substr(0, 2), 0, 12) % 12 + (twelveHour[6] == 'P' ? 12 : 0);
    return (hour < 10 ? "0" : "") + std::to_string(hour) + twelveHour.substr(2, 3);
}

void ReadSchedule(const core::Row& row, StationRecord& record) {
    const Schedule& schedule = ScheduleBy(&Schedule::stored, row.Text("duration"));
    record.duration = schedule.offered;
    if (schedule.chosen != nullptr) {
        const std::int64_t last = schedule.chosen == &StationRecord::weekday ? 7 : 31;
        record.*schedule.chosen = static_cast<int>(std::clamp<std::int64_t>(row.Long("day"), 1, last));
    }
    record.contracthour = HourText(row.Text("hour"));
}

}  // namespace

std::vector<StationEntry> ListStations(core::Database& dbconn) {
    std::vector<StationEntry> stations;
    for (const auto& row : dbconn.Query("select locationId,consumer from ConfigData_Master order by locationID")) {
        stations.push_back({row[0].Long(), row[1].Text()});
    }
    return stations;
}

std::int64_t NextLocation(core::Database& dbconn) {
    return dbconn.First("select max(locationID)  from configData_master").value()[0].Long() + 1;
}

std::optional<StationRecord> ReadRecord(core::Database& dbconn, std::int64_t locationId) {
    const auto row = dbconn.First(
        "select *, format(contracthour,'HH:MM AMPM') as hour from configData_Master where locationID=?", {locationId});
    if (!row) {
        return std::nullopt;
    }
    StationRecord record;
    record.locationId = locationId;
    record.consumer = row->Text("consumer");
    record.presentallocation = row->Text("presentallocation");
    record.rtumake = row->Text("rtumake");
    record.modelno = row->Text("modelno");
    record.comtype = row->Text("comtype");
    record.systemtype = row->Text("systemtype");
    record.voltlimit = row->Text("voltlimit");
    record.delaytime = row->Text("delaytime");
    record.ip = row->Text("ip");
    record.comport = row->Text("comport");
    record.baudrate = row->Text("baudrate");
    record.phoneno = row->Text("phoneno");
    record.protocol = row->Text("protocol");
    record.slaveaddress = row->Text("slaveaddress");
    record.groupno = row->Text("groupno");
    record.aga3_7 = row->Bool("aga3_7");
    record.aga8_fpv = row->Bool("aga8_fpv");
    record.Gross_Detail = row->Bool("Gross_Detail");
    record.gasauto = row->Bool("gasauto");
    record.Mgo_Qty = row->Text("Mgo_Qty");
    record.Cont_Pr = row->Text("Cont_Pr");
    record.No_Stream = row->IsNull("No_Stream") ? "1" : row->Text("No_Stream");
    for (std::size_t i = 0; i < record.stream.size(); ++i) {
        record.stream[i] = row->Text("stream" + std::to_string(i + 1));
    }
    record.Mode = row->Text("mode");
    record.standardFraming = core::SameText(Trim(row->Text("framing")), "standard");
    record.pacing = core::KindOf<core::Pacing>(core::pacingTexts, row->Text("pacing")).value_or(core::Pacing::Stated);
    record.wordOrder = core::KindOf<core::WordOrder>(core::wordOrderTexts, row->Text("wordorder"))
                           .value_or(core::WordOrder::HighFirst);
    ReadSchedule(*row, record);
    record.rtubits = row->Bool("rtubits");
    record.emailto = row->Text("emailto");
    record.emailcc = row->Text("emailcc");
    record.emailbcc = row->Text("emailbcc");
    record.emailsubject = row->Text("emailsubject");
    record.MB_CONFIG = row->Bool("MB_CONFIG");
    return record;
}

int DrsOf(const std::string& modelno) {
    return core::SameText(modelno, "TeleRTU") ? 1 : core::SameText(modelno, "TeleRTU(M)") ? 2 : 0;
}

MapChoices ChoicesOf(const StationRecord& record, const SaveChoices& choices) {
    MapChoices map;
    map.locationID = record.locationId;
    map.groupno = Whole(record.groupno, 0, 4);
    map.modelno = Trim(record.modelno);
    map.protocol = core::ProtocolOf(record.protocol);
    map.No_Stream = Whole(record.No_Stream, 1, 4);
    map.stream = record.stream;
    map.optAga3 = record.aga3_7;
    map.isNewStation = choices.isNewStation;
    map.MB_CONFIG = record.MB_CONFIG;
    map.registers = choices.registers;
    return map;
}

void SaveStation(core::Database& dbconn, const StationRecord& record, const SaveChoices& choices) {
    dbconn.InTransaction([&] {
        const StationRecord saved = choices.isNewStation ? record : Kept(dbconn, record);
        if (choices.isNewStation) {
            InsertNew(dbconn, saved);
        } else {
            Update(dbconn, FreeColumns(saved), saved.locationId);
        }
        RenumberGroup(dbconn, saved);
        BuildMap(dbconn, ChoicesOf(saved, choices));
        AddSummary(dbconn, saved.locationId);
    });
}

void SetRegister(core::Database& dbconn, const StationRecord& record, const SaveChoices& choices) {
    BuildRegisterMap(dbconn, ChoicesOf(record, choices));
}

}  // namespace stations
