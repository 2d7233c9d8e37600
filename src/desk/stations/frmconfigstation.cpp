#include "desk/stations/frmconfigstation.h"

#include <QKeyEvent>
#include <QRegularExpressionValidator>

#include "core/Feedback.h"
#include "core/Text.h"
#include "desk/collection/ByHand.h"
#include "desk/kit/Look.h"
#include "desk/stations/LineReset.h"
#include "desk/stations/StationFieldRules.h"
#include "desk/stations/frmportsetting.h"
#include "stations/StationRegister.h"
#include "ui_frmconfigstation.h"

namespace desk {

namespace {

// What the operator sees of a Save that takes its time.
class PleaseWait {
  public:
    explicit PleaseWait(QLabel& label) : label_(label) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        label_.setText("Please Wait....");
        label_.show();
        label_.repaint();
    }
    ~PleaseWait() {
        label_.hide();
        QApplication::restoreOverrideCursor();
    }
    PleaseWait(const PleaseWait&) = delete;
    PleaseWait& operator=(const PleaseWait&) = delete;

    void Done() { label_.setText("Done..."); }

  private:
    QLabel& label_;
};

void Accept(QLineEdit* field, const char* pattern) {
    field->setValidator(new QRegularExpressionValidator(QRegularExpression(pattern), field));
}

// A field that is not seen keeps its room, so that no other one moves.
void KeepRoom(QWidget* field) {
    QSizePolicy policy = field->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    field->setSizePolicy(policy);
}

}  // namespace

frmconfigstation::frmconfigstation(Desk& desk)
    : Page(desk, "Configure Station"), ui_(std::make_unique<Ui::frmconfigstation>()), fields_(*ui_) {
    ui_->setupUi(this);
    Title("Configure Station");
    Prepare();
    ConnectCommands();
    ConnectRules();
    Show(stations::StationRecord());
    Enter(State::Browse);
    Guarded([this] {
        fields_.FillLists(desk_.dbconn);
        FillGrid(0);
    });
}

frmconfigstation::~frmconfigstation() = default;

void frmconfigstation::Prepare() {
    ui_->Grid->FormatString(">Location|<Consumer");
    ui_->lbllocation->setFont(Larger(font(), 1, true));
    ui_->lb_wait->hide();
    ui_->chkemail->setChecked(false);
    Accept(ui_->txtslaveaddres, "[0-9]*");
    Accept(ui_->cmbgroupno->lineEdit(), "[0-4]*");
    for (QLineEdit* number :
         {ui_->txtpresentallocaton, ui_->txtMgoQty, ui_->txtConPr, ui_->txtvoltlimit, ui_->txtdelay}) {
        Accept(number, "-?[0-9]*\\.?[0-9]*");
    }
    for (QWidget* field : std::initializer_list<QWidget*>{
             ui_->cmbcommport, ui_->cmdportsetting, ui_->cmbbaudrate, ui_->txtphoneno, ui_->cmbMode, ui_->chkgasauto,
             ui_->chk_MBConfig, ui_->cmdsetregister, ui_->frameaga3_7, ui_->cmb_MultiNO, ui_->fr_Mstream,
             ui_->fra_schSet, ui_->frmmail}) {
        KeepRoom(field);
    }
}

void frmconfigstation::ConnectCommands() {
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    const auto command = [this](QPushButton* button, void (frmconfigstation::*work)()) {
        connect(button, &QPushButton::clicked, this, [this, work] { Guarded([&] { (this->*work)(); }); });
    };
    command(ui_->cmdadd, &frmconfigstation::Add);
    command(ui_->cmdedit, &frmconfigstation::Edit);
    command(ui_->cmdsave, &frmconfigstation::Save);
    command(ui_->cmdCancel, &frmconfigstation::Cancel);
    command(ui_->cmddelete, &frmconfigstation::Delete);
    command(ui_->cmdportsetting, &frmconfigstation::PortSetting);
    command(ui_->cmdsetregister, &frmconfigstation::SetRegister);
    connect(ui_->Grid, &Grid::RowSelected, this, [this] { Guarded([this] { ShowSelected(); }); });
    connect(ui_->chkemail, &QCheckBox::toggled, this, &frmconfigstation::ShowMail);
    connect(ui_->chkrtubits, &QCheckBox::clicked, this, &frmconfigstation::AllocationReset);
}

