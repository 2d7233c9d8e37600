#pragma once

#include <QPushButton>

namespace desk {

// What the overview tells of a station, by colour and by a sign.
enum class NodeState { NoStation, Collected, NotCollected, Collecting };

// A station on the overview: its name as large as it fits, on the colour of its state, the same in every palette.
class NodeButton : public QPushButton {
    Q_OBJECT

  public:
    explicit NodeButton(QWidget* parent = nullptr);

    // The caption is the station's name, whatever stands in it.
    void ShowNode(const QString& consumer, NodeState state);
    NodeState State() const { return state_; }
    QColor Colour() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    NodeState state_ = NodeState::NoStation;
};

}  // namespace desk
