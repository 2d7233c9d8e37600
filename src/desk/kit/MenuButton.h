#pragma once

#include <QPushButton>

namespace desk {

// A command of a menu: its caption, and below it what it is for.
class MenuButton : public QPushButton {
    Q_OBJECT
    Q_PROPERTY(QString description READ description WRITE setDescription)

  public:
    explicit MenuButton(QWidget* parent = nullptr);

    QString description() const { return description_; }
    void setDescription(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString description_;
};

}  // namespace desk
