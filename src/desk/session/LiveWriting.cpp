#include "desk/session/LiveWriting.h"

#include <QCheckBox>

#include "core/MAIN_Module.h"
#include "core/Text.h"
#include "desk/kit/Boxes.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Grid.h"
#include "desk/kit/WriteFrame.h"
#include "desk/session/LiveGrids.h"
#include "desk/session/MultipleWrite.h"
#include "desk/session/ParameterTabs.h"
#include "session/Session.h"
#include "session/ValueText.h"

namespace desk {

LiveWriting::LiveWriting(session::Session& session, session::SessionView& view, const core::MAIN_Module& shared,
                         core::Logs& logs, const LiveGrids& grids, const Controls& controls)
    : session_(session),
      view_(view),
      shared_(shared),
      logs_(logs),
      grids_(grids),
      tabs_(controls.tabs),
      write_(controls.write),
      multiple_(controls.multiple),
      chkMultiple_(controls.chkMultiple) {
    connect(&tabs_, &ParameterTabs::RowChosen, this, &LiveWriting::ChooseRow);
    connect(&multiple_, &MultipleWrite::RowChosen, this, &LiveWriting::ChooseMultipleRow);
    connect(&multiple_, &MultipleWrite::Send, this, [this] { Guarded(&LiveWriting::SendMultiple); });
    connect(&multiple_, &MultipleWrite::Left, this, [this] {
        chkMultiple_.setChecked(false);
        write_.Leave();
    });
    connect(&write_, &WriteFrame::Write, this, [this] { Guarded(&LiveWriting::Write); });
    connect(&write_, &WriteFrame::Left, this, &LiveWriting::FrameLeft);
}

void LiveWriting::Guarded(void (LiveWriting::*work)()) {
    try {
        (this->*work)();
    } catch (const std::exception& failure) {
        logs_.WriteRtuErr(failure.what());
        view_.Request(failure.what());
    }
}

void LiveWriting::Leave() {
    write_.Leave();
    multiple_.Leave();
}

void LiveWriting::SetTime() {
    if (MayWrite()) {
        session_.AskTime();
    }
}

bool LiveWriting::MayWrite() {
    if (shared_.rights.rightSetup) {
        return true;
    }
    view_.Request("User Not Granted Configuration Rights");
    return false;
}

void LiveWriting::ChooseRow(std::size_t group, std::size_t row) {
    if (!session_.PollingActive() || session_.WritePending() || !MayWrite()) {
        return;
    }
    if (session_.GetStation().protocol == core::Protocol::Quantum) {
        view_.Request("A Quantum unit takes no values");
        return;
    }
    multipleRow_.reset();
    const session::RowPlace place{group, row};
    OpenWriteFrame(place, Text(session::ValueCell(session_.Parameters().At(place), session_.GetStation().isCW)));
}

void LiveWriting::ChooseMultipleRow(int row) {
    if (session_.PollingActive() && !session_.WritePending() && MayWrite()) {
        multipleRow_ = row;
        OpenWriteFrame({*session::GroupOf("GC"), static_cast<std::size_t>(row)}, multiple_.Text(row));
    }
}

void LiveWriting::OpenWriteFrame(const session::RowPlace& place, const QString& text) {
    const session::ParameterRow& row = session_.Parameters().At(place);
    const bool isSwitch = row.kind == core::ValueKind::Logical;
    const bool isIo = isSwitch && place.group == session::GroupOf("IO");
    Writable writable;
    writable.description = Text(row.Description);
    writable.text = text;
    writable.isSwitch = isSwitch;
    writable.other = Text(session::ToggledText(session_.GetStation().isCW, row.Description, text.toStdString()));
    writable.choice = !isIo                                     ? Writable::Choice::None
                      : writable.description.contains("Output") ? Writable::Choice::Output
                                                                : Writable::Choice::Input;
    writable.present = row.lastvalue == 0 ? "0" : "1";
    place_ = place;
    view_.Request("");
    tabs_.setEnabled(false);
    write_.Open(writable);
}

void LiveWriting::Write() {
    if (!place_) {
        return;
    }
    const session::RowPlace place = *place_;
    const std::string text = write_.Text().toStdString();
    const bool asks = !multipleRow_ && MovesOutput(place);
    const std::string refusal = multipleRow_ || asks ? session_.Check(place, text) : session_.AskWrite(place, text);
    if (refusal == session::enterProperData) {
        write_.Again();
        view_.Box(refusal);
        return;
    }
    const auto multipleRow = multipleRow_;
    write_.Leave();
    if (!refusal.empty()) {
        view_.Request(refusal);
    } else if (multipleRow) {
        multiple_.Enter(*multipleRow, Text(text));
    } else if (asks) {
        AskOutput(place, text);
    }
}

// What a station drives by it moves at once.
bool LiveWriting::MovesOutput(const session::RowPlace& place) const {
    const bool drives = place.group == session::GroupOf("IO") || place.group == session::GroupOf("PID");
    const QString description = Text(session_.Parameters().At(place).Description);
    return drives && (description.contains("Output") || description.contains("Manual Demand"));
}

void LiveWriting::AskOutput(const session::RowPlace& place, const std::string& text) {
    const session::ParameterRow& row = session_.Parameters().At(place);
    const bool isCW = session_.GetStation().isCW;
    session::ParameterRow then = row;
    then.lastvalue = core::EnteredNumber(text).value_or(0);
    const bool picked = row.kind == core::ValueKind::Logical && core::EnteredNumber(text);
    const QString question =
        QString("%1 of %2: change %3 to %4?")
            .arg(Text(row.Description), Text(session_.GetStation().consumer), Text(session::ValueCell(row, isCW)),
                 Text(picked ? session::ValueCell(then, isCW) : text));
    AskBox(&tabs_, question, "Write an output", [this, stream = session_.StreamNo(), place, text] {
        // Behind the question the stream may be another one, with another row in this place.
        const std::string refusal =
            stream == session_.StreamNo() ? session_.AskWrite(place, text) : "Another stream was chosen: not written";
        if (!refusal.empty()) {
            view_.Request(refusal);
        }
    });
}

void LiveWriting::FrameLeft() {
    place_.reset();
    multipleRow_.reset();
    tabs_.setEnabled(true);
    if (!multiple_.isHidden()) {
        multiple_.setFocus();
    } else if (Grid* grid = tabs_.GridInFront()) {
        grid->setFocus();
    }
}

void LiveWriting::Multiple() {
    const bool wanted = chkMultiple_.isChecked() || multiple_.isHidden();
    if (!wanted || !session_.PollingActive() || session_.WritePending() || !MayWrite()) {
        chkMultiple_.setChecked(false);
        multiple_.Leave();
        return;
    }
    chkMultiple_.setChecked(true);
    multiple_.copyGrid(LiveGrids::columns, grids_.RowsOf(*session::GroupOf("GC")));
}

// What nobody changed is not written: its text has fewer digits than the station's value.
void LiveWriting::SendMultiple() {
    std::vector<session::Session::Entry> entries;
    for (int row = 0; row < multiple_.Rows(); ++row) {
        if (multiple_.Changed(row)) {
            entries.push_back(
                {{*session::GroupOf("GC"), static_cast<std::size_t>(row)}, multiple_.Text(row).toStdString()});
        }
    }
    const std::string refusal = session_.AskMultipleWrite(entries);
    multiple_.Leave();
    if (!refusal.empty()) {
        view_.Request(refusal);
    }
}

}  // namespace desk
