#include "reading/ValueStore.h"

#include "core/Database.h"
#include "core/Text.h"

namespace reading {

namespace {

const std::string markAsked = "update configdata_detail set quality='not received' where locationid=?";
const std::string store =
    "update configdata_detail set lastvalue=?1, quality=?2, readat=?3, unit=ifnull(nullif(?4,''),unit), "
    "MSD=ifnull(?5,MSD) where locationid=?6 and ";

core::Value Moment(const StoredValue& stored) {
    return stored.quality == core::Quality::NotReceived ? core::Value() : core::Value(stored.readat);
}

core::Value SignalAddress(const StoredValue& stored) {
    return stored.MSD ? core::Value(*stored.MSD) : core::Value();
}

}  // namespace

std::string CleanUnit(const std::string& sent) {
    return core::Trim(core::ReplaceAll(sent, std::string_view("\0", 1), " "));
}

void ValueStore::Ask(const std::vector<Block>& blocks) {
    for (const Block& block : blocks) {
        asked_ += dbconn_.Execute(
            markAsked +
                " and StreamNo=? and type=? and cast(startaddress as integer) >= ? and "
                "cast(startaddress as integer) < ?",
            {station_.locationID, streamno_, core::TextOf(block.type), block.start, block.start + block.count});
    }
}

void ValueStore::AskLists() {
    asked_ += dbconn_.Execute(markAsked + " and StreamNo=? and (startaddress like '54-%' or startaddress like '55-%')",
                              {station_.locationID, streamno_});
}

void ValueStore::AskNames() {
    asked_ += dbconn_.Execute(markAsked, {station_.locationID});
}

void ValueStore::Put(const std::string& address, std::string_view type, const StoredValue& stored) {
    Count(stored.quality, dbconn_.Execute(store + "startaddress=?7 and StreamNo=?8 and (?9='' or type=?9)",
                                          {core::RoundTo(stored.value, 4), core::QualityText(stored.quality),
                                           Moment(stored), CleanUnit(stored.unit), SignalAddress(stored),
                                           station_.locationID, address, streamno_, type}));
}

void ValueStore::PutNamed(std::string_view description, const StoredValue& stored) {
    Count(stored.quality,
          dbconn_.Execute(store + "description=?7",
                          {core::RoundTo(stored.value, 4), core::QualityText(stored.quality), Moment(stored),
                           CleanUnit(stored.unit), SignalAddress(stored), station_.locationID, description}));
}

bool ValueStore::PutWritten(const std::string& description, const std::string& aga, const WrittenValue& written) {
    const std::string only(written.onlyUnconfirmed ? core::QualityText(core::Quality::NotConfirmed) : "");
    return dbconn_.Execute(
               "update configdata_detail set lastvalue=?1, quality=?2, readat=ifnull(nullif(?3,''),readat) "
               "where description=?4 and AGA=?5 and streamNo=?6 and locationid=?7 and (?8='' or quality=?8)",
               {written.value, written.quality, written.readat, description, aga, streamno_, station_.locationID,
                only}) > 0;
}

void ValueStore::Miss(const std::string& address, std::string_view type, core::Quality quality) {
    dbconn_.Execute(
        "update configdata_detail set quality=? where locationid=? and startaddress=? and StreamNo=? and "
        "(?='' or type=?)",
        {core::QualityText(quality), station_.locationID, address, streamno_, type, type});
}

void ValueStore::Count(core::Quality quality, int rows) {
    switch (quality) {
        case core::Quality::Good:
        case core::Quality::OutOfRange:
        case core::Quality::NotConfirmed:
            received_ += rows;
            break;
        case core::Quality::Refused:
            refused_ += rows;
            break;
        case core::Quality::NotReceived:
            break;
    }
}

}  // namespace reading
