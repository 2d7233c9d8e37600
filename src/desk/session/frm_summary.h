#pragma once

#include <memory>

#include "desk/kit/Page.h"
#include "session/Summary.h"

class QLabel;
class QPushButton;

namespace Ui {
class frm_summary;
}

namespace desk {

// The key figures of the station of a session on one panel, to be read from afar, and what of them can be changed.
class frm_summary : public Page {
    Q_OBJECT

  public:
    // The session outlives the page.
    frm_summary(Desk& desk, session::Session& session);
    ~frm_summary() override;

    // Shows the figures as they are now. Timer1 does it each second.
    void Fill();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    // The controls of an item: one of label and button shows its figure.
    struct Figure {
        QLabel* label = nullptr;
        QPushButton* button = nullptr;
        QLabel* unit = nullptr;
    };

    void ChooseFigure(std::size_t item);
    std::string Refusal(std::size_t item) const;
    void Open(std::size_t item);
    void CloseWrite();
    void cmd_ok();
    void cmd_toggle();

    session::Session& session_;
    std::unique_ptr<Ui::frm_summary> ui_;
    std::array<Figure, session::summaryItems.size()> controls_;
    std::array<session::SummaryFigure, session::summaryItems.size()> figures_;
    std::size_t item_ = 0;  // the one in fra_write
    int streamno_ = 0;      // and the stream that it was chosen of
};

}  // namespace desk
