// The register map of the station that is added or edited, as its form brings it about.

#include "core/Feedback.h"
#include "core/MAIN_Module.h"
#include "core/Station.h"
#include "core/Text.h"
#include "core/Users.h"
#include "desk/kit/Navigator.h"
#include "desk/session/frmparalist.h"
#include "desk/stations/frmconfigstation.h"
#include "stations/StationRegister.h"
#include "ui_frmconfigstation.h"

namespace desk {

void frmconfigstation::SetRegister() {
    if (!SettleAll()) {
        return;
    }
    const stations::StationRecord record = fields_.Read();
    if (core::Trim(record.protocol).empty()) {
        Show("Select Protocol ");
    } else if (record.MB_CONFIG || core::ProtocolOf(record.protocol) != core::Protocol::Modbus) {
        OpenRegisterEditor(record);
    } else {
        stations::SetRegister(desk_.dbconn, record, {state_ == State::Adding, fields_.Registers()});
        desk_.feedback.Status("Registers are set");
    }
}

void frmconfigstation::OpenRegisterEditor(const stations::StationRecord& record) {
    const bool isNewStation = state_ == State::Adding;
    const QStringList fixed = WhatFixesTheMap();
    RegisterStation station;
    station.consumer = record.consumer;
    station.edited.choices = stations::ChoicesOf(record, {isNewStation, fields_.Registers()});
    station.edited.laidOut = isNewStation && laidOut_ == fixed;
    station.tabs = {.isCW = core::IsCwModel(record.modelno),
                    .isAga3 = record.aga3_7,
                    .aga8_fpv = record.aga8_fpv,
                    .Gross_Detail = record.Gross_Detail,
                    .superUser = core::IsSuperUser(desk_.shared.currentuser),
                    .quantum = core::ProtocolOf(record.protocol) == core::Protocol::Quantum,
                    .drs = stations::DrsOf(record.modelno)};
    auto* editor = new frmparalist(desk_, station);
    connect(editor, &frmparalist::Stored, this, [this, fixed] {
        laidOut_ = fixed;
        EnableSave();
        ui_->cmdsave->setFocus();
        desk_.feedback.Status("Registers are set");
    });
    desk_.navigator.Open(editor);
}

QStringList frmconfigstation::WhatFixesTheMap() const {
    const stations::StationRecord record = fields_.Read();
    const stations::RegisterSize registers = fields_.Registers();
    return {QString::fromStdString(record.modelno),   QString::fromStdString(record.protocol),
            QString::fromStdString(record.groupno),   QString::number(record.aga3_7),
            QString::number(registers.registerCount), QString::fromStdString(registers.registerTypeName)};
}

void frmconfigstation::AllocationReset() {
    if (state_ != State::Editing || ui_->chkrtubits->isChecked()) {
        return;
    }
    const std::int64_t locationId = ui_->lbllocation->text().toLongLong();
    Ask("Changes will Reset your present alllocation of addresses \nDo you want to continue?",
        [this, locationId] { Guarded([&] { stations::ResetAllocation(desk_.dbconn, locationId); }); });
}

}  // namespace desk
