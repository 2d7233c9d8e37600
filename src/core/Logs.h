#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <system_error>

namespace core {

class Clock;
class Database;
struct MAIN_Module;

// One line of RTU_Err.log, also while no database is open: date and time, "--:", the text. A log that cannot be written
// stops nobody: tells whether the line is in the file. A log of 5 MB is first set aside as
// "RTU_Err_2026-11-25_080509.log".
bool WriteRtuErr(const MAIN_Module& shared, const Clock& clock, const std::string& text);

// What a screen shows of a log: its lines, each followed by CR LF.
struct LogText {
    std::string text;
    bool whole = true;  // false: only the last lines of the log
};

// As much as a screen takes at once without a wait, in bytes.
constexpr std::size_t logTextLimit = 1'000'000;

// The three records of what happened, and the printout of parameters.
class Logs {
  public:
    Logs(Database& dbconn, const MAIN_Module& shared, const Clock& clock)
        : dbconn_(dbconn), shared_(shared), clock_(clock) {}

    // One line of the audit trail, TTS_table, as its event words it. Throws DatabaseError.
    void WriteAudit(const std::string& auditline);

    // The audit trail in table order, or as many of its last lines as the limit holds. Throws DatabaseError.
    LogText ReadAudit(std::size_t limit = logTextLimit) const;

    // Takes all lines away, once they are on the disk in a file of their own beside the database,
    // "TTS_2026-11-25_080509.txt": its name, empty when there was no line. Throws DatabaseError, or std::system_error
    // when that file cannot be written; then nothing is taken away.
    std::string ClearAudit();

    // The same, of this desk.
    bool WriteRtuErr(const std::string& text);

    // RTU_Err.log, or as many of its last lines as the limit holds. Empty when there is no such file.
    // Throws std::system_error when there is one that cannot be read.
    LogText ReadRtuErr(std::size_t limit = logTextLimit) const;

    // RTU_Err.log becomes "RTU_Err_2026-11-25_080509.log". Tells why not; a file that is not there is such an error.
    std::error_code ClearRtuErr();

    // A title or a line of bytes of the BSAP traffic, into log.txt; nothing while logGenflag is false.
    void WriteLogLine(const std::string& text);

    // confparams.txt, whole. Tells whether it was written.
    bool WriteConfParams(const std::string& text);

    // The start of an audit line: date, blank, time.
    std::string Stamp() const;

  private:
    Database& dbconn_;
    const MAIN_Module& shared_;
    const Clock& clock_;
};

// Runs a routine at its edge: what it throws ends it and is a line of RTU_Err.log.
template <typename Work>
void Guarded(Logs& logs, const Work& work) {
    try {
        work();
    } catch (const std::exception& failure) {
        logs.WriteRtuErr(failure.what());
    }
}

}  // namespace core
