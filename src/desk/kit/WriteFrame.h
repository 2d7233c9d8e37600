#pragma once

#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <vector>

namespace desk {

// What a row offers to be written.
struct Writable {
    enum class Choice { None, Input, Output };  // a switch can also be picked from a list, Cmb_input or Cmb_output

    struct Pick {
        QString shown;
        QString text;  // what is then in txtvalue
    };

    QString description;
    QString text;   // as the grid shows it
    QString other;  // the other word of a switch
    bool isSwitch = false;
    Choice choice = Choice::None;
    QString present;  // the text of the pick that is so now; empty: `text` is one
    std::vector<Pick> picks = {{"0 OFF", "0"}, {"1 ON", "1"}};
};

// The frame frmvalue: a value is entered for the row that was chosen. A number is typed, a switch flipped or picked.
class WriteFrame : public QFrame {
    Q_OBJECT

  public:
    explicit WriteFrame(QWidget* parent = nullptr);

    // Comes up for a row, its text selected.
    void Open(const Writable& row);
    // Nothing can be entered while the value is on its way.
    void Sending(bool sending);
    // Goes, and says so by Left.
    void Leave();

    QString Text() const { return txtvalue_->text(); }
    // The focus goes to the value again, which was refused.
    void Again();

  Q_SIGNALS:
    // The value is to be written.
    void Write();
    void Left();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QLabel* Label1_;
    QLineEdit* txtvalue_;
    QComboBox* Cmb_input_;
    QComboBox* Cmb_output_;
    QPushButton* cmdtoggle_;
    QPushButton* cmdwrite_;
    QPushButton* cmdcan_;
    Writable row_;
};

}  // namespace desk
