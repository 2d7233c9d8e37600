#pragma once

#include <memory>

#include "desk/signals/SignalPage.h"

namespace Ui {
class frmSignalSearch;
}

namespace desk {

// Finds signals of the station that a session has on its line by a pattern of their names, and writes to them.
class frmSignalSearch : public SignalPage {
    Q_OBJECT

  public:
    frmSignalSearch(Desk& desk, session::Session& session);
    ~frmSignalSearch() override;

  private:
    void cmdSearch();
    void ChooseKind(signals::SearchKind kind);
    std::int64_t LocationID() const override;
    void ShowButtons() override;
    void FetchOver(std::optional<signals::FetchEnd> end, const std::string& reason) override;

    std::unique_ptr<Ui::frmSignalSearch> ui_;
    signals::SearchKind searchkind_ = signals::SearchKind::Attribute;
};

}  // namespace desk
