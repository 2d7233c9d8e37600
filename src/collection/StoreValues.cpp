#include "collection/StoreValues.h"

#include "core/Text.h"

namespace collection {

namespace {

class Store {
  public:
    Store(core::Database& dbconn, const core::Station& station, int streamno)
        : dbconn_(dbconn), station_(station), streamno_(streamno), bsap_(core::SameText(station.protocol, "BSAP")) {}

    void Put(const ListValue& read, const std::string& address, const char* modbusType) {
        if (!read.read) {
            return;
        }
        const double value = core::RoundTo(read.value, 4);
        if (bsap_) {
            const std::string unit = core::Trim(core::ReplaceAll(read.unit, std::string_view("\0", 1), " "));
            dbconn_.Execute(
                "update configData_detail set lastvalue=?, unit=?, MSD=? where startaddress=? and "
                "StreamNo=? and locationid=?",
                {value, unit, read.MSD, address, streamno_, station_.locationID});
        } else {
            dbconn_.Execute(
                "update configData_detail set lastvalue=? where startaddress=? and locationid=? and "
                "StreamNo=? and type=?",
                {value, address, station_.locationID, streamno_, modbusType});
        }
    }

  private:
    core::Database& dbconn_;
    const core::Station& station_;
    int streamno_;
    bool bsap_;
};

}  // namespace

void StoreValues(core::Database& dbconn, const core::Station& station, int streamno, const ListValues& values) {
    dbconn.InTransaction([&] {
        Store store(dbconn, station, streamno);
        for (int n = 1; n <= maxFloats; ++n) {
            store.Put(values.floats[static_cast<std::size_t>(n)], FloatAddress(station, n), "Float");
        }
        for (int n = 1; n <= maxBooleans; ++n) {
            store.Put(values.booleans[static_cast<std::size_t>(n)], BooleanAddress(station, n), "Coil(Boolean)");
        }
    });
}

}  // namespace collection
