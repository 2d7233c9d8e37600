#pragma once

#include "stations/StationRecord.h"
#include "stations/StationRules.h"

namespace Ui {
class frmconfigstation;
}

// What the choices of a station do to the other controls of the station form.
namespace desk {

// A choice has changed while a station is added or edited.
void Apply(const stations::ModelRule& rule, Ui::frmconfigstation& ui);
void Apply(const stations::CommunicationRule& rule, Ui::frmconfigstation& ui);
void Apply(const stations::ProtocolRule& rule, Ui::frmconfigstation& ui);

// A record has come into the controls: shows what belongs to it, and changes no text.
void ShowWhatBelongs(const stations::StationRecord& record, Ui::frmconfigstation& ui);

// The streams up to the number in cmb_MultiNO.
void ShowStreams(Ui::frmconfigstation& ui);

// Standard framing belongs to Modbus ASCII.
void ShowFraming(Ui::frmconfigstation& ui);

// The day and the hour that belong to the choice in cmb_sel.
void ShowSchedule(Ui::frmconfigstation& ui);

// Gross or Detail belong to AGA8; an automatic gas composition to Detail on BSAP.
void ShowComposition(Ui::frmconfigstation& ui);

// What is fixed by the parameter rows of a station that is in the register: locked in an edit.
void LockMap(Ui::frmconfigstation& ui, bool locked);

}  // namespace desk
