#include "platform/flex_grid_model.h"

#include <QColor>

namespace qivo::platform {

namespace {

QColor fromBgr(quint32 bgr) {
    return QColor(static_cast<int>(bgr & 0xFF), static_cast<int>((bgr >> 8) & 0xFF),
                  static_cast<int>((bgr >> 16) & 0xFF));
}

// Alignment codes run left/centre/right in threes, each top/centre/bottom; 9 is "general".
Qt::Alignment toQt(int code) {
    if (code < 0 || code > 8) {
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
    static constexpr Qt::AlignmentFlag horizontal[] = {Qt::AlignLeft, Qt::AlignHCenter,
                                                       Qt::AlignRight};
    static constexpr Qt::AlignmentFlag vertical[] = {Qt::AlignTop, Qt::AlignVCenter,
                                                     Qt::AlignBottom};
    return horizontal[code / 3] | vertical[code % 3];
}

}  // namespace

FlexGridModel::FlexGridModel() : rows_(1), columns_(0) {}

void FlexGridModel::setRows(int rows) {
    const int old = this->rows();
    if (rows == old) {
        return;
    }
    if (live_ && rows > old) {
        beginInsertRows({}, old - 1, rows - 2);
    } else if (live_) {
        beginRemoveRows({}, rows - 1, old - 2);
    }
    rows_.resize(static_cast<std::size_t>(rows));
    for (int r = old; r < rows; ++r) {
        at(r).text.resize(columns_.size());
    }
    if (live_ && rows > old) {
        endInsertRows();
    } else if (live_) {
        endRemoveRows();
    }
}

void FlexGridModel::setCols(int cols) {
    if (live_) {
        beginResetModel();
    }
    columns_.resize(ucol(cols));
    for (Row& row : rows_) {
        row.text.resize(ucol(cols));
        if (!row.fore.empty()) {
            row.fore.resize(ucol(cols), kNoColor);
        }
        if (!row.back.empty()) {
            row.back.resize(ucol(cols), kNoColor);
        }
    }
    if (live_) {
        endResetModel();
    }
}

void FlexGridModel::removeGridRow(int row) {
    if (live_) {
        beginRemoveRows({}, row - 1, row - 1);
    }
    rows_.erase(rows_.begin() + row);
    if (live_) {
        endRemoveRows();
    }
}

void FlexGridModel::setText(int row, int col, const QString& text) {
    at(row).text[ucol(col)] = text;
    cellChanged(row, col, Qt::DisplayRole);
}

quint32 FlexGridModel::colorOf(const std::vector<quint32>& colors, int col) {
    if (colors.empty() || colors[ucol(col)] == kNoColor) {
        return 0;
    }
    return colors[ucol(col)];
}

void FlexGridModel::setForeColor(int row, int col, quint32 bgr) {
    setColor(at(row).fore, row, col, bgr, Qt::ForegroundRole);
}

void FlexGridModel::setBackColor(int row, int col, quint32 bgr) {
    setColor(at(row).back, row, col, bgr, Qt::BackgroundRole);
}

void FlexGridModel::setColor(std::vector<quint32>& colors, int row, int col, quint32 bgr,
                             int role) {
    if (colors.empty()) {
        colors.assign(columns_.size(), kNoColor);
    }
    colors[ucol(col)] = bgr & 0xFFFFFF;
    cellChanged(row, col, role);
}

void FlexGridModel::setAlignment(int col, int code) {
    columns_[ucol(col)].alignment = code;
    if (live_ && rowCount() > 0) {
        Q_EMIT dataChanged(index(0, col), index(rowCount() - 1, col), {Qt::TextAlignmentRole});
    }
}

void FlexGridModel::setFixedAlignment(int col, int code) {
    columns_[ucol(col)].fixedAlignment = code;
    if (live_) {
        Q_EMIT headerDataChanged(Qt::Horizontal, col, col);
    }
}

void FlexGridModel::setLive(bool live) {
    if (live == live_) {
        return;
    }
    if (live) {
        beginResetModel();
        live_ = true;
        endResetModel();
    } else {
        shownRows_ = rowCount();
        shownCols_ = columnCount();
        live_ = false;
    }
}

void FlexGridModel::cellChanged(int row, int col, int role) {
    if (!live_) {
        return;
    }
    if (row == 0) {
        Q_EMIT headerDataChanged(Qt::Horizontal, col, col);
    } else {
        const QModelIndex cell = index(row - 1, col);
        Q_EMIT dataChanged(cell, cell, {role});
    }
}

int FlexGridModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid()) {
        return 0;
    }
    return live_ ? rows() - 1 : shownRows_;
}

int FlexGridModel::columnCount(const QModelIndex& parent) const {
    if (parent.isValid()) {
        return 0;
    }
    return live_ ? cols() : shownCols_;
}

QVariant FlexGridModel::cellData(const Row& row, int col, int alignment, int role) const {
    switch (role) {
        case Qt::DisplayRole:
            return row.text[ucol(col)];
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(toQt(alignment));
        case Qt::ForegroundRole:
            return row.fore.empty() || row.fore[ucol(col)] == kNoColor
                       ? QVariant()
                       : QVariant(fromBgr(row.fore[ucol(col)]));
        case Qt::BackgroundRole:
            return row.back.empty() || row.back[ucol(col)] == kNoColor
                       ? QVariant()
                       : QVariant(fromBgr(row.back[ucol(col)]));
        default:
            return {};
    }
}

QVariant FlexGridModel::data(const QModelIndex& index, int role) const {
    // A frozen view may still ask for cells that writes have since removed.
    const int row = index.row() + 1;
    if (!index.isValid() || row >= rows() || index.column() >= cols()) {
        return {};
    }
    return cellData(at(row), index.column(), alignment(index.column()), role);
}

QVariant FlexGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= cols()) {
        return {};
    }
    return cellData(at(0), section, fixedAlignment(section), role);
}

Qt::ItemFlags FlexGridModel::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

}  // namespace qivo::platform
