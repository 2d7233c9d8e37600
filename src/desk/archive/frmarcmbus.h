#pragma once

#include <cstdint>
#include <memory>

#include "archive/modbus/ModbusArchive.h"
#include "core/Feedback.h"
#include "desk/kit/Page.h"

namespace Ui {
class frmarcmbus;
}
namespace protocols {
struct Conversation;
}
namespace session {
class Session;
}

namespace desk {

// Downloads the hourly or daily archive of a station that speaks Modbus, shows it and saves it to a file.
class frmarcmbus : public Page, private core::Feedback, private archive::RunView {
    Q_OBJECT

  public:
    // With a session the run is a guest on its line; without one, or while its line is down, it makes a call of its
    // own. The session outlives the page.
    frmarcmbus(Desk& desk, session::Session* session, std::int64_t locationID);
    ~frmarcmbus() override;

  private:
    void ChooseKind();
    void cmdarchive();
    void cmd_stop();
    std::string Collect(protocols::Conversation& talk);
    std::string WhyNot() const;
    void EndRun(const std::string& message);
    void ShowButtons();

    void Status(const std::string& text) override;
    void Box(const std::string& text) override;
    void Lamp(const std::string& lamp, const std::string& bytes) override;
    void Columns(const std::vector<std::string>& captions) override;
    void Rows(const std::vector<std::vector<std::string>>& rows) override;
    void Record(int records, int newest) override;
    bool Stopped() const override { return stopflag_; }

    std::unique_ptr<Ui::frmarcmbus> ui_;
    session::Session* session_;
    std::int64_t locationID_;
    bool running_ = false;
    bool stopflag_ = false;
    bool told_ = false;  // the run has shown a box
};

}  // namespace desk
