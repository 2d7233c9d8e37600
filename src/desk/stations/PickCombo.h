#pragma once

#include <QComboBox>
#include <string>
#include <vector>

namespace desk {

// A list that can also be typed into. It can be locked: then it is read, and copied from, but not changed. The wheel
// changes nothing, since it scrolls past by accident.
class PickCombo : public QComboBox {
    Q_OBJECT

  public:
    explicit PickCombo(QWidget* parent = nullptr);

    // Takes a new list; the text stays.
    void Fill(const std::vector<std::string>& list);

    // The text may be outside the list: a stored row may hold what is no longer offered.
    void Text(const std::string& text);
    std::string Text() const { return currentText().toStdString(); }

    void Lock(bool locked);
    bool Locked() const { return locked_; }

    // A typed text that is in the list takes the list's spelling. False when it is not in the list and not empty; what
    // was not typed holds in any case.
    bool Settle();

    // Puts the last text back that was set or picked.
    void TakeBack();

  Q_SIGNALS:
    // The focus has gone to another field; not to a box, a list that drops down or another program.
    void Left();

  protected:
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void showPopup() override;

  private:
    bool typed_ = false;
    bool locked_ = false;
    QString settled_;
};

}  // namespace desk
