#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <array>
#include <exception>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "widgets/flex_grid.h"
#include "widgets/form.h"
#include "widgets/grid_find_bar.h"
#include "widgets/image_button.h"
#include "widgets/placement.h"
#include "widgets/status_bar.h"
#include "widgets/text_box.h"

namespace qivo {

namespace database {
class Recordset;
}

// Where one account screen differs from the other: the Resize constants, in twips, and the
// design of its detail panel.
struct AccountScreenDesign {
    int gridMargin;      // the window's inner width less the list grid's width
    int refreshGap;      // from Command4's right edge to Command5's left, plus Command5's margin
    int exitMargin;      // from Command5's right edge to the window's inner right edge
    QString title;       // caption of the title label Label1(0)
    QString listFormat;  // MSFlexGrid1's format string
    QString countText;   // the list's count in the status bar, "%1" for the number of rows
    widgets::TwipsRect panel;
    QPoint accountFields;  // where the registration's boxes start on the panel
    QPoint ownerFields;    // where the owner's boxes start on the panel
};

// What the review screen and the register share: a title over the list grid, refresh and exit
// buttons in the top right corner, a status bar with the signed-in user, and a detail panel
// (Picture1, closed by Image1) with the registration as listed beside the owner's record.
// Each screen creates its own Command4 and Command5 before it is shown.
class AccountScreen : public widgets::Form {
  public:
    std::map<int, QLabel*> Label1;
    widgets::FlexGrid* MSFlexGrid1 = nullptr;
    widgets::GridFindBar* FindBar1 = nullptr;  // Ctrl+F under the list
    widgets::StatusBar* StatusBar1 = nullptr;
    QPushButton* Command4 = nullptr;
    QPushButton* Command5 = nullptr;
    // The detail panel: its own design size where the list leaves room for it, scrolling
    // over a smaller list (a small screen at a large scale) with room below its page for the
    // panel's buttons.
    class PanelArea final : public QScrollArea {
      public:
        using QScrollArea::QScrollArea;
        void setBottomRoom(int pixels) { setViewportMargins(0, 0, 0, pixels); }
    };
    PanelArea* Picture1 = nullptr;
    widgets::ImageButton* Image1 = nullptr;
    std::array<widgets::TextBox*, 5> Text1{};
    std::array<widgets::TextBox*, 11> Text2{};

    void Form_Resize() override;
    // Opens the current list row into the panel.
    virtual void MSFlexGrid1_DblClick() = 0;
    // Enter on a list row opens it, as a double-click does.
    void MSFlexGrid1_KeyPress(int keyAscii);
    void Image1_MouseDown();
    void Image1_MouseUp();
    void Image1_Click();
    void ClearAccountFields();
    void ClearOwnerFields();
    // Ctrl+E: saves the list as shown, but for its action column, to a CSV file the user names;
    // the status bar says how many lines went to which file.
    void ExportList();

  protected:
    AccountScreen(const AccountScreenDesign& design, QWidget* parent);

    QLabel* addLabel(const QString& text, const widgets::TwipsRect& place, QWidget* parent);
    QLabel* addHeading(const QString& text, const widgets::TwipsRect& place, QWidget* parent);

    // Load-time set-up of the list: header row only, key column hidden, headers centred.
    void prepareListGrid();
    // The signed-in user's name in panel 2, the post (department and post name) in panel 3.
    void showSignedInUser();
    // The registration's cells of a list row into Text1.
    void copyAccountCells(int row);
    // The owner's record into Text2; a Null 姓名 is a run-time error.
    void fillOwnerFields(const database::Recordset& owner);
    // Refills MSFlexGrid1 from the query: key, row number and the six shared columns, then
    // finishRow for the screen's own columns, then the banding. The grid is hidden meanwhile;
    // where the query fails, it keeps the rows it had.
    void fillList(const QString& sql,
                  const std::function<void(int row, const database::Recordset&)>& finishRow);
    void fillRows(database::Recordset& record,
                  const std::function<void(int row, const database::Recordset&)>& finishRow);
    // A list that could not be read again: the status bar says so, and that its count is old.
    void showListNotReloaded(const std::exception& error);
    // Makes `line` (or the nearest data line) the current one, drawn so and scrolled into view,
    // where Enter and the arrow keys start.
    void showCurrentLine(int line);
    // Shows the panel for list row `row`, whose registration the decisions then act on: the list
    // beside the panel stays live, so its current row may move on meanwhile.
    void openPanel(int row);
    void closePanel();
    // The registered name and address the open panel shows.
    QString openedAccount() const;
    // What a decision did, and to whom, in the status bar until the next decision.
    void reportDone(const QString& done, const QString& account);
    // The owner boxes stay empty: the status bar says the owner's record could not be read.
    void reportOwnerNotRead(const std::exception& error);
    // The registration the open panel shows; with none opened, the current row's, unchecked.
    qint32 openedRegistration() const;
    // Runs a decision on what the panel showed, then reloads the list. Each statement's own
    // condition holds only while the rows are as the list showed them; when a colleague changed
    // them first, nothing changes and the reviewer is told so. When the connection went before
    // the server answered, the list is reloaded all the same and the reviewer is told that the
    // decision's fate is unknown.
    bool decide(const QString& sql, const std::function<void()>& reloadList);
    // The panel's buttons, in their design places on the page, kept in reach while it scrolls.
    void setPanelButtons(std::vector<QPushButton*> buttons);
    // The status bar keeps to the bottom edge whenever its height changes.
    bool eventFilter(QObject* watched, QEvent* event) override;
    // The panel's controls go on this page.
    QWidget* panelPage() const { return panelPage_; }
    // With the panel open, Tab goes round the list and the panel's boxes and buttons.
    bool focusNextPrevChild(bool next) override;
    // Opens wide enough to show every list column beside the list's vertical scroll bar.
    void openWideEnoughForList();
    // The smallest window at which the panel fits whole over the list and the corner buttons
    // stay clear of titleRow, the other controls along the top; the resize rules hold above it.
    void setSmallestSize(std::initializer_list<const QWidget*> titleRow);

  private:
    void buildPanel();
    void buildAccountFields(QPoint origin);
    void buildOwnerFields(QPoint origin);
    // widths: of the label, then of the box.
    widgets::TextBox* addField(const QString& label, QPoint origin, int line, QSize widths);
    void dockStatusBar();
    void keepPanelButtonsInReach(bool pageScrolls);
    void narrowPanelPage(int cut);
    void addExportAction();
    void showListCount();
    QString listCount() const;

    struct PanelButton {
        QPushButton* button;
        QRect designPlace;
    };

    AccountScreenDesign design_;
    QFrame* panelPage_ = nullptr;
    QFrame* buttonBar_ = nullptr;
    std::vector<PanelButton> panelButtons_;
    // The page's other controls in their design places.
    std::vector<std::pair<QWidget*, QRect>> pagePlaces_;
    // The registration the open panel shows, and the list line it was opened from.
    struct Opened {
        qint32 registration;
        int line;
    };
    std::optional<Opened> opened_;
};

// One column of a grid format string: alignment mark, header, and the blanks that widen it.
inline QString formatColumn(QChar align, const QString& header, int blanks) {
    return align + header + QString(blanks, u' ');
}

// A count with its thousands set apart by blanks: 1204 is "1 204".
QString groupThousands(int count);

// The columns 0-6 both account lists begin with: row number, estate, address and the
// registration's account, name, identity number and mobile.
QString accountListColumns();

// Even rows of a list are tinted in every column but the row number.
constexpr quint32 kBandColor = 16710887;
constexpr quint32 kBlue = 0xFF0000;

}  // namespace qivo
