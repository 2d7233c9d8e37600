#include "desk/signals/SignalPage.h"

#include <QLabel>
#include <memory>
#include <utility>

#include "core/MAIN_Module.h"
#include "desk/collection/TakenLine.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Grid.h"
#include "desk/kit/WriteFrame.h"
#include "desk/signals/FetchPanel.h"
#include "session/Session.h"
#include "session/StationLine.h"
#include "session/WriteRequest.h"

namespace desk {

namespace {

using signals::Signal;

constexpr const char* connectFirst = "There is no line to the station. Connect to it in its own window first.";

Writable WritableOf(const Signal& signal) {
    Writable writable;
    writable.description = Text(signals::NameText(signal));
    writable.text = Text(signals::ValueText(signal));
    writable.isSwitch = signal.logical;
    if (signal.logical) {
        const signals::Words words = signals::WordsOf(signal);
        const QString first = Text(words.first);
        const QString other = Text(words.other);
        writable.other = writable.text == first ? other : first;
        writable.choice = Writable::Choice::Input;
        writable.picks = {{first, first}, {other, other}};
    }
    return writable;
}

}  // namespace

void SignalPage::Build(FetchPanel& panel, WriteFrame& write, QLabel& lblWrite) {
    panel_ = &panel;
    write_ = &write;
    lblWrite_ = &lblWrite;
    lblWrite.hide();
    new TakenLine(
        desk_, this,
        [this]() -> std::optional<std::int64_t> { return IsBusy() ? std::optional(LocationID()) : std::nullopt; },
        [&panel](const QString& text) { panel.Status(text.toStdString()); });
    panel.between = [this](protocols::Conversation& talk) { ServeWrite(talk); };
    if (session_ != nullptr) {
        connect(&panel.signalsGrid(), &Grid::RowChosen, this, [this](int row) { Guarded([&] { ChooseRow(row); }); });
    }
    connect(&write, &WriteFrame::Write, this, [this] { Guarded([this] { Write(); }); });
    connect(&write, &WriteFrame::Left, this, [this] {
        chosen_.reset();
        panel_->signalsGrid().setFocus();
    });
}

void SignalPage::OnLine(std::function<void(protocols::Conversation& talk)> work, std::function<void()> over,
                        const char* noLine) {
    session::StationLineOptions way = session::WayOfSignals(session_ != nullptr);
    way.noLine = noLine;
    const reading::Workplace place = desk_.With(*panel_);
    session::OnStationLine(place, session_, way, LocationID(), std::move(work), std::move(over));
}

void SignalPage::Fetch(Reading reading) {
    if (IsBusy()) {
        return;
    }
    fetching_ = true;
    write_->Leave();
    panel_->Clear();
    panel_->Running(true);
    ShowButtons();
    struct Result {
        std::optional<signals::FetchEnd> end;
        std::string reason;
    };
    const auto result = std::make_shared<Result>();
    OnLine(
        [this, reading = std::move(reading), result](protocols::Conversation& talk) {
            program_ = signals::ProgramOf(talk);
            result->end = reading(talk);
            result->reason = talk.line->Reason();
            ServeWrite(talk);
        },
        [this, result] {
            fetching_ = false;
            if (!result->end && panel_->Stopped()) {
                result->end = signals::FetchEnd::Stopped;  // before the station was reached
            }
            panel_->Running(false);
            WriteOver();
            ShowButtons();
            FetchOver(result->end, result->reason);
        },
        "");
}

void SignalPage::ChooseRow(int row) {
    const auto index = static_cast<std::size_t>(row);
    if (pending_ || index >= panel_->Rows().size() || panel_->Rows()[index].name.empty()) {
        return;
    }
    const core::Station& station = session_->GetStation();
    if (!signals::MayWriteSignal(desk_.dbconn, station, panel_->Rows()[index], desk_.shared.currentuser)) {
        Show(signals::lowerLevel);
        return;
    }
    chosen_ = index;
    write_->Open(WritableOf(panel_->Rows()[index]));
}

void SignalPage::Write() {
    if (!chosen_ || pending_) {
        return;
    }
    const auto wanted = signals::CheckEntry(panel_->Rows()[*chosen_], write_->Text().toStdString());
    if (!wanted) {
        write_->Again();
        Show(session::enterProperData);
        return;
    }
    pending_ = Pending{*chosen_, *wanted};
    pending_->write.program = program_;
    write_->Sending(true);
    lblWrite_->setText(session::requestPending);
    lblWrite_->show();
    if (!fetching_) {
        writing_ = true;
        ShowButtons();
        panel_->Running(true, "Sending Request");
        OnLine([this](protocols::Conversation& talk) { ServeWrite(talk); },
               [this] {
                   writing_ = false;
                   panel_->Running(false);
                   WriteOver();
                   ShowButtons();
               },
               connectFirst);
    }
}

void SignalPage::ServeWrite(protocols::Conversation& talk) {
    if (!pending_ || talk.Ended()) {
        return;
    }
    const Pending pending = *std::exchange(pending_, std::nullopt);
    Guarded([&] {
        const signals::WriteResult result = signals::pending_request(talk, pending.write);
        panel_->Rewrite(pending.row, result.signal);
        if (!result.message.empty()) {
            Show(Lines(pending.write.signal.name + ": " + result.message));
        }
    });
    lblWrite_->hide();
    write_->Leave();
}

// A value that never came to the line is not sent later.
void SignalPage::WriteOver() {
    if (pending_) {
        Show(Text(pending_->write.signal.name) + " was not written");
        pending_.reset();
        lblWrite_->hide();
        write_->Leave();
    }
}

}  // namespace desk
