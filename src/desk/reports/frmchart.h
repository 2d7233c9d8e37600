#pragma once

#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frmchart;
}

namespace desk {

enum class ChartKind;

// The charts: a station's month as lines or bars, which can be saved as a picture.
class frmchart : public Page {
    Q_OBJECT

  public:
    explicit frmchart(Desk& desk);
    ~frmchart() override;

    // Writes the picture that is drawn to a file; a disk that does not take it is told.
    void SavePng(const QString& file);

  private:
    void DrawMonth(ChartKind kind);
    void ShowNothing();
    void cmdSavePng();

    std::unique_ptr<Ui::frmchart> ui_;
};

}  // namespace desk
