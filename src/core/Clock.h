#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

// The time, from wherever it comes. Whatever asks for the time or waits asks a Clock.
namespace core {

struct DateTime {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;

    auto operator<=>(const DateTime&) const = default;

    // 1 is Sunday, 7 Saturday.
    int DayOfWeek() const;

    // A real day of the calendar and a real time of day.
    bool Valid() const;
};

// "24/11/2026", "08:05:09": what people read, on every machine.
std::string DateText(const DateTime& at);
std::string TimeText(const DateTime& at);

// "2026-11-24 08:05:09": what is stored.
std::string IsoText(const DateTime& at);

// The moment of such a text; nothing for a text that is none.
std::optional<DateTime> MomentOf(const std::string& isoText);

// Local time from seconds since 1970 as if that were a zone without offset, and back. For clocks that count.
DateTime FromSeconds(std::int64_t seconds);
std::int64_t ToSeconds(const DateTime& at);

class Clock {
  public:
    virtual ~Clock() = default;

    virtual DateTime Now() const = 0;

    // timeGetTime: a 32-bit count of milliseconds that wraps.
    virtual std::uint32_t Milliseconds() const = 0;

    // Waits, turning the event loop, so that commands and timers go on. Always returns true. The wrap of the
    // counter inside the wait neither hangs it nor ends it early. Delays of less than 1 ms are one turn.
    bool WaitMs(double milliseconds);

    // The same, ended as soon as `ended` holds. Tells whether the whole time passed.
    bool WaitMs(double milliseconds, const std::function<bool()>& ended);

    // Makes the wait in hand look at its `ended` condition now.
    virtual void Wake() {}

  protected:
    // Runs events for at most that long; may return earlier.
    virtual void Turn(std::uint32_t atMostMs) = 0;
};

}  // namespace core
