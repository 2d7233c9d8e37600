#include "desk/stations/StationFieldRules.h"

#include "core/Text.h"
#include "ui_frmconfigstation.h"

namespace desk {

namespace {

void Choose(stations::Metering metering, Ui::frmconfigstation& ui) {
    if (metering != stations::Metering::Unchanged) {
        (metering == stations::Metering::Aga3 ? ui.optAga3 : ui.optAga7)->setChecked(true);
    }
}

void ShowMetering(const stations::ModelRule& rule, Ui::frmconfigstation& ui) {
    ui.lblaga3_7->setVisible(!rule.meteringHidden);
    ui.frameaga3_7->setVisible(!rule.meteringHidden);
    ui.lb_MultiNo->setVisible(rule.streamsShown);
    ui.cmb_MultiNO->setVisible(rule.streamsShown);
    ui.fr_Mstream->setVisible(rule.streamsShown);
    ui.frm_shed->setEnabled(rule.scheduleEnabled);
    ui.chk_MBConfig->setEnabled(rule.mbConfigEnabled);
}

void ShowMode(bool visible, Ui::frmconfigstation& ui) {
    ui.lblMode->setVisible(visible);
    ui.cmbMode->setVisible(visible);
    ui.chkwordorder->setVisible(visible);
    ShowFraming(ui);
}

void ShowLine(const stations::CommunicationRule& rule, bool baudVisible, Ui::frmconfigstation& ui) {
    ui.lblphoneno->setVisible(rule.phoneVisible);
    ui.txtphoneno->setVisible(rule.phoneVisible);
    ui.lblIPAdr->setVisible(rule.ipVisible);
    ui.txtIPAdr->setVisible(rule.ipVisible);
    ui.lblcommport->setVisible(rule.portVisible);
    ui.cmbcommport->setVisible(rule.portVisible);
    ui.cmdportsetting->setVisible(rule.settingVisible);
    ui.cmdportsetting->setEnabled(rule.settingEnabled);
    ui.lblbaudrate->setVisible(baudVisible);
    ui.cmbbaudrate->setVisible(baudVisible);
}

}  // namespace

void Apply(const stations::ModelRule& rule, Ui::frmconfigstation& ui) {
    if (!rule.cmb_stm1.empty()) {
        ui.cmb_stm1->Text(rule.cmb_stm1);
    }
    for (PickCombo* stream : {ui.cmb_stm2, ui.cmb_stm3, ui.cmb_stm4}) {
        stream->Text(rule.cmb_stm2to4);
    }
    Choose(rule.metering, ui);
    ShowMetering(rule, ui);
    ui.frameaga3_7->setEnabled(!rule.meteringHidden);
    if (rule.isCW) {
        // Its Save makes the map of its table, whatever was laid out by hand. The other models fix the box as it is.
        ui.chk_MBConfig->setChecked(false);
    }
    if (rule.protocol) {
        ui.cmbprotocol->Text(core::TextOf(*rule.protocol));
    }
    ui.cmbprotocol->Lock(rule.protocolLocked);
    if (!rule.streamCounts.empty()) {
        ui.cmb_MultiNO->Fill(rule.streamCounts);
    }
    if (!rule.No_Stream.empty()) {
        ui.cmb_MultiNO->Text(rule.No_Stream);
    }
    ShowStreams(ui);
    if (rule.isMicro) {
        ShowMode(false, ui);
        ui.cmdsetregister->setEnabled(false);
        ui.cmdsetregister->setVisible(false);
    }
}

void Apply(const stations::CommunicationRule& rule, Ui::frmconfigstation& ui) {
    ui.txtphoneno->clear();
    ShowLine(rule, true, ui);
    if (rule.baud != stations::Baud::Unchanged) {
        ui.cmbbaudrate->setEnabled(true);
    }
    if (rule.baud == stations::Baud::Radio) {
        ui.cmbbaudrate->setText("19200,N,8,1");
    }
    ui.txtdelay->setText(QString::fromStdString(rule.delaytime));
}

void Apply(const stations::ProtocolRule& rule, Ui::frmconfigstation& ui) {
    ShowMode(rule.modeVisible, ui);
    if (rule.mode) {
        ui.cmbMode->Text(core::TextOf(*rule.mode));
    }
    ui.chk_MBConfig->setVisible(rule.mbConfigVisible);
    if (!rule.setRegisterUnchanged) {
        ui.cmdsetregister->setVisible(rule.setRegisterVisible);
        ui.cmdsetregister->setEnabled(rule.setRegisterVisible);
    }
    if (rule.floatTwoRegisters) {
        ui.optf2->setChecked(true);
    }
    ui.chkgasauto->setChecked(false);
    ui.chkrtubits->setChecked(false);
    ShowComposition(ui);
}

void ShowWhatBelongs(const stations::StationRecord& record, Ui::frmconfigstation& ui) {
    const stations::ModelRule model = stations::RuleOfModel(record.modelno);
    ShowMetering(model, ui);
    if (!model.streamCounts.empty()) {
        ui.cmb_MultiNO->Fill(model.streamCounts);
    }
    ShowStreams(ui);
    const stations::CommunicationRule line = stations::RuleOfCommunication(record.comtype);
    ShowLine(line, !line.lineHiddenOnDisplay, ui);
    if (line.lineHiddenOnDisplay) {
        ui.lblcommport->hide();
        ui.cmbcommport->hide();
    }
    const stations::ProtocolRule protocol = stations::RuleOfProtocol(record.protocol);
    ShowMode(protocol.modeVisible && !model.isMicro, ui);
    ui.chk_MBConfig->setVisible(protocol.mbConfigVisible);
    ui.cmdsetregister->hide();
    ShowSchedule(ui);
    ShowComposition(ui);
}

void ShowStreams(Ui::frmconfigstation& ui) {
    const int count = static_cast<int>(core::Val(ui.cmb_MultiNO->Text()));
    int number = 0;
    for (QWidget* stream : {ui.fr_Stm1, ui.fr_Stm2, ui.fr_Stm3, ui.fr_Stm4}) {
        stream->setVisible(++number <= count);
    }
}

void ShowFraming(Ui::frmconfigstation& ui) {
    const bool isAscii = core::ProtocolOf(ui.cmbprotocol->Text()) == core::Protocol::Modbus &&
                         core::FramingOf(ui.cmbMode->Text()) == core::Framing::Ascii;
    ui.chkframing->setVisible(isAscii && !ui.cmbMode->isHidden());
}

void ShowSchedule(Ui::frmconfigstation& ui) {
    const QString option = ui.cmb_sel->currentText();
    ui.fra_schSet->setVisible(ui.cmb_sel->findText(option) > 0);
    ui.cmbweekly->setVisible(option == "Weekly");
    ui.cmbmonthy->setVisible(option == "Monthly");
    ui.lblday->setVisible(option == "Weekly" || option == "Monthly");
}

void ShowComposition(Ui::frmconfigstation& ui) {
    const bool isAga8 = ui.optAga8->isChecked();
    ui.framegross->setEnabled(isAga8);
    ui.chkgasauto->setVisible(isAga8 && ui.optDetail->isChecked() &&
                              core::ProtocolOf(ui.cmbprotocol->Text()) == core::Protocol::Bsap);
}

void LockMap(Ui::frmconfigstation& ui, bool locked) {
    for (PickCombo* field : {ui.cmbprotocol, ui.cmb_MultiNO, ui.cmb_stm1, ui.cmb_stm2, ui.cmb_stm3, ui.cmb_stm4}) {
        field->Lock(locked);
    }
    for (QWidget* field : std::initializer_list<QWidget*>{ui.cmbmodelno, ui.cmbgroupno, ui.optint, ui.optf1}) {
        field->setEnabled(!locked);
    }
}

}  // namespace desk
