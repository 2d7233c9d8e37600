#include "archive/modbus/ModbusRecords.h"

namespace archive {

namespace {

using Names = std::span<const std::string_view>;

// The columns of the report tables. The apostrophes belong to the names.
constexpr std::array<std::string_view, 11> tcColumns = {
    "'PRESSURE(KG/CM2)'", "'TEMP(DEGC)'",         "'FLOWRATE(SCMH)'",   "'UNCOR_FLOWRATE(ACMH)'",
    "'VOL_TOTAL(SCM)'",   "'VOL_TODAY(SCM)'",     "'VOL_LASTDAY(SCM)'", "'UNCOR_TOTAL(SCM)'",
    "'UNCOR_TODAY(SCM)'", "'UNCOR_LASTDAY(SCM)'", "'BATTERY(VOLT)'"};
constexpr std::array<std::string_view, 8> tfColumns = {"'DP(MMWC)'",       "'PRESSURE(KG/CM2)'", "'TEMP(DEGC)'",
                                                       "'FLOWRATE(SCMH)'", "'TOTAL(SCM)'",       "'TODAY(SCM)'",
                                                       "'LASTDAY(SCM)'",   "'BATTERY(VOLT)'"};
constexpr std::array<std::string_view, 9> hourlyMfColumns = {
    "'DP(MMWC)'",    "'PRESSURE(KG/CM2)'", "'TEMP(DEGC)'",        "'FLOWRATE(SCMH)'", "'TOTAL(SCM)'",
    "'THISHR(SCM)'", "'ENERGY ACCUM(GJ)'", "'ENERGY THISHR(GJ)'", "'BATTERY (VOLT)'"};
constexpr std::array<std::string_view, 10> dailyMfColumns = {
    "'DP(MMWC)'",   "'PRESSURE(KG/CM2)'", "'TEMP(DEGC)'",       "'FLOWRATE(SCMH)'",   "'TOTAL(SCM)'",
    "'TODAY(SCM)'", "'LASTDAY(SCM)'",     "'ENERGY ACCUM(GJ)'", "'ENERGY TODAY(GJ)'", "'ENERGY LASTDAY(GJ)'"};

// A meter without an orifice has no differential pressure, the first of these.
constexpr Names WithoutDp(Names columns) {
    return columns.subspan(1);
}

// The blanks in the captions give the columns their widths.
constexpr ModbusRecordKind hourlyAga7 = {
    .floats = 12,
    .time = {.day = 11, .month = 10, .year = 9, .hour = 12},
    .header =
        "Hour                        |Static Pressure |Flowing Temp. |FlowRate          |Volume Acc.      |"
        "Volume This HR |Energy Acc.|Energy This HR|Battery Voltage  ",
    .table = "hourly_tf_mf_7",
    .hasIDs = false,
    .columns = WithoutDp(hourlyMfColumns),
};
constexpr ModbusRecordKind hourlyAga3 = {
    .floats = 13,
    .time = {.day = 12, .month = 11, .year = 10, .hour = 13},
    .header =
        "Hour                        |Diff. Pressure |Static Pressure |Flowing Temp. |FlowRate          |"
        "Volume Acc.      |Volume This HR |Energy Acc.|Energy This HR|Battery Voltage  ",
    .table = "hourly_tf_mf",
    .hasIDs = false,
    .columns = hourlyMfColumns,
};
constexpr ModbusRecordKind hourlyTc = {
    .floats = 15,
    .time = {.day = 12, .month = 13, .year = 14, .hour = 15},
    .header =
        "Hour                       |Static Pressure |Flowing Temp. |FlowRate          |Uncorrected FlowRate      |"
        "Volume Total   |Volume Today  |Volume LastDay |UnCorrected Total |UnCorrected Today |UnCorrected LastDay |"
        "Battery Volt",
    .table = "hourly_tc",
    .hasIDs = false,
    .columns = tcColumns,
};
constexpr ModbusRecordKind hourlyTf = {
    .floats = 12,
    .time = {.day = 11, .month = 10, .year = 9, .hour = 12},
    .header =
        "Hour                         |Diff. Pressure |Static Pressure |Flowing Temp. |FlowRate          |"
        "Volume Acc.      |Volume Today |Volume Yesterday|Battery Voltage  ",
    .table = "hourly_tf",
    .hasIDs = true,
    .columns = tfColumns,
};
constexpr ModbusRecordKind dailyAga7 = {
    .floats = 13,
    .time = {.day = 12, .month = 11, .year = 10, .hour = 13},
    .header =
        "Date                        |Static Pressure |Flowing Temp. |FlowRate          |Volume Acc.      |"
        "Volume Today |Volume Yesterday|Energy Acc.      |Energy Today |Energy Yesterday",
    .table = "daily_tf_mf_7",
    .hasIDs = false,
    .columns = WithoutDp(dailyMfColumns),
};
constexpr ModbusRecordKind dailyAga3 = {
    .floats = 14,
    .time = {.day = 13, .month = 12, .year = 11, .hour = 14},
    .header =
        "Date                        |Diff. Pressure |Static Pressure |Flowing Temp. |FlowRate          |"
        "Volume Acc.      |Volume Today |Volume Yesterday|Energy Acc.      |Energy Today |Energy Yesterday",
    .table = "daily_tf_mf",
    .hasIDs = false,
    .columns = dailyMfColumns,
};
constexpr ModbusRecordKind dailyTc = {
    .floats = 15,
    .time = {.day = 12, .month = 13, .year = 14, .hour = 15},
    .header =
        "Date                       |Static Pressure |Flowing Temp. |FlowRate          |Uncorrected FlowRate      |"
        "Volume Total   |Volume Today  |Volume LastDay |UnCorrected Total |UnCorrected Today |UnCorrected LastDay |"
        "Battery Volt",
    .table = "daily_tc",
    .hasIDs = false,
    .columns = tcColumns,
};
constexpr ModbusRecordKind dailyTf = {
    .floats = 12,
    .time = {.day = 11, .month = 10, .year = 9, .hour = 12},
    .header =
        "Date                         |Diff. Pressure |Static Pressure |Flowing Temp. |FlowRate          |"
        "Volume Acc.      |Volume Today |Volume Yesterday|Battery Voltage  ",
    .table = "daily_tf",
    .hasIDs = true,
    .columns = tfColumns,
};

}  // namespace

const ModbusRecordKind* RecordKindOf(const core::Station& station, int streamno, ArchiveKind kind) {
    if (kind == ArchiveKind::Minute) {
        return nullptr;
    }
    const bool hourly = kind == ArchiveKind::Hourly;
    if (station.isCW) {
        const std::string modeltext = station.ModelText(streamno);
        return modeltext == "AGA7"   ? (hourly ? &hourlyAga7 : &dailyAga7)
               : modeltext == "AGA3" ? (hourly ? &hourlyAga3 : &dailyAga3)
                                     : nullptr;
    }
    if (station.isTeleCorrector) {
        return hourly ? &hourlyTc : &dailyTc;
    }
    return hourly ? &hourlyTf : &dailyTf;
}

std::string InsertRecord(const ModbusRecordKind& kind) {
    std::string names = "\"'TimeDate'\"";
    std::string values = "?";
    const auto column = [&](std::string_view name) {
        names += ", \"" + std::string(name) + "\"";
        values += ", ?";
    };
    if (kind.hasIDs) {
        column("'Globla_ID'");
        column("'Local_ID'");
    }
    for (const std::string_view name : kind.columns) {
        column(name);
    }
    return "insert into " + std::string(kind.table) + " (" + names + ", NodeName) values (" + values + ", ?)";
}

}  // namespace archive
