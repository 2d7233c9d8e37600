#pragma once

#include <memory>
#include <optional>
#include <string>

#include "desk/kit/Page.h"
#include "signals/change/ChangeStore.h"
#include "signals/lists/SignalFetch.h"

class QLabel;

namespace Ui {
class ChangePage;
}

namespace session {
class Session;
}

namespace desk {

// The one screen with two names on which a station's lists are fetched and stored, before and after a change of its
// program. The line is the session's if that is up, else a call of its own; a scheduled collection that is due waits
// until the fetch is over. Only a list that came whole is stored.
class ChangePage : public Page {
    Q_OBJECT

  public:
    ~ChangePage() override;

  protected:
    ChangePage(Desk& desk, const QString& title, signals::Side side, session::Session& session);

    // Shows the station, its dates and its lists. Called once, at the end of the making.
    void Build();

    signals::ChangeDates Dates() const;
    // Shows those of the dates that this screen shows.
    virtual void ShowDates(const signals::ChangeDates& dates) = 0;
    // A date with its caption, both in sight only when there is one.
    static void ShowDate(QLabel& caption, QLabel& label, const std::optional<std::string>& date);

    Ui::ChangePage& Controls() { return *ui_; }

  private:
    void cmdfetch();
    void cmdView();
    // Fetches on the line, and stores.
    void Collect(protocols::Conversation& talk, int list);
    void Over(int list);
    void ShowStored();
    void ShowButtons();
    void ShowList(int list, const QString& what);

    std::unique_ptr<Ui::ChangePage> ui_;
    signals::Side side_;
    session::Session& session_;

    // How the fetch in hand ended; not set when no line came up.
    std::optional<signals::FetchEnd> end_;
    std::string reason_;        // why the line is gone
    std::string storeFailure_;  // why the list is not stored
};

}  // namespace desk
