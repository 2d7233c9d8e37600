#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Database.h"
#include "core/Quality.h"
#include "core/Station.h"
#include "reading/BulkPlan.h"

namespace reading {

// A value as a reading brought it.
struct StoredValue {
    double value = 0;
    core::Quality quality = core::Quality::Good;
    std::string readat{};               // when it was read, as stored
    std::string unit{};                 // BSAP, as the station sends it; a blank one leaves that of the map
    std::optional<std::int64_t> MSD{};  // BSAP: the station's address of the signal
};

// A unit as maps and screens have it, of one that a station sent: its NULs are blanks, and there are none around it.
std::string CleanUnit(const std::string& sent);

// A value that an operator has written, or would have.
struct WrittenValue {
    double value = 0;
    core::Value quality{};         // its text; null: none
    std::string readat{};          // when the station showed it; empty: the row keeps its moment
    bool onlyUnconfirmed = false;  // a reading that was stored meanwhile stays
};

// Stores what a reading brings into the rows of a stream's map, each value with its moment and its quality. It is the
// one place that does, for whoever reads. The caller holds the transaction. All throw DatabaseError.
class ValueStore {
  public:
    ValueStore(core::Database& dbconn, const core::Station& station, int streamno)
        : dbconn_(dbconn), station_(station), streamno_(streamno) {}

    // Marks the rows that are asked for as not received, until they are put. They keep value and moment.
    void Ask(const std::vector<Block>& blocks);  // Modbus
    void AskLists();                             // BSAP
    void AskNames();                             // Quantum

    // Puts a value, rounded to 4 places, into the rows of an address: "54-83" for BSAP, where the type does not count;
    // a register or coil in decimal and the type of the row for Modbus. A value that is put as NotReceived was not sent
    // by anybody: it has no moment.
    void Put(const std::string& address, std::string_view type, const StoredValue& stored);
    // The same into the rows of a description, whatever their stream.
    void PutNamed(std::string_view description, const StoredValue& stored);

    // Puts a written value, as it is, into the row of a description in its group. Returns whether the map has taken it.
    bool PutWritten(const std::string& description, const std::string& aga, const WrittenValue& written);

    // Marks the rows of an address whose reading brought no value: not received, or refused. They keep value and
    // moment.
    void Miss(const std::string& address, std::string_view type, core::Quality quality);

    // Rows: asked for so far, put with a value that the station gave, put as refused by it.
    int Asked() const { return asked_; }
    int Received() const { return received_; }
    int Refused() const { return refused_; }

  private:
    void Count(core::Quality quality, int rows);

    core::Database& dbconn_;
    const core::Station& station_;
    int streamno_;
    int asked_ = 0;
    int received_ = 0;
    int refused_ = 0;
};

}  // namespace reading
