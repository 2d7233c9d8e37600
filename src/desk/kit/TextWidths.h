#pragma once

#include <QFont>
#include <QString>
#include <array>

namespace desk {

// Widths of texts in one font, quickly: a character is measured once. Half a million cells are measured in the time in
// which a screen is drawn.
class TextWidths {
  public:
    // In pixels; within one of what the whole text would be measured.
    double Of(const QString& text, const QFont& font);

  private:
    static constexpr std::size_t known = 256;

    QFont font_;
    bool measured_ = false;
    std::array<double, known> widths_{};
};

}  // namespace desk
