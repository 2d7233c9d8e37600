#include "core/Logs.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <limits>
#include <utility>
#include <vector>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/MAIN_Module.h"
#include "core/Text.h"

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

// The end of a text, at most `limit` bytes of it: from the start of a line where one is left, else of a character.
std::string LastPart(const std::string& text, std::size_t limit) {
    if (text.size() <= limit) {
        return text;
    }
    std::size_t start = text.size() - limit;
    if (const auto lineEnd = text.find('\n', start - 1); lineEnd < text.size() - 1) {
        return text.substr(lineEnd + 1);
    }
    while (start < text.size() && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80) {
        ++start;
    }
    return text.substr(start);
}

// Each line followed by CR LF, however it ended before.
std::string WithLineEnds(const std::string& text) {
    std::string out;
    out.reserve(text.size() + text.size() / 16);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const bool returned = end > at && text[end - 1] == '\r';
        out.append(text, at, end - at - (returned ? 1 : 0)).append("\r\n");
        at = end + 1;
    }
    return out;
}

// A name that no file has yet: "TTS_2026-11-25_080509.txt", with a number behind it where there is one of that second.
std::filesystem::path FreeName(const std::filesystem::path& directory, const std::string& stem, const char* extension,
                               const DateTime& now) {
    const std::string dated = stem + "_" + ReplaceAll(ReplaceAll(IsoText(now), " ", "_"), ":", "");
    auto path = directory / (dated + extension);
    for (int number = 2; std::filesystem::exists(path); ++number) {
        path = directory / (dated + "_" + std::to_string(number) + extension);
    }
    return path;
}

// A log that is full is set aside and kept. One that cannot be renamed grows on.
void Rotate(const std::filesystem::path& file, const DateTime& now) {
    constexpr std::uintmax_t full = 5'000'000;
    std::error_code failure;
    const auto size = std::filesystem::file_size(file, failure);
    if (!failure && size >= full) {
        std::filesystem::rename(file, FreeName(file.parent_path(), file.stem().string(), ".log", now), failure);
    }
}

// A new file of lines that is on the disk when it is closed, and not there when it was not. Throws std::system_error.
class KeptFile {
  public:
    explicit KeptFile(std::filesystem::path path) : path_(std::move(path)), file_(std::fopen(path_.c_str(), "wx")) {
        Check(file_ != nullptr);
    }
    ~KeptFile() {
        if (file_ != nullptr) {
            std::fclose(file_);
            std::error_code ignored;
            std::filesystem::remove(path_, ignored);
        }
    }
    KeptFile(const KeptFile&) = delete;
    KeptFile& operator=(const KeptFile&) = delete;

    void Line(const std::string& text) { Check(std::fputs((text + "\r\n").c_str(), file_) >= 0); }
    void Close() {
        Check(std::fflush(file_) == 0 && fsync(fileno(file_)) == 0);
        Check(std::fclose(std::exchange(file_, nullptr)) == 0);
    }

  private:
    void Check(bool good) const {
        if (!good) {
            throw std::system_error(errno, std::generic_category(), path_.filename().string());
        }
    }

    std::filesystem::path path_;
    std::FILE* file_;
};

}  // namespace

bool WriteRtuErr(const MAIN_Module& shared, const Clock& clock, const std::string& text) {
    Rotate(shared.rtuErrPath, clock.Now());
    return Append(shared.rtuErrPath, StampOf(clock) + "--:" + text + "\n", std::ios::app);
}

void Logs::WriteAudit(const std::string& auditline) {
    dbconn_.Execute("insert into TTS_table values(?)", {auditline});
}

LogText Logs::ReadAudit(std::size_t limit) const {
    // From the end back, some rows at a time and no more of a row than can be shown: a trail of years is never read
    // whole.
    constexpr std::int64_t rowsAtOnce = 200;
    std::vector<std::string> lines;
    std::size_t size = 0;
    std::int64_t before = std::numeric_limits<std::int64_t>::max();
    for (std::size_t read = rowsAtOnce; read == rowsAtOnce && size <= limit;) {
        const auto rows = dbconn_.Query(
            "select rowid as place, substr(LOG, -?) as line from TTS_table where rowid < ? order by rowid desc limit ?",
            {static_cast<std::int64_t>(limit) + 1, before, rowsAtOnce});
        read = rows.size();
        for (const Row& row : rows) {
            if (size > limit) {
                break;
            }
            before = row.Long("place");
            lines.push_back(row.Text("line") + "\r\n");
            size += lines.back().size();
        }
    }
    std::string text;
    text.reserve(size);
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        text += *line;
    }
    return {LastPart(text, limit), size <= limit};
}

std::string Logs::ClearAudit() {
    const auto last = dbconn_.First("select max(rowid) as place from TTS_table");
    if (!last || last->IsNull("place")) {
        return {};
    }
    const auto file = FreeName(shared_.directory, "TTS", ".txt", clock_.Now());
    {
        KeptFile kept(file);
        dbconn_.Each("select LOG from TTS_table where rowid <= ? order by rowid", {last->Long("place")},
                     [&](const RowInHand& row) { kept.Line(row.Text(0)); });
        kept.Close();
    }
    dbconn_.Execute("delete from TTS_table where rowid <= ?", {last->Long("place")});
    return file.filename().string();
}

bool Logs::WriteRtuErr(const std::string& text) {
    return core::WriteRtuErr(shared_, clock_, text);
}

LogText Logs::ReadRtuErr(std::size_t limit) const {
    std::error_code failure;
    const auto size = std::filesystem::file_size(shared_.rtuErrPath, failure);
    if (failure == std::errc::no_such_file_or_directory) {
        return {};
    }
    std::ifstream in(shared_.rtuErrPath, std::ios::binary);
    if (failure || !in) {
        throw std::system_error(failure ? failure : std::make_error_code(std::errc::permission_denied),
                                shared_.rtuErrPath.filename().string());
    }
    // One byte more than is shown tells whether the first line is whole.
    const bool whole = size <= limit;
    in.seekg(whole ? 0 : static_cast<std::streamoff>(size - limit - 1));
    std::string text(whole ? static_cast<std::size_t>(size) : limit + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    return {WithLineEnds(LastPart(text, limit)), whole};
}

std::error_code Logs::ClearRtuErr() {
    std::error_code failure;
    std::filesystem::rename(shared_.rtuErrPath, FreeName(shared_.directory, "RTU_Err", ".log", clock_.Now()), failure);
    return failure;
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
