#include <QAbstractButton>
#include <QCoreApplication>
#include <QListWidget>
#include <QMessageBox>
#include <cmath>

#include "archive/store/ArchiveStore.h"
#include "core/Text.h"
#include "demo/screens/Screens.h"
#include "desk/archive/frmHistory.h"

namespace demo {

namespace {

constexpr std::int64_t station = 3;

std::string FieldName(std::string name) {
    name.resize(17, ' ');
    return name;
}

// Four weeks of hours, as a station's archive gives them: a day's swing, a night's rest, some hours that were lost.
archive::ArchiveDownload FourWeeks(const core::DateTime& last) {
    constexpr int hours = 28 * 24;
    archive::ArchiveDownload download;
    for (const char* name : {"DP(MMWC)", "PRESSURE(KG/CM2)", "TEMP(DEGC)", "FLOWRATE(SCMH)", "TOTAL(SCM)", "TODAY(SCM)",
                             "LASTDAY(SCM)", "BATTERY(VOLT)"}) {
        download.fields.push_back(FieldName(name));
    }
    const std::int64_t end = core::ToSeconds({last.year, last.month, last.day, last.hour, 0, 0});
    double total = 4183205;
    double today = 0;
    double lastDay = 21460;
    for (int n = 0; n < hours; ++n) {
        const core::DateTime at = core::FromSeconds(end - (hours - 1 - n) * 3600);
        if (at.hour == 6) {
            lastDay = today;
            today = 0;
        }
        const double swing = std::sin((at.hour - 6) * 3.14159 / 12);
        const double flow = 900 + 350 * swing + 60 * std::sin(n / 17.0) + (n % 7) * 6;
        total += flow;
        today += flow;
        if (n > 430 && n < 447) {
            continue;
        }
        archive::ArchiveRecord record{at, n + 1, n + 1};
        for (const double value : {flow * flow / 9000, 17.2 - swing * 0.6 + (n % 5) * 0.03, 21 + swing * 6, flow, total,
                                   today, lastDay, 12.6 - std::cos(n / 40.0) * 0.3}) {
            record.values.push_back(core::RoundTo(value, 2));
        }
        download.records.push_back(record);
    }
    return download;
}

QWidget* ArchiveHistory(Stage& stage) {
    desk::Desk& desk = stage.Surroundings();
    archive::SaveArchive(desk.dbconn, {station, 1, archive::HistoryType(1, archive::ArchiveKind::Hourly)},
                         FourWeeks(desk.clock.Now()));
    auto& page = stage.Open<desk::frmHistory>(station);
    page.findChild<QAbstractButton*>("cmdView")->click();
    QMessageBox* collected = nullptr;
    while (collected == nullptr) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        collected = page.findChild<QMessageBox*>();
    }
    collected->close();
    auto* columns = page.findChild<QListWidget*>("lstColumns");
    columns->item(0)->setCheckState(Qt::Unchecked);
    columns->item(1)->setCheckState(Qt::Checked);
    columns->item(3)->setCheckState(Qt::Checked);
    return &stage.Shell();
}

}  // namespace

std::vector<Screen> HistoryScreens() {
    return {{"archive_history", ArchiveHistory}};
}

}  // namespace demo
