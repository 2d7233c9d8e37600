#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

namespace desk {

// When the next tick is due, in milliseconds since 1970, if it is `now`: the first moment to come that is `phase`
// milliseconds into its minute and not in the minute of `served`, in which the last tick was. So no minute has two
// ticks, also when the clock is set back or a tick came late.
qint64 NextTick(qint64 phase, qint64 served, qint64 now);

// Where in its minute a timer started at `now` ticks: at that moment, but not in the last seconds, from which a small
// delay would carry a tick over the edge and lose the stations of a minute.
qint64 PhaseOf(qint64 now);

// Calls back once a minute, at the same second of each. It follows the wall clock: a timer that only counts would
// drift, and at the edge of a minute skip one contract hour and meet another twice.
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
    qint64 phase_ = 0;
    qint64 served_ = 0;
    qint64 next_ = 0;
};

}  // namespace desk
