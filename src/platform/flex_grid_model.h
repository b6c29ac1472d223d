#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <vector>

namespace qivo::platform {

// The cells behind a FlexGrid. Grid row 0 is the header row (the view's horizontal header);
// grid rows 1 .. rows()-1 are the model's rows 0 .. rows()-2.
// While frozen, writes change only the vectors and the view keeps the shape it last saw;
// thawing resets the model once.
class FlexGridModel final : public QAbstractTableModel {
  public:
    static constexpr quint32 kNoColor = 0xFFFFFFFF;  // above any BGR value

    FlexGridModel();

    int rows() const { return static_cast<int>(rows_.size()); }
    void setRows(int rows);
    int cols() const { return static_cast<int>(columns_.size()); }
    void setCols(int cols);
    void removeGridRow(int row);

    const QString& text(int row, int col) const { return at(row).text[ucol(col)]; }
    void setText(int row, int col, const QString& text);
    qint32 rowData(int row) const { return at(row).data; }
    void setRowData(int row, qint32 value) { at(row).data = value; }

    quint32 foreColor(int row, int col) const { return colorOf(at(row).fore, col); }
    quint32 backColor(int row, int col) const { return colorOf(at(row).back, col); }
    void setForeColor(int row, int col, quint32 bgr);
    void setBackColor(int row, int col, quint32 bgr);

    int alignment(int col) const { return columns_[ucol(col)].alignment; }
    void setAlignment(int col, int code);
    int fixedAlignment(int col) const { return columns_[ucol(col)].fixedAlignment; }
    void setFixedAlignment(int col, int code);

    bool isLive() const { return live_; }
    void setLive(bool live);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    struct Row {
        std::vector<QString> text;
        qint32 data = 0;
        std::vector<quint32> fore;  // empty until the row gets a colour of its own
        std::vector<quint32> back;
    };
    struct Column {
        int alignment = 1;
        int fixedAlignment = 1;
    };

    static std::size_t ucol(int col) { return static_cast<std::size_t>(col); }
    Row& at(int row) { return rows_[static_cast<std::size_t>(row)]; }
    const Row& at(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    static quint32 colorOf(const std::vector<quint32>& colors, int col);
    void setColor(std::vector<quint32>& colors, int row, int col, quint32 bgr, int role);
    QVariant cellData(const Row& row, int col, int alignment, int role) const;
    void cellChanged(int row, int col, int role);

    std::vector<Row> rows_;
    std::vector<Column> columns_;
    bool live_ = false;
    int shownRows_ = 0;  // the view's row count while frozen
    int shownCols_ = 0;
};

}  // namespace qivo::platform
