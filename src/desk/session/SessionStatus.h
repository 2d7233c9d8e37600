#pragma once

#include <QLabel>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <optional>

#include "core/Clock.h"

namespace session {
class Session;
}

namespace desk {

// "42 s old", "3 min old".
QString AgeText(std::int64_t seconds);

// The status area over the grids: the station's clock and voltages, its methods, how old the values are, how the
// requests fared, and the alarm bar.
class SessionStatus : public QWidget {
    Q_OBJECT

  public:
    explicit SessionStatus(QWidget* parent = nullptr);

    // Shows what a session's values say. The alarm bar blinks as long as the voltage is too low.
    void Show(const session::Session& session);
    // The age of the values and the counts; costs nothing else.
    void ShowAge(const session::Session& session, const core::DateTime& now);
    void HideAlarm();

  private:
    void Blink();

    QLabel* lbldatetime_;
    QLabel* lblbatvolts_;
    QLabel* lblaga3_;
    QLabel* lblaga8_;
    QLabel* lblage_;
    QLabel* lblrequests_;
    QLabel* lblalarmbar_;
    QTimer tmr_blink_;
    unsigned colour_;
};

}  // namespace desk
