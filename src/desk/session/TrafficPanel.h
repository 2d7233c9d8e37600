#pragma once

#include <QPlainTextEdit>
#include <QTableView>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/Clock.h"
#include "desk/kit/frmtxrxleds.h"
#include "desk/session/TrafficModel.h"
#include "protocols/inspect/FrameFields.h"

namespace desk {

// The lines of one direction, the newest at the foot. Ctrl+C copies the selected one.
class TrafficView : public QTableView {
    Q_OBJECT

  public:
    explicit TrafficView(QWidget* parent);

    TrafficModel lines;

    // A line at the foot. The foot stays in sight if it was, and the place if not.
    void Add(TrafficLine line);

  Q_SIGNALS:
    // Another line is selected; -1: none.
    void LineSelected(int row);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void rowsAboutToBeRemoved(const QModelIndex& parent, int start, int end) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    bool AtFoot() const;
};

// What goes over the line: a panel for what is sent and one for what is received, each under its mark, the last 500
// lines of each, and below them the fields of the line that is selected.
class TrafficPanel : public QWidget {
    Q_OBJECT

  public:
    explicit TrafficPanel(const core::Clock& clock, QWidget* parent = nullptr);

    // How the bytes are read, as core::Station has it. Lines of a station that speaks otherwise are taken away.
    void Station(const protocols::Wire& wire);

    // Bytes went out ("TX") or came in ("RX"), as core::Feedback::Lamp tells it.
    void Line(const QString& direction, const std::string& bytes);

    void Clear();

  private:
    QString Time();
    void ShowLine(TrafficView& view, TrafficView& other, int row);

    const core::Clock& clock_;
    protocols::Wire wire_;
    std::shared_ptr<const std::string> request_;  // the last one sent
    std::optional<std::int64_t> secondStart_;     // the clock's counter at the begin of a second, less that second
    frmtxrxleds leds_;
    TrafficView tx_;
    TrafficView rx_;
    QPlainTextEdit fields_;
};

}  // namespace desk
