#pragma once

#include <array>
#include <memory>
#include <string>

#include "core/Feedback.h"
#include "desk/kit/Page.h"
#include "signals/calibration/Calibration.h"

namespace Ui {
class frmCalib;
}
namespace session {
class Session;
}

namespace desk {

class CalibTab;

// Calibrates the transmitters of the station of a session, which must outlive the page: on its line, or in a call of
// its own when that is down.
class frmCalib : public Page, public signals::CalibrationView, public core::Feedback {
    Q_OBJECT

  public:
    frmCalib(Desk& desk, session::Session& session);
    ~frmCalib() override;

    // What the calibration and the line tell.
    void Changed() override;
    void Message(const std::string& text) override;
    void Progress(int done, int total) override;
    void Status(const std::string& text) override { Message(text); }
    void Box(const std::string& text) override;
    void Lamp(const std::string& lamp, const std::string& bytes) override { Blink_leds(lamp, bytes); }

  private:
    void Start();
    void Stop();
    void Over();
    // While a cycle runs it is stopped first, and the page closes behind its end.
    void CloseAsked();
    // Asks whether a command is to be given, with the value now and then.
    void Ask(CalibTab& tab, signals::CalibrationCommand command);
    void Give(CalibTab& tab, signals::CalibrationCommand command, const std::string& applied);

    void display();
    void clear();
    void Blink_leds(const std::string& lamp, const std::string& bytes);
    void ShowState();
    // The commands and fields of the state, and the focus where the next step is.
    void ShowCommands();
    void MoveFocus();
    CalibTab& TabInFront() const;
    signals::CalibrationState GetState() const;

    session::Session& session_;
    std::unique_ptr<Ui::frmCalib> ui_;
    std::array<CalibTab*, 3> tabs_{};
    signals::CalibrationSignals names_;
    std::unique_ptr<signals::Calibration> calibration_;  // the present one, or the last
    signals::CalibrationState shown_ = signals::CalibrationState::NotStarted;
    bool running_ = false;  // from Start until the line is given back
    bool stopping_ = false;
    bool closing_ = false;
    std::string lineFailure_;  // what was told of a line that did not come up
};

}  // namespace desk
