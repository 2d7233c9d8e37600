// The store of the archive against plain SQLite, with little and with ten years in the file; rows into a grid;
// decoding.

#include <sqlite3.h>

#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "archive/bsap/ArchiveRecords.h"
#include "archive/store/ArchiveStore.h"
#include "archive/view/HistoryView.h"
#include "bench/Figure.h"
#include "desk/kit/Grid.h"
#include "support/ScratchDesk.h"

namespace {

using bench::Goal;
using Time = std::chrono::steady_clock;

constexpr int hourly = 2;
constexpr int fields = 10;
constexpr std::int64_t firstHour = 455832;  // since 1970: the first of 2022
constexpr int tenYears = 87660;             // hours

// The middle of some rounds, in milliseconds.
double Middle(int rounds, const std::function<double()>& round) {
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        times.push_back(round());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

double Took(const std::function<void()>& work) {
    const auto start = Time::now();
    work();
    return std::chrono::duration<double, std::milli>(Time::now() - start).count();
}

core::DateTime Hour(std::int64_t hour) {
    return core::FromSeconds((firstHour + hour) * 3600);
}

std::string FieldName(int field) {
    std::string name = "FIELD " + std::to_string(field + 1);
    name.resize(17, ' ');
    return name;
}

double ValueOf(std::int64_t hour, int field) {
    return static_cast<double>((hour * 37 + field * 1009) % 100000) / 100;
}

archive::ArchiveDownload Download(std::int64_t from, int records) {
    archive::ArchiveDownload download;
    for (int field = 0; field < fields; ++field) {
        download.fields.push_back(FieldName(field));
    }
    for (std::int64_t hour = from; hour < from + records; ++hour) {
        archive::ArchiveRecord record{Hour(hour), 1, 1};
        for (int field = 0; field < fields; ++field) {
            record.values.push_back(ValueOf(hour, field));
        }
        download.records.push_back(record);
    }
    return download;
}

// SQLite without anything of ours.
class Plain {
  public:
    explicit Plain(const std::filesystem::path& file) {
        Check(sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE, nullptr));
    }
    ~Plain() { sqlite3_close(db_); }
    Plain(const Plain&) = delete;
    Plain& operator=(const Plain&) = delete;

    void Run(const char* sql) { Check(sqlite3_exec(db_, sql, nullptr, nullptr, nullptr)); }
    sqlite3_stmt* Prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        Check(sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr));
        return statement;
    }
    std::int64_t LastId() const { return sqlite3_last_insert_rowid(db_); }
    void Step(sqlite3_stmt* statement) {
        if (sqlite3_step(statement) != SQLITE_DONE) {
            throw std::runtime_error(sqlite3_errmsg(db_));
        }
        sqlite3_reset(statement);
    }

  private:
    void Check(int result) {
        if (result != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(db_));
        }
    }
    sqlite3* db_ = nullptr;
};

// Inserts the rows of an archive with prepared statements, without looking whether they are there.
class PlainInserts {
  public:
    explicit PlainInserts(Plain& db) : db_(db) {}
    ~PlainInserts() {
        for (sqlite3_stmt* statement : {column_, timeStamp_, value_}) {
            sqlite3_finalize(statement);
        }
    }
    PlainInserts(const PlainInserts&) = delete;
    PlainInserts& operator=(const PlainInserts&) = delete;

    std::vector<std::int64_t> Columns(int station, const std::vector<std::string>& names) {
        std::vector<std::int64_t> ids;
        for (const std::string& name : names) {
            Insert(column_, station, name);
            ids.push_back(db_.LastId());
        }
        return ids;
    }
    void Record(int station, const std::vector<std::int64_t>& columns, const archive::ArchiveRecord& record) {
        Insert(timeStamp_, station, core::IsoText(record.at));
        const std::int64_t timeStamp = db_.LastId();
        for (std::size_t n = 0; n < columns.size(); ++n) {
            sqlite3_bind_int64(value_, 1, columns[n]);
            sqlite3_bind_int64(value_, 2, timeStamp);
            sqlite3_bind_int64(value_, 3, hourly);
            sqlite3_bind_double(value_, 4, record.values[n]);
            db_.Step(value_);
        }
    }

