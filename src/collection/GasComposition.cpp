#include "collection/GasComposition.h"

#include <charconv>

#include "core/Text.h"
#include "protocols/modbus/ModbusReadBack.h"
#include "reading/Claim.h"

namespace collection {

namespace {

// A register's number in the map, from 1, in digits alone. A list position, "54-94", is none, and neither is "1e2": a
// composition is written there.
std::optional<int> RegisterOf(const std::string& startaddress) {
    const std::string digits = core::Trim(startaddress);
    const char* const end = digits.data() + digits.size();
    int number = 0;
    const auto read = std::from_chars(digits.data(), end, number);
    const bool isRegister = read.ec == std::errc() && read.ptr == end && number >= 1 && number <= 65536;
    return isRegister ? std::optional(number) : std::nullopt;
}

// Of a row of write_gc.
std::optional<double> Wanted(const core::Row& row) {
    return row.IsNull("lastvalue") ? std::nullopt : std::optional(row.Number("lastvalue"));
}

constexpr const char* confirmed = "confirmed";

// What came of a value for a register: it counts when the station shows it.
std::string Put(protocols::Conversation& talk, int number, double value) {
    switch (protocols::ModbusWrite(talk, core::ValueKind::Float, number - 1, value)) {
        case protocols::WriteOutcome::Refused:
            return "refused";
        case protocols::WriteOutcome::NotBuilt:
            return "not sent";
        case protocols::WriteOutcome::Failed:
            return "not confirmed, no answer to the write";
        case protocols::WriteOutcome::Done:
            break;
    }
    const auto shown =
        protocols::ModbusReadBack(talk, core::ValueKind::Float, number - 1, protocols::scheduledTransact);
    if (shown && protocols::IsShown(*shown, value)) {
        return confirmed;
    }
    return shown ? "not confirmed, the station has " + core::NumberText(*shown) : "not confirmed";
}

}  // namespace

std::vector<GasStation> GasStations(core::Database& dbconn) {
    std::vector<GasStation> stations;
    for (const core::Row& row :
         dbconn.Query("select locationId,consumer from ConfigData_Master where protocol = 'Modbus' and "
                      "gross_detail = false and aga8_fpv = true order by locationID")) {
        stations.push_back({row.Long("locationId"), row.Text("consumer")});
    }
    return stations;
}

std::vector<GasComponent> GasComposition(core::Database& dbconn, std::int64_t locationID) {
    std::vector<GasComponent> components;
    for (const core::Row& row : dbconn.Query("select * from write_gc where locationid=?", {locationID})) {
        components.push_back({row.Text("startaddress"), row.Text("description"), Wanted(row)});
    }
    if (components.empty()) {
        for (const core::Row& row :
             dbconn.Query("select * from configdata_detail where aga = 'GC' and locationid=?", {locationID})) {
            components.push_back({row.Text("startaddress"), row.Text("description"), reading::ClaimOf(row, {}).value});
        }
    }
    return components;
}

void SaveGasComposition(core::Database& dbconn, std::int64_t locationID, const std::vector<GasComponent>& components) {
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from write_gc where locationid=?", {locationID});
        for (const GasComponent& component : components) {
            dbconn.Execute("insert into write_gc(locationid,description,startaddress,lastvalue) values(?,?,?,?)",
                           {locationID, component.description, component.startaddress,
                            component.value ? core::Value(*component.value) : core::Value()});
        }
    });
}

double GasSum(const std::vector<GasComponent>& components) {
    double sum = 0;
    for (const GasComponent& component : components) {
        sum += component.value.value_or(0);
    }
    return core::RoundTo(sum, 4);
}

bool write_gascomposition(reading::Workplace& place, protocols::Conversation& talk) {
    place.feedback.Status("Writing Gas Composition");
    for (const core::Row& row :
         place.dbconn.Query("select * from write_gc where locationid=? order by cast(startaddress as integer)",
                            {talk.station.locationID})) {
        const auto value = Wanted(row);
        if (!value) {
            continue;
        }
        const auto number = RegisterOf(row.Text("startaddress"));
        const std::string answer = number ? Put(talk, *number, *value) : "not sent, it has no register";
        core::Guarded(place.logs, [&] {
            place.logs.WriteAudit(place.logs.Stamp() + ": User " + talk.currentuser + " asked for " +
                                  core::NumberText(*value) + " in " + core::Trim(row.Text("description")) +
                                  " of the gas composition of RTU " + talk.station.consumer + ": " + answer + ".");
        });
        if (answer != confirmed) {
            place.logs.WriteRtuErr("Gas composition write not complete / RTU not available");
            return false;
        }
    }
    return true;
}

}  // namespace collection
