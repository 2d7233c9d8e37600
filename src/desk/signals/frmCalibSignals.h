#pragma once

#include <memory>
#include <vector>

#include "desk/kit/Page.h"
#include "signals/calibration/CalibrationSignals.h"

class QLineEdit;
namespace Ui {
class frmCalibSignals;
}

namespace desk {

// The names of the signals that the calibration works with, by transmitter.
class frmCalibSignals : public Page {
    Q_OBJECT

  public:
    explicit frmCalibSignals(Desk& desk);
    ~frmCalibSignals() override;

  private:
    struct Field {
        QLineEdit* edit = nullptr;
        signals::CalibrationPlace place;
    };

    void CollectFields();
    void Save();

    std::unique_ptr<Ui::frmCalibSignals> ui_;
    std::vector<Field> fields_;  // each once, row by row as they stand
};

}  // namespace desk
