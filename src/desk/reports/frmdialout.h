#pragma once

#include <QTimer>
#include <memory>

#include "desk/core/Page.h"

namespace Ui {
class frmdialout;
}

namespace desk {

// The alarm calls that stations made in, and their acknowledgement.
class frmdialout : public Page {
    Q_OBJECT

  public:
    explicit frmdialout(Desk& desk);
    ~frmdialout() override;

    // While it is set, each turn of the timer enters a call. Nothing in the program sets it yet: no modem listens.
    void AlarmFlag(bool set) { alarm_ = set; }

    void Timer1();

  private:
    void Reload();
    void cmdackalarm();

    bool alarm_ = false;
    QTimer timer1_;
    std::unique_ptr<Ui::frmdialout> ui_;
};

}  // namespace desk
