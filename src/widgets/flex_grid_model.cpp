#include "widgets/flex_grid_model.h"

#include <QColor>
#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

namespace qivo::widgets {

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

char lowerLatin(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Bytes of a multi-byte UTF-8 character are never ASCII, so folding ASCII letters byte by byte
// leaves Chinese text as it is and matches only at character boundaries.
bool containsFolded(std::string_view text, std::string_view lowerNeedle) {
    if (lowerNeedle.size() > text.size()) {
        return false;
    }
    const std::size_t last = text.size() - lowerNeedle.size();
    for (std::size_t i = 0; i <= last; ++i) {
        std::size_t k = 0;
        while (k < lowerNeedle.size() && lowerLatin(text[i + k]) == lowerNeedle[k]) {
            ++k;
        }
        if (k == lowerNeedle.size()) {
            return true;
        }
    }
    return false;
}

// UTF-16 to UTF-8 into `out`, which has room for three bytes a unit; a lone surrogate becomes
// '?', as QString::toUtf8 writes it. QStringEncoder costs more than the text of a short cell.
char* encodeUtf8(QStringView text, char* out) {
    const auto put = [&out](unsigned value) { *out++ = static_cast<char>(value); };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i].unicode();
        if (unit < 0x80) {
            put(unit);
            continue;
        }
        if (unit < 0x800) {
            put(0xC0 | (unit >> 6));
            put(0x80 | (unit & 0x3F));
            continue;
        }
        if (QChar::isSurrogate(unit)) {
            if (QChar::isHighSurrogate(unit) && i + 1 < text.size() &&
                text[i + 1].isLowSurrogate()) {
                const char32_t point = QChar::surrogateToUcs4(text[i], text[i + 1]);
                ++i;
                put(0xF0 | (point >> 18));
                put(0x80 | ((point >> 12) & 0x3F));
                put(0x80 | ((point >> 6) & 0x3F));
                put(0x80 | (point & 0x3F));
                continue;
            }
            put('?');
            continue;
        }
        put(0xE0 | (unit >> 12));
        put(0x80 | ((unit >> 6) & 0x3F));
        put(0x80 | (unit & 0x3F));
    }
    return out;
}

}  // namespace

FlexGridModel::FlexGridModel() : rows_(1) {}

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
    if (rows < old) {
        forget(ucell(rows, 0), cells_.size());
    }
    rows_.resize(static_cast<std::size_t>(rows));
    cells_.resize(ucell(rows, 0));
    if (rows < old) {
        dropUnusedSpills();
        collectGarbage();
    }
    if (live_ && rows > old) {
        endInsertRows();
    } else if (live_) {
        endRemoveRows();
    }
}

FlexGridModel::RowsAside FlexGridModel::setRowsAside() {
    if (live_) {
        beginResetModel();
    }
    RowsAside aside{std::move(rows_), std::move(cells_), std::move(bytes_), used_,
                    capacity_,        garbage_,          std::move(spills_)};
    // The list read anew is mostly as long as the one set aside.
    rows_.reserve(aside.rows.size());
    rows_.assign(1, aside.rows[0]);
    cells_.reserve(aside.cells.size());
    cells_.assign(ucol(cols_), Cell{});
    spills_.clear();
    used_ = capacity_ = garbage_ = 0;
    tail(aside.used);
    for (Colors* colors : {&rows_[0].fore, &rows_[0].back}) {
        if (colors->spill >= 0) {
            spills_.push_back(aside.spills[static_cast<std::size_t>(colors->spill)]);
            colors->spill = static_cast<qint32>(spills_.size()) - 1;
        }
    }
    for (int col = 0; col < cols_; ++col) {
        const Cell& header = aside.cells[ucol(col)];
        if (header.size > 0) {
            std::memcpy(tail(header.size), aside.bytes.get() + header.offset, header.size);
            place(cell(0, col), header.size);
        }
    }
    if (live_) {
        endResetModel();
    }
    return aside;
}

void FlexGridModel::putRowsBack(RowsAside&& aside) {
    if (live_) {
        beginResetModel();
    }
    rows_ = std::move(aside.rows);
    cells_ = std::move(aside.cells);
    bytes_ = std::move(aside.bytes);
    used_ = aside.used;
    capacity_ = aside.capacity;
    garbage_ = aside.garbage;
    spills_ = std::move(aside.spills);
    if (live_) {
        endResetModel();
    }
}

