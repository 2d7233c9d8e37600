#pragma once

#include <memory>

#include "desk/kit/Page.h"

class QPrinter;

namespace Ui {
class frmconfparams;
}

namespace desk {

// The list of a station's configurable parameters, to be read, printed and saved.
class frmconfparams : public Page {
    Q_OBJECT

  public:
    // `text` is what session::fetch_params gave.
    frmconfparams(Desk& desk, const QString& text);
    ~frmconfparams() override;

    void Print(QPrinter& printer);

  private:
    void cmdprint();
    void cmdsave();

    std::unique_ptr<Ui::frmconfparams> ui_;
};

}  // namespace desk
