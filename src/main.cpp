// norwen: puts both storeys together and starts them.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QSocketNotifier>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "collection/Scheduler.h"
#include "core/Database.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Ports.h"
#include "core/Schema.h"
#include "desk/kit/Boxes.h"
#include "desk/kit/Desk.h"
#include "desk/kit/Look.h"
#include "desk/kit/Navigator.h"
#include "desk/platform/ActiveWindows.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/RunFeedback.h"
#include "desk/platform/SerialLine.h"
#include "desk/platform/SingleInstance.h"
#include "desk/platform/TcpLine.h"
#include "desk/shell/frmLogin.h"
#include "desk/shell/mainfrm.h"
#include "mail/SmtpTransport.h"
#include "reports/ReportMail.h"

namespace {

struct StartOptions {
    std::filesystem::path directory;
    bool unattended = false;
    desk::Palette palette = desk::Palette::System;
};

// The options, read without a display: --help and --version end the program here, as does a word that is none.
StartOptions ReadOptions(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("norwen");
    QCoreApplication::setApplicationVersion(NORWEN_VERSION);
    QCommandLineParser parser;
    parser.setApplicationDescription("The station from which remote gas-metering sites are read.");
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption directory("directory",
                                       "Take DIR for the application directory: database, logs, scheduler/.", "DIR",
                                       QCoreApplication::applicationDirPath());
    const QCommandLineOption unattended("unattended", "Collect the stations from the start on, without a login.");
    const QCommandLineOption palette("palette", "Take light or dark colours; else those of the system.", "COLOURS");
    parser.addOption(palette);
    parser.addOption(directory);
    parser.addOption(unattended);
    parser.process(application);
    if (!parser.positionalArguments().isEmpty()) {
        std::cerr << "norwen: Unexpected argument '" << parser.positionalArguments().first().toStdString() << "'.\n";
        std::exit(EXIT_FAILURE);
    }
    const QString colours = parser.value(palette);
    if (parser.isSet(palette) && colours != "light" && colours != "dark") {
        std::cerr << "norwen: COLOURS are light or dark, not '" << colours.toStdString() << "'.\n";
        std::exit(EXIT_FAILURE);
    }
    return {parser.value(directory).toStdString(), parser.isSet(unattended),
            !parser.isSet(palette) ? desk::Palette::System
            : colours == "dark"    ? desk::Palette::Dark
                                   : desk::Palette::Light};
}

// Why the program cannot start, for whoever is there: a box, or in unattended work the terminal and the error log.
int Refuse(const StartOptions& options, const QString& text) {
    if (options.unattended) {
        std::cerr << text.toStdString() << "\n";
        core::WriteRtuErr(core::MAIN_Module(options.directory), desk::EventLoopClock(), text.toStdString());
    } else {
        QMessageBox::critical(nullptr, "Norwen", text);
    }
    return 1;
}

QString StartMessage(const StartOptions& options, const std::string& failure) {
    const bool missing = !std::filesystem::exists(options.directory / "Kolmar.mdb");
    const bool disk = failure.find("disk I/O error") != std::string::npos ||
                      failure.find("unable to open database file") != std::string::npos;
    return missing || disk ? "Error in Setup - code(0002) Disk or Network Error" : QString::fromStdString(failure);
}

// Tells a service manager that started the program that it is ready, if one did.
void NotifyReady() {
    const char* name = std::getenv("NOTIFY_SOCKET");
    sockaddr_un address{};
    if (name == nullptr || std::strlen(name) >= sizeof address.sun_path) {
        return;
    }
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name, std::strlen(name));
    address.sun_path[0] = name[0] == '@' ? '\0' : name[0];
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const std::string ready = "READY=1";
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + std::strlen(name));
    sendto(descriptor, ready.data(), ready.size(), MSG_NOSIGNAL, reinterpret_cast<sockaddr*>(&address), length);
    close(descriptor);
}

