#pragma once

#include <QWidget>
#include <memory>

#include "signals/calibration/Calibration.h"

class QLineEdit;
namespace Ui {
class CalibTab;
}

namespace desk {

// The tab of one transmitter: its live and its applied value, its commands, and how the last of them ended.
class CalibTab : public QWidget {
    Q_OBJECT

  public:
    CalibTab(signals::Transmitter transmitter, QWidget* parent);
    ~CalibTab() override;

    // A value as it is shown.
    static QString Shown(double value);

    void Display(const signals::TransmitterReading& reading);
    // Without the values and the result; what was applied stays.
    void Clear();
    // Commands can be given; a value can be entered.
    void Open(bool commands, bool entry);

    std::string Applied() const;
    QLineEdit& AppliedField();
    signals::Transmitter Of() const { return transmitter_; }

  Q_SIGNALS:
    void Asked(signals::CalibrationCommand command);

  private:
    void NameControls();
    void ShowLimit();

    signals::Transmitter transmitter_;
    std::unique_ptr<Ui::CalibTab> ui_;
};

}  // namespace desk
