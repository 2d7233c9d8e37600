#pragma once

#include <QObject>
#include <cstddef>
#include <optional>
#include <string>

#include "core/Logs.h"
#include "session/ParameterSet.h"

class QCheckBox;

namespace core {
struct MAIN_Module;
}

namespace session {
class Session;
class SessionView;
}  // namespace session

namespace desk {

class LiveGrids;
class MultipleWrite;
class ParameterTabs;
class WriteFrame;

// From a row that is chosen to the value that the session is asked to write: one by the frame, several by the copy of
// the composition, the clock by its command.
class LiveWriting final : public QObject {
    Q_OBJECT

  public:
    struct Controls {
        ParameterTabs& tabs;
        WriteFrame& write;
        MultipleWrite& multiple;
        QCheckBox& chkMultiple;
    };

    LiveWriting(session::Session& session, session::SessionView& view, const core::MAIN_Module& shared,
                core::Logs& logs, const LiveGrids& grids, const Controls& controls);

    void SetTime();
    // The copy of the composition comes up, or goes.
    void Multiple();
    // Nothing is entered any more.
    void Leave();

  private:
    void Guarded(void (LiveWriting::*work)());
    bool MayWrite();
    void ChooseRow(std::size_t group, std::size_t row);
    void ChooseMultipleRow(int row);
    void OpenWriteFrame(const session::RowPlace& place, const QString& text);
    void Write();
    bool MovesOutput(const session::RowPlace& place) const;
    void AskOutput(const session::RowPlace& place, const std::string& text);
    void SendMultiple();
    void FrameLeft();

    session::Session& session_;
    session::SessionView& view_;
    const core::MAIN_Module& shared_;
    core::Logs& logs_;
    const LiveGrids& grids_;
    ParameterTabs& tabs_;
    WriteFrame& write_;
    MultipleWrite& multiple_;
    QCheckBox& chkMultiple_;
    std::optional<session::RowPlace> place_;  // the row in the write frame
    std::optional<int> multipleRow_;          // or the one of the composition's copy
};

}  // namespace desk
