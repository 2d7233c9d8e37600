#pragma once

#include <memory>

#include "desk/core/Page.h"

namespace Ui {
class frmchart;
}

namespace reports {
struct MonthFigures;
}

namespace desk {

// A station's month: the flow of each day and the pressure, as lines or with bars.
class frmchart : public Page {
    Q_OBJECT

  public:
    explicit frmchart(Desk& desk);
    ~frmchart() override;

    // Writes what is drawn to a PNG file. False: it cannot be written.
    bool SavePicture(const QString& file) const;

  private:
    enum class Form { Line, Bar };
    void cmdChart(Form form, const QString& nothing);
    void Draw(Form form, const reports::MonthFigures& figures);
    void cmdSavePng();

    std::unique_ptr<Ui::frmchart> ui_;
};

}  // namespace desk
