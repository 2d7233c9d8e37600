#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "collection/CollectionRun.h"
#include "collection/RunQueue.h"
#include "core/Feedback.h"
#include "reading/Workplace.h"

namespace collection {

// The collections of one line: its stations one after the other, on a conversation of its own. A session that holds the
// line loses it; one that keeps it is waited for.
class LineRun {
  public:
    // How the owner of the lines is told of the turns of this one.
    struct Owner {
        // Whether a turn is to be served, asked when its time has come. Throws DatabaseError.
        std::function<bool(const Turn& turn)> stillWanted;
        std::function<void(const Turn& turn)> begins;
        // A turn was served and its outcome is on the disk. `again`: there may be more to get.
        std::function<void(const Turn& turn, const Outcome& outcome, bool again)> recorded;
        // The station is on another line by now: the turn is to wait there.
        std::function<void(const Turn& turn)> moved;
        // It is over, whatever became of it.
        std::function<void(const Turn& turn)> over;
        // All turns are over, or the program ends.
        std::function<void()> idle;
    };

    LineRun(const reading::Workplace& place, std::string name, protocols::FieldLine& line, Owner owner);
    LineRun(const LineRun&) = delete;
    LineRun& operator=(const LineRun&) = delete;

    void Add(Turn turn) { queue_.Add(std::move(turn)); }

    // Begins with the turns that wait, unless it is at work or the line is kept.
    void Serve();

    // The program ends: the conversation in hand is told so, and no further turn is served.
    void Leave();

    // Ends the attempt in hand if it takes longer than that.
    void EndOverdue(int minutes);

    const RunQueue& Queue() const { return queue_; }
    const std::optional<Turn>& InHand() const { return inHand_; }
    bool Running() const { return running_; }

  private:
    // What a line says goes to the desk under its name.
    class LineFeedback final : public core::Feedback {
      public:
        LineFeedback(core::Feedback& desk, std::string name) : desk_(desk), name_(std::move(name)) {}
        void Status(const std::string& text) override { desk_.LineStatus(name_, text); }
        void Box(const std::string& text) override { desk_.Box(text); }
        void Lamp(const std::string& lamp, const std::string& bytes) override { desk_.Lamp(lamp, bytes); }

      private:
        core::Feedback& desk_;
        std::string name_;
    };

    void Run();
    std::optional<Turn> Next();
    void ServeTurn(const Turn& turn);
    void Collect(const Turn& turn, const core::Station& station);
    reading::RunState Attempts(const Turn& turn, Outcome& outcome);
    void Record(const Turn& turn, const reading::RunState& state, const Outcome& outcome);
    bool BehindTheSameNumber(const Turn& turn) const;
    bool HasMoved(std::int64_t locationID) const;

    std::string name_;
    LineFeedback feedback_;
    reading::Workplace place_;
    protocols::FieldLine& line_;
    Owner owner_;
    RunQueue queue_;
    std::optional<Turn> inHand_;
    Call call_;                       // that is left up for the next station behind its number
    std::uint32_t attemptBegun_ = 0;  // ms, of the attempt in hand
    bool overdue_ = false;            // its time is up
    bool running_ = false;
    bool leaving_ = false;
};

}  // namespace collection
