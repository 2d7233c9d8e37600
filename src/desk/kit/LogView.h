#pragma once

#include <QPlainTextEdit>

namespace core {
struct LogText;
}
class QLabel;

namespace desk {

// A log to be read, selected, copied (Ctrl+C) and saved as text (Ctrl+S, the menu of the right button).
class LogView : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit LogView(QWidget* parent = nullptr);

    // Shows a log from its end; `note` tells above it when that is only a part.
    void ShowLog(const core::LogText& log, QLabel* note);

    // Writes what is shown to a file in UTF-8, whole or not at all. Tells why not; empty when it is written.
    QString Save(const QString& file) const;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void SaveAs();
};

}  // namespace desk
