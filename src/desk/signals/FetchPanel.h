#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "core/Feedback.h"
#include "signals/lists/SignalFetch.h"

namespace Ui {
class FetchPanel;
}

namespace desk {

class Grid;

// What the screens that read a station's signals have in common: the grid, where the reading stands, the lamps of the
// line. Boxes stand over it.
class FetchPanel : public QWidget, public signals::FetchView, public core::Feedback {
    Q_OBJECT

  public:
    explicit FetchPanel(QWidget* parent = nullptr);
    ~FetchPanel() override;

    // Work on the line begins or is over; the rows stay. `text`: what stands in lblmsg at first.
    void Running(bool running, const QString& text = {});
    bool IsRunning() const { return running_; }
    // The fetch ends behind the reply that is on its way.
    void Stop();

    // The rows are taken away.
    void Clear();
    const std::vector<signals::Signal>& Rows() const { return rows_; }
    // A row shows what was read back of its signal.
    void Rewrite(std::size_t row, const signals::Signal& signal);
    // A row that stands for itself, without a signal.
    void AddText(const QString& text);

    // Asks for a file and writes the grid into it, as text with tabs.
    void Save();

    Grid& signalsGrid();

    // Done between two replies of a fetch.
    std::function<void(protocols::Conversation& talk)> between;

    // What a fetch and its line tell.
    void Signals(const std::vector<signals::Signal>& signals) override;
    bool Stopped() const override { return stopRequested_; }
    void BetweenReplies(protocols::Conversation& talk) override;
    void Status(const std::string& text) override;
    void Box(const std::string& text) override;
    void Lamp(const std::string& lamp, const std::string& bytes) override;

  private:
    std::unique_ptr<Ui::FetchPanel> ui_;
    std::vector<signals::Signal> rows_;
    bool running_ = false;
    bool stopRequested_ = false;
};

}  // namespace desk
