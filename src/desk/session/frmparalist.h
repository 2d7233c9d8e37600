#pragma once

#include <cstdint>
#include <memory>

#include "desk/kit/Page.h"
#include "desk/session/RegisterEditing.h"

namespace Ui {
class frmparalist;
}

namespace session {
class Session;
}

namespace desk {

class LiveScreen;

// The window on the parameters of one station, a grid for each group.
class frmparalist : public Page {
    Q_OBJECT

  public:
    // The configuration mode: the register map of a station is laid out. Closed without OK it stores nothing.
    frmparalist(Desk& desk, const RegisterStation& station);

    // The online mode: a session with a station.
    frmparalist(Desk& desk, std::int64_t locationID);

    ~frmparalist() override;

    void Activated() override;

    // The session of the online mode; null when it could not begin, and in the other mode.
    session::Session* GetSession();

  Q_SIGNALS:
    // The addresses are stored.
    void Stored();

  private:
    explicit frmparalist(Desk& desk);
    void ShowMode(bool online);
    void Ok();
    void CloseAsked();

    std::unique_ptr<Ui::frmparalist> ui_;
    std::unique_ptr<RegisterEditing> editing_;
    std::unique_ptr<LiveScreen> live_;
};

}  // namespace desk
