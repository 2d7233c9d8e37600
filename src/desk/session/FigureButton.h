#pragma once

#include <QPushButton>

namespace desk {

// A figure among figures that can be changed: as right-aligned as they are, in an outline that tells it from them.
class FigureButton : public QPushButton {
    Q_OBJECT

  public:
    explicit FigureButton(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace desk
