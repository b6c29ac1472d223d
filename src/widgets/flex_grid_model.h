#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QUtf8StringView>
#include <memory>
#include <span>
#include <vector>

namespace qivo::widgets {

// The cells behind a FlexGrid. Grid row 0 is the header row (the view's horizontal header);
// grid rows 1 .. rows()-1 are the model's rows 0 .. rows()-2.
// A list of a hundred thousand rows is written cell by cell and mostly never painted, so a cell
// costs no allocation of its own: its UTF-8 text lies in one shared byte store and becomes a
// QString only when it is painted or read.
// While frozen, writes change only the storage and the view keeps the shape it last saw;
// thawing resets the model once.
class FlexGridModel final : public QAbstractTableModel {
  public:
    static constexpr quint32 kNoColor = 0xFFFFFFFF;  // above any BGR value

    FlexGridModel();

    int rows() const { return static_cast<int>(rows_.size()); }
    void setRows(int rows);
    int cols() const { return cols_; }
    void setCols(int cols);
    void removeGridRow(int row);

    QString text(int row, int col) const { return QString::fromUtf8(utf8(row, col)); }
    QUtf8StringView utf8(int row, int col) const;
    void setText(int row, int col, QStringView text);
    void setText(int row, int col, QUtf8StringView text);  // not a view of this model's cells
    // A row at the end whose cells from column 0 hold these texts, the rest empty.
    void appendRow(std::span<const QUtf8StringView> texts);
    qint32 rowData(int row) const { return at(row).data; }
    void setRowData(int row, qint32 value) { at(row).data = value; }

    quint32 foreColor(int row, int col) const { return colorOf(at(row).fore, col); }
    quint32 backColor(int row, int col) const { return colorOf(at(row).back, col); }
    // The colour of the row's cells from column first to last.
    void setForeColor(int row, int first, int last, quint32 bgr);
    void setBackColor(int row, int first, int last, quint32 bgr);

    int alignment(int col) const { return columns_[ucol(col)].alignment; }
    void setAlignment(int col, int code);
    int fixedAlignment(int col) const { return columns_[ucol(col)].fixedAlignment; }
    void setFixedAlignment(int col, int code);

    // Data rows (grid numbering) where a cell of `columns` contains `needle`, which must be
    // UTF-8 with its Latin letters in lower case: Latin letters match in either case.
    std::vector<int> rowsContaining(QUtf8StringView needle, const std::vector<int>& columns) const;

    // The data rows, set aside while the list is read anew, the header row staying; put back
    // when that read fails.
    struct RowsAside;
    RowsAside setRowsAside();
    void putRowsBack(RowsAside&& aside);

    bool isLive() const { return live_; }
    void setLive(bool live);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    // Where a cell's text lies in bytes_.
    struct Cell {
        quint32 offset = 0;
        quint32 size = 0;
    };
    // The colours of one kind a row's cells were given. One colour over a run of adjacent columns
    // holds what a list needs (the banding, a blue link column); a row that needs more gets a
    // colour per cell in spills_.
    struct Colors {
        quint32 color = kNoColor;
        qint32 first = 0;
        qint32 last = -1;
        qint32 spill = -1;
    };
    struct Row {
        qint32 data = 0;
        Colors fore;
        Colors back;
    };
    struct Column {
        int alignment = 1;
        int fixedAlignment = 1;
    };

  public:
    struct RowsAside {
        std::vector<Row> rows;
        std::vector<Cell> cells;
        std::unique_ptr<char[]> bytes;
        std::size_t used = 0;
        std::size_t capacity = 0;
        std::size_t garbage = 0;
        std::vector<std::vector<quint32>> spills;
    };

  private:
    static std::size_t ucol(int col) { return static_cast<std::size_t>(col); }
    Row& at(int row) { return rows_[static_cast<std::size_t>(row)]; }
    const Row& at(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    Cell& cell(int row, int col) { return cells_[ucell(row, col)]; }
    std::size_t ucell(int row, int col) const {
        return static_cast<std::size_t>(row) * ucol(cols_) + ucol(col);
    }
    quint32 colorOf(const Colors& colors, int col) const;
    quint32 storedColor(const Colors& colors, int col) const;
    void setColor(Colors& colors, int row, int first, int last, quint32 bgr, int role);
    char* tail(std::size_t room);
    void place(Cell& target, std::size_t size);
    void forget(std::size_t firstCell, std::size_t endCell);
    void collectGarbage();
    void dropUnusedSpills();
    QVariant cellData(int row, int col, int alignment, int role) const;
    void cellChanged(int row, int col, int role) { cellsChanged(row, col, col, role); }
    void cellsChanged(int row, int first, int last, int role);

    std::vector<Row> rows_;
    std::vector<Cell> cells_;  // row by row, cols_ to a row
    std::unique_ptr<char[]> bytes_;
    std::size_t used_ = 0;
    std::size_t capacity_ = 0;
    std::size_t garbage_ = 0;  // bytes of the used part no cell refers to any more
    std::vector<std::vector<quint32>> spills_;
    std::vector<Column> columns_;
    int cols_ = 0;
    bool live_ = false;
    int shownRows_ = 0;  // the view's row count while frozen
    int shownCols_ = 0;
};

}  // namespace qivo::widgets
