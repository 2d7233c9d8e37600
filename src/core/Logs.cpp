#include "core/Logs.h"

#include <fstream>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/MAIN_Module.h"

namespace core {

namespace {

bool Append(const std::filesystem::path& file, const std::string& text, std::ios::openmode mode) {
    std::ofstream out(file, mode | std::ios::binary);
    out << text;
    out.close();
    return out.good();
}

std::string StampOf(const Clock& clock) {
    const DateTime now = clock.Now();
    return DateText(now) + " " + TimeText(now);
}

}  // namespace

bool WriteRtuErr(const MAIN_Module& shared, const Clock& clock, const std::string& text) {
    return Append(shared.rtuErrPath, StampOf(clock) + "--:" + text + "\n", std::ios::app);
}

void Logs::WriteAudit(const std::string& auditline) {
    dbconn_.Execute("insert into TTS_table values(?)", {auditline});
}

bool Logs::WriteRtuErr(const std::string& text) {
    return core::WriteRtuErr(shared_, clock_, text);
}

void Logs::WriteLogLine(const std::string& text) {
    if (shared_.logGenflag) {
        // The CR in front of each line is what the readers of this file expect.
        Append(shared_.logpath, "\r" + text + "\n", std::ios::app);
    }
}

bool Logs::WriteConfParams(const std::string& text) {
    return Append(shared_.confparamspath, text, std::ios::trunc);
}

std::string Logs::Stamp() const {
    return StampOf(clock_);
}

}  // namespace core
