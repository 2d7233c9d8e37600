#include "desk/session/RegisterEditing.h"

#include "core/MAIN_Module.h"
#include "desk/kit/Grid.h"
#include "desk/session/frmdata.h"

namespace desk {

namespace {

QStringList Cells(const session::EditedRow& row) {
    return {QString::fromStdString(row.unit), QString::fromStdString(row.description),
            QString::fromStdString(row.address), QString::fromStdString(row.type)};
}

}  // namespace

RegisterEditing::RegisterEditing(Desk& desk, ParameterTabs& tabs, const RegisterStation& station)
    : desk_(desk), tabs_(tabs), editor_(desk.dbconn, station.edited, desk.shared.currentuser) {
    tabs.FormatString("|Description                                              | Start Address      | Data Type    ");
    for (std::size_t group = 0; group < session::groupCount; ++group) {
        std::vector<QStringList> rows;
        for (const session::EditedRow& row : editor_.Rows(group)) {
            rows.push_back(Cells(row));
        }
        tabs.Show(group, rows);
    }
    tabs.Arrange(station.tabs);
    tabs.cmdgc().setEnabled(false);  // a set of values: there are none without a session
}

void RegisterEditing::Choose(std::size_t group, std::size_t row, QWidget* over) {
    if (dialog_ != nullptr && dialog_->isVisible()) {
        return;
    }
    dialog_ = new frmdata(desk_, editor_, editor_.TakeOut(group, row), over);
    QObject::connect(dialog_, &QDialog::accepted, over, [this, group, row] {
        const QStringList cells = Cells(editor_.Rows(group).at(row));
        for (int column = 0; column < cells.size(); ++column) {
            tabs_.Cell(group, row, column, cells[column]);
        }
        changed_ = true;
    });
    dialog_->open();
}

void RegisterEditing::Store() {
    editor_.Store();
    changed_ = false;
}

}  // namespace desk
