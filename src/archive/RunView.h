#pragma once

#include <string>
#include <vector>

namespace archive {

// How a download reaches its screen. Its messages and lamps come by the conversation's feedback.
class RunView {
  public:
    virtual ~RunView() = default;

    // The grid begins anew with these columns.
    virtual void Columns(const std::vector<std::string>& captions) = 0;
    // Rows to be added at its end.
    virtual void Rows(const std::vector<std::vector<std::string>>& rows) = 0;
    // "Record (12/240)": where the download stands.
    virtual void Record(int record, int total) = 0;
    // The operator wants it to end. Asked between two requests.
    virtual bool Stopped() const = 0;
};

// How a download ended.
enum class RunEnd {
    Whole,
    Stopped,
    LineLost,  // the line was taken away, or the conversation was told to end
    Failed,
};

}  // namespace archive
