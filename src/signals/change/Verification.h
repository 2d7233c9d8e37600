#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace core {
class Database;
}

// The comparison of a station's lists before and after a change of its program.
namespace signals {

// A pair of rows, which stand at the same place of their list. The name and the unit are those of the row before: where
// a signal was put into a list, or taken out of it, every row behind it is compared with its neighbour, which readers
// of the report know.
struct VerifiedRow {
    std::size_t number = 0;  // from 1, over all lists
    int list = 0;
    std::string name;
    std::string unit;
    std::string before;
    std::string after;
    // After less before, "0.00000"; the spreadsheet's word for an error where before is no number. Nothing where after
    // is none.
    std::optional<std::string> difference{};
    bool differs = false;  // without a tolerance, whatever the difference is shown as
};

inline constexpr const char* noNumber = "#VALUE!";

// The number that a value's text is as a whole; nothing when it is none.
std::optional<double> NumberOf(std::string_view text);

// Compares two values; the number, the list, the name and the unit of the row are left open.
VerifiedRow CompareValues(const std::string& before, const std::string& after);

// The captions of the comparison, with the blanks that they have in its files.
inline constexpr std::array<const char*, 7> verificationCaptions = {" Sr. No.     ",
                                                                    "List No",
                                                                    " Signal Name                                 ",
                                                                    " Units                 ",
                                                                    " Before Value              ",
                                                                    " After Value              ",
                                                                    "Difference         "};

// The cells of a row: seven, or six without a difference.
std::vector<std::string> VerifiedCells(const VerifiedRow& row);

// The comparison as a text: the captions, then the rows, a line each, every field ended by a tab.
std::string VerificationText(const std::vector<VerifiedRow>& rows);

// A list that has more rows on one side than on the other.
struct UnevenList {
    int list = 0;
    std::size_t before = 0;
    std::size_t after = 0;
};

// The lists of a station, compared one after the other in the order of their numbers. Throws DatabaseError.
class Verification {
  public:
    Verification(core::Database& dbconn, std::int64_t locationID);

    // The pairs of the next list. What one side has more is left out; a list that one side has not gives none.
    std::vector<VerifiedRow> Next();

    // Those of the lists so far of which the comparison leaves something out.
    const std::vector<UnevenList>& Uneven() const { return uneven_; }

    std::size_t Done() const { return done_; }
    std::size_t Total() const { return lists_.size(); }

  private:
    core::Database& dbconn_;
    std::int64_t locationID_;
    std::vector<int> lists_;
    std::vector<UnevenList> uneven_;
    std::size_t done_ = 0;  // lists
    std::size_t number_ = 0;
};

}  // namespace signals
