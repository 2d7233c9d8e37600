#include "desk/session/TrafficModel.h"

#include <string_view>

namespace desk {

namespace {

constexpr int mostRows = 500;
// Longer than any frame. A line of noise has no end, and its bytes are no news.
constexpr std::size_t mostBytes = 1024;
// As many as a row can show on the widest screen.
constexpr std::size_t shownBytes = 256;

QString HexText(std::string_view bytes) {
    const QByteArray raw = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return QString::fromLatin1(raw.toHex(' ')).toUpper();
}

QString DirectionText(const TrafficLine& line) {
    return line.direction == protocols::Direction::TX ? "TX" : line.late ? "RX late" : "RX";
}

// Sixteen a line, each line led by the position of its first byte.
QString HexLines(std::string_view bytes) {
    constexpr std::size_t perLine = 16;
    QString text;
    for (std::size_t at = 0; at < bytes.size(); at += perLine) {
        text += QString("\n%1  ").arg(at + 1, 4) + HexText(bytes.substr(at, perLine));
    }
    return text;
}

}  // namespace

void TrafficModel::Add(TrafficLine line) {
    if (rowCount() == mostRows) {
        beginRemoveRows({}, 0, 0);
        lines_.pop_front();
        endRemoveRows();
    }
    line.count = line.bytes.size();
    if (line.count > mostBytes) {
        line.bytes = line.bytes.substr(0, mostBytes);
    }
    beginInsertRows({}, rowCount(), rowCount());
    lines_.push_back(std::move(line));
    endInsertRows();
}

void TrafficModel::Clear() {
    beginResetModel();
    lines_.clear();
    endResetModel();
}

QString TrafficModel::CopyText(int row) const {
    const TrafficLine& line = At(row);
    return line.time + '\t' + DirectionText(line) + '\t' + HexText(line.bytes) +
           (line.count > line.bytes.size() ? " ..." : "");
}

QString TrafficModel::Fields(int row) const {
    const TrafficLine& line = At(row);
    const std::string_view request = line.request == nullptr ? std::string_view() : std::string_view(*line.request);
    return QString::fromStdString(
        protocols::FieldTable(protocols::FrameFields(line.bytes, wire_, line.direction, request)));
}

QString TrafficModel::Whole(int row) const {
    const TrafficLine& line = At(row);
    const QString kept =
        line.count > line.bytes.size() ? QString(", the first %1 of them here").arg(line.bytes.size()) : QString();
    return QString("%1  %2  %3 bytes").arg(line.time, DirectionText(line)).arg(line.count) + kept + "\n\n" +
           Fields(row) + "\n" + HexLines(line.bytes);
}

int TrafficModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

int TrafficModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns);
}

QVariant TrafficModel::data(const QModelIndex& index, int role) const {
    const TrafficLine& line = At(index.row());
    if (role == Qt::ToolTipRole) {
        // As text of fixed width; what stands in the bytes is never taken for markup.
        return "<pre>" + Fields(index.row()).toHtmlEscaped() + "</pre>";
    }
    if (role == Qt::TextAlignmentRole) {
        return QVariant((index.column() == Count ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (index.column()) {
        case Time:
            return line.time;
        case Direction:
            return line.late ? "late" : DirectionText(line);
        case Count:
            return QString::number(line.count) + ' ';  // the bytes begin close behind
        default:
            return HexText(std::string_view(line.bytes).substr(0, shownBytes));
    }
}

QVariant TrafficModel::headerData(int section, Qt::Orientation orientation, int role) const {
    static const QStringList captions = {"Time", "", "Bytes ", "Hex"};
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        return captions.value(section);
    }
    return role == Qt::TextAlignmentRole
               ? QVariant((section == Count ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter)
               : QVariant();
}

}  // namespace desk
