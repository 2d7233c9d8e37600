#include "session/WriteRequest.h"

#include <cmath>

#include "core/Database.h"
#include "core/Logs.h"
#include "core/Quality.h"
#include "core/Text.h"
#include "reading/ValueStore.h"
#include "session/ValueText.h"
#include "session/WriteLevels.h"

namespace session {

namespace {

bool Fits(double value, core::ValueKind kind) {
    switch (kind) {
        case core::ValueKind::Logical:
            return value == 0 || value == 1;
        case core::ValueKind::Integer:
            return value == std::floor(value) && value >= -32768 && value <= 32767;
        case core::ValueKind::Float:
            break;
    }
    return true;
}

// As it stands in the map; null: never read.
core::Value QualityIn(const WriteContext& context, const WriteRequest& request) {
    const auto row = context.dbconn.First(
        "select quality from configdata_detail where description=? and AGA = ? and streamNo=? and locationid = ?",
        {request.Description, request.aga, context.streamno, context.station.locationID});
    return row ? (*row)[0] : core::Value();
}

}  // namespace

WriteCheck CheckWrite(const WriteContext& context, const ParameterSet& set, const RowPlace& place,
                      const std::string& text) {
    const ParameterRow& row = set.At(place);
    const std::string shown = ValueCell(row, context.station.isCW);
    const auto number = core::EnteredNumber(text);
    const auto value = number || row.kind != core::ValueKind::Logical
                           ? number
                           : ValueOfText(context.station.isCW, row.Description, core::Trim(text));
    if (!value || !Fits(*value, row.kind)) {
        return {std::nullopt, enterProperData};
    }
    if (!MayWriteParameter(context.dbconn, context.station, context.streamno, row.Description, context.currentuser)) {
        return {std::nullopt, lowerLevel};
    }
    // A value that this connection has not read may be another one's by now: the station's program or its map may have
    // changed since.
    if (row.MSD <= 0 || !row.read) {
        return {std::nullopt, neverRead};
    }
    WriteRequest request;
    request.place = place;
    request.aga = std::string(parameterGroups[place.group].aga);
    request.Description = row.Description;
    request.kind = row.kind;
    request.writeAddress = row.MSD;
    request.writeValue = *value;
    request.oldValue = row.lastvalue;
    request.oldText = shown;
    request.newText = core::Trim(text);
    request.user = context.currentuser;
    request.oldQuality = QualityIn(context, request);
    return {request, {}};
}

void EnterWrite(const WriteContext& context, const WriteRequest& request) {
    const bool entered =
        reading::ValueStore(context.dbconn, context.station, context.streamno)
            .PutWritten(request.Description, request.aga,
                        {request.writeValue, std::string(core::QualityText(core::Quality::NotConfirmed))});
    if (!entered) {
        throw core::DatabaseError("This parameter is no longer in the station's map: " + request.Description);
    }
    context.logs.WriteAudit(context.logs.Stamp() + ": User " + request.user + " asked to change parameter " +
                            request.Description + " of RTU " + context.station.consumer + " from " + request.oldText +
                            " to " + request.newText + ".");
}

}  // namespace session
