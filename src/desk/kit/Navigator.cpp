#include "desk/kit/Navigator.h"

#include <algorithm>

#include "desk/kit/Page.h"

namespace desk {

void Navigator::Home(Page* page) {
    CloseAll();
    home_ = page;
    if (indexOf(page) < 0) {
        addWidget(page);
    }
    BringForward(page);
}

void Navigator::Open(Page* page) {
    addWidget(page);
    opened_.push_back(page);
    // Queued, since the page may close itself from a handler of its own.
    connect(
        page, &Page::Closed, this, [this, page] { Leave(page); }, Qt::QueuedConnection);
    BringForward(page);
}

void Navigator::Empty() {
    opened_.clear();
    home_ = nullptr;
    while (count() > 0) {
        delete widget(0);
    }
}

Page* Navigator::Front() const {
    return opened_.empty() ? home_ : opened_.back();
}

void Navigator::CloseAll() {
    for (Page* page : opened_) {
        removeWidget(page);
        page->deleteLater();
    }
    opened_.clear();
}

void Navigator::Leave(Page* page) {
    const auto at = std::find(opened_.begin(), opened_.end(), page);
    if (at == opened_.end()) {
        return;
    }
    opened_.erase(at);
    removeWidget(page);
    page->deleteLater();
    if (Front() != nullptr) {
        BringForward(Front());
    }
}

void Navigator::BringForward(Page* page) {
    setCurrentWidget(page);
    page->Activated();
    page->TakeFocus();
    Q_EMIT Changed(page);
}

}  // namespace desk
