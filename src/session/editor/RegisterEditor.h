#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "session/ParameterGroups.h"
#include "session/editor/AddressTable.h"
#include "stations/MapBuilder.h"

// The register map of a station as an operator lays it out by hand: its rows, the check of each address, the storing.
namespace session {

// The station in hand.
struct EditedStation {
    stations::MapChoices choices{};
    int streamno = 1;      // 1 to 4, of a station that is in the register
    bool laidOut = false;  // of a new station: the addresses that were stored for it before are offered again
};

// A row as its grid shows it. A new row is without address and type until it is given them.
struct EditedRow {
    std::string unit;
    std::string description;
    std::string address;
    std::string type;
};

// What the dialog says to an address.
struct AddressVerdict {
    enum Kind { Taken, Question, Refused };
    Kind kind = Taken;
    std::string message{};
    std::string control{};  // where it can be mended
};

class RegisterEditor {
  public:
    // Reads the rows of the station; for a new one its register table is made anew before. Rows that `currentuser` may
    // not see are kept but not shown. Throws DatabaseError; std::length_error when a group has more rows than its grid
    // holds.
    RegisterEditor(core::Database& dbconn, EditedStation station, const std::string& currentuser);

    RegisterEditor(const RegisterEditor&) = delete;
    RegisterEditor& operator=(const RegisterEditor&) = delete;

    // The rows of a group that the user may see.
    std::vector<EditedRow> Rows(std::size_t group) const;

    // The data types that the station's registers allow.
    std::vector<std::string> DataTypes() const;

    // A row is taken in hand, its address comes free. Back comes what the dialog starts with: the type of a row that
    // has none yet is what its value needs.
    EditedRow TakeOut(std::size_t group, std::size_t row);

    // The row in hand is left as it was.
    void PutBack();

    // Gives the row in hand an address and a type as they were typed. On a question nothing is changed; the same call
    // with `evenIfTaken` accepts the address that another row has. On a refusal the row stays in hand.
    AddressVerdict Enter(const std::string& address, const std::string& type, bool evenIfTaken);

    // Writes the map, as one transaction. A new station gets all of its rows, those not shown too, without an address
    // as "0", in place of what was stored for it before; of another the rows that were changed. Throws DatabaseError;
    // then nothing is written.
    void Store();

  private:
    struct Line {
        std::int64_t rowid = 0;  // of a stored row
        stations::RegisterRow row{};
        EditedRow text{};
        bool changed = false;
    };

    void ReadNew();
    void ReadStored();
    void Show(const std::string& currentuser);
    void InsertAll();
    void UpdateChanged();

    core::Database& dbconn_;
    EditedStation station_;
    AddressTable addresses_;
    std::vector<Line> lines_;                                   // in the order in which they are read
    std::array<std::vector<std::size_t>, groupCount> shown_{};  // the lines that are seen, by group
    Line* inHand_ = nullptr;
};

}  // namespace session
