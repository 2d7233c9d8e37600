#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "archive/RunView.h"
#include "archive/bsap/Collecting.h"
#include "core/Text.h"
#include "fieldsim/BsapStation.h"
#include "fieldsim/LineFaults.h"
#include "fieldsim/SimLine.h"
#include "protocols/line/Conversation.h"
#include "support/ScratchDesk.h"

namespace support {

// What a download showed, and when the operator stops it.
struct RecordingRun final : archive::RunView {
    std::vector<std::string> captions;
    std::vector<std::vector<std::string>> rows;
    std::string lastRecord;
    std::function<bool()> stopped = [] { return false; };

    void Columns(const std::vector<std::string>& names) override {
        captions = names;
        rows.clear();
    }
    void Rows(const std::vector<std::vector<std::string>>& more) override {
        rows.insert(rows.end(), more.begin(), more.end());
    }
    void Record(int record, int total) override { lastRecord = std::to_string(record) + "/" + std::to_string(total); }
    bool Stopped() const override { return stopped(); }

    // A column of all rows.
    std::vector<std::string> Column(std::size_t column) const {
        std::vector<std::string> cells;
        for (const auto& row : rows) {
            cells.push_back(row.at(column));
        }
        return cells;
    }
};

// A fault so many times, from the exchange `at` on.
inline fieldsim::LineFaults::Options FaultAt(std::size_t at, fieldsim::Fault fault, std::size_t times = 1) {
    fieldsim::LineFaults::Options faults;
    faults.script.assign(at, fieldsim::Fault::None);
    faults.script.insert(faults.script.end(), times, fault);
    return faults;
}

// A BSAP station with a history on a line with faults, and a conversation with it. Its node address is 1.
class HistoryTalk {
  public:
    explicit HistoryTalk(bool isCW, fieldsim::DataAnswer answers = fieldsim::DataAnswer::AtOnce,
                         fieldsim::LineFaults::Options faults = {})
        : station(1, {}, Options(isCW, answers, !faults.script.empty())), faults(station, std::move(faults)) {
        desk.dbconn.Execute("pragma synchronous=off");  // a download commits reply by reply
        ports.Attach(1, this->faults);
        talk.station.locationID = 7;
        talk.station.consumer = "O'Brien's Works";
        talk.station.modelno = isCW ? "CWGFC" : "TeleFlow";
        talk.station.isCW = isCW;
        talk.station.commtimeout = 500;
        talk.line->CommPort(1);
        talk.line->PortOpen(true);
    }

    archive::Collected Collect(const archive::Wish& wish) { return archive::Collect(desk.dbconn, talk, wish, view); }

    // Stopped, or its line taken, behind so many exchanges.
    void CutBehind(std::size_t exchanges, bool taken) {
        const auto due = [this, exchanges] { return faults.Exchanges().size() >= exchanges; };
        view.stopped = [taken, due] { return !taken && due(); };
        desk.clock.Every(1, [this, taken, due] {
            if (taken && due()) {
                field.TakeOver("The line was taken");
            }
        });
    }

    ScratchDesk desk;
    fieldsim::BsapStation station;
    fieldsim::LineFaults faults;
    fieldsim::SimPorts ports{desk.clock};
    fieldsim::SimLine line{ports};
    protocols::FieldLine field{line, desk.clock};
    protocols::BsapCounters counters;
    protocols::Conversation talk{
        field.TakeOver(""), desk.clock, desk.feedback, desk.logs, counters, {}, "WARDEN", 1, {}, {}};
    RecordingRun view;

  private:
    // A script counts exchanges: there none is added by chance.
    static fieldsim::BsapOptions Options(bool isCW, fieldsim::DataAnswer answers, bool isScripted) {
        fieldsim::BsapOptions options;
        options.notReadyOneIn = isScripted ? 0 : options.notReadyOneIn;
        options.shortLayout = isCW;
        options.answers = answers;
        return options;
    }
};

// A file of hourly records from 01/02/2026 on; record i has the IDs i + 1 and i + 2 and the values i + 0.25, i + 1.25,
// ...
inline fieldsim::ArchiveFile HourlyFile(std::size_t records, int oldest = 0, std::size_t fields = 3) {
    fieldsim::ArchiveFile file;
    file.name = "HOURLY";
    file.oldest = oldest;
    for (std::size_t f = 0; f < fields; ++f) {
        file.fields.push_back("FIELD " + std::to_string(f + 1));
    }
    const std::int64_t start = core::ToSeconds({2026, 2, 1, 0, 0, 0});
    for (std::size_t i = 0; i < records; ++i) {
        fieldsim::FileRecord record;
        record.at = core::FromSeconds(start + static_cast<std::int64_t>(i) * 3600);
        record.globalID = static_cast<int>(i) + 1;
        record.localID = static_cast<int>(i) + 2;
        for (std::size_t f = 0; f < fields; ++f) {
            record.values.push_back(static_cast<double>(i + f) + 0.25);
        }
        file.records.push_back(record);
    }
    return file;
}

// The rows of the table by which a screen chooses its routine.
struct Selection {
    const char* name;
    archive::Screen screen;
    bool isCW;
    bool newFirst;
    const char* timeHeader;
};

inline const Selection selections[] = {
    {"frmarchive", archive::Screen::frmarchive, false, false, "Time ::         "},
    {"CW long", archive::Screen::frmCW_archive, false, true, "Time ::                         "},
    {"CW short", archive::Screen::frmCW_archive, true, false, "Time ::                               "},
    {"CW short newest", archive::Screen::frmCW_archive, true, true, "Time ::                               "},
    {"para long", archive::Screen::frmparaarchive, false, false, "Time ::                         "},
    {"para long newest", archive::Screen::frmparaarchive, false, true, "Time ::                         "},
    {"para short newest", archive::Screen::frmparaarchive, true, true, "Time ::                               "},
    {"para short", archive::Screen::frmparaarchive, true, false,
     "Time ::                                                     "},
};

// Long "frmCW_archive" ignores "New First".
inline bool RunsNewestFirst(const Selection& selection) {
    return selection.newFirst && (selection.isCW || selection.screen == archive::Screen::frmparaarchive);
}

inline archive::Wish WishOf(const Selection& selection, bool audit = false) {
    archive::Wish wish;
    wish.screen = selection.screen;
    wish.newFirst = selection.newFirst;
    wish.audit = audit;
    wish.kind = archive::ArchiveKind::Hourly;
    wish.file = 2;
    return wish;
}

// The rows that the grid is to show of a file.
inline std::vector<std::vector<std::string>> RowsOf(const fieldsim::ArchiveFile& file, bool newestFirst) {
    std::vector<std::vector<std::string>> rows;
    for (const fieldsim::FileRecord& record : file.records) {
        const core::DateTime& at = record.at;
        std::vector<std::string> row = {core::DateText(at) + "   " + std::to_string(at.hour) + ":0:0",
                                        std::to_string(record.globalID), std::to_string(record.localID)};
        for (const double value : record.values) {
            row.push_back(core::NumberText(value));
        }
        rows.push_back(row);
    }
    if (newestFirst) {
        std::reverse(rows.begin(), rows.end());
    }
    return rows;
}

}  // namespace support
