#pragma once

#include <QDialog>
#include <memory>
#include <optional>

#include "desk/kit/Desk.h"

namespace Ui {
class frmvalue;
}

namespace desk {

// Asks for one value over a form, which takes no input meanwhile. Show it with open(); it deletes itself at its end.
class frmvalue : public QDialog {
    Q_OBJECT

  public:
    // The field begins empty where there is no value yet.
    frmvalue(const Desk& desk, QWidget* over, const QString& description, std::optional<double> value);
    ~frmvalue() override;

  Q_SIGNALS:
    // The operator has given a value; the window is about to close.
    void Given(double value);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void cmdOk();

    std::unique_ptr<Ui::frmvalue> ui_;
};

}  // namespace desk
