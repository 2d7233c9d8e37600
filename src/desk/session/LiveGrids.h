#pragma once

#include <QString>
#include <QStringList>
#include <cstddef>
#include <map>
#include <vector>

#include "session/AlarmLimits.h"
#include "session/ParameterSet.h"

namespace session {
class Session;
}

namespace desk {

class ParameterTabs;

// The rows of a session on the grids of its window, refreshed in place.
class LiveGrids {
  public:
    // The columns of a grid: the address, the description, the value, the unit.
    static constexpr const char* columns = "|Description|>Value|Unit";

    LiveGrids(ParameterTabs& tabs, const session::Session& session, bool superUser)
        : tabs_(tabs), session_(session), superUser_(superUser) {}

    // The tabs of the station's stream and all of its rows anew.
    void Arrange();

    // What stands in the cells after a poll, with the marks of what it changed.
    void Refresh();

    // The values become old when the session's polling ends.
    void StateChanged();

    // The rows of a group as its grid shows them.
    std::vector<QStringList> RowsOf(std::size_t group) const;

  private:
    bool IsLive(const session::ParameterRow& row) const;
    QString MomentWord(const session::ParameterRow& row) const;
    QString UnitCell(const session::RowPlace& place) const;
    void ShowRow(const session::RowPlace& place);

    ParameterTabs& tabs_;
    const session::Session& session_;
    bool superUser_;
    bool polling_ = false;                               // as shown
    std::map<std::size_t, session::AlarmState> alarms_;  // by the row of the live value
};

}  // namespace desk
