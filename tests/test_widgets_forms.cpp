#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QToolTip>
#include <stdexcept>

#include "runtime/blanks.h"
#include "runtime/runtime_error.h"
#include "support/test_support.h"
#include "widgets/error_path.h"
#include "widgets/flex_grid.h"
#include "widgets/form.h"
#include "widgets/msgbox.h"
#include "widgets/status_bar.h"
#include "widgets/text_box.h"
#include "widgets/twips.h"

using namespace qivo;
using widgets::FlexGrid;

namespace {

const QString kReviewFormat = QStringLiteral(
    "<序    |<项目名称         |<地址            |<Qivo号        |<姓名      |<身份证号      "
    "|<手机号     |^操作 |");

// Fills data rows the way the list screens do: one row at a time, current cell moved along.
void appendRows(FlexGrid& grid, int count) {
    for (int i = 0; i < count; ++i) {
        grid.setRows(grid.Rows() + 1);
        grid.setRow(grid.Rows() - 1);
        grid.setRowData(grid.Row(), 1000 + grid.Row());
        for (int col = 0; col < grid.Cols(); ++col) {
            grid.setTextMatrix(grid.Row(), col, QStringLiteral("r%1c%2").arg(grid.Row()).arg(col));
        }
    }
}

class CountingForm final : public widgets::Form {
  public:
    int loads = 0;
    int unloads = 0;
    int activations = 0;
    void Form_Load() override { ++loads; }
    void Form_Activate() override { ++activations; }
    void Form_Unload() override { ++unloads; }
};

}  // namespace

