#pragma once

#include <QPointer>
#include <string>

#include "desk/kit/Desk.h"
#include "desk/session/ParameterTabs.h"
#include "session/editor/RegisterEditor.h"

namespace desk {

class frmdata;

// What the station form hands over for the laying out of a map.
struct RegisterStation {
    std::string consumer;
    session::EditedStation edited;
    TabChoices tabs;
};

// The configuration mode of frmparalist: the grids list every parameter with its address and its data type, a row that
// is chosen is given them in a dialog, and all are stored at once.
class RegisterEditing {
  public:
    // Fills the grids. Throws DatabaseError; std::length_error when a group has more rows than its grid holds.
    RegisterEditing(Desk& desk, ParameterTabs& tabs, const RegisterStation& station);

    // Opens the dialog over a page for a row.
    void Choose(std::size_t group, std::size_t row, QWidget* over);

    // Whether a row was given an address that is not stored yet.
    bool Changed() const { return changed_; }

    // Throws DatabaseError; then nothing is stored.
    void Store();

  private:
    Desk& desk_;
    ParameterTabs& tabs_;
    session::RegisterEditor editor_;
    QPointer<frmdata> dialog_;
    bool changed_ = false;
};

}  // namespace desk
