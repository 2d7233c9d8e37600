#pragma once

#include <memory>
#include <vector>

#include "desk/signals/SignalPage.h"
#include "signals/lists/BsapStations.h"

namespace Ui {
class ListPage;
}

namespace desk {

// A list of a station's signals is read by its number, with their names.
class ListPage : public SignalPage {
    Q_OBJECT

  public:
    ~ListPage() override;

  protected:
    ListPage(Desk& desk, session::Session* session);

  private:
    void cmdfetch();
    std::int64_t LocationID() const override;
    void ShowButtons() override;
    void FetchOver(std::optional<signals::FetchEnd> end, const std::string& reason) override;

    std::unique_ptr<Ui::ListPage> ui_;
    std::vector<signals::BsapStation> stations_;
    bool fetched_ = false;  // the last fetch did not fail
};

// The list of the station that a session has on its line; its signals can be written.
class frmparafetchlist : public ListPage {
  public:
    frmparafetchlist(Desk& desk, session::Session& session) : ListPage(desk, &session) {}
};

// The list of any station, by a call of its own. It writes nothing.
class frmfetchlist : public ListPage {
  public:
    explicit frmfetchlist(Desk& desk) : ListPage(desk, nullptr) {}
};

}  // namespace desk
