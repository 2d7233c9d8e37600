#pragma once

#include <array>
#include <string>
#include <string_view>

#include "session/Figures.h"

namespace core {
class Database;
}

namespace session {

class Session;

// How a figure of the summary is shown.
enum class SummaryForm {
    Number,   // "#0.0000"
    Whole,    // "#0"
    Hour,     // hour, ":", "00"
    Batch,    // "Enable" for 1, else "Disable"
    PidLoop,  // "Manual" for 1, else "Auto": the sense of the switch "PID Output Auto/Manual"
    Own,      // a figure that the operators keep in SummaryPara
};

struct SummaryItem {
    std::string_view label;  // the control that shows it
    std::string_view name;   // what an operator changes it by; empty: a station gives it and nobody sets it
    SummaryForm form;
    Figure figure = {};  // not of an own figure
};

inline constexpr auto summaryItems = std::to_array<SummaryItem>({
    {"lb_cur_FR", "", SummaryForm::Number, Figure::FlowRate},
    {"lb_V_today", "", SummaryForm::Number, Figure::VolumeToday},
    {"lb_V_yest", "", SummaryForm::Number, Figure::VolumeYesterday},
    {"lb_Press", "", SummaryForm::Number, Figure::Pressure},
    {"lb_temp", "", SummaryForm::Number, Figure::Temperature},
    {"lb_dp", "", SummaryForm::Number, Figure::DifferentialPressure},
    {"lb_zFactor", "", SummaryForm::Number, Figure::ZFactor},
    {"lb_sp", "Specific Gravity", SummaryForm::Number, Figure::SpecificGravity},
    {"lb_cv", "Calorific Value", SummaryForm::Number, Figure::CalorificValue},
    {"lb_N2", "Nitrogen", SummaryForm::Number, Figure::Nitrogen},
    {"lb_co2", "Carbon Dioxide", SummaryForm::Number, Figure::CarbonDioxide},
    {"lbBatch", "Batch", SummaryForm::Batch, Figure::Batch},
    {"lbPID_loop", "PID LOOP", SummaryForm::PidLoop, Figure::PidLoop},
    {"lbFR_SP", "Flow Set Point", SummaryForm::Number, Figure::FlowSetPoint},
    {"lbValve", "", SummaryForm::Number, Figure::ValvePosition},
    {"lb_Time", "", SummaryForm::Hour, Figure::ContractHour},
    {"lb_con_Hr", "Contract Hour", SummaryForm::Whole, Figure::ContractHour},
    {"lbToday", "Todays Allocation", SummaryForm::Own},
    {"lbAdd", "Additional", SummaryForm::Own},
    {"lbLock", "Locking Position", SummaryForm::Own},
});

// What the panel shows of an item. A figure that the model lacks, or that was not yet read, is "N/A".
struct SummaryFigure {
    std::string text;
    std::string unit;
    bool known = false;
};

// The figures, in the order of the items. Throws DatabaseError.
std::array<SummaryFigure, summaryItems.size()> ReadSummary(core::Database& dbconn, const Session& session);

// An item whose figure is one of two words; it is changed by the other word.
bool IsSwitched(const SummaryItem& item);

// "Auto" for "Manual", "Enable" for "Disable", and back; any other text as it is.
std::string ToggledSummary(const std::string& text);

// Whether an item can be changed now: none while a write is pending; those of the station while it is polled, the
// operators' own also without a line.
bool MaySetSummary(const Session& session, const SummaryItem& item);

// What became of an entered text. `text` is for the operator, empty when the figure is stored and nothing goes out.
struct SummaryAnswer {
    std::string text;
    bool mend = false;  // the text was no value of this item: it is to be entered again
};

// Changes an item: an own figure in SummaryPara, any other by a write request of the session. Throws DatabaseError.
SummaryAnswer SetSummary(core::Database& dbconn, Session& session, const SummaryItem& item, const std::string& text);

}  // namespace session
