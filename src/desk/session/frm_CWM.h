#pragma once

#include <QTimer>
#include <cstdint>
#include <memory>

#include "desk/kit/Page.h"
#include "session/Session.h"

namespace Ui {
class frm_CWM;
}

namespace desk {

// The menu of a CW_Micro, whose parameters come from its own signal lists: who it is, how it stands with today's
// collection, its line, and the screens that work on that line.
class frm_CWM : public Page, public session::SessionView {
    Q_OBJECT

  public:
    // Throws DatabaseError.
    frm_CWM(Desk& desk, std::int64_t locationID);
    ~frm_CWM() override;

    void Status(const std::string& text) override;
    void Box(const std::string& text) override;
    void Lamp(const std::string& lamp, const std::string& bytes) override;
    void StateChanged() override { ShowButtons(); }
    void Request(const std::string&) override {}
    void Progress(int, int) override {}
    void Storing(bool) override {}
    void Drawn() override {}
    void Refreshed() override {}
    void Ended(const std::string& reason, bool polled) override;

  private:
    void ShowStation(const core::Station& station);
    void Fact(const QString& caption, const std::string& text);
    void ConnectCommands();
    void ShowButtons();
    void CloseAsked();

    std::unique_ptr<Ui::frm_CWM> ui_;
    std::unique_ptr<session::Session> session_;  // null: the station is no longer there
    bool lost_ = false;                          // the line was taken, or failed
    QTimer seconds_;
};

}  // namespace desk
