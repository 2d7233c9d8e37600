#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "desk/kit/Page.h"
#include "signals/lists/SignalFetch.h"
#include "signals/lists/SignalWriting.h"

class QLabel;

namespace session {
class Session;
}

namespace desk {

class FetchPanel;
class WriteFrame;

// A screen that reads the signals of a station: of a session's, on the session's line and no other, or with no session
// by a call of its own. On a session's line it also writes what the operator enters for one of them: at once, or
// between two replies of a reading that is under way.
class SignalPage : public Page {
    Q_OBJECT

  protected:
    SignalPage(Desk& desk, const QString& title, session::Session* session) : Page(desk, title), session_(session) {}

    // Takes the form's controls.
    void Build(FetchPanel& panel, WriteFrame& write, QLabel& lblWrite);

    // Reads on the line. When there is none nothing is read, and `end` of FetchOver is not set; of a session's line
    // that is not up nothing is said either.
    using Reading = std::function<signals::FetchEnd(protocols::Conversation& talk)>;
    void Fetch(Reading reading);
    bool IsFetching() const { return fetching_; }
    // A reading or a write has the line, or waits for it.
    bool IsBusy() const { return fetching_ || writing_; }

    virtual std::int64_t LocationID() const = 0;
    // What the screen is doing has changed.
    virtual void ShowButtons() = 0;
    // A reading is over. `reason`: why the line is gone, if it is.
    virtual void FetchOver(std::optional<signals::FetchEnd> end, const std::string& reason) = 0;

    session::Session* GetSession() const { return session_; }

  private:
    void ChooseRow(int row);
    void Write();
    void OnLine(std::function<void(protocols::Conversation& talk)> work, std::function<void()> over,
                const char* noLine);
    void ServeWrite(protocols::Conversation& talk);
    void WriteOver();

    session::Session* session_;
    FetchPanel* panel_ = nullptr;
    WriteFrame* write_ = nullptr;
    QLabel* lblWrite_ = nullptr;
    std::optional<signals::Program> program_;  // that the rows are of
    bool fetching_ = false;
    bool writing_ = false;  // without a reading

    // A value on its way to the signal of a row.
    struct Pending {
        std::size_t row = 0;
        signals::SignalWrite write;
    };
    std::optional<std::size_t> chosen_;  // the row in the write frame
    std::optional<Pending> pending_;
};

}  // namespace desk
