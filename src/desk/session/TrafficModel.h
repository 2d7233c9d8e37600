#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <cstddef>
#include <deque>
#include <memory>
#include <string>

#include "protocols/inspect/FrameFields.h"

namespace desk {

// One line of bytes that was sent or received.
struct TrafficLine {
    QString time;
    protocols::Direction direction = protocols::Direction::TX;
    std::size_t count = 0;
    std::string bytes;                           // the first of them, of a line that is longer than any frame
    std::shared_ptr<const std::string> request;  // what a received line answers; null when nothing was asked
    bool late = false;                           // received behind the wait for the answer
};

// The last lines of one direction. Texts are made when they are seen.
class TrafficModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { Time, Direction, Count, Hex, columns };

    using QAbstractTableModel::QAbstractTableModel;

    // A row at the foot; the oldest goes when there are too many.
    void Add(TrafficLine line);
    void Clear();
    // How bytes are read.
    void Station(const protocols::Wire& wire) { wire_ = wire; }

    // "10:31:07.250", tab, "TX", tab, all bytes in hex.
    QString CopyText(int row) const;
    // The row's fields by name, as a table for a font of fixed width.
    QString Fields(int row) const;
    // The row in full: when, which way, how many bytes, its fields and all of its bytes.
    QString Whole(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    const TrafficLine& At(int row) const { return lines_[static_cast<std::size_t>(row)]; }

    std::deque<TrafficLine> lines_;
    protocols::Wire wire_;
};

}  // namespace desk