template <typename Signal, typename Control>
void frmconfigstation::OnChange(Control* control, Signal signal, std::function<void()> rule) {
    connect(control, signal, this, [this, rule = std::move(rule)] {
        if (!showing_) {
            rule();
        }
    });
}

void frmconfigstation::ConnectRules() {
    Ui::frmconfigstation& ui = *ui_;
    const auto model = [&ui] { Apply(stations::RuleOfModel(ui.cmbmodelno->Text()), ui); };
    OnChange(ui.cmbmodelno, &QComboBox::activated, model);
    OnChange(ui.cmbcommtype, &QComboBox::currentTextChanged,
             [&ui] { Apply(stations::RuleOfCommunication(ui.cmbcommtype->Text()), ui); });
    OnChange(ui.cmbprotocol, &QComboBox::currentTextChanged, [this, &ui] {
        Apply(stations::RuleOfProtocol(ui.cmbprotocol->Text()), ui);
        EnableSave();
    });
    OnChange(ui.cmbMode, &QComboBox::currentTextChanged, [&ui] { ShowFraming(ui); });
    OnChange(ui.cmb_MultiNO, &QComboBox::currentTextChanged, [&ui] { ShowStreams(ui); });
    OnChange(ui.cmb_sel, &QComboBox::currentTextChanged, [&ui] { ShowSchedule(ui); });
    OnChange(ui.chk_MBConfig, &QCheckBox::toggled, [this, &ui] {
        ui.cmdsetregister->setVisible(ui.chk_MBConfig->isChecked());
        EnableSave();
    });
    for (PickCombo* field : {ui.cmbmodelno, ui.cmbgroupno}) {
        OnChange(field, &QComboBox::currentTextChanged, [this] { EnableSave(); });
    }
    for (QRadioButton* option : {ui.optAga3, ui.optint, ui.optf1, ui.optf2}) {
        OnChange(option, &QRadioButton::toggled, [this] { EnableSave(); });
    }
    for (QRadioButton* option : {ui.optAga8, ui.optGross}) {
        OnChange(option, &QRadioButton::toggled, [&ui] { ShowComposition(ui); });
    }
    OnChange(ui.cmbrtumake, &QComboBox::activated, [this] { Guarded([this] { fields_.FillModels(desk_.dbconn); }); });
    for (PickCombo* field : findChildren<PickCombo*>()) {
        if (field != ui.cmbgroupno) {
            connect(field, &PickCombo::Left, this, [this, field] { FieldLeft(field); });
        }
    }
}

void frmconfigstation::Enter(State state) {
    state_ = state;
    const bool browses = state == State::Browse;
    const bool hasStation = ui_->Grid->Rows() > 0;
    ui_->frmdata->setEnabled(!browses);
    ui_->cmdportsetting->setEnabled(!browses);
    ui_->frameaga3_7->setEnabled(state == State::Adding);
    ui_->frm_shed->setEnabled(!browses && stations::RuleOfModel(ui_->cmbmodelno->Text()).scheduleEnabled);
    ui_->chkrtubits->setEnabled(!browses);
    LockMap(*ui_, state == State::Editing);
    ui_->Grid->setEnabled(browses);
    ui_->cmdadd->setEnabled(browses);
    ui_->cmdedit->setEnabled(browses && hasStation);
    ui_->cmddelete->setEnabled(browses && hasStation);
    ui_->cmdClose->setEnabled(browses);
    ui_->cmdCancel->setEnabled(!browses);
    ui_->cmdadd->setDefault(browses);
    ui_->cmdsave->setDefault(!browses);
    EnableSave();
    ShowMail();
}

