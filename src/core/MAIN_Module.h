#pragma once

#include <filesystem>
#include <string>

// What the whole desk shares. One object, made by the start of the program.
namespace core {

// The right flags of the user who is logged in; all of them are set anew at every login.
struct Rights {
    bool rightConfigStation = false;
    bool rightTts = false;
    bool rightGasComposition = false;
    bool rightUtility = false;
    bool rightScheduler = false;
    bool rightUserManager = false;
    bool rightArchive = false;
    bool rightDailyReport = false;
    bool rightTrends = false;
    bool rightHistorical = false;
    bool rightOnline = false;
    bool rightSetup = false;
};

// What frmemaildetails stores for the mails of the operators, as long as the program runs.
struct Addressees {
    std::string to;
    std::string cc;
    std::string bcc;
    std::string subject;
};

struct MAIN_Module {
    explicit MAIN_Module(std::filesystem::path applicationDirectory) : directory(std::move(applicationDirectory)) {}

    std::filesystem::path directory;
    std::filesystem::path DatabasePath() const { return directory / "Kolmar.mdb"; }
    std::filesystem::path ttslogpath = directory / "ttslog.txt";
    std::filesystem::path logpath = directory / "log.txt";
    std::filesystem::path confparamspath = directory / "confparams.txt";
    // The viewer spells it rtu_err.log; it is this one file.
    std::filesystem::path rtuErrPath = directory / "RTU_Err.log";
    std::filesystem::path schedulerDirectory = directory / "scheduler";
    std::filesystem::path dailyReportPath = directory / "daily_report.rtf";

    std::string versionsuffix = " - v10.3";
    std::string currentuser;  // user id as typed at login, kept after log-off; WARDEN for the super-user
    bool logGenflag = false;  // the BSAP traffic is recorded in log.txt
    Rights rights;
    Addressees addressees;
};

}  // namespace core
