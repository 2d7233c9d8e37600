#include "collection/Workbook.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "core/Text.h"

namespace collection {

namespace {

constexpr std::size_t longestName = 180;  // bytes, so that the date and the ending still fit

std::string Hex(std::uint64_t number, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
        text += "0123456789ABCDEF"[(number >> shift) & 15];
    }
    return text;
}

// An over-long name keeps its beginning; the sum (FNV-1a) of the whole keeps two such names apart.
std::string Shortened(const std::string& name) {
    std::uint64_t sum = 14695981039346656037ULL;
    for (const char c : name) {
        sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    }
    std::size_t cut = longestName;
    while (cut > 0 && (static_cast<unsigned char>(name[cut]) & 0xC0) == 0x80) {
        --cut;  // not inside a character
    }
    return name.substr(0, cut) + "~" + Hex(sum, 16);
}

std::string FileName(const std::string& consumer) {
    constexpr std::string_view unsafe = "/\\:*?\"<>|%";
    std::string name;
    for (const char c : consumer) {
        const auto byte = static_cast<unsigned char>(c);
        const bool hidden = name.empty() && c == '.';
        if (byte < 0x20 || byte == 0x7F || hidden || unsafe.find(c) != std::string_view::npos) {
            name += "%" + Hex(byte, 2);
        } else {
            name += c;
        }
    }
    return name.size() > longestName ? Shortened(name) : name;
}

// Day and month stand side by side, so "111" is the first of November and the eleventh of January. The day with two
// digits has the name to itself.
bool ReadsAsAnotherDate(const core::DateTime& date) {
    return date.day < 10 && date.month > 10 &&
           core::DateTime{date.year, date.month % 10, date.day * 10 + 1, 0, 0, 0}.Valid();
}

// Each line ends with a CR of its own in front of the file's line end.
std::string Line(const std::string& text) {
    return text + "\r\n";
}

// A text in its place of a line. One that holds a tab or a line end would move what stands behind it into another
// column or on to a line of its own.
std::string Cell(const std::string& text) {
    std::string cell = text;
    for (char& c : cell) {
        c = static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
    return cell;
}

std::string Block(core::Database& dbconn, const core::DateTime& now, const std::string& consumer, int streamno,
                  const std::string& model, std::span<const reading::Claim> claims) {
    const auto rows = dbconn.Query("select * from sched_temp");
    std::string block;
    if (!rows.empty()) {
        block += Line("Schedule Date:-  " + core::DateText(now) + "  Schedule Time:-   " + core::TimeText(now));
        block += Line("RTU Name:- " + Cell(consumer));
        block += Line("Stream:- " + std::to_string(streamno));
        block += Line("Model Name:- " + Cell(model));
    }
    block += Line("Sr. No\tDescription\tValue  \tUnit");
    for (std::size_t n = 0; n < rows.size(); ++n) {
        const core::Row& row = rows[n];
        const std::string mark = n < claims.size() ? claims[n].mark : std::string();
        const bool figure = n >= claims.size() || claims[n].value;
        block += Line(std::to_string(n + 1) + "\t" + Cell(row[0].Text()) + "\t" + (figure ? row[1].Text() : "") + "\t" +
                      Cell(row[2].Text()) + (mark.empty() ? "" : "\t" + mark));
    }
    return block;
}

// A file that grows by whole blocks: one that cannot be written to its end is taken back.
class AppendedFile {
  public:
    explicit AppendedFile(const std::filesystem::path& path)
        : descriptor_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644)) {
        if (descriptor_ < 0) {
            throw std::system_error(errno, std::generic_category());
        }
    }
    ~AppendedFile() { close(descriptor_); }
    AppendedFile(const AppendedFile&) = delete;
    AppendedFile& operator=(const AppendedFile&) = delete;

    // The block is on the disk when this returns. Throws std::system_error, and the file is as it was.
    void Append(std::string_view block) const {
        const off_t before = lseek(descriptor_, 0, SEEK_END);
        if (WriteAll(block) && fsync(descriptor_) == 0) {
            return;
        }
        const int error = errno;
        if (before < 0 || ftruncate(descriptor_, before) != 0) {
            throw std::system_error(error, std::generic_category(), "half a block is left in the file");
        }
        throw std::system_error(error, std::generic_category());
    }

  private:
    bool WriteAll(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t written = write(descriptor_, text.data(), text.size());
            if (written < 0 && errno != EINTR) {
                return false;
            }
            text.remove_prefix(static_cast<std::size_t>(written < 0 ? 0 : written));
        }
        return true;
    }

    int descriptor_;
};

}  // namespace

std::filesystem::path WorkbookPath(const core::MAIN_Module& shared, const std::string& consumer,
                                   const core::DateTime& date) {
    const std::string apart = ReadsAsAnotherDate(date) ? "-" : "";
    return shared.schedulerDirectory / (FileName(consumer) + "_" + std::to_string(date.day) + apart +
                                        std::to_string(date.month) + std::to_string(date.year) + ".xls");
}

std::filesystem::path SharedWorkbookPath(const core::MAIN_Module& shared, const std::string& consumer,
                                         const core::DateTime& date) {
    return shared.schedulerDirectory / (FileName(consumer) + "_" + std::to_string(date.day) +
                                        std::to_string(date.month) + std::to_string(date.year) + ".xls");
}

void WriteSchedulerFile(core::Database& dbconn, const core::MAIN_Module& shared, const core::Clock& clock,
                        core::Feedback& feedback, core::Logs& logs, const std::string& consumer, int streamno,
                        const std::string& model, std::span<const reading::Claim> claims) {
    try {
        const core::DateTime now = clock.Now();
        std::filesystem::create_directories(shared.schedulerDirectory);
        AppendedFile(WorkbookPath(shared, consumer, now)).Append(Block(dbconn, now, consumer, streamno, model, claims));
    } catch (const std::exception& failure) {
        feedback.Status("Error in creating Excel");
        logs.WriteRtuErr(std::string("Error in creating Excel: ") + failure.what());
    }
}

}  // namespace collection
