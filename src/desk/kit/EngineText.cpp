#include "desk/kit/EngineText.h"

#include <QLocale>

#include "core/Text.h"

namespace desk {

QString Text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString Number(double value) {
    return Text(core::NumberText(value));
}

QString Count(std::size_t number) {
    return QLocale(QLocale::English).toString(static_cast<qulonglong>(number));
}

QString OneLine(const std::string& text) {
    return QString::fromStdString(text).replace('\r', ' ').replace('\n', ' ');
}

QString Lines(const std::string& text) {
    return QString::fromStdString(text).replace('\r', '\n');
}

std::vector<QStringList> GridRows(const std::vector<std::vector<std::string>>& rows) {
    std::vector<QStringList> items;
    items.reserve(rows.size());
    for (const auto& row : rows) {
        QStringList& item = items.emplace_back();
        for (const std::string& cell : row) {
            item.append(QString::fromStdString(cell));
        }
    }
    return items;
}

}  // namespace desk