// The map of a station that is laid out by hand must stand before the station is saved, and fit it.
void frmconfigstation::EnableSave() {
    const bool waits = stations::RuleOfProtocol(ui_->cmbprotocol->Text()).saveWaitsForRegisters &&
                       ui_->chk_MBConfig->isChecked() && !storedMB_CONFIG_ && laidOut_ != WhatFixesTheMap();
    ui_->cmdsave->setEnabled(state_ != State::Browse && !waits);
}

// In Browse the addresses can be looked at.
void frmconfigstation::ShowMail() {
    ui_->frmmail->setVisible(ui_->chkemail->isChecked());
    ui_->frmmail->setEnabled(ui_->chkemail->isChecked() && state_ != State::Browse);
}

void frmconfigstation::FillGrid(std::int64_t locationId) {
    std::vector<QStringList> rows;
    int selected = 0;
    for (const stations::StationEntry& entry : stations::ListStations(desk_.dbconn)) {
        if (entry.locationId == locationId) {
            selected = static_cast<int>(rows.size());
        }
        rows.push_back({QString::number(entry.locationId), QString::fromStdString(entry.consumer)});
    }
    {
        const QSignalBlocker quiet(ui_->Grid);
        ui_->Grid->Clear();
        ui_->Grid->AddItems(rows);
        ui_->Grid->SelectRow(selected);
    }
    Enter(State::Browse);
    ShowSelected();
    ui_->Grid->setFocus();
}

void frmconfigstation::ShowSelected() {
    if (state_ != State::Browse) {
        return;
    }
    const int row = ui_->Grid->Row();
    const auto record =
        row < 0 ? std::nullopt : stations::ReadRecord(desk_.dbconn, ui_->Grid->TextMatrix(row, 0).toLongLong());
    Show(record.value_or(stations::StationRecord()));
    Enter(State::Browse);
}

void frmconfigstation::Show(const stations::StationRecord& record) {
    showing_ = true;
    ui_->cmbrtumake->Text(record.rtumake);
    if (record.rtumake.empty() || core::SameText(record.rtumake, "BB")) {
        Guarded([this] { fields_.FillModels(desk_.dbconn); });
    }
    fields_.Show(record);
    ShowWhatBelongs(record, *ui_);
    ui_->chkemail->setChecked(false);
    storedMB_CONFIG_ = record.MB_CONFIG;
    laidOut_.clear();
    left_ = nullptr;
    showing_ = false;
}

void frmconfigstation::Add() {
    stations::StationRecord record;
    record.locationId = stations::NextLocation(desk_.dbconn);
    Show(record);
    Enter(State::Adding);
    ui_->cmbgroupno->setFocus();
}

void frmconfigstation::Edit() {
    const int row = ui_->Grid->Row();
    const std::int64_t locationId = row < 0 ? 0 : ui_->Grid->TextMatrix(row, 0).toLongLong();
    const auto record = stations::ReadRecord(desk_.dbconn, locationId);
    if (!record) {
        FillGrid(0);
        Show("This station is no longer in the register");
        return;
    }
    currentconsumer_ = record->consumer;
    Show(*record);
    Enter(State::Editing);
    // The box may be out of reach, for its model; the map behind it is not.
    const bool laidOutByHand = record->MB_CONFIG && stations::RuleOfProtocol(record->protocol).saveWaitsForRegisters;
    ui_->cmdsetregister->setVisible(laidOutByHand);
    ui_->cmdsetregister->setEnabled(true);
    ui_->txtconsumer->setFocus();
}

void frmconfigstation::Save() {
    if (!SettleAll()) {
        return;
    }
    const stations::StationRecord record = fields_.Read();
    const bool isNewStation = state_ == State::Adding;
    if (const auto refusal = stations::CheckRecord(desk_.dbconn, record, isNewStation, currentconsumer_)) {
        if (auto* field = findChild<QWidget*>(QString::fromStdString(refusal->control))) {
            field->setFocus();
        }
        Show(QString::fromStdString(refusal->message));
        return;
    }
    PleaseWait wait(*ui_->lb_wait);
    stations::SaveStation(desk_.dbconn, record, {isNewStation, fields_.Registers()});
    wait.Done();
    desk_.feedback.Status("Done...");
    FillGrid(record.locationId);
}

