#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/Clock.h"
#include "protocols/line/Line.h"

namespace protocols {

// A conversation's hold on the line. Once it is taken away it is dead for good: every operation fails as on a closed
// port, so the bytes of two conversations never mix and nothing reaches a station that it was not meant for.
class LineLease final : public Line {
  public:
    explicit LineLease(Line& line) : line_(&line) {}

    // The conversation is to end: its line was taken away, or the program ends. Waits look at this.
    bool Ended() const { return ended_; }
    // Why, as the operator reads it; empty while the conversation may go on.
    const std::string& Reason() const { return reason_; }

    // It ended because the device of the port disappeared.
    bool Lost() const { return deviceLost_; }

    // Called once at the end, before whoever takes the line goes on. It must not wait.
    void WhenEnded(std::function<void()> tell) { tell_ = std::move(tell); }

    // A scheduled run waits for the end of this conversation; see KeptLine.
    bool Kept() const { return kept_; }

    // The line is still this conversation's. A conversation that was told to end with the program keeps it, so that
    // it can hang up.
    bool Held() const { return line_ != nullptr; }

    bool PortOpen() const override { return Held() && line_->PortOpen(); }
    bool PortOpen(bool open) override { return Held() && line_->PortOpen(open); }
    std::string LastError() const override { return Held() ? line_->LastError() : reason_; }
    void CommPort(int number) override;
    void Settings(const std::string& settings) override;
    std::size_t InBufferCount() override { return Held() ? line_->InBufferCount() : 0; }
    std::size_t OutBufferCount() override { return Held() ? line_->OutBufferCount() : 0; }
    void ClearInBuffer() override;
    void ClearOutBuffer() override;
    void Output(const std::string& bytes) override;
    std::string Input() override { return Held() ? line_->Input() : std::string(); }

  private:
    friend class FieldLine;
    friend class KeptLine;
    friend class ConnectingLine;
    void End(const std::string& reason, bool takeLine);

    Line* line_;
    std::function<void()> released_;
    bool kept_ = false;
    bool connecting_ = false;
    bool ended_ = false;
    bool deviceLost_ = false;
    std::string reason_;
    std::function<void()> tell_;
};

// For as long as it lives, a scheduled run does not take the line from this conversation but waits: for work that is
// worth nothing when it is cut off, ends by itself and holds no more than one thing up.
class KeptLine {
  public:
    explicit KeptLine(std::shared_ptr<LineLease> lease);
    ~KeptLine();
    KeptLine(const KeptLine&) = delete;
    KeptLine& operator=(const KeptLine&) = delete;

  private:
    std::shared_ptr<LineLease> lease_;
};

// For as long as it lives, the conversation is on its way to its station: it dials or signs on. An operator's Stop ends
// it then; see FieldLine::StopConnecting.
class ConnectingLine {
  public:
    explicit ConnectingLine(std::shared_ptr<LineLease> lease);
    ~ConnectingLine() { lease_->connecting_ = false; }
    ConnectingLine(const ConnectingLine&) = delete;
    ConnectingLine& operator=(const ConnectingLine&) = delete;

  private:
    std::shared_ptr<LineLease> lease_;
};

// The one line of the station and who holds it. A conversation whose device disappears ends with that reason.
class FieldLine {
  public:
    FieldLine(Line& line, core::Clock& clock);
    ~FieldLine();
    FieldLine(const FieldLine&) = delete;
    FieldLine& operator=(const FieldLine&) = delete;

    // The line for a scheduled run, taken at once from whoever holds it; that conversation ends with `reason`.
    std::shared_ptr<LineLease> TakeOver(const std::string& reason);

    // Stations are being collected on it, or wait for that: until this is over no session begins, which would hold them
    // up for as long as its operator stays.
    void Reserve(bool reserved) { reserved_ = reserved; }
    bool Reserved() const { return reserved_; }

    // The line for a session; null while another conversation holds it, or it is reserved.
    std::shared_ptr<LineLease> TakeIfFree();

    // A conversation holds the line: its lease lives and has not been taken away.
    bool InUse() const;

    // The conversation that holds the line keeps it: whoever would take it over is to wait.
    bool Kept() const;
    // Called when a kept line may be taken over again, by the conversation that kept it: it must not wait.
    void WhenReleased(std::function<void()> tell) { released_ = std::move(tell); }

    // Tells the conversation in hand to end, because the program does. It keeps the line for its hang-up.
    void EndConversation(const std::string& reason);

    // The same for an operator's Stop, while the conversation in hand is on its way to its station. One that is at work
    // goes on: it has a stop of its own, which keeps what has come.
    void StopConnecting();

  private:
    std::shared_ptr<LineLease> Lease();

    Line& line_;
    core::Clock& clock_;
    std::weak_ptr<LineLease> holder_;
    bool reserved_ = false;
    std::function<void()> released_;
};

}  // namespace protocols
