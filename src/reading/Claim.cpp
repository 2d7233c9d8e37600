#include "reading/Claim.h"

#include "core/Database.h"
#include "core/Text.h"

namespace reading {

namespace {

std::string MarkOf(const Claim& claim) {
    if (claim.readat.empty()) {
        return claim.quality ? std::string(core::QualityText(*claim.quality)) : "not read yet";
    }
    std::string mark;
    if (claim.quality && *claim.quality != core::Quality::Good) {
        mark = core::QualityText(*claim.quality);
    }
    if (!claim.ofThisRun) {
        mark += (mark.empty() ? "of " : ", of ") + MomentText(claim.readat);
    }
    return mark;
}

}  // namespace

Claim ClaimOf(const core::Row& row, const core::DateTime& since) {
    using core::Quality;
    Claim claim;
    claim.unit = core::Trim(row.Text("unit"));
    claim.quality = core::QualityOf(row.Text("quality"));
    claim.readat = row.Text("readat");
    claim.ofThisRun = claim.quality != Quality::NotReceived && claim.readat >= core::IsoText(since);
    const bool noNumber = claim.quality == Quality::Refused || claim.quality == Quality::OutOfRange;
    if (!claim.readat.empty() && !noNumber && !row.IsNull("lastvalue")) {
        claim.value = row.Number("lastvalue");
    }
    claim.mark = MarkOf(claim);
    return claim;
}

std::optional<Claim> ClaimOf(core::Database& dbconn, std::int64_t locationID, int streamno,
                             std::string_view description, const core::DateTime& since) {
    const auto row = dbconn.First(
        "select lastvalue, unit, quality, readat from configdata_detail where locationID=? and StreamNo=? and "
        "description=? order by srno",
        {locationID, streamno, description});
    return row ? std::optional(ClaimOf(*row, since)) : std::nullopt;
}

std::string MomentText(const std::string& iso) {
    return iso.size() < 19 ? iso
                           : iso.substr(8, 2) + "/" + iso.substr(5, 2) + "/" + iso.substr(0, 4) + iso.substr(10, 9);
}

}  // namespace reading
