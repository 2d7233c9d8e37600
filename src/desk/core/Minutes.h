#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

namespace desk {

// When the tick behind one at `previous` is due, in milliseconds since 1970, if it is `now`: a minute later, at the
// same second. A clock that was set, or a program that was held up past that moment, goes on at that second of the
// minute in hand or of the next.
qint64 NextTick(qint64 previous, qint64 now);

// Calls back once a minute, always at the second at which it was started. It follows the wall clock: a timer that only
// counts would drift, and at the edge of a minute skip one contract hour and meet another twice.
class Minutes : public QObject {
    Q_OBJECT

  public:
    explicit Minutes(std::function<void()> tick);

    // The first tick comes one minute from now.
    void Start();
    bool Running() const { return timer_.isActive(); }

  private:
    void Elapsed();
    void Arm(qint64 now);

    std::function<void()> tick_;
    QTimer timer_;
    qint64 next_ = 0;
};

}  // namespace desk
