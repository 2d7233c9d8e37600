#pragma once

#include <QWidget>
#include <memory>

#include "archive/RunView.h"
#include "core/Feedback.h"
#include "desk/kit/WholeFile.h"

class QPushButton;

namespace Ui {
class DownloadPanel;
}

namespace desk {

// The lower part of the archive screens: the grid, where the download stands, the lamps of the line, and the commands.
class DownloadPanel : public QWidget, public archive::RunView, public core::Feedback {
    Q_OBJECT

  public:
    explicit DownloadPanel(QWidget* parent = nullptr);
    ~DownloadPanel() override;

    // How the grid is written to a file: what ends each field, and what the dialog offers.
    struct FileForm {
        QChar ending;
        FileWish wish;
    };
    void Files(const FileForm& form) { files_ = form; }

    // A download begins or is over. While one is running Stop alone is enabled.
    void Running(bool running);
    bool IsRunning() const { return running_; }
    void ClearGrid();

    QPushButton& cmdGo();
    QPushButton& cmd_stop();
    QPushButton& cmdReport();
    QPushButton& cmd_email();
    QPushButton& cmdClose();

    // What a run tells.
    void Columns(const std::vector<std::string>& captions) override;
    void Rows(const std::vector<std::vector<std::string>>& rows) override;
    void Record(int record, int total) override;
    bool Stopped() const override { return stopflag_; }
    void Status(const std::string& text) override;
    void Box(const std::string& text) override;
    void Lamp(const std::string& lamp, const std::string& bytes) override;

  private:
    void Stop();
    void Save();

    std::unique_ptr<Ui::DownloadPanel> ui_;
    FileForm files_;
    QStringList captions_;  // with the blanks that they have in a file
    bool running_ = false;
    bool stopflag_ = false;
};

}  // namespace desk
