#include "desk/platform/ActiveWindows.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace desk {

namespace {

class Activator : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override {
        const bool shown = event->type() == QEvent::Show;
        if ((shown || event->type() == QEvent::Hide) && !event->spontaneous() && object->isWidgetType()) {
            auto* window = static_cast<QWidget*>(object);
            const auto type = window->windowType();
            const bool takesKeys = (type == Qt::Window || type == Qt::Dialog) && window->isWindow() &&
                                   !window->testAttribute(Qt::WA_ShowWithoutActivating);
            QWidget* active = shown || window->parentWidget() == nullptr ? window : window->parentWidget()->window();
            if (takesKeys && active->isVisible()) {
                active->activateWindow();
            }
        }
        return false;
    }
};

}  // namespace

void ActivateWindows(QApplication& application) {
    application.installEventFilter(new Activator(&application));
}

}  // namespace desk
