#include "session/Summary.h"

#include <map>

#include "core/Database.h"
#include "core/Text.h"
#include "session/Session.h"

namespace session {

namespace {

constexpr const char* notAvailable = "N/A";

struct Words {
    SummaryForm form;
    const char* one;  // for the value 1
    const char* other;
};
constexpr std::array<Words, 2> words = {
    {{SummaryForm::Batch, "Enable", "Disable"}, {SummaryForm::PidLoop, "Manual", "Auto"}}};

std::string Shown(SummaryForm form, double value) {
    for (const Words& pair : words) {
        if (pair.form == form) {
            return core::RoundTo(value, 0) == 1 ? pair.one : pair.other;
        }
    }
    switch (form) {
        case SummaryForm::Whole:
            return core::FixedText(value, 0);
        case SummaryForm::Hour:
            return core::FixedText(value, 0) + ":00";
        case SummaryForm::Own:
            return core::NumberText(value);
        default:
            return core::FixedText(value, 4);
    }
}

// A word of the item as the number that the station has for it; what is typed as a number stays as it is.
std::string ValueOf(SummaryForm form, const std::string& text) {
    for (const Words& pair : words) {
        if (pair.form == form && (text == pair.one || text == pair.other)) {
            return text == pair.one ? "1" : "0";
        }
    }
    return text;
}

SummaryAnswer SetOwn(core::Database& dbconn, const Session& session, std::string_view description,
                     const std::string& text) {
    const auto value = core::EnteredNumber(text);
    if (!value) {
        return {enterProperData, true};
    }
    const int rows = dbconn.Execute("update SummaryPara set lastvalue=? where LocationID=? and description=?",
                                    {*value, session.GetStation().locationID, description});
    return {rows > 0 ? "" : "This station has no row for " + std::string(description)};
}

}  // namespace

std::array<SummaryFigure, summaryItems.size()> ReadSummary(core::Database& dbconn, const Session& session) {
    std::map<std::string, double> own;
    for (const core::Row& row :
         dbconn.Query("select * from SummaryPara where locationId=?", {session.GetStation().locationID})) {
        own[core::UpperText(row.Text("description"))] = row.Number("lastvalue");
    }
    std::array<SummaryFigure, summaryItems.size()> figures;
    for (std::size_t i = 0; i < summaryItems.size(); ++i) {
        const SummaryItem& item = summaryItems[i];
        figures[i].text = notAvailable;
        if (item.form == SummaryForm::Own) {
            const auto row = own.find(core::UpperText(item.name));
            if (row != own.end()) {
                figures[i] = {Shown(item.form, row->second), "", true};
            }
        } else if (const auto* row = RowOf(session.Parameters(), item.figure, session.GetStation().isCW)) {
            figures[i].unit = item.form == SummaryForm::Hour ? "" : row->unit;
            figures[i].known = row->read && HasFigure(*row);
            if (figures[i].known) {
                figures[i].text = Shown(item.form, row->lastvalue);
            }
        }
    }
    return figures;
}

bool IsSwitched(const SummaryItem& item) {
    return item.form == SummaryForm::Batch || item.form == SummaryForm::PidLoop;
}

std::string ToggledSummary(const std::string& text) {
    for (const Words& pair : words) {
        if (text == pair.one || text == pair.other) {
            return text == pair.one ? pair.other : pair.one;
        }
    }
    return text;
}

bool MaySetSummary(const Session& session, const SummaryItem& item) {
    return !item.name.empty() && !session.WritePending() && (item.form == SummaryForm::Own || session.PollingActive());
}

SummaryAnswer SetSummary(core::Database& dbconn, Session& session, const SummaryItem& item, const std::string& text) {
    if (item.form == SummaryForm::Own) {
        return SetOwn(dbconn, session, item.name, text);
    }
    const auto place = PlaceOf(session.Parameters(), item.figure, session.GetStation().isCW);
    if (!place) {
        return {"This model has no " + std::string(item.name)};
    }
    const std::string refusal = session.AskWrite(*place, ValueOf(item.form, core::Trim(text)));
    return {refusal.empty() ? requestPending : refusal, refusal == enterProperData};
}

}  // namespace session
