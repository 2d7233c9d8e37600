#pragma once

#include <QTimer>
#include <cstdint>
#include <memory>
#include <vector>

#include "archive/view/HistoryView.h"
#include "desk/kit/Page.h"

namespace Ui {
class frmHistory;
}

namespace desk {

// What was stored of a station's archive: its records by stream, kind and days, as rows and as lines. It needs no line.
class frmHistory : public Page {
    Q_OBJECT

  public:
    frmHistory(Desk& desk, std::int64_t locationID);
    ~frmHistory() override;

    // Writes the rows as tab-separated text, or the picture; a disk that does not take it is told.
    void SaveExcel(const QString& file);
    void SavePng(const QString& file);

  private:
    void ConnectCommands();
    archive::HistoryChoice Choice() const;
    void cmdView();
    void NextPortion();
    void EndView();
    void cmdExcel();
    void cmdSavePng();

    void ShowHead();
    void ShowRows(const std::vector<archive::HistoryRow>& rows);
    void ShowCommands(bool viewing);
    void ListColumns();
    void DrawColumns();

    std::int64_t locationID_;
    QString consumer_;
    int historyType_ = 0;  // of the last view
    QString headline_;     // of its picture
    bool stopped_ = false;
    std::unique_ptr<archive::HistoryView> view_;  // the last one
    std::vector<archive::HistoryRow> rows_;       // that it has given
    QTimer tmrview_;                              // runs while a view is read: a portion a turn of the events
    std::unique_ptr<Ui::frmHistory> ui_;
};

}  // namespace desk
