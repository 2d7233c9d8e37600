#pragma once

#include <memory>
#include <vector>

#include "collection/GasComposition.h"
#include "desk/kit/Page.h"

namespace Ui {
class frmGCWrite;
}

namespace desk {

// The gas composition that the operator wants in each station that takes one.
class frmGCWrite : public Page {
    Q_OBJECT

  public:
    explicit frmGCWrite(Desk& desk);
    ~frmGCWrite() override;

  private:
    // Shows the composition of the selected station as it is stored.
    void ShowStored();
    void ShowSum();
    void Edit(bool editing);
    void EditRow(int row);
    void cmdedit();
    void cmdsave();
    void cmdCancel();

    std::unique_ptr<Ui::frmGCWrite> ui_;
    std::vector<collection::GasStation> stations_;
    std::vector<collection::GasComponent> components_;  // as gcgrid shows them
};

}  // namespace desk
