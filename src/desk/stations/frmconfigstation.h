#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "desk/kit/Page.h"
#include "desk/stations/StationFields.h"

namespace Ui {
class frmconfigstation;
}

namespace desk {

class PickCombo;

// The register of stations: their list, and the record of one of them, which is added, edited or deleted here.
class frmconfigstation : public Page {
    Q_OBJECT

  public:
    explicit frmconfigstation(Desk& desk);
    ~frmconfigstation() override;

  protected:
    // Enter goes on as Tab does, but on a command; Escape resets the line.
    void keyPressEvent(QKeyEvent* event) override;

  private:
    // Adding and editing end with Save or Cancel; the list is out of reach meanwhile.
    enum class State { Browse, Adding, Editing };

    void Prepare();
    void ConnectCommands();
    void ConnectRules();
    // Calls a rule when the operator changes a choice, not when a record is shown.
    template <typename Signal, typename Control>
    void OnChange(Control* control, Signal signal, std::function<void()> rule);

    void Enter(State state);
    void FillGrid(std::int64_t locationId);
    void ShowSelected();
    void Show(const stations::StationRecord& record);
    void EnableSave();
    void ShowMail();

    void Add();
    void Edit();
    void Save();
    void Cancel();
    void Delete();
    void PortSetting();
    void SetRegister();
    void OpenRegisterEditor(const stations::StationRecord& record);
    QStringList WhatFixesTheMap() const;
    void AllocationReset();

    // The list check of a field that the operator has left, and what follows from its text. False: its message is shown
    // and the focus is back in it.
    bool Settle(PickCombo& field);
    // The field that was left last, and the one in hand; commands look at them first, as keys reach them without
    // taking the focus.
    bool SettleAll();
    void FieldLeft(PickCombo* field);

    using Page::Show;

    State state_ = State::Browse;
    bool showing_ = false;          // a record is coming into the controls
    bool storedMB_CONFIG_ = false;  // of the station that is edited
    QStringList laidOut_;           // what fixed the map that was laid out for the new station; empty: none was
    PickCombo* left_ = nullptr;     // left, its check to come
    std::string currentconsumer_;   // name of the station that is edited, as the register has it
    std::unique_ptr<Ui::frmconfigstation> ui_;
    StationFields fields_;
};

}  // namespace desk
