#include "session/Figures.h"

#include <array>

namespace session {

namespace {

struct Name {
    Figure figure;
    std::string_view aga;
    std::string_view description;
    std::string_view cwDescription;  // empty: the CW models name it the same
};

constexpr auto names = std::to_array<Name>({
    {Figure::MainBattery, "Health", "Main Battery Volt", ""},
    {Figure::BackupBattery, "Health", "Backup Battery Voltage", ""},
    {Figure::BoardTemperature, "Health", "Board Temperature", ""},
    {Figure::Year, "Health", "RTU Time - Year", "System Time Year"},
    {Figure::Month, "Health", "RTU Time - Month", "System Time Month"},
    {Figure::Day, "Health", "RTU Time - Date", "System Time Date"},
    {Figure::Hour, "Health", "RTU Time - Hour", "System Time Hour"},
    {Figure::Minute, "Health", "RTU Time - Minute", "System Time Minute"},
    {Figure::Second, "Health", "RTU Time - Second", "System Time Second"},
    {Figure::SetYear, "TIME", "Set Year", ""},
    {Figure::SetMonth, "TIME", "Set Month", ""},
    {Figure::SetDay, "TIME", "Set Date", ""},
    {Figure::SetHour, "TIME", "Set Hour", ""},
    {Figure::SetMinute, "TIME", "Set Minute", ""},
    {Figure::SetSecond, "TIME", "Set Second", ""},
    {Figure::SetTime, "TIME", "Set Time & Date", ""},
    {Figure::FlowRate, "", "Flowrate", ""},
    {Figure::VolumeToday, "TOTRND", "Volume Today", ""},
    {Figure::VolumeYesterday, "TOTRND", "Volume Yesterday", ""},
    {Figure::Pressure, "", "Flowing Pressure", ""},
    {Figure::Temperature, "", "Flowing Temperature", ""},
    {Figure::DifferentialPressure, "", "Differential Pressure", ""},
    {Figure::ZFactor, "AGA8(Detail)", "Compressibility Flowing", ""},
    {Figure::SpecificGravity, "CONSTANTS", "Specific Gravity", ""},
    {Figure::CalorificValue, "CONSTANTS", "Calorific Value", ""},
    {Figure::Nitrogen, "GC", "Nitrogen", ""},
    {Figure::CarbonDioxide, "GC", "Carbon Dioxide", ""},
    {Figure::Batch, "NOM", "Batch Mode", ""},
    {Figure::PidLoop, "PID", "PID Loop Mode", ""},
    {Figure::FlowSetPoint, "PID", "PID Flow Set Point", ""},
    {Figure::ValvePosition, "PID", "Valve Position", ""},
    {Figure::ContractHour, "CONSTANTS", "Contract Hour", ""},
});

const Name& NameOf(Figure figure) {
    std::size_t at = 0;
    while (names[at].figure != figure) {
        ++at;
    }
    return names[at];
}

}  // namespace

std::optional<RowPlace> PlaceOf(const ParameterSet& set, Figure figure, bool isCW) {
    const Name& name = NameOf(figure);
    const std::string_view description = isCW && !name.cwDescription.empty() ? name.cwDescription : name.description;
    return name.aga.empty() ? set.Find(description) : set.Find(name.aga, description);
}

const ParameterRow* RowOf(const ParameterSet& set, Figure figure, bool isCW) {
    const auto place = PlaceOf(set, figure, isCW);
    return place ? &set.At(*place) : nullptr;
}

}  // namespace session
