#pragma once

#include <QObject>
#include <QTimer>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desk/core/Desk.h"
#include "session/Session.h"

class QAbstractButton;
class QPushButton;

namespace Ui {
class frmparalist;
}

namespace desk {

class FrmPNI;
class MultipleWrite;
class Page;
class SessionStatus;
class TrafficPanel;
class WriteFrame;

// The online mode of frmparalist: what the operator presses goes to the session, what the session tells is shown. It
// knows no rule of its own.
class LiveScreen final : public QObject, public session::SessionView {
    Q_OBJECT

  public:
    // Throws what a session throws that cannot begin.
    LiveScreen(Desk& desk, Page& page, Ui::frmparalist& ui, std::int64_t locationID);
    ~LiveScreen() override;

    session::Session& GetSession() { return session_; }

    // The page may go. While a disconnect is under way the operator is told to wait.
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
    void FinishLater() override;

  private:
    void ConnectCommands();
    void Command(QAbstractButton* button, void (LiveScreen::*work)());
    void Guarded(const std::function<void()>& work);
    void Connect();
    void GetData();
    void Disconnect();
    void SetTime();
    void Multiple();
    void OpenSummary();
    void ShowParameters();
    void SwapDrawing();
    void NotHere(QAbstractButton* button, const char* what);

    void ChooseRow(std::size_t group, std::size_t row);
    void ChooseMultipleRow(int row);
    void OpenWriteFrame(const session::RowPlace& place, const QString& text);
    bool MayWrite();
    void Write();
    void SendMultiple();
    void FrameLeft();

    void ArrangeTabs();
    void Draw();
    std::vector<QStringList> RowsOf(std::size_t group) const;
    QString UnitCell(const session::RowPlace& place) const;
    void ShowRow(const session::RowPlace& place);
    void ShowFigures();
    void ShowButtons();
    void EverySecond();

    Desk& desk_;
    Page& page_;
    Ui::frmparalist& ui_;
    SessionStatus& status_;
    WriteFrame& write_;
    MultipleWrite& multiple_;
    TrafficPanel* traffic_;
    FrmPNI* drawing_ = nullptr;
    session::Session session_;
    QTimer seconds_;
    std::array<QPushButton*, 4> streams_;
    std::optional<session::RowPlace> place_;             // the row in the write frame
    std::optional<int> multipleRow_;                     // or the one of the composition's copy
    std::map<std::size_t, session::AlarmState> alarms_;  // by the row of the live value
    bool wasConnected_ = false;
    bool waitsForLine_ = false;  // the schedule took the line from a session
};

}  // namespace desk
