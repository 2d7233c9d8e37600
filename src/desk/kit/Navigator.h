#pragma once

#include <QStackedWidget>
#include <vector>

namespace desk {

class Page;

// The pages of the shell, one of them in front. A page that is opened stands before its caller's and gives it back at
// its close.
class Navigator : public QStackedWidget {
    Q_OBJECT

  public:
    using QStackedWidget::QStackedWidget;

    // A page that stays loaded while the program runs comes to the front; whatever was open is closed.
    void Home(Page* page);

    // Opens a page before the one in front. It is deleted at its close.
    void Open(Page* page);

    // Deletes all pages, before what they work with goes.
    void Empty();

    // The page in front; null before the first.
    Page* Front() const;

  Q_SIGNALS:
    void Changed(desk::Page* front);

  private:
    void CloseAll();
    void Leave(Page* page);
    void BringForward(Page* page);

    Page* home_ = nullptr;
    std::vector<Page*> opened_;  // above the home page, the front one last
};

}  // namespace desk
