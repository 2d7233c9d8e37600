#include "desk/signals/ListNumber.h"

#include <QLineEdit>
#include <QRegularExpressionValidator>

namespace desk {

void TakesDigits(QLineEdit& txtListNo) {
    txtListNo.setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]{0,3}"), &txtListNo));
}

std::optional<int> ListNumber(const QLineEdit& txtListNo) {
    constexpr int highest = 255;
    bool isNumber = false;
    const int number = txtListNo.text().toInt(&isNumber);
    return isNumber && number >= 0 && number <= highest ? std::optional(number) : std::nullopt;
}

}  // namespace desk
