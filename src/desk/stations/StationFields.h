#pragma once

#include "core/Database.h"
#include "stations/MapChoices.h"
#include "stations/StationRecord.h"

namespace Ui {
class frmconfigstation;
}

namespace desk {

// Moves a record into the controls of the station form and back.
class StationFields {
  public:
    explicit StationFields(Ui::frmconfigstation& ui) : ui_(ui) {}

    // The lists of the form. Throws DatabaseError.
    void FillLists(core::Database& dbconn);

    // The models of the make in its field. Throws DatabaseError.
    void FillModels(core::Database& dbconn);

    // The texts and choices of a record; which controls are to be seen is another matter.
    void Show(const stations::StationRecord& record);
    stations::StationRecord Read() const;

    // How many registers a value takes, as chosen.
    stations::RegisterSize Registers() const;

  private:
    void ShowSchedule(const stations::StationRecord& record);

    Ui::frmconfigstation& ui_;
};

}  // namespace desk
