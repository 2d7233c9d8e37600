// demo_screens: draws every screen on demo data, for the operator's guide.

#include <QApplication>
#include <QElapsedTimer>
#include <QScreen>
#include <exception>
#include <filesystem>
#include <iostream>

#include "demo/screens/Screens.h"
#include "desk/kit/Look.h"

namespace {

// Lets the windows settle: what is queued is done, layouts are made, and what grows has grown.
void Settle() {
    QElapsedTimer passed;
    passed.start();
    while (passed.elapsed() < 150) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4 || argc > 6) {
        std::cerr << "usage: demo_screens DATABASE DIRECTORY light|dark [WIDTHxHEIGHT [SCREEN]]\n"
                     "Draws every screen, or those whose names begin with SCREEN, on a copy of the delivered DATABASE\n"
                     "into DIRECTORY. The window is 1024x740.\n";
        return 2;
    }
    const QStringList size = QString(argc > 4 ? argv[4] : "1024x740").split('x');
    const QSize room(size.value(0).toInt(), size.value(1).toInt());
    const std::string wanted = argc > 5 ? argv[5] : "";
    QApplication application(argc, argv);
    desk::ApplyLook(std::string(argv[3]) == "dark" ? desk::Palette::Dark : desk::Palette::Light);
    try {
        const std::filesystem::path pictures(argv[2]);
        const std::filesystem::path work = pictures / "work";
        std::filesystem::remove_all(work);
        std::filesystem::create_directories(work);
        {
            demo::Stage stage(argv[1], work);
            stage.LogIn();
            for (const demo::Screen& screen : demo::Screens()) {
                if (!screen.name.starts_with(wanted)) {
                    continue;
                }
                QWidget* window = screen.show(stage);
                if (window == &stage.Shell()) {
                    window->setWindowState(Qt::WindowNoState);
                    window->resize(room);
                }
                const QString file = QString::fromStdString((pictures / (screen.name + ".png")).string());
                bool saved = false;
                const auto look = [&] {
                    Settle();
                    saved = window->grab().save(file);
                };
                screen.alive ? screen.alive(stage, look) : look();
                if (!saved) {
                    std::cerr << "demo_screens: " << file.toStdString() << " cannot be written\n";
                    return 1;
                }
            }
        }
        std::filesystem::remove_all(work);
    } catch (const std::exception& failure) {
        std::cerr << "demo_screens: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
