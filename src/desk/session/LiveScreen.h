#pragma once

#include <QObject>
#include <QTimer>
#include <array>
#include <cstdint>
#include <string>

#include "desk/kit/Desk.h"
#include "desk/session/LiveGrids.h"
#include "desk/session/LiveWriting.h"
#include "session/Session.h"

class QAbstractButton;
class QPushButton;

namespace Ui {
class frmparalist;
}

namespace desk {

class FrmPNI;
class Page;
class SessionStatus;
class TrafficPanel;

// The online mode of frmparalist: what the operator presses goes to the session, what the session tells is shown. It
// knows no rule of its own.
class LiveScreen final : public QObject, public session::SessionView {
    Q_OBJECT

  public:
    // Throws what a session throws that cannot begin.
    LiveScreen(Desk& desk, Page& page, Ui::frmparalist& ui, std::int64_t locationID);
    ~LiveScreen() override;

    session::Session& GetSession() { return session_; }

    // The page may go. While the session has the line the operator is told to disconnect, or to wait for that.
    bool MayClose();

    void Status(const std::string& text) override;
    void Box(const std::string& text) override;
    void Lamp(const std::string& lamp, const std::string& bytes) override;
    void StateChanged() override;
    void Request(const std::string& text) override;
    void Progress(int done, int total) override;
    void Storing(bool storing) override;
    void Drawn() override;
    void Refreshed() override;
    void Ended(const std::string& reason, bool polled) override;

  private:
    void ConnectCommands();
    void Command(QAbstractButton* button, void (LiveScreen::*work)());
    void Guarded(const std::function<void()>& work);
    void Connect();
    void GetData();
    void Disconnect();
    void OpenSummary();
    void OpenArchive();
    void OpenHistory();
    void OpenList();
    void OpenSearch();
    void OpenVerification();
    void OpenCalibration();
    void ShowParameters();
    void SwapDrawing();

    void ShowFigures();
    void ShowButtons();
    void EverySecond();

    Desk& desk_;
    Page& page_;
    Ui::frmparalist& ui_;
    SessionStatus& status_;
    TrafficPanel* traffic_;
    FrmPNI* drawing_ = nullptr;
    session::Session session_;
    LiveGrids grids_;
    LiveWriting writing_;
    QTimer seconds_;
    std::array<QPushButton*, 4> streams_;
    bool wasConnected_ = false;
    bool waitsForLine_ = false;  // the schedule took the line from a session
};

}  // namespace desk
