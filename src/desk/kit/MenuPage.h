#pragma once

#include <QAbstractButton>

#include "desk/kit/Navigator.h"
#include "desk/kit/Page.h"

namespace desk {

// A page of commands that open other pages.
class MenuPage : public Page {
    Q_OBJECT

  public:
    using Page::Page;

  protected:
    // The command opens a page; that one's close brings this menu back.
    template <class Form>
    void Opens(QAbstractButton* command) {
        connect(command, &QAbstractButton::clicked, this,
                [this] { Guarded([this] { desk_.navigator.Open(new Form(desk_)); }); });
    }
};

}  // namespace desk