class TestPlatformWidgets final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void cleanup() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            QVERIFY2(!window->isVisible(), "a test left a window open");
        }
    }

    void formatString_data() {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QStringList>("headers");
        QTest::addColumn<QList<int>>("alignments");
        QTest::newRow("marks, one unmarked")
            << "<左|^中|>右|备注" << QStringList{"左", "中", "右", "备注"}
            << QList<int>{1, 4, 7, 1};
        QTest::newRow("review list")
            << kReviewFormat << QStringList{"序",       "项目名称", "地址", "Qivo号", "姓名",
                                            "身份证号", "手机号",   "操作", ""}
            << QList<int>{1, 1, 1, 1, 1, 1, 1, 4, 1};
    }

    void formatString() {
        QFETCH(QString, format);
        QFETCH(QStringList, headers);
        QFETCH(QList<int>, alignments);
        FlexGrid grid;
        grid.setFormatString(format);
        QCOMPARE(grid.Cols(), headers.size());
        QCOMPARE(grid.Rows(), 1);
        for (int col = 0; col < grid.Cols(); ++col) {
            QCOMPARE(grid.TextMatrix(0, col), headers[col]);
            QCOMPARE(grid.ColAlignment(col), alignments[col]);
            QVERIFY(grid.ColWidth(col) > 0);
        }
    }

    // A column is as wide as its format segment, blanks included, in the grid's font; a cell too
    // narrow for its text shows the whole text as tool tip.
    void widthFollowsTheSegmentInTheFont() {
        FlexGrid grid;
        grid.setFormatString(QStringLiteral("<序|<姓名      |<手机号 "));
        const auto segmentWidth = [&grid](const QString& segment) {
            return widgets::pixelsToTwips(grid.fontMetrics().horizontalAdvance(segment) +
                                          grid.textMargins());
        };
        QCOMPARE(grid.ColWidth(2), segmentWidth(QStringLiteral("手机号 ")));
        grid.setColWidth(2, 600);
        appendRows(grid, 1);
        grid.setTextMatrix(1, 1, QStringLiteral("王丽"));
        grid.setTextMatrix(1, 2, QStringLiteral("13900000001"));
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        const auto tipOver = [&](int col) {
            QToolTip::hideText();
            if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); })) {
                return QStringLiteral("tip stays");
            }
            const QPoint at = grid.cellRect(1, col).center();
            QHelpEvent help(QEvent::ToolTip, at, grid.viewport()->mapToGlobal(at));
            QCoreApplication::sendEvent(grid.viewport(), &help);
            return QToolTip::isVisible() ? QToolTip::text() : QString();
        };
        QCOMPARE(tipOver(1), QString());
        QCOMPARE(tipOver(2), QStringLiteral("13900000001"));

        // A larger font widens the columns the format string sized, not the one set by code.
        QFont larger = grid.font();
        larger.setPointSizeF(larger.pointSizeF() * 2);
        grid.setFont(larger);
        QCOMPARE(grid.ColWidth(1), segmentWidth(QStringLiteral("姓名      ")));
        QCOMPARE(grid.ColWidth(2), 600);
        QCOMPARE(tipOver(1), QString());
        grid.setColWidth(1, 0);
        QCOMPARE(grid.ColWidth(1), 0);
    }

    // Shrinking to the header row leaves it current; any cell outside the grid is error 381.
    void outsideTheGridIsError381() {
        FlexGrid grid;
        grid.setFormatString(kReviewFormat);
        appendRows(grid, 3);
        grid.setRows(1);
        QCOMPARE(grid.Row(), 0);
        QCOMPARE(test::errorOf([&] { grid.TextMatrix(1, 0); }).number(), 381);
        QCOMPARE(test::errorOf([&] { grid.setTextMatrix(0, 9, {}); }).number(), 381);
        QCOMPARE(test::errorOf([&] { grid.RemoveItem(0); }).number(), 381);
        QCOMPARE(test::errorOf([&] { grid.setRows(0); }).number(), 381);
    }

    void hiddenFillThenShowResetsOnce() {
        FlexGrid grid;
        grid.resize(600, 300);
        grid.setFormatString(kReviewFormat);
        grid.setColWidth(8, 0);
        QAbstractItemModel* model = grid.model();
        QSignalSpy inserted(model, &QAbstractItemModel::rowsInserted);
        QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
        QSignalSpy reset(model, &QAbstractItemModel::modelReset);

        appendRows(grid, 2000);
        QCOMPARE(inserted.count() + changed.count() + reset.count(), 0);

        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        QCOMPARE(reset.count(), 1);
        QCOMPARE(model->rowCount(), 2000);
        QCOMPARE(model->index(1999, 4).data().toString(), QStringLiteral("r2000c4"));
        QCOMPARE(model->headerData(7, Qt::Horizontal).toString(), QStringLiteral("操作"));
        QVERIFY(grid.isColumnHidden(8));
        // The fill left the last row current; the list still opens at its top.
        QCOMPARE(grid.Row(), 2000);
        QCOMPARE(grid.verticalScrollBar()->value(), 0);

        // Visible again: a row written now reaches the view at once.
        appendRows(grid, 1);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(model->rowCount(), 2001);

        grid.hide();
        appendRows(grid, 1);
        QCOMPARE(inserted.count(), 1);
    }

    void mouseClickMovesCurrentCell() {
        FlexGrid grid;
        grid.resize(700, 300);
        grid.setFormatString(kReviewFormat);
        appendRows(grid, 3);
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        QSignalSpy clicks(&grid, &FlexGrid::Click);
        QSignalSpy doubleClicks(&grid, &FlexGrid::DblClick);

        // The press moves the current cell; Click comes with the release.
        QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(2, 3).center());
        QCOMPARE(grid.Row(), 2);
        QCOMPARE(grid.Col(), 3);
        QCOMPARE(clicks.count(), 0);
        QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(2, 3).center());
        QCOMPARE(clicks.count(), 1);

        // The right button neither moves nor clicks.
        QTest::mouseClick(grid.viewport(), Qt::RightButton, {}, grid.cellRect(1, 1).center());
        QTest::mouseDClick(grid.viewport(), Qt::RightButton, {}, grid.cellRect(1, 1).center());
        QCOMPARE(clicks.count(), 1);
        QCOMPARE(doubleClicks.count(), 0);
        QCOMPARE(grid.Row(), 2);

        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(3, 1).center());
        QCOMPARE(doubleClicks.count(), 1);
        QVERIFY(clicks.count() <= 2);  // at most the double-click's first click
        QCOMPARE(grid.Row(), 3);
        QCOMPARE(grid.Col(), 1);

        // Whole-row look: Col 0 to ColSel of the current row, and nothing else.
        grid.setCol(0);
        grid.setColSel(grid.Cols() - 1);
        const QModelIndexList selected = grid.selectionModel()->selectedIndexes();
        QCOMPARE(selected.size(), grid.Cols());
        for (const QModelIndex& index : selected) {
            QCOMPARE(index.row(), 2);
        }

        // A fixed column is drawn like the header and a click on it picks the row, not the cell.
        grid.setFixedCols(1);
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(1, 0).center());
        QCOMPARE(grid.Row(), 1);
        QCOMPARE(grid.Col(), 1);
        QTest::keyClick(&grid, Qt::Key_Left);
        QCOMPARE(grid.Col(), 1);
        const QImage look = grid.viewport()->grab().toImage();
        QCOMPARE(look.pixelColor(grid.cellRect(1, 0).topLeft() + QPoint(2, 2)),
                 grid.palette().button().color());
        grid.hide();
    }

    void msgBoxAndErrorPath() {
        test::MsgBoxRecorder boxes;
        boxes.answer(widgets::vbNo);
        QCOMPARE(widgets::MsgBox("已保存"), widgets::vbOK);
        QCOMPARE(widgets::MsgBox("确认？", widgets::vbYesNo, "标题"), widgets::vbNo);
        QCOMPARE(boxes.messages[0].title, widgets::programTitle());
        QCOMPARE(boxes.messages[1].title, QStringLiteral("标题"));
        boxes.messages.clear();

        QPushButton button;
        widgets::onEvent(&button, &QPushButton::clicked, &button,
                         [] { throw runtime::RuntimeError(13, QStringLiteral("类型不匹配")); });
        button.click();
        QCOMPARE(boxes.messages.size(), 1);
        QCOMPARE(boxes.messages[0].prompt, QStringLiteral("运行时错误 '13':\n\n类型不匹配"));
        QCOMPARE(boxes.messages[0].style, widgets::vbCritical);

        widgets::guarded([] { throw std::runtime_error("disk full"); });
        QCOMPARE(boxes.messages.size(), 2);
        QVERIFY(boxes.messages[1].prompt.endsWith("disk full"));
    }

    void trimmingRemovesOnlyBlanks_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("trimmed");
        QTest::newRow("blanks") << QString("  王丽 ") << QString("王丽");
        QTest::newRow("only blanks") << QString("   ") << QString();
        QTest::newRow("full-width space, tab")
            << QString("\u3000王丽\t") << QString("\u3000王丽\t");
    }
    void trimmingRemovesOnlyBlanks() {
        QFETCH(QString, text);
        QFETCH(QString, trimmed);
        QCOMPARE(runtime::trimBlanks(text), trimmed);
    }

    void smallControls() {
        widgets::TextBox box;
        QSignalSpy enter(&box, &widgets::TextBox::returnPressed);
        QSignalSpy changed(&box, &widgets::TextBox::changed);
        box.setText("A0012");
        QTest::keyClick(box.lineEdit(), Qt::Key_Return);
        QCOMPARE(enter.count(), 1);
        QCOMPARE(changed.count(), 1);
        // A box that takes no typing looks it.
        box.setReadOnly(true);
        QCOMPARE(box.editor()->palette().base(), box.editor()->palette().window());
        box.setReadOnly(false);
        QVERIFY(box.editor()->palette().base() != box.editor()->palette().window());

        // Tab leaves a multi-line box for the next control; nothing is typed. Its line breaks
        // come out as CR LF, however they were given.
        QWidget window;
        auto* memo = new widgets::TextBox(&window, true);
        auto* next = new QLineEdit(&window);
        memo->setText("第一行\n第二行");
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        memo->setFocus();
        QTest::keyClick(memo->editor(), Qt::Key_Tab);
        QVERIFY(next->hasFocus());
        QCOMPARE(memo->text(), QStringLiteral("第一行\r\n第二行"));
        memo->setText("第一行\r\n第二行");
        QCOMPARE(memo->text(), QStringLiteral("第一行\r\n第二行"));

        widgets::StatusBar bar(nullptr, 2);
        QCOMPARE(test::errorOf([&] { bar.setPanelText(3, {}); }).number(),
                 runtime::err::SubscriptOutOfRange);

        CountingForm form;
        form.Show();
        form.Show();
        QCOMPARE(form.loads, 1);
        QVERIFY(!form.windowIcon().pixmap(32).isNull());
        form.Unload();
        QCOMPARE(form.unloads, 1);
        QVERIFY(!form.isLoaded() && !form.isVisible());
        form.Show();
        QCOMPARE(form.loads, 2);
        form.Unload();
    }

    // Windows open inside the free screen area with room for a title bar above them, one opened
    // from another offset from it; one larger than the screen shrinks, and so does a minimum
    // larger than the screen.
    void windowsOpenWholeOnScreen() {
        CountingForm first;
        CountingForm second;
        first.resize(5000, 5000);
        second.setMinimumSize(5000, 10);
        first.Show();
        second.ShowBeside(first);
        const QRect area = first.screen()->availableGeometry();
        QVERIFY(area.contains(first.frameGeometry()));
        QVERIFY(first.height() <= area.height() - 20);
        QCOMPARE(second.pos().y(), first.pos().y() + 32);
        QVERIFY(second.minimumWidth() < area.width());
        QVERIFY(area.contains(second.frameGeometry()));
        first.Unload();
        second.Unload();
    }

    void activationCountsOnlyBetweenForms() {
        CountingForm first;
        CountingForm second;
        auto activate = [](QWidget& window) {
            QEvent event(QEvent::WindowActivate);
            QCoreApplication::sendEvent(&window, &event);
        };
        activate(first);
        activate(first);  // back from a message box or another program
        QCOMPARE(first.activations, 1);
        activate(second);
        activate(first);
        QCOMPARE(first.activations, 2);
        QCOMPARE(second.activations, 1);
    }
};

QIVO_TEST_MAIN(TestPlatformWidgets)
#include "test_widgets_forms.moc"
