#pragma once

#include <QTimer>
#include <QWidget>

namespace desk {

// A mark of the line: green at rest; in another colour, filled as an arrow and with a word beside it, when bytes go by.
class LineMark : public QWidget {
    Q_OBJECT

  public:
    // `word` stands beside the name while it is lit.
    LineMark(const QString& name, const QString& word, QWidget* parent);

    void Lit(bool lit);
    bool Lit() const { return lit_; }
    // The colour that it shows.
    QColor Colour() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString name_;
    QString word_;
    bool lit_ = false;
};

// The two marks of the line, TX and RX, side by side over the width that they are given.
class frmtxrxleds : public QWidget {
    Q_OBJECT

  public:
    explicit frmtxrxleds(QWidget* parent = nullptr);

    // Lights the mark of a direction, "TX" or "RX". tmrleds puts both back to green a moment later; it is not put off
    // by more bytes, so that a busy line blinks.
    void Light(const QString& direction);

  private:
    void Rest();

    LineMark tx_;
    LineMark rx_;
    QTimer tmrleds_;
};

}  // namespace desk
