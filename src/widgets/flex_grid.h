#pragma once

#include <QString>
#include <QTableView>
#include <QUtf8StringView>
#include <memory>
#include <span>
#include <vector>

#include "widgets/flex_grid_model.h"

class QStyledItemDelegate;

namespace qivo::widgets {

// Cell alignment codes of the flex grid.
constexpr int flexAlignLeftCenter = 1;
constexpr int flexAlignCenterCenter = 4;
constexpr int flexAlignRightCenter = 7;
// Whether a cell property set from code changes the current cell or the cells Col to ColSel.
constexpr int flexFillSingle = 0;
constexpr int flexFillRepeat = 1;

// The flexible grid: row 0 is the header row, rows 1 .. Rows()-1 hold data. Colours are BGR
// integers (0xFF0000 is blue); a cell without a colour of its own reads back as 0.
// While the grid is hidden, writes emit no per-cell signals; showing it resets the view once.
// Click is the left button released over a cell, DblClick its double-click; other buttons do
// nothing.
class FlexGrid final : public QTableView {
    Q_OBJECT
  public:
    explicit FlexGrid(QWidget* parent = nullptr);
    ~FlexGrid() override;

    int Rows() const { return model_->rows(); }
    void setRows(int rows);
    int Cols() const { return model_->cols(); }
    void setCols(int cols);

    int Row() const { return row_; }
    void setRow(int row);
    int Col() const { return col_; }
    void setCol(int col);
    int ColSel() const { return colSel_; }
    void setColSel(int col);
    // Columns 0 .. FixedCols()-1 are drawn grey like the header and never become current.
    int FixedCols() const { return fixedCols_; }
    void setFixedCols(int cols);
    // By row, the current row is drawn selected across every column, whichever column is
    // current; otherwise Col to ColSel of it.
    void setSelectionByRow(bool byRow);
    int FillStyle() const { return fillStyle_; }
    void setFillStyle(int style);

    QString TextMatrix(int row, int col) const;
    void setTextMatrix(int row, int col, const QString& text);
    // The same for text that is already UTF-8, as a database hands it over: kept as it is.
    void setTextMatrixUtf8(int row, int col, QUtf8StringView text);
    // Adds a row at the end whose cells from column 0 hold these UTF-8 texts, as AddItem does
    // with its tab-separated text: a long list is filled a row at a time.
    void AddItemUtf8(std::span<const QUtf8StringView> cells);
    qint32 RowData(int row) const;
    void setRowData(int row, qint32 value);

    // A list read anew: its data rows are set aside, current cell included, leaving the header
    // row; once the read is done they are dropped, or put back where the read failed.
    void setRowsAside();
    void dropRowsAside();
    void putRowsBack();

    int ColWidth(int col) const;  // twips
    void setColWidth(int col, int twips);
    int ColAlignment(int col) const;
    void setColAlignment(int col, int code);
    int ColAlignmentFixed(int col) const;
    void setColAlignmentFixed(int col, int code);

    // The current cell (Row, Col), or with FillStyle flexFillRepeat Col to ColSel of Row.
    void setCellForeColor(quint32 bgr);
    void setCellBackColor(quint32 bgr);
    quint32 cellForeColor(int row, int col) const;
    quint32 cellBackColor(int row, int col) const;

    void RemoveItem(int row);

    QString FormatString() const { return formatString_; }
    // "<序    |<项目名称   |^操作 |": columns, header texts, data alignments ('<' left,
    // '^' centre, '>' right) and initial widths: the segment's width in the grid's font, blanks
    // included, plus the cell's text margins; widths still at that value follow font changes.
    // A trailing '|' adds a last untitled column.
    void setFormatString(const QString& format);

    // Groups of columns that give way, group after group, when the shown columns are wider than
    // the list beside its vertical scroll bar, so that the columns after them stay in view: within
    // a group the widest narrows first, none below its header or four characters. They widen again,
    // up to their own width, as the list grows; a cut cell shows its text as its tool tip.
    void setGivingWay(std::vector<std::vector<int>> groups);

    // Data rows with a shown cell (of a column wider than 0) that contains `text`; Latin letters
    // match in either case.
    std::vector<int> rowsContaining(const QString& text) const;
    // Scrolls the list so that the row is in view, without moving the current cell.
    void showRow(int row);

    // The visual rectangle of a cell (row 0 is the header), for tests that click like a user.
    QRect cellRect(int row, int col) const;
    // Pixels the shown columns take side by side.
    int shownColumnsWidth() const;
    // Pixels a cell keeps clear of its text, both sides together.
    int textMargins() const;

  Q_SIGNALS:
    void Click();
    void DblClick();
    void KeyPress(int keyAscii);  // Enter (13), Space (32); Escape is left to the window
    void RowColChange();          // a key moved the current cell to another row

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  private:
    // Throws runtime::RuntimeError 381 for a cell outside the grid. A list fill checks every
    // cell it writes, so the check is inline.
    void checkCell(int row, int col) const {
        if (row < 0 || row >= Rows() || col < 0 || col >= Cols()) {
            throwBadSubscript();
        }
    }
    [[noreturn]] static void throwBadSubscript();
    int fillFirst() const;
    int fillLast() const;
    void moveTo(int row, int col);
    int userColumn(int col) const;
    void updateSelection();
    int defaultWidthTwips() const;
    int formatWidthTwips(const QString& segment) const;
    void refitFormatWidths();
    void applyColumnWidth(int col);
    void applyColumnWidths();
    void rememberUserWidth(int col, int pixels);
    void giveWay();
    // Sheds up to `excess` pixels from the group's columns; returns what it shed.
    int narrowGroup(const std::vector<int>& group, int excess);
    int narrowestPixels(int col) const;

    std::unique_ptr<FlexGridModel> model_;
    struct RowsAside;
    std::unique_ptr<RowsAside> aside_;
    QString formatString_;
    std::vector<int> widths_;        // twips; 0 hides the column
    std::vector<int> formatWidths_;  // twips, as the format string gave them
    std::vector<std::vector<int>> givingWay_;
    bool applyingWidths_ = false;
    int row_ = 0;
    int col_ = 0;
    int colSel_ = 0;
    int fillStyle_ = flexFillSingle;
    int fixedCols_ = 0;
    bool byRow_ = false;
    QStyledItemDelegate* fixedLook_ = nullptr;
    bool pressed_ = false;  // a left press on a cell that its release will make a Click
};

}  // namespace qivo::widgets
