#pragma once

#include <QDialog>
#include <memory>

#include "desk/kit/Desk.h"
#include "session/editor/RegisterEditor.h"

namespace Ui {
class frmdata;
}

namespace desk {

class PickCombo;

// Gives a parameter its register or coil and its data type.
class frmdata : public QDialog {
    Q_OBJECT

  public:
    // Over a form, for the row that the editor has in hand, with what the dialog starts with. Accepted, the row has its
    // new address; in every other case it is as it was. Deleted at its close.
    frmdata(Desk& desk, session::RegisterEditor& editor, const session::EditedRow& row, QWidget* over);
    ~frmdata() override;

  protected:
    // The address is selected whenever the cursor comes to it.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Accept(bool evenIfTaken);
    void DataTypeLeft();
    // False: the type is none of the list; the message is shown and the focus is back in its field.
    bool SettleDataType();
    void ToAddress();

    session::RegisterEditor& editor_;
    bool left_ = false;  // the type was left, its check to come
    std::unique_ptr<Ui::frmdata> ui_;
};

}  // namespace desk
