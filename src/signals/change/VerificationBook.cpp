#include "signals/change/VerificationBook.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <system_error>

#include "signals/change/VerificationBookCheck.h"

namespace signals {

namespace {

constexpr lxw_color_t red = 0xFF0000;

constexpr std::size_t columns = verificationCaptions.size();
constexpr std::size_t widest = 60;  // characters

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The looks of a cell: of a row that is the same, and of one that differs.
struct Look {
    lxw_format* general;
    lxw_format* difference;

    Look(lxw_workbook* book, lxw_color_t colour)
        : general(workbook_add_format(book)), difference(workbook_add_format(book)) {
        format_set_font_color(general, colour);
        format_set_font_color(difference, colour);
        format_set_num_format(difference, "0.00000");
        format_set_align(difference, LXW_ALIGN_RIGHT);
    }
};

// Whether a number shows the digits of its text: a text signal may hold "007", or more digits than a number has.
bool KeepsItsDigits(const std::string& text) {
    constexpr int mostDigits = 15;
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    const bool leadingZero = text.size() > first + 1 && text[first] == '0' && IsDigit(text[first + 1]);
    return !leadingZero && std::count_if(text.begin(), text.end(), IsDigit) <= mostDigits;
}

// The sheet with the widths that its columns need.
class Sheet {
  public:
    explicit Sheet(lxw_workbook* book) : sheet_(workbook_add_worksheet(book, "Data Varification Report")) {}

    void Text(std::size_t row, std::size_t column, const std::string& text, lxw_format* look) {
        Widen(column, text.size());
        worksheet_write_string(sheet_, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column), text.c_str(), look);
    }
    void Number(std::size_t row, std::size_t column, const std::string& text, lxw_format* look) {
        const auto number = NumberOf(text);
        if (!number) {
            Text(row, column, text, look);
            return;
        }
        Widen(column, text.size());
        worksheet_write_number(sheet_, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column), *number, look);
    }
    // A value that is a number.
    void Value(std::size_t row, std::size_t column, const std::string& text, lxw_format* look) {
        KeepsItsDigits(text) ? Number(row, column, text, look) : Text(row, column, text, look);
    }
    void Finish() {
        for (std::size_t column = 0; column < columns; ++column) {
            worksheet_set_column(sheet_, static_cast<lxw_col_t>(column), static_cast<lxw_col_t>(column),
                                 static_cast<double>(widths_[column] + 2), nullptr);
        }
        worksheet_freeze_panes(sheet_, 1, 0);
    }

  private:
    void Widen(std::size_t column, std::size_t characters) {
        widths_[column] = std::max(widths_[column], std::min(characters, widest));
    }

    lxw_worksheet* sheet_;
    std::array<std::size_t, columns> widths_{};
};

lxw_error WriteBook(const std::filesystem::path& file, const std::vector<VerifiedRow>& rows) {
    lxw_workbook* book = workbook_new(file.c_str());
    if (book == nullptr) {
        return LXW_ERROR_MEMORY_MALLOC_FAILED;
    }
    const Look same(book, LXW_COLOR_BLACK);
    const Look differing(book, red);
    Sheet sheet(book);
    for (std::size_t column = 0; column < columns; ++column) {
        sheet.Text(0, column, verificationCaptions[column], same.general);
    }
    std::size_t at = 0;
    for (const VerifiedRow& row : rows) {
        const Look& look = row.differs ? differing : same;
        ++at;
        sheet.Number(at, 0, std::to_string(row.number), look.general);
        sheet.Number(at, 1, std::to_string(row.list), look.general);
        sheet.Text(at, 2, row.name, look.general);
        sheet.Text(at, 3, row.unit, look.general);
        sheet.Value(at, 4, row.before, look.general);
        sheet.Value(at, 5, row.after, look.general);
        if (row.difference) {
            sheet.Number(at, 6, *row.difference, look.difference);
        }
    }
    sheet.Finish();
    return workbook_close(book);
}

}  // namespace

std::string WriteVerificationBook(const std::filesystem::path& file, const std::vector<VerifiedRow>& rows) {
    std::filesystem::path part = file;
    part += ".part";
    const auto failed = [&](const std::string& why) {
        std::error_code ignored;
        std::filesystem::remove(part, ignored);
        return file.string() + ": " + why;
    };
    if (const lxw_error error = WriteBook(part, rows); error != LXW_NO_ERROR) {
        return failed(lxw_strerror(error));
    }
    if (!IsWholeBook(part)) {
        return failed("not written to its end. The disk may be full.");
    }
    std::error_code error;
    std::filesystem::rename(part, file, error);
    return error ? failed(error.message()) : std::string();
}

}  // namespace signals
