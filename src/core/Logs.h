#pragma once

#include <string>

namespace core {

class Clock;
class Database;
struct MAIN_Module;

// One line of RTU_Err.log, also while no database is open: date and time, "--:", the text. A log that cannot be written
// stops nobody: tells whether the line is in the file.
bool WriteRtuErr(const MAIN_Module& shared, const Clock& clock, const std::string& text);

// The three records of what happened, and the printout of parameters.
class Logs {
  public:
    Logs(Database& dbconn, const MAIN_Module& shared, const Clock& clock)
        : dbconn_(dbconn), shared_(shared), clock_(clock) {}

    // One line of the audit trail, TTS_table, as its event words it. Throws DatabaseError.
    void WriteAudit(const std::string& auditline);

    // The same, of this desk.
    bool WriteRtuErr(const std::string& text);

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

}  // namespace core