void FlexGridModel::setCols(int cols) {
    if (live_) {
        beginResetModel();
    }
    std::vector<Cell> relaid(static_cast<std::size_t>(rows()) * ucol(cols));
    for (int row = 0; row < rows(); ++row) {
        for (int col = 0; col < cols_; ++col) {
            const Cell& old = cell(row, col);
            if (col < cols) {
                relaid[static_cast<std::size_t>(row) * ucol(cols) + ucol(col)] = old;
            } else {
                garbage_ += old.size;
            }
        }
    }
    cells_.swap(relaid);
    cols_ = cols;
    columns_.resize(ucol(cols));
    for (std::vector<quint32>& spill : spills_) {
        spill.resize(ucol(cols), kNoColor);
    }
    for (Row& row : rows_) {
        row.fore.last = std::min(row.fore.last, cols - 1);
        row.back.last = std::min(row.back.last, cols - 1);
    }
    collectGarbage();
    if (live_) {
        endResetModel();
    }
}

void FlexGridModel::removeGridRow(int row) {
    if (live_) {
        beginRemoveRows({}, row - 1, row - 1);
    }
    const auto first = static_cast<std::ptrdiff_t>(ucell(row, 0));
    forget(ucell(row, 0), ucell(row + 1, 0));
    cells_.erase(cells_.begin() + first, cells_.begin() + first + cols_);
    rows_.erase(rows_.begin() + row);
    dropUnusedSpills();
    collectGarbage();
    if (live_) {
        endRemoveRows();
    }
}

QUtf8StringView FlexGridModel::utf8(int row, int col) const {
    const Cell& stored = cells_[ucell(row, col)];
    return {bytes_.get() + stored.offset, static_cast<qsizetype>(stored.size)};
}

// Texts are written straight behind the last one; place() then decides where they stay.
char* FlexGridModel::tail(std::size_t room) {
    if (capacity_ - used_ < room) {
        const std::size_t capacity = std::max({capacity_ * 2, used_ + room, std::size_t{4096}});
        auto grown = std::make_unique_for_overwrite<char[]>(capacity);
        if (used_ > 0) {
            std::memcpy(grown.get(), bytes_.get(), used_);
        }
        bytes_ = std::move(grown);
        capacity_ = capacity;
    }
    return bytes_.get() + used_;
}

void FlexGridModel::setText(int row, int col, QStringView text) {
    char* start = tail(static_cast<std::size_t>(text.size()) * 3);
    place(cell(row, col), static_cast<std::size_t>(encodeUtf8(text, start) - start));
    cellChanged(row, col, Qt::DisplayRole);
}

void FlexGridModel::setText(int row, int col, QUtf8StringView text) {
    const auto size = static_cast<std::size_t>(text.size());
    char* start = tail(size);
    if (size > 0) {  // an empty view may have no data at all
        std::memcpy(start, text.data(), size);
    }
    place(cell(row, col), size);
    cellChanged(row, col, Qt::DisplayRole);
}

void FlexGridModel::appendRow(std::span<const QUtf8StringView> texts) {
    const int row = rows();
    if (live_) {
        beginInsertRows({}, row - 1, row - 1);
    }
    rows_.emplace_back();
    cells_.resize(ucell(row + 1, 0));
    std::size_t bytes = 0;
    for (const QUtf8StringView text : texts) {
        bytes += static_cast<std::size_t>(text.size());
    }
    char* out = tail(bytes);
    Cell* target = &cell(row, 0);
    for (const QUtf8StringView text : texts) {
        const auto size = static_cast<std::size_t>(text.size());
        if (size > 0) {
            std::memcpy(out, text.data(), size);
        }
        *target++ = {static_cast<quint32>(used_), static_cast<quint32>(size)};
        used_ += size;
        out += size;
    }
    if (live_) {
        endInsertRows();
    }
}

// The text of `size` bytes at the tail becomes the cell's: in the cell's old place when it fits.
void FlexGridModel::place(Cell& target, std::size_t size) {
    if (size <= target.size) {
        std::memcpy(bytes_.get() + target.offset, bytes_.get() + used_, size);
        garbage_ += target.size - size;
        target.size = static_cast<quint32>(size);
        return;
    }
    garbage_ += target.size;
    target.offset = static_cast<quint32>(used_);
    target.size = static_cast<quint32>(size);
    used_ += size;
    collectGarbage();
}

void FlexGridModel::forget(std::size_t firstCell, std::size_t endCell) {
    for (std::size_t i = firstCell; i < endCell; ++i) {
        garbage_ += cells_[i].size;
    }
}

