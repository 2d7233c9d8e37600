#pragma once

#include <QLineEdit>
#include <QToolButton>
#include <vector>

namespace desk {

// Shows the text of password fields while it is held down, by the mouse or by the blank key, and hides it again at
// once.
class RevealButton : public QToolButton {
    Q_OBJECT

  public:
    explicit RevealButton(QWidget* parent = nullptr);

    void Reveals(std::vector<QLineEdit*> fields) { fields_ = std::move(fields); }

  protected:
    void hideEvent(QHideEvent* event) override;

  private:
    void Show(bool shown);

    std::vector<QLineEdit*> fields_;
};

}  // namespace desk
