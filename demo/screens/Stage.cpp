#include "demo/screens/Stage.h"

#include <QCoreApplication>
#include <exception>

#include "collection/Outcome.h"
#include "demo/DemoRegister.h"
#include "stations/SampledMark.h"

namespace demo {

namespace {

const core::DateTime monthBegins{2026, 3, 1, 7, 59, 30};
constexpr std::uint64_t day = 24ULL * 3600 * 1000;

// Stations around the five of the demo, which fill the wall. They are due later in the day; most have been collected.
enum class Morning { Collected, ByHand, Partly, NotReached, NoAnswer, Due, NoSchedule };
struct WallStation {
    const char* consumer;
    int groupno;
    Morning morning = Morning::Collected;
};
const std::vector<WallStation> wall{
    {"Ashgrove Dairy", 1},
    {"Bridge Street", 1},
    {"Carr Lane", 1, Morning::ByHand},
    {"Dunmore Glass", 1, Morning::NotReached},
    {"Eastfield", 2},
    {"Fernhill Paper", 2, Morning::Due},
    {"Glen Foundry", 2, Morning::NoAnswer},
    {"Harbour", 2},
    {"Ivy Bank", 2},
    {"Juniper Road", 2},
    {"Kestrel Tiles", 3, Morning::Partly},
    {"Longmoor", 3},
    {"Mill Lane", 3},
    {"Northway Bakery", 3, Morning::Due},
    {"Orchard Park", 3},
    {"Priory Works", 3, Morning::NoSchedule},
    {"Quarry Hill", 4, Morning::Due},
    {"Ridgeway", 4},
    {"Station Road", 4},
    {"Tollgate Brick", 4},
    {"Underwood", 4},
    {"Valley Steel", 4, Morning::NotReached},
    {"Westbrook", 4},
    {"Yew Tree Farm", 4},
};

void AddToWall(core::Database& dbconn, const WallStation& station, const core::DateTime& now, int minute) {
    const auto locationID = AddStation(dbconn, {station.consumer,
                                                "TeleFlow",
                                                "Modbus",
                                                "RTU",
                                                1,
                                                1,
                                                "",
                                                1,
                                                {},
                                                "14:30",
                                                100,
                                                station.groupno,
                                                station.morning == Morning::NoSchedule ? "NO" : "Daily"});
    const std::string day = core::IsoText(now).substr(0, 10);
    if (station.morning <= Morning::Partly) {
        dbconn.Execute(
            "update configdata_detail set lastvalue=?, readat=?, quality='good' where locationID=? and description="
            "'Volume This Month'",
            {81234.5 + 4321.25 * minute, day + " 08:20:00", locationID});
        collection::RecordGasDay(dbconn, locationID, day, now,
                                 {3700.5 + 190.25 * minute, 81234.5 + 4321.25 * minute, 12 + 0.25 * minute});
    }
    if (station.morning == Morning::Due || station.morning == Morning::NoSchedule) {
        return;
    }
    collection::Outcome outcome;
    outcome.locationID = locationID;
    outcome.gasday = day;
    outcome.begun = day + " 08:" + (minute < 10 ? "0" : "") + std::to_string(minute) + ":00";
    outcome.ended = outcome.begun.substr(0, 17) + "40";
    outcome.how = station.morning == Morning::ByHand ? collection::How::Hand : collection::How::Schedule;
    outcome.attempts = 3;
    outcome.line = "COM1 5550100";
    outcome.asked = 263;
    outcome.received = station.morning == Morning::Partly ? 201 : 263;
    switch (station.morning) {
        case Morning::Partly:
            outcome.result = reading::Result::Partly;
            outcome.reason = "The station refused registers 7441 to 7502";
            break;
        case Morning::NotReached:
            outcome.result = reading::Result::NotReached;
            outcome.reason = "The modem said NO CARRIER";
            break;
        case Morning::NoAnswer:
            outcome.result = reading::Result::NoAnswer;
            outcome.reason = "There was no response from the station";
            break;
        default:
            outcome.result = reading::Result::Collected;
            break;
    }
    collection::RecordOutcome(dbconn, outcome);
    const bool sampled = outcome.result == reading::Result::Collected || outcome.result == reading::Result::Partly;
    stations::MarkSampled(dbconn, now, locationID, sampled);
}

std::filesystem::path Copied(const std::filesystem::path& delivered, const std::filesystem::path& directory) {
    std::filesystem::copy_file(delivered, directory / "Kolmar.mdb");
    std::filesystem::create_directory(directory / "scheduler");
    return directory / "Kolmar.mdb";
}

}  // namespace

void Stage::StatusLine::Status(const std::string& text) {
    if (shell != nullptr) {
        shell->Status(QString::fromStdString(text));
    }
}

Stage::Stage(const std::filesystem::path& delivered, const std::filesystem::path& directory)
    : shared_(directory), dbconn_(Copied(delivered, directory)), clock_(monthBegins) {
    for (const DemoStation& station : OneOfEach("08:00")) {
        AddStation(dbconn_, station);
    }
    // A district regulating station, which is only watched.
    const auto drs = AddStation(dbconn_, {"Regulator 7", "TeleRTU(M)", "Modbus", "RTU", 6, 1, "", 1, {}, "14:30"});
    dbconn_.Execute("update configdata_master set drs = 2 where locationID = ?", {drs});
    Collect();
    int minute = 2;
    for (const WallStation& station : wall) {
        AddToWall(dbconn_, station, clock_.Now(), minute++);
    }
}

// The schedule of three weeks, on which the field has its bad days.
void Stage::Collect() {
    fieldsim::FieldOptions options;
    options.alarmCycle = 300;
    options.modems[3] = {{"NO CARRIER", 6000}, {"CONNECT 9600", 5000}};
    field_ = std::make_unique<fieldsim::Field>(dbconn_, options);
    field_->AttachTo(ports_);
    shell_ = std::make_unique<desk::mainfrm>(desk_);
    feedback_.shell = shell_.get();
    clock_.Every(60000, [this] { shell_->Tick(); });
    clock_.Run(22 * day + day / 12);
}

// What is left on the lines ends as by a power cut.
Stage::~Stage() {
    struct TheStageGoes {};
    clock_.EndWaits(std::make_exception_ptr(TheStageGoes{}));
}

void Stage::Settle() {
    constexpr std::uint64_t anHourMs = 3'600'000;
    clock_.RunUntil([this] { return clock_.Quiet(); }, anHourMs);
    QCoreApplication::processEvents();
}

void Stage::LogIn() {
    shared_.currentuser = "operator";
    shared_.rights = {true, true, true, true, true, true, true, true, true, true, true, true};
    shell_->ShowForUser();
}

}  // namespace demo
