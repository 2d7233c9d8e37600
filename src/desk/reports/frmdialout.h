#pragma once

#include <cstdint>
#include <memory>

#include "desk/kit/Page.h"
#include "reports/Dialout.h"

namespace Ui {
class frmdialout;
}

namespace desk {

// The alarm calls that stations made in, to be acknowledged.
class frmdialout : public Page {
    Q_OBJECT

  public:
    explicit frmdialout(Desk& desk);
    ~frmdialout() override;

    // An alarm stands, or stands no longer. While it does, every run of Timer1 notes one more call, until whoever
    // raised it takes it back.
    void Alarm(bool stands) { alarm_ = stands; }

    // Notes a call of the present date and shows it.
    void AddDialoutRow(std::int32_t phone);

  private:
    void cmdackalarm();
    void Timer1();
    void Reload();

    bool alarm_ = false;
    std::unique_ptr<Ui::frmdialout> ui_;
};

}  // namespace desk
