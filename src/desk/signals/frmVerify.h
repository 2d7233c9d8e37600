#pragma once

#include <QTimer>
#include <cstdint>
#include <memory>
#include <vector>

#include "desk/kit/Page.h"
#include "signals/change/Verification.h"

namespace Ui {
class frmVerify;
}

namespace core {
struct Station;
}

namespace desk {

// The lists of a station before and after a change of its program, compared row by row, and the files of that.
class frmVerify : public Page {
    Q_OBJECT

  public:
    frmVerify(Desk& desk, const core::Station& station);
    ~frmVerify() override;

  private:
    void cmdVerify();
    void NextList();
    void EndVerify();
    void ShowRows(const std::vector<signals::VerifiedRow>& rows);
    QString Summary() const;
    void SaveBook(const QString& file);
    void SaveText(const QString& file);
    void ShowButtons();

    std::unique_ptr<Ui::frmVerify> ui_;
    std::int64_t locationID_;
    std::unique_ptr<signals::Verification> verification_;
    std::vector<signals::VerifiedRow> rows_;
    QTimer tmrverify_;  // a list each turn, so that the window goes on
};

}  // namespace desk
