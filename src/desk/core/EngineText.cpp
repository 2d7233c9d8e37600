#include "desk/core/EngineText.h"

namespace desk {

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