void frmconfigstation::Cancel() {
    if (state_ == State::Adding) {
        stations::CancelNew(desk_.dbconn, ui_->lbllocation->text().toLongLong());
    }
    Enter(State::Browse);
    ShowSelected();
    ui_->Grid->setFocus();
}

void frmconfigstation::Delete() {
    const int row = ui_->Grid->Row();
    if (row < 0) {
        return;
    }
    const std::int64_t locationId = ui_->Grid->TextMatrix(row, 0).toLongLong();
    const std::string consumer = ui_->Grid->TextMatrix(row, 1).toStdString();
    const auto isKept = [this, locationId, consumer] {
        const std::string why = WhyKept(desk_, locationId, consumer);
        if (!why.empty()) {
            Show(QString::fromStdString(why));
        }
        return !why.empty();
    };
    if (isKept()) {
        return;
    }
    Ask("Are You Sure?", [this, locationId, consumer, isKept] {
        Guarded([&] {
            if (isKept()) {  // it has become due behind the question
                return;
            }
            stations::DeleteStation(desk_.dbconn, locationId, consumer);
            FillGrid(0);
            Show("Record Deleted..", QMessageBox::Information);
        });
    });
}

void frmconfigstation::PortSetting() {
    auto* dialog = new frmportsetting(desk_, ui_->cmbbaudrate->text().toStdString(), this);
    connect(dialog, &QDialog::accepted, this,
            [this, dialog] { ui_->cmbbaudrate->setText(QString::fromStdString(dialog->Settings())); });
    dialog->open();
}

void frmconfigstation::FieldLeft(PickCombo* field) {
    left_ = field;
    // Behind the change of the focus, which is still on its way.
    QTimer::singleShot(0, this, [this] {
        PickCombo* left = std::exchange(left_, nullptr);
        const bool leavesAll = state_ == State::Browse || ui_->cmdCancel->hasFocus() || !isVisible();
        if (left != nullptr && !leavesAll && QApplication::activeModalWidget() == nullptr) {
            Guarded([&] { Settle(*left); });
        }
    });
}

bool frmconfigstation::SettleAll() {
    PickCombo* left = std::exchange(left_, nullptr);
    if (left != nullptr && !Settle(*left)) {
        return false;
    }
    auto* inHand = qobject_cast<PickCombo*>(focusWidget());
    return inHand == nullptr || inHand == ui_->cmbgroupno || Settle(*inHand);
}

bool frmconfigstation::Settle(PickCombo& field) {
    const Ui::frmconfigstation& ui = *ui_;
    if (!field.Settle()) {
        const auto refusal = stations::CheckTyped(field.objectName().toStdString(), {}, field.Text());
        if (refusal) {
            if (refusal->textCleared) {
                field.Text("");
            }
            field.setFocus();
            Show(QString::fromStdString(refusal->message));
            return false;
        }
        // A protocol may be one that is no longer offered; elsewhere only the list counts.
        if (&field != ui.cmbprotocol) {
            field.TakeBack();
        }
    }
    if (&field == ui.cmbrtumake) {
        fields_.FillModels(desk_.dbconn);
    } else if (&field == ui.cmbmodelno) {
        Apply(stations::RuleOfModel(field.Text()), *ui_);
        EnableSave();
    }
    return true;
}

void frmconfigstation::keyPressEvent(QKeyEvent* event) {
    const bool entered = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape) {
        ResetLine(desk_);
    } else if (entered && qobject_cast<QPushButton*>(focusWidget()) == nullptr) {
        focusNextChild();
    } else {
        Page::keyPressEvent(event);
    }
}

}  // namespace desk
