#pragma once

#include <QLabel>

namespace desk {

// The path of a file in whatever room there is: its beginning and its name are kept, the whole of it is the tool tip.
class PathLabel : public QLabel {
    Q_OBJECT

  public:
    explicit PathLabel(QWidget* parent = nullptr);

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace desk
