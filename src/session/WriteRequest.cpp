#include "session/WriteRequest.h"

#include <cmath>

#include "core/Database.h"
#include "core/Logs.h"
#include "core/Text.h"
#include "core/Users.h"
#include "session/Speaks.h"
#include "session/ValueText.h"
#include "stations/TemplateQueries.h"

namespace session {

namespace {

constexpr const char* lowerLevel = "Could not set. Lower user level.";

bool Fits(double value, DataKind kind) {
    switch (kind) {
        case DataKind::Logical:
            return value == 0 || value == 1;
        case DataKind::Integer:
            return value == std::floor(value) && value >= -32768 && value <= 32767;
        case DataKind::Float:
            break;
    }
    return true;
}

// Levels are those of the template that the station's map was made from. A parameter without one is nobody's to write.
bool MayWrite(const WriteContext& context, const std::string& description) {
    const std::string table =
        context.station.isCW ? stations::CwTable(context.station.ModelText(context.streamno)) : "Parameter";
    if (table.empty()) {
        return false;
    }
    const auto levels =
        context.dbconn.First("select RS,WS,description from " + table + " where description = ?", {description});
    return levels && core::CheckWriteLevel(context.dbconn, description, static_cast<int>(levels->Long("RS")),
                                           static_cast<int>(levels->Long("WS")),
                                           context.currentuser) == core::AccessLevel::ReadWrite;
}

bool SetValue(const WriteContext& context, const WriteRequest& request, double value) {
    return context.dbconn.Execute(
               "update configdata_detail set lastvalue=? where description=? and AGA = ? and streamNo=? and "
               "locationid = ?",
               {value, request.Description, request.aga, context.streamno, context.station.locationID}) > 0;
}

}  // namespace

WriteCheck CheckWrite(const WriteContext& context, const ParameterSet& set, const RowPlace& place,
                      const std::string& text) {
    const ParameterRow& row = set.At(place);
    const auto number = core::EnteredNumber(text);
    const auto value = number || row.kind != DataKind::Logical
                           ? number
                           : ValueOfText(context.station.isCW, row.Description, core::Trim(text));
    if (!value || !Fits(*value, row.kind)) {
        return {std::nullopt, enterProperData};
    }
    if (!MayWrite(context, row.Description)) {
        return {std::nullopt, lowerLevel};
    }
    // A station's own address of a signal is known once the signal was read; before that it may be another station's
    // or none.
    const bool isBsap = Speaks(context.station, "BSAP");
    if (row.MSD <= 0 || (isBsap && !row.read)) {
        return {std::nullopt, "The value has not been read yet"};
    }
    WriteRequest request;
    request.place = place;
    request.aga = std::string(parameterGroups[place.group].aga);
    request.Description = row.Description;
    request.kind = row.kind;
    request.writeAddress = row.MSD;
    request.writeValue = *value;
    request.oldValue = row.lastvalue;
    request.oldText = ValueCell(row, context.station.isCW);
    request.newText = core::Trim(text);
    return {request, {}};
}

void EnterWrite(const WriteContext& context, const WriteRequest& request) {
    context.dbconn.InTransaction([&] {
        if (!SetValue(context, request, request.writeValue)) {
            throw core::DatabaseError("This parameter is no longer in the station's map: " + request.Description);
        }
        if (request.newText != request.oldText || request.writeValue != request.oldValue) {
            context.logs.WriteAudit(context.logs.Stamp() + ": User " + context.currentuser +
                                    " changed value of parameter " + request.Description + " from " + request.oldText +
                                    " to " + request.newText + ".");
        }
    });
}

void TakeBackWrite(const WriteContext& context, const WriteRequest& request, const std::string& reason) {
    context.dbconn.InTransaction([&] {
        SetValue(context, request, request.oldValue);
        context.logs.WriteAudit(context.logs.Stamp() + ": User " + context.currentuser + " value " + request.newText +
                                " of parameter " + request.Description + " was not sent to RTU " +
                                context.station.consumer + ": " + reason + ".");
    });
}

void NoteCutOff(const WriteContext& context, const WriteRequest& request, const std::string& reason) {
    context.logs.WriteAudit(context.logs.Stamp() + ": User " + context.currentuser + " value " + request.newText +
                            " of parameter " + request.Description + " was cut off on its way to RTU " +
                            context.station.consumer + ", whether it has it is not known: " + reason + ".");
}

}  // namespace session
