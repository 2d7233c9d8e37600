#pragma once

#include <compare>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/Fibers.h"

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

// The time, and the conversations that wait for it. A conversation is straight-line code on a fiber of its own: its
// waits park the fiber, and the one event loop goes on.
class Clock {
  public:
    virtual ~Clock() = default;

    virtual DateTime Now() const = 0;

    // timeGetTime: a 32-bit count of milliseconds that wraps.
    virtual std::uint32_t Milliseconds() const = 0;

    // Begins a conversation. From the event loop, it runs up to its first wait before this returns; from another
    // conversation, it begins with the next turn of the loop. It ends by returning.
    void Start(std::function<void()> conversation);

    // How many have not ended.
    std::size_t Conversations() const { return fibers_.Count() + begun_.size(); }
    // The code that asks is part of one.
    bool InConversation() const { return fibers_.Current() != nullptr; }

    // Waits. Always returns true. The wrap of the counter inside the wait neither hangs it nor ends it early. Delays of
    // less than 1 ms are one turn of the event loop.
    bool WaitMs(double milliseconds);

    // The same, ended as soon as `ended` holds, which is asked before the wait, at a Wake, and behind it, from outside
    // of the conversation too. Tells whether the whole time passed.
    bool WaitMs(double milliseconds, const std::function<bool()>& ended);

    // Makes all waits look at their `ended` in the next turn of the event loop.
    virtual void Wake();

    // What no wait may happen inside of, such as a transaction: a reason, or null. Asked before each wait of a debug
    // build, which ends the program by std::logic_error if there is one.
    void ForbidWaits(std::function<const char*()> reason) { forbidden_ = std::move(reason); }

  protected:
    // Has Resume called from the event loop, that many milliseconds from now at the latest.
    virtual void Arm(std::uint32_t withinMs) = 0;
    // Goes on with the conversations whose time has come, or that were told to end.
    void Resume();
    // Ends all conversations here and now, each by this exception out of its wait.
    void ThrowIntoWaits(std::exception_ptr failure);

    // A wait outside of a conversation turns the event loop itself, for at most that long; this may return earlier.
    virtual void Turn(std::uint32_t atMostMs) = 0;

  private:
    struct Parked {
        Fiber* fiber;
        std::uint64_t due;     // ms of Elapsed
        std::uint64_t number;  // in the order of parking
        const std::function<bool()>* ended;
    };

    std::uint64_t Elapsed();
    void CheckMayWait() const;
    void ArmNext();

    Fibers fibers_;
    std::vector<std::function<void()>> begun_;  // from conversations, not yet on a fiber
    std::vector<Parked> parked_;
    std::uint64_t parkings_ = 0;
    std::uint64_t elapsed_ = 0;
    std::uint32_t lastReading_ = 0;
    bool hasReading_ = false;
    bool woken_ = false;
    std::exception_ptr thrown_;
    std::function<const char*()> forbidden_;
};

}  // namespace core