// Rewritten and removed cells leave their bytes behind; once those are the larger part, the
// cells still there are moved down in the order they lie, so the store keeps its memory for the
// next fill of the list instead of growing it page by page again.
void FlexGridModel::collectGarbage() {
    if (garbage_ == 0 || garbage_ * 2 < used_) {
        return;
    }
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        if (cells_[i].size > 0) {
            order.push_back(i);
        } else {
            cells_[i].offset = 0;
        }
    }
    std::sort(order.begin(), order.end(),
              [this](std::size_t a, std::size_t b) { return cells_[a].offset < cells_[b].offset; });
    std::size_t end = 0;
    for (std::size_t i : order) {
        Cell& stored = cells_[i];
        std::memmove(bytes_.get() + end, bytes_.get() + stored.offset, stored.size);
        stored.offset = static_cast<quint32>(end);
        end += stored.size;
    }
    used_ = end;
    garbage_ = 0;
}

void FlexGridModel::dropUnusedSpills() {
    if (spills_.empty()) {
        return;
    }
    std::vector<std::vector<quint32>> kept;
    for (Row& row : rows_) {
        for (Colors* colors : {&row.fore, &row.back}) {
            if (colors->spill >= 0) {
                kept.push_back(std::move(spills_[static_cast<std::size_t>(colors->spill)]));
                colors->spill = static_cast<qint32>(kept.size()) - 1;
            }
        }
    }
    spills_.swap(kept);
}

quint32 FlexGridModel::storedColor(const Colors& colors, int col) const {
    if (colors.spill >= 0) {
        return spills_[static_cast<std::size_t>(colors.spill)][ucol(col)];
    }
    return col >= colors.first && col <= colors.last ? colors.color : kNoColor;
}

quint32 FlexGridModel::colorOf(const Colors& colors, int col) const {
    const quint32 color = storedColor(colors, col);
    return color == kNoColor ? 0 : color;
}

void FlexGridModel::setForeColor(int row, int first, int last, quint32 bgr) {
    setColor(at(row).fore, row, first, last, bgr, Qt::ForegroundRole);
}

void FlexGridModel::setBackColor(int row, int first, int last, quint32 bgr) {
    setColor(at(row).back, row, first, last, bgr, Qt::BackgroundRole);
}

void FlexGridModel::setColor(Colors& colors, int row, int first, int last, quint32 bgr, int role) {
    bgr &= 0xFFFFFF;
    if (colors.spill < 0) {
        if (colors.last < colors.first) {
            colors = {bgr, first, last, -1};
        } else if (bgr == colors.color && first <= colors.last + 1 && last >= colors.first - 1) {
            colors.first = std::min(colors.first, first);
            colors.last = std::max(colors.last, last);
        } else {
            std::vector<quint32> each(ucol(cols_), kNoColor);
            std::fill(each.begin() + colors.first, each.begin() + colors.last + 1, colors.color);
            colors.spill = static_cast<qint32>(spills_.size());
            spills_.push_back(std::move(each));
        }
    }
    if (colors.spill >= 0) {
        std::vector<quint32>& each = spills_[static_cast<std::size_t>(colors.spill)];
        std::fill(each.begin() + first, each.begin() + last + 1, bgr);
    }
    cellsChanged(row, first, last, role);
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

void FlexGridModel::cellsChanged(int row, int first, int last, int role) {
    if (!live_) {
        return;
    }
    if (row == 0) {
        Q_EMIT headerDataChanged(Qt::Horizontal, first, last);
    } else {
        Q_EMIT dataChanged(index(row - 1, first), index(row - 1, last), {role});
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

QVariant FlexGridModel::cellData(int row, int col, int alignment, int role) const {
    switch (role) {
        case Qt::DisplayRole:
            return text(row, col);
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(toQt(alignment));
        case Qt::ForegroundRole:
        case Qt::BackgroundRole: {
            const Row& colors = at(row);
            const quint32 bgr =
                storedColor(role == Qt::ForegroundRole ? colors.fore : colors.back, col);
            return bgr == kNoColor ? QVariant() : QVariant(fromBgr(bgr));
        }
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
    return cellData(row, index.column(), alignment(index.column()), role);
}

QVariant FlexGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= cols()) {
        return {};
    }
    return cellData(0, section, fixedAlignment(section), role);
}

std::vector<int> FlexGridModel::rowsContaining(QUtf8StringView needle,
                                               const std::vector<int>& columns) const {
    std::vector<int> found;
    const std::string_view lower(needle.data(), static_cast<std::size_t>(needle.size()));
    if (lower.empty()) {
        return found;
    }
    const bool folds =
        std::any_of(lower.begin(), lower.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    for (int row = 1; row < rows(); ++row) {
        for (int col : columns) {
            const QUtf8StringView cellText = utf8(row, col);
            const std::string_view text(cellText.data(), static_cast<std::size_t>(cellText.size()));
            if (folds ? containsFolded(text, lower) : text.find(lower) != std::string_view::npos) {
                found.push_back(row);
                break;
            }
        }
    }
    return found;
}

Qt::ItemFlags FlexGridModel::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

}  // namespace qivo::widgets
