#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "session/Session.h"
#include "support/CollectionDesk.h"
#include "support/OddDevices.h"

namespace support {

// What a session told its screen.
struct RecordingView final : session::SessionView {
    std::vector<std::string> status;
    std::vector<std::string> boxes;
    std::vector<std::string> requests;
    std::vector<std::string> ends;
    std::vector<std::pair<int, int>> progress;
    int refreshed = 0;
    int drawn = 0;
    std::vector<std::string> sent;  // lines of bytes that went out
    std::function<void()> onRefreshed;
    std::function<void()> onSent;

    void Status(const std::string& text) override { status.push_back(text); }
    void Box(const std::string& text) override { boxes.push_back(text); }
    void Lamp(const std::string& lamp, const std::string& bytes) override {
        if (lamp == "TX") {
            sent.push_back(bytes);
            if (onSent) {
                onSent();
            }
        }
    }
    void StateChanged() override {}
    void Request(const std::string& text) override { requests.push_back(text); }
    void Progress(int done, int total) override { progress.emplace_back(done, total); }
    void Storing(bool) override {}
    void Drawn() override { ++drawn; }
    void Refreshed() override {
        ++refreshed;
        if (onRefreshed) {
            onRefreshed();
        }
    }
    void Ended(const std::string& reason, bool) override { ends.push_back(reason); }
};

// A desk with one session in front of a simulated field, on the virtual clock. What the operator does while the session
// runs is put behind a moment or a poll.
class SessionDesk : public CollectionDesk {
  public:
    SessionDesk() { shared.currentuser = "WARDEN"; }

    RecordingView view;
    std::int64_t locationID = 0;
    std::unique_ptr<session::Session> session;

    session::Session& Open(const demo::DemoStation& station, const fieldsim::FieldOptions& options = {}) {
        locationID = demo::AddStation(dbconn, station);
        field = &OpenField(options);
        return Reopen();
    }
    session::Session& Reopen() {
        session = std::make_unique<session::Session>(place, view, locationID);
        return *session;
    }

    // Connects; returns when the line is up or the session is over.
    void Connect() {
        session->Connect();
        RunUntil([this] { return session->GetState() != session::State::Connecting; });
        RunUntil([this] { return session->GetState() != session::State::Disconnecting; });
    }
    // Polls until the session is over.
    void GetData() {
        session->GetData();
        RunUntil([this] { return session->GetState() == session::State::Idle; });
    }

    // Does `work` behind the n-th refresh of the values from now, and disconnects behind the last of them.
    void Behind(std::vector<std::function<void()>> works) {
        auto next = std::make_shared<std::size_t>(0);
        view.onRefreshed = [this, next, works = std::move(works)] {
            const std::size_t n = (*next)++;
            if (n < works.size()) {
                if (works[n]) {
                    works[n]();
                }
            } else {
                session->Disconnect();
            }
        };
    }

    session::RowPlace Place(const char* aga, const char* description) const {
        return session->Parameters().Find(aga, description).value();
    }
    double Stored(const char* description) {
        return dbconn
            .First("select lastvalue from configdata_detail where locationID=? and description=?",
                   {locationID, description})
            .value()[0]
            .Number();
    }
    std::vector<std::string> Trail() { return dbconn.Texts("select * from TTS_table"); }

    fieldsim::Field* field = nullptr;
};

}  // namespace support
