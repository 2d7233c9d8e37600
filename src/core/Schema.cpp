#include "core/Schema.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

#include "core/Database.h"

namespace core {

namespace {

// What leads from one version to the next, the first from 0 to 1. Kept as delivered: a step that has run at an owner's
// is never changed.
const std::array<std::vector<std::string>, schemaVersion> steps = {{
    {
        "alter table configdata_master add column framing text collate nocase default 'required'",
        "alter table configdata_detail add column readat text",
        "alter table configdata_detail add column quality text",
        "update modbus_para set floatcount = 265 where (model = 'TeleFlow' and floatcount = 236) or "
        "(model = 'TeleCorrector' and floatcount = 256)",
        "create table outcome (locationID integer, gasday text, due text, begun text, ended text, how text, "
        "attempts integer, line text, asked integer, received integer, result text, reason text, doubtful boolean)",
        "create index outcome_day on outcome (locationID, gasday)",
        "create table gasday (locationID integer, gasday text, readat text, dayflow double, monthflow double, "
        "pressure double, doubtful boolean)",
        "create unique index gasday_day on gasday (locationID, gasday)",
        "create table tArchiveMark (NodeId integer, StreamNo integer, HistoryTypeId integer, recordnumber integer, "
        "Time1 text)",
        "create unique index tArchiveMark_archive on tArchiveMark (NodeId, StreamNo, HistoryTypeId)",
        "create table schedule_state (servedto text)",
        "create table unsent_mail (id integer primary key, made text, missing text, report text)",
        "create table settings (name text primary key, value text, meaning text) without rowid",
        "insert into settings values"
        "('calibrationlevel', '5', 'write level that calibrating a transmitter needs'),"
        "('dialoutacknowledged', '4170253', 'number of the alarm modem whose calls Acknowledge answers'),"
        "('dialoutnoted', '3508216', 'number of the alarm calls that the desk notes itself; Acknowledge answers them, "
        "too'),"
        "('failedpolls', '2', 'failed polls in a row that a session survives'),"
        "('retryminutes', '15,60', 'minutes before each retry of a station without data; the last one repeats'),"
        "('retryrounds', '4', 'retries of a station without data at most; 0: none'),"
        "('signalwritelevel', '4', 'write level that writing a signal by name needs'),"
        "('stationminutes', '30', 'minutes that one attempt at a station may take')",
    },
    {
        "alter table configdata_master add column pacing text collate nocase default 'stated'",
        "alter table configdata_master add column wordorder text collate nocase default 'high'",
    },
}};

void FlushToDisk(const std::filesystem::path& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool flushed = descriptor >= 0 && fsync(descriptor) == 0;
    if (descriptor >= 0) {
        close(descriptor);
    }
    if (!flushed) {
        throw DatabaseError("The copy " + path.string() + " could not be written.");
    }
}

void Copy(Database& dbconn, const std::filesystem::path& copy) {
    const std::filesystem::path unfinished = copy.string() + ".unfinished";
    std::error_code failure;
    std::filesystem::remove(unfinished, failure);
    dbconn.Execute("vacuum into ?", {unfinished.string()});
    FlushToDisk(unfinished);
    std::filesystem::rename(unfinished, copy, failure);
    if (failure) {
        throw DatabaseError("The copy " + copy.string() + " could not be written: " + failure.message());
    }
    FlushToDisk(std::filesystem::absolute(copy).parent_path());
}

}  // namespace

void BringUp(const std::filesystem::path& file) {
    Database dbconn(file);
    const auto version = dbconn.First("pragma user_version").value()[0].Long();
    if (version == schemaVersion) {
        return;
    }
    if (version < 0 || version > schemaVersion) {
        throw DatabaseError("The database " + file.string() + " is of version " + std::to_string(version) +
                            "; this program knows versions up to " + std::to_string(schemaVersion) +
                            ". Start the program that belongs to it, or restore an older copy.");
    }
    Copy(dbconn, file.string() + ".version" + std::to_string(version));
    dbconn.InTransaction([&] {
        for (auto step = static_cast<std::size_t>(version); step < steps.size(); ++step) {
            for (const std::string& statement : steps[step]) {
                dbconn.Execute(statement);
            }
        }
        dbconn.Execute("pragma user_version = " + std::to_string(schemaVersion));
    });
}

}  // namespace core