// SIGTERM and SIGINT as an event of the loop.
class EndSignals {
  public:
    explicit EndSignals(std::function<void()> end) : end_(std::move(end)) {
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_) != 0) {
            return;
        }
        notifier_ = std::make_unique<QSocketNotifier>(ends_[1], QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
            notifier_->setEnabled(false);
            end_();
        });
        std::signal(SIGTERM, Received);
        std::signal(SIGINT, Received);
    }

  private:
    static void Received(int) {
        const char byte = 1;
        static_cast<void>(!write(ends_[0], &byte, 1));
    }

    static inline int ends_[2] = {-1, -1};
    std::function<void()> end_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

int Start(QApplication& application, const StartOptions& options) {
    const desk::SingleInstance instance(options.directory);
    if (instance.Taken()) {
        return Refuse(options, "One Instance of This SoftWare is Already running...!");
    }
    core::MAIN_Module shared(options.directory);
    desk::EventLoopClock clock;
    std::unique_ptr<core::Database> dbconn;
    try {
        core::BringUp(shared.DatabasePath());
        dbconn = std::make_unique<core::Database>(shared.DatabasePath());
        const auto logGen = dbconn->First("select * from logGen");
        shared.logGenflag = logGen && (*logGen)[0].Bool();
    } catch (const std::exception& failure) {
        return Refuse(options, StartMessage(options, failure.what()));
    }
    core::Logs logs(*dbconn, shared, clock);

    protocols::FieldLines lines(clock, [&](const core::Station& station) -> std::unique_ptr<protocols::Line> {
        if (station.ip.empty()) {
            return std::make_unique<desk::SerialLine>(
                [&](int port) { return core::DevicePath(*dbconn, port, shared.directory).string(); });
        }
        return std::make_unique<desk::TcpLine>(core::AddressOf(station).value_or(core::Address{station.ip, 0}), clock);
    });
    protocols::BsapCounters counters;
    desk::mainfrm* shell = nullptr;
    desk::RunFeedback feedback(logs, [&shell](const QString& text) { shell->Status(text); });
    reading::Workplace place{*dbconn, shared, clock, feedback, logs, lines, counters};
    mail::SmtpTransport mail;
    reports::ReportMail reportMail(place, mail);
    collection::Scheduler scheduler(place, reportMail);
    try {
        scheduler.ResetDailyFlags();
    } catch (const std::exception& failure) {
        return Refuse(options, StartMessage(options, failure.what()));
    }

    desk::Navigator navigator;
    desk::Desk desk{place, shared.addressees, scheduler, mail, navigator};
    desk::mainfrm mainfrm(desk);
    shell = &mainfrm;
    desk::frmLogin frmLogin(*dbconn, shared, logs,
                            [&](const QString& text, const QString& title) { desk::ShowBox(&frmLogin, text, title); });
    QObject::connect(&frmLogin, &desk::frmLogin::LoginDone, &mainfrm, [&] {
        mainfrm.ShowForUser();
        frmLogin.hide();
    });
    QObject::connect(&frmLogin, &desk::frmLogin::Abandoned, &mainfrm,
                     [&] { mainfrm.AskToEnd(&frmLogin, [&] { frmLogin.hide(); }); });
    QObject::connect(&mainfrm, &desk::mainfrm::LoggedOff, &frmLogin, &QWidget::show);
    // quit() would ask the windows, and the login's asks the operator.
    QObject::connect(
        &mainfrm, &desk::mainfrm::Ended, &application, [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
    const EndSignals endSignals([&] { mainfrm.EndProgram(); });

    if (options.unattended) {
        frmLogin.ShowUnattended();
        mainfrm.StartTimer();
    }
    frmLogin.show();
    NotifyReady();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const StartOptions options = ReadOptions(argc, argv);
    if (!std::filesystem::is_directory(options.directory)) {
        std::cerr << "norwen: " << options.directory << " is no directory\n";
        return 1;
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName("Norwen");
    desk::ApplyLook(options.palette);
    desk::ActivateWindows(application);
    QApplication::setQuitOnLastWindowClosed(false);
    try {
        return Start(application, options);
    } catch (const std::exception& failure) {
        std::cerr << "norwen: " << failure.what() << "\n";
        return 1;
    }
}
