#include "desk/session/LiveGrids.h"

#include "core/Station.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Grid.h"
#include "desk/session/ParameterTabs.h"
#include "desk/session/SessionStatus.h"
#include "session/Session.h"

namespace desk {

namespace {

constexpr int addressColumn = 0;
constexpr int valueColumn = 2;
constexpr int unitColumn = 3;
constexpr int oldAfterPolls = 2;

// Nothing for a signal that was never read, and for the values of a unit that has no addresses.
QString AddressCell(const session::ParameterRow& row) {
    return row.MSD == 0 ? QString() : QString::number(row.MSD);
}

}  // namespace

void LiveGrids::Arrange() {
    const core::Station& station = session_.GetStation();
    const session::StationLook& look = session_.Look();
    TabChoices choices;
    choices.isCW = station.isCW;
    choices.isAga3 = session_.IsAga3();
    choices.aga8_fpv = look.aga8_fpv;
    choices.Gross_Detail = look.Gross_Detail;
    choices.superUser = superUser_;
    choices.quantum = station.protocol == core::Protocol::Quantum;
    choices.drs = look.drs;
    tabs_.FormatString(columns);
    tabs_.Arrange(choices);
    alarms_.clear();
    for (std::size_t group = 0; group < session::groupCount; ++group) {
        tabs_.Show(group, RowsOf(group));
    }
    Refresh();
}

void LiveGrids::StateChanged() {
    if (polling_ != session_.PollingActive()) {
        Refresh();
    }
}

std::vector<QStringList> LiveGrids::RowsOf(std::size_t group) const {
    std::vector<QStringList> rows;
    for (const session::ParameterRow& row : session_.Parameters().Of(group)) {
        rows.push_back({AddressCell(row), Text(row.Description),
                        Text(session::ValueCell(row, session_.GetStation().isCW)), Text(row.unit)});
    }
    return rows;
}

// It was read in this session, no more than two polls ago, and the polls go on.
bool LiveGrids::IsLive(const session::ParameterRow& row) const {
    return session_.PollingActive() && row.read && row.missedPolls < oldAfterPolls;
}

// When a value that is not live was read; how it was, if there is no figure of it.
QString LiveGrids::MomentWord(const session::ParameterRow& row) const {
    QString word;
    if (row.quality && *row.quality != core::Quality::Good) {
        const std::string_view text = core::QualityText(*row.quality);
        word = "   " + QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    }
    if (!row.readat || IsLive(row)) {
        return word;
    }
    const auto now = session_.ValuesAt();
    if (session_.PollingActive() && row.read && now) {
        return word + "   " + AgeText(core::ToSeconds(*now) - core::ToSeconds(*row.readat));
    }
    return word + "   of " + Text(core::DateText(*row.readat) + " " + core::TimeText(*row.readat));
}

// A state is told by a word beside the unit as well as by the colour of the value.
QString LiveGrids::UnitCell(const session::RowPlace& place) const {
    const session::ParameterRow& row = session_.Parameters().At(place);
    QString text = Text(row.unit);
    const auto alarm = place.group == session::GroupOf("ALARM") ? alarms_.find(place.row) : alarms_.end();
    if (alarm != alarms_.end() && alarm->second != session::AlarmState::Normal) {
        text += QString("   ") + session::AlarmWord(alarm->second);
    }
    return text + (row.pending ? QString("   pending") : MomentWord(row));
}

void LiveGrids::ShowRow(const session::RowPlace& place) {
    const session::ParameterRow& row = session_.Parameters().At(place);
    tabs_.Cell(place.group, place.row, valueColumn, Text(session::ValueCell(row, session_.GetStation().isCW)));
    tabs_.Cell(place.group, place.row, addressColumn, AddressCell(row));
    tabs_.Cell(place.group, place.row, unitColumn, UnitCell(place));
    tabs_.GridOf(place.group).Fade(tabs_.GridRow(place.group, place.row), !row.pending && !IsLive(row));
    if (row.changed && IsLive(row)) {
        tabs_.GridOf(place.group).Mark(tabs_.GridRow(place.group, place.row), valueColumn);
    }
}

void LiveGrids::Refresh() {
    polling_ = session_.PollingActive();
    const std::size_t alarmGroup = *session::GroupOf("ALARM");
    for (const auto& live : session_.Alarms()) {
        alarms_[live.place.row] = live.state;
        const bool normal = live.state == session::AlarmState::Normal;
        tabs_.GridOf(alarmGroup)
            .CellColour(tabs_.GridRow(alarmGroup, live.place.row), valueColumn,
                        normal ? QColor() : QColor::fromRgb(session::AlarmColour(live.state)));
    }
    for (std::size_t group = 0; group < session::groupCount; ++group) {
        const std::size_t rows = tabs_.Rows(group);
        for (std::size_t row = 0; row < rows; ++row) {
            ShowRow({group, row});
        }
    }
}

}  // namespace desk
