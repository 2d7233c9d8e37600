#include "desk/stations/StationFields.h"

#include <array>

#include "core/Text.h"
#include "stations/StationRules.h"
#include "ui_frmconfigstation.h"

namespace desk {

namespace {

void Set(QLineEdit* field, const std::string& text) {
    field->setText(QString::fromStdString(text));
    field->setCursorPosition(0);
}

std::string Get(const QLineEdit* field) {
    return field->text().toStdString();
}

std::array<PickCombo*, 4> Streams(const Ui::frmconfigstation& ui) {
    return {ui.cmb_stm1, ui.cmb_stm2, ui.cmb_stm3, ui.cmb_stm4};
}

std::vector<std::string> DaysOfMonth() {
    std::vector<std::string> days;
    for (int day = 1; day <= 31; ++day) {
        days.push_back(std::to_string(day));
    }
    return days;
}

}  // namespace

void StationFields::FillLists(core::Database& dbconn) {
    ui_.cmbgroupno->Fill(stations::Groups());
    ui_.cmbcommtype->Fill(stations::CommunicationTypes());
    ui_.cmbprotocol->Fill(stations::Protocols());
    ui_.cmbMode->Fill(stations::Modes());
    ui_.cmbsysvolttype->Fill(stations::SystemTypes());
    ui_.cmb_sel->Fill(stations::Durations());
    ui_.cmbweekly->Fill(stations::Weekdays());
    ui_.cmbmonthy->Fill(DaysOfMonth());
    for (PickCombo* stream : Streams(ui_)) {
        stream->Fill(stations::StreamMethods());
    }
    ui_.cmbrtumake->Fill(stations::Makes(dbconn));
    ui_.cmbcommport->Fill(stations::Comports(dbconn));
}

void StationFields::FillModels(core::Database& dbconn) {
    ui_.cmbmodelno->Fill(stations::Models(dbconn, core::Trim(ui_.cmbrtumake->Text())));
}

void StationFields::Show(const stations::StationRecord& record) {
    ui_.lbllocation->setText(record.locationId == 0 ? QString() : QString::number(record.locationId));
    Set(ui_.txtconsumer, record.consumer);
    Set(ui_.txtpresentallocaton, record.presentallocation);
    ui_.cmbrtumake->Text(record.rtumake);
    ui_.cmbmodelno->Text(record.modelno);
    ui_.cmbcommtype->Text(record.comtype);
    ui_.cmbsysvolttype->Text(record.systemtype);
    Set(ui_.txtvoltlimit, record.voltlimit);
    Set(ui_.txtdelay, record.delaytime);
    Set(ui_.txtIPAdr, record.ip);
    ui_.cmbcommport->Text(record.comport);
    Set(ui_.cmbbaudrate, record.baudrate);
    Set(ui_.txtphoneno, record.phoneno);
    ui_.cmbprotocol->Text(record.protocol);
    Set(ui_.txtslaveaddres, record.slaveaddress);
    ui_.cmbgroupno->Text(record.groupno);
    (record.aga3_7 ? ui_.optAga3 : ui_.optAga7)->setChecked(true);
    (record.aga8_fpv ? ui_.optAga8 : ui_.optFpv)->setChecked(true);
    (record.Gross_Detail ? ui_.optGross : ui_.optDetail)->setChecked(true);
    ui_.chkgasauto->setChecked(record.gasauto);
    Set(ui_.txtMgoQty, record.Mgo_Qty);
    Set(ui_.txtConPr, record.Cont_Pr);
    ui_.cmb_MultiNO->Text(record.No_Stream);
    for (std::size_t i = 0; i < record.stream.size(); ++i) {
        Streams(ui_)[i]->Text(record.stream[i]);
    }
    ui_.cmbMode->Text(record.Mode);
    ui_.chkframing->setChecked(record.standardFraming);
    ui_.chkpacing->setChecked(record.pacing == core::Pacing::Prompt);
    ui_.chkwordorder->setChecked(record.wordOrder == core::WordOrder::LowFirst);
    ShowSchedule(record);
    (record.rtubits ? ui_.optf1 : ui_.optf2)->setChecked(true);
    ui_.chkrtubits->setChecked(record.rtubits);
    Set(ui_.txteto, record.emailto);
    Set(ui_.txtecc, record.emailcc);
    Set(ui_.txtebcc, record.emailbcc);
    Set(ui_.txtesub, record.emailsubject);
    ui_.chk_MBConfig->setChecked(record.MB_CONFIG);
}

void StationFields::ShowSchedule(const stations::StationRecord& record) {
    ui_.cmb_sel->Text(record.duration);
    ui_.cmbweekly->Text(ui_.cmbweekly->itemText(record.weekday - 1).toStdString());
    ui_.cmbmonthy->Text(std::to_string(record.monthday));
    ui_.DT_time->setTime(QTime::fromString(QString::fromStdString(record.contracthour), "hh:mm"));
}

stations::StationRecord StationFields::Read() const {
    stations::StationRecord record;
    record.locationId = ui_.lbllocation->text().toLongLong();
    record.consumer = Get(ui_.txtconsumer);
    record.presentallocation = Get(ui_.txtpresentallocaton);
    record.rtumake = ui_.cmbrtumake->Text();
    record.modelno = ui_.cmbmodelno->Text();
    record.comtype = ui_.cmbcommtype->Text();
    record.systemtype = ui_.cmbsysvolttype->Text();
    record.voltlimit = Get(ui_.txtvoltlimit);
    record.delaytime = Get(ui_.txtdelay);
    record.ip = Get(ui_.txtIPAdr);
    record.comport = ui_.cmbcommport->Text();
    record.baudrate = Get(ui_.cmbbaudrate);
    record.phoneno = Get(ui_.txtphoneno);
    record.protocol = ui_.cmbprotocol->Text();
    record.slaveaddress = Get(ui_.txtslaveaddres);
    record.groupno = ui_.cmbgroupno->Text();
    record.aga3_7 = ui_.optAga3->isChecked();
    record.aga8_fpv = ui_.optAga8->isChecked();
    record.Gross_Detail = ui_.optGross->isChecked();
    record.gasauto = ui_.chkgasauto->isChecked();
    record.Mgo_Qty = Get(ui_.txtMgoQty);
    record.Cont_Pr = Get(ui_.txtConPr);
    record.No_Stream = ui_.cmb_MultiNO->Text();
    for (std::size_t i = 0; i < record.stream.size(); ++i) {
        record.stream[i] = Streams(ui_)[i]->Text();
    }
    record.Mode = ui_.cmbMode->Text();
    record.standardFraming = ui_.chkframing->isChecked();
    record.pacing = ui_.chkpacing->isChecked() ? core::Pacing::Prompt : core::Pacing::Stated;
    record.wordOrder = ui_.chkwordorder->isChecked() ? core::WordOrder::LowFirst : core::WordOrder::HighFirst;
    record.duration = ui_.cmb_sel->Text();
    record.weekday = ui_.cmbweekly->findText(ui_.cmbweekly->currentText()) + 1;
    record.monthday = static_cast<int>(core::Val(ui_.cmbmonthy->Text()));
    record.contracthour = ui_.DT_time->time().toString("hh:mm").toStdString();
    record.rtubits = ui_.optf1->isChecked();
    record.typeInteger = ui_.optint->isChecked();
    record.emailto = Get(ui_.txteto);
    record.emailcc = Get(ui_.txtecc);
    record.emailbcc = Get(ui_.txtebcc);
    record.emailsubject = Get(ui_.txtesub);
    record.MB_CONFIG = ui_.chk_MBConfig->isChecked();
    return record;
}

stations::RegisterSize StationFields::Registers() const {
    if (ui_.optint->isChecked()) {
        return stations::TypeInteger();
    }
    return ui_.optf1->isChecked() ? stations::TypeFloatOneRegister() : stations::TypeFloatTwoRegisters();
}

}  // namespace desk