  private:
    void Insert(sqlite3_stmt* statement, int station, const std::string& text) {
        sqlite3_bind_text(statement, 1, text.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_int64(statement, 2, hourly);
        sqlite3_bind_int64(statement, 3, station);
        sqlite3_bind_int64(statement, 4, 1);
        db_.Step(statement);
    }

    Plain& db_;
    sqlite3_stmt* column_ =
        db_.Prepare("insert into tArchiveColumnHeader (ColumnName,HistoryTypeId,NodeId,StreamNo) values(?,?,?,?)");
    sqlite3_stmt* timeStamp_ =
        db_.Prepare("insert into tArchiveTimeStamp (Time1,HistoryTypeId,NodeId,StreamNo) values(?,?,?,?)");
    sqlite3_stmt* value_ =
        db_.Prepare("insert into tArchiveData (ColumnId,TimeStampId,HistoryTypeId,value1) values(?,?,?,?)");
};

// Storing -------------------------------------------------------------------------------------------------------------

bool Storing() {
    constexpr int rounds = 5;
    const archive::ArchiveDownload download = Download(0, 10000);
    const double plain = Middle(rounds, [&] {
        support::ScratchDirectory scratch;
        std::filesystem::copy_file(NORWEN_DATABASE, scratch.path / "Kolmar.mdb");
        Plain db(scratch.path / "Kolmar.mdb");
        db.Run("pragma journal_mode=wal; pragma synchronous=full");
        return Took([&] {
            PlainInserts inserts(db);
            db.Run("begin");
            const auto columns = inserts.Columns(1, download.fields);
            for (const archive::ArchiveRecord& record : download.records) {
                inserts.Record(1, columns, record);
            }
            db.Run("commit");
        });
    });
    std::vector<double> again;
    const double first = Middle(rounds, [&] {
        support::ScratchDesk desk;
        const auto save = [&] { archive::SaveArchive(desk.dbconn, {1, 1, hourly}, download); };
        const double took = Took(save);
        again.push_back(Took(save));
        return took;
    });
    std::sort(again.begin(), again.end());
    std::printf("  10,000 records of 10 fields: plain %.0f ms, stored %.0f ms, once more %.0f ms\n", plain, first,
                again[again.size() / 2]);
    const bool met = bench::Report("store 10,000 records / plain", first / plain, "", Goal::AtMost, 2.5);
    return bench::Report("store them once more / plain", again[again.size() / 2] / plain, "", Goal::AtMost, 2.5) && met;
}

// Viewing -------------------------------------------------------------------------------------------------------------

using Cells = std::vector<std::vector<std::string>>;

// As the screen reads it, in portions, with the texts of the grid.
Cells View(core::Database& dbconn, int station, const archive::HistoryChoice& choice) {
    archive::HistoryView view(dbconn, station, choice, hourly);
    Cells cells;
    for (auto rows = view.Next(500); !rows.empty(); rows = view.Next(500)) {
        for (const archive::HistoryRow& row : rows) {
            cells.push_back(archive::ShownCells(row));
        }
    }
    return cells;
}

Cells Join(Plain& db) {
    sqlite3_stmt* join = db.Prepare(
        "select t.TimeStampId, t.Time1, d.value1 from tArchiveTimeStamp t left join tArchiveData d "
        "on d.TimeStampId=t.TimeStampId where t.NodeId=1 and t.StreamNo=1 and t.HistoryTypeId=2 "
        "order by t.Time1, d.ColumnId");
    const auto text = [join](int column) {
        return std::string(reinterpret_cast<const char*>(sqlite3_column_text(join, column)));
    };
    Cells cells;
    std::int64_t last = 0;
    while (sqlite3_step(join) == SQLITE_ROW) {
        if (sqlite3_column_int64(join, 0) != last) {
            last = sqlite3_column_int64(join, 0);
            cells.push_back({text(1)});
        }
        cells.back().push_back(text(2));
    }
    sqlite3_finalize(join);
    return cells;
}

bool Viewing() {
    constexpr int rounds = 15;
    support::ScratchDesk desk;
    archive::SaveArchive(desk.dbconn, {1, 1, hourly}, Download(0, 10000));
    Plain db(desk.shared.DatabasePath());
    std::size_t seen = 0;
    const double join = Middle(rounds, [&] { return Took([&] { seen = Join(db).size(); }); });
    const double view = Middle(rounds, [&] { return Took([&] { seen -= View(desk.dbconn, 1, {1}).size(); }); });
    std::printf("  10,000 rows of 10 columns: the join %.1f ms, the view %.1f ms\n", join, view);
    static_cast<void>(seen);
    return bench::Report("view 10,000 rows / the one join", view / join, "", Goal::AtMost, 1.5);
}

// Ten years -----------------------------------------------------------------------------------------------------------

std::vector<std::string> SchemaOf(core::Database& dbconn) {
    return dbconn.Texts("select sql from sqlite_master where name like 'tArchive%' order by name");
}

// Forty stations that were read every day, 24 records of 10 fields each time.
void FillTenYears(const std::filesystem::path& file) {
    constexpr int stations = 40;
    Plain db(file);
    db.Run("pragma journal_mode=off; pragma synchronous=off; begin");
    PlainInserts inserts(db);
    std::vector<std::vector<std::int64_t>> columns;
    for (int station = 1; station <= stations; ++station) {
        columns.push_back(inserts.Columns(station, Download(0, 0).fields));
    }
    for (int hour = 0; hour < tenYears; hour += 24) {
        const archive::ArchiveDownload day = Download(hour, std::min(24, tenYears - hour));
        for (int station = 1; station <= stations; ++station) {
            for (const archive::ArchiveRecord& record : day.records) {
                inserts.Record(station, columns[static_cast<std::size_t>(station - 1)], record);
            }
        }
    }
    db.Run("commit");
}

// The file is kept in the system's temporary directory for the next time, as long as the schema is the same.
std::filesystem::path TenYears(core::Database& delivered) {
    const auto file = std::filesystem::temp_directory_path() / "norwen-ten-years.mdb";
    if (std::filesystem::exists(file)) {
        core::Database there(file);
        if (SchemaOf(there) == SchemaOf(delivered)) {
            return file;
        }
    }
    std::printf("  building %s: 35 million values, once\n", file.c_str());
    std::fflush(stdout);
    auto half = file;
    half += ".part";
    std::filesystem::copy_file(NORWEN_DATABASE, half, std::filesystem::copy_options::overwrite_existing);
    FillTenYears(half);
    std::filesystem::rename(half, file);
    return file;
}

bool AMonthOfTenYears() {
    constexpr int rounds = 31;
    constexpr int station = 20;
    constexpr int month = 31 * 24;
    const std::int64_t begin = 80000 / 24 * 24;
    const archive::HistoryChoice choice{1, archive::ArchiveKind::Hourly, false, Hour(begin), Hour(begin + month - 1)};
    support::ScratchDesk desk;
    archive::SaveArchive(desk.dbconn, {station, 1, hourly}, Download(begin, month));
    core::Database large(TenYears(desk.dbconn));
    const auto one = [&](core::Database& dbconn) {
        return Middle(rounds, [&] {
            return Took([&] {
                if (View(dbconn, station, choice).size() != month) {
                    throw std::runtime_error("the month is not whole");
                }
            });
        });
    };
    const double alone = one(desk.dbconn);
    const double among = one(large);
    std::printf("  a month of 744 rows: %.2f ms alone in its file, %.2f ms among ten years\n", alone, among);
    return bench::Report("a month of ten years / alone", among / alone, "", Goal::AtMost, 2);
}

// The grid ------------------------------------------------------------------------------------------------------------

std::vector<QStringList> GridRows(int count) {
    std::vector<QStringList> rows;
    for (int row = 0; row < count; ++row) {
        QStringList cells(QString::fromStdString(archive::ShownTime(Hour(row))));
        for (int field = 0; field < fields; ++field) {
            cells.append(QString::number(ValueOf(row, field)));
        }
        rows.push_back(cells);
    }
    return rows;
}

bool RowsIntoAGrid() {
    desk::Grid grid;
    QStringList captions("Date Time:");
    for (int field = 0; field < fields; ++field) {
        captions.append(">" + QString::fromStdString(FieldName(field)));
    }
    grid.FormatString(captions);
    grid.resize(1000, 600);
    grid.show();
    QCoreApplication::processEvents();
    const auto many = GridRows(50000);
    const auto few = GridRows(4);
    const auto add = [&grid](const std::vector<QStringList>& rows) {
        return Took([&] {
            grid.AddItems(rows);
            QCoreApplication::processEvents();
        });
    };
    const double all = add(many);
    const double four = Middle(21, [&] { return add(few); });
    const bool met = bench::Report("50,000 rows into a grid", all, "ms", Goal::AtMost, 150);
    return bench::Report("4 rows more, until painted", four, "ms", Goal::AtMost, 20) && met;
}

// Decoding ------------------------------------------------------------------------------------------------------------

// A record of ten fields, another for each `n`.
std::string RecordBytes(unsigned n) {
    std::string bytes = {static_cast<char>(n), static_cast<char>(n >> 8U), '\x30', '\x2A', '\1', '\0', '\2', '\0'};
    for (int field = 0; field < fields; ++field) {
        bytes += {static_cast<char>(n), static_cast<char>(n >> 8U), '\x45', '\x41'};
    }
    return bytes;
}

std::string EventBytes(unsigned n) {
    std::string bytes = {static_cast<char>(n % 8)};
    bytes += "FLOW.RATE.HI" + std::string(1, '\0') + RecordBytes(n).substr(0, 31);
    return bytes;
}

// How many records a second `decode` takes; it returns a number that depends on all of each.
double DecodingRate(std::string (*make)(unsigned), double (*decode)(const std::string&)) {
    constexpr unsigned count = 200000;
    std::vector<std::string> records;
    for (unsigned n = 0; n < count; ++n) {
        records.push_back(make(n));
    }
    double sum = 0;
    const double took = Middle(5, [&] {
        return Took([&] {
            for (const std::string& record : records) {
                sum += decode(record);
            }
        });
    });
    return sum == 0 ? 0 : count / took * 1000;
}

bool Decoding() {
    const double records = DecodingRate(RecordBytes, [](const std::string& bytes) {
        const archive::ArchiveRecord record = archive::DecodeArchiveRecord(bytes);
        return record.values.back() + record.at.day;
    });
    const double events = DecodingRate(EventBytes, [](const std::string& bytes) {
        const archive::AuditEvent event = archive::DecodeAuditRecord(bytes, archive::EventCodes::All);
        return static_cast<double>(event.description.size()) + event.at.day;
    });
    const bool met = bench::Report("archive records decoded", records, "/s", Goal::AtLeast, 200000);
    return bench::Report("audit records decoded", events, "/s", Goal::AtLeast, 200000) && met;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const bool good[] = {Storing(), Viewing(), AMonthOfTenYears(), RowsIntoAGrid(), Decoding()};
    return std::all_of(std::begin(good), std::end(good), [](bool met) { return met; }) ? 0 : 1;
}
