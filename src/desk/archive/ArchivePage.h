#pragma once

#include <cstdint>
#include <optional>

#include "archive/bsap/Collecting.h"
#include "desk/kit/Page.h"

class QComboBox;

namespace session {
class Session;
}

namespace desk {

class DownloadPanel;

// What the three screens that download by BSAP have in common: the station, the run behind Collect, its end.
class ArchivePage : public Page {
    Q_OBJECT

  protected:
    // With a session the screen is for its station, on its line if that screen uses it.
    ArchivePage(Desk& desk, archive::Screen screen, session::Session* session);

    // Takes the form's controls; `choices` holds those that are locked while a download runs. The station of the
    // session, else that of `locationID`, else every one that there is to choose.
    void Build(DownloadPanel& panel, QComboBox& cmbNode, QWidget& choices, std::optional<std::int64_t> locationID);

    // What the form's controls say. Nothing: they say nothing that could be collected, and the operator was told.
    virtual std::optional<archive::Wish> GetWish() = 0;

    // Archive or audit was chosen: the report is of what was collected before.
    void ForgetReport();

    // The station that is chosen in cmbNode.
    std::optional<archive::Node> ChosenNode() const;
    session::Session* GetSession() const { return session_; }
    archive::Screen GetScreen() const { return screen_; }

  private:
    void Go();
    void Over();

    archive::Screen screen_;
    session::Session* session_;
    DownloadPanel* panel_ = nullptr;
    QComboBox* cmbNode_ = nullptr;
    QWidget* choices_ = nullptr;
    std::int64_t workingOn_ = 0;  // the station of the download in hand
    std::optional<archive::Collected> collected_;
};

}  // namespace desk
