#pragma once

#include <QDialog>
#include <memory>
#include <string>

#include "desk/kit/Desk.h"

namespace Ui {
class frmportsetting;
}

namespace desk {

class PickCombo;

// Composes the line settings of a station: baud rate, parity, data bits, stop bits.
class frmportsetting : public QDialog {
    Q_OBJECT

  public:
    // Over a form, with the settings as they are, such as "9600,N,8,1". Deleted at its close.
    frmportsetting(Desk& desk, const std::string& settings, QWidget* over);
    ~frmportsetting() override;

    // The settings as composed, once the dialog was accepted.
    const std::string& Settings() const { return settings_; }

  private:
    void Accept();
    void FieldLeft(PickCombo* field);
    // False: the field holds what is not in its list; the message is shown and the focus is back in it.
    bool Settle(PickCombo& field);

    std::string settings_;
    PickCombo* left_ = nullptr;  // left, its check to come
    std::unique_ptr<Ui::frmportsetting> ui_;
};

}  // namespace desk
