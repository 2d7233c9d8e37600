#include "demo/screens/Stage.h"

#include "demo/DemoRegister.h"

namespace demo {

namespace {

const core::DateTime monthBegins{2026, 3, 1, 7, 59, 30};
constexpr std::uint64_t day = 24ULL * 3600 * 1000;

// Stations around the five of the demo, which fill the wall. They are due later in the day.
struct WallStation {
    const char* consumer;
    int groupno;
    bool sampledtoday;
};
const std::vector<WallStation> wall{
    {"Ashgrove Dairy", 1, true}, {"Bridge Street", 1, true},    {"Carr Lane", 1, true},     {"Dunmore Glass", 1, false},
    {"Eastfield", 2, true},      {"Fernhill Paper", 2, true},   {"Glen Foundry", 2, false}, {"Harbour", 2, true},
    {"Ivy Bank", 2, true},       {"Juniper Road", 2, true},     {"Kestrel Tiles", 3, true}, {"Longmoor", 3, true},
    {"Mill Lane", 3, true},      {"Northway Bakery", 3, false}, {"Orchard Park", 3, true},  {"Priory Works", 3, true},
    {"Quarry Hill", 4, false},   {"Ridgeway", 4, true},         {"Station Road", 4, true},  {"Tollgate Brick", 4, true},
    {"Underwood", 4, true},      {"Valley Steel", 4, false},    {"Westbrook", 4, true},     {"Yew Tree Farm", 4, true},
};

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
    for (const WallStation& station : wall) {
        const auto locationID = AddStation(
            dbconn_, {station.consumer, "TeleFlow", "Modbus", "RTU", 1, 1, "", 1, {}, "14:30", 100, station.groupno});
        dbconn_.Execute("update configdata_master set sampledtoday = ?, sampleddate = ? where locationID = ?",
                        {station.sampledtoday, clock_.Now().day, locationID});
    }
}

// The schedule of three weeks, on which the field has its bad days.
void Stage::Collect() {
    fieldsim::FieldOptions options;
    options.alarmCycle = 300;
    options.modems[3] = {{"NO CARRIER", 6000}, {"CONNECT 9600", 5000}};
    field_ = std::make_unique<fieldsim::Field>(dbconn_, options);
    field_->AttachTo(serial_);
    shell_ = std::make_unique<desk::mainfrm>(desk_);
    feedback_.shell = shell_.get();
    clock_.Every(60000, [this] { shell_->Tick(); });
    clock_.Run(22 * day + day / 12);
}

void Stage::LogIn() {
    shared_.currentuser = "operator";
    shared_.rights = {true, true, true, true, true, true, true, true, true, true, true, true};
    shell_->ShowForUser();
}

}  // namespace demo
