#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTreeView>
#include <QWidget>

#include "support/test_support.h"
#include "widgets/flex_grid.h"
#include "widgets/grid_export.h"
#include "widgets/grid_find_bar.h"
#include "widgets/qt_translations.h"

using namespace qivo;
using widgets::FlexGrid;

namespace {

struct ColorWrite {
    int col;
    bool fore;
    quint32 bgr;
};

QString cellText(int row, int col) {
    return QStringLiteral("行%1 列%2").arg(row).arg(col);
}

// Rows written the way the lists write them: the UTF-8 path for odd columns, QString for even.
void fill(FlexGrid& grid, int rows) {
    for (int row = grid.Rows(); row <= rows; ++row) {
        grid.setRows(row + 1);
        grid.setRowData(row, row * 10);
        for (int col = 0; col < grid.Cols(); ++col) {
            if (col % 2 == 1) {
                grid.setTextMatrixUtf8(row, col, QUtf8StringView(cellText(row, col).toUtf8()));
            } else {
                grid.setTextMatrix(row, col, cellText(row, col));
            }
        }
    }
}

void verifyRow(const FlexGrid& grid, int row, int writtenAs) {
    QCOMPARE(grid.RowData(row), writtenAs * 10);
    for (int col = 0; col < grid.Cols(); ++col) {
        QCOMPARE(grid.TextMatrix(row, col), cellText(writtenAs, col));
    }
}

}  // namespace

Q_DECLARE_METATYPE(QList<ColorWrite>)

class TestPlatformGrid final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void cleanup() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            QVERIFY2(!window->isVisible(), "a test left a window open");
        }
    }

    // Rewrites, shrinking (which reclaims the text store), growing, RemoveItem and a change of
    // column count all leave every remaining cell with its own text.
    void cellsSurviveRewritesAndReshaping() {
        FlexGrid grid;
        grid.setFormatString(QStringLiteral("<序|<名称|<地址|"));
        fill(grid, 400);
        grid.setTextMatrix(7, 1, QStringLiteral("更长的一段文字，比原来的长"));
        grid.setTextMatrix(8, 2, QStringLiteral("短"));
        grid.setTextMatrix(9, 3, {});
        QCOMPARE(QStringList({grid.TextMatrix(7, 1), grid.TextMatrix(8, 2), grid.TextMatrix(9, 3),
                              grid.TextMatrix(8, 3)}),
                 QStringList({"更长的一段文字，比原来的长", "短", "", cellText(8, 3)}));

        grid.setRows(6);
        QCOMPARE(grid.TextMatrix(0, 1), QStringLiteral("名称"));
        for (int row = 1; row < 6; ++row) {
            verifyRow(grid, row, row);
        }
        grid.setRows(9);
        QCOMPARE(grid.TextMatrix(8, 2), QString());
        QCOMPARE(grid.RowData(8), 0);

        grid.RemoveItem(2);
        QCOMPARE(grid.Rows(), 8);
        QCOMPARE(grid.TextMatrix(0, 2), QStringLiteral("地址"));
        verifyRow(grid, 1, 1);
        verifyRow(grid, 2, 3);
        verifyRow(grid, 4, 5);

        grid.setCols(5);
        QCOMPARE(grid.TextMatrix(2, 3), cellText(3, 3));
        QCOMPARE(grid.TextMatrix(2, 4), QString());
        grid.setCols(2);
        QCOMPARE(grid.TextMatrix(4, 1), cellText(5, 1));
    }

    void textReadsBackAsWritten_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("ASCII") << QStringLiteral("Qivo_01 X");
        QTest::newRow("two-byte Latin") << QStringLiteral("Zoë Åsa");
        QTest::newRow("Chinese") << QStringLiteral("王丽 金湾花园3栋");
        QTest::newRow("beyond the BMP") << QStringLiteral("𠀋家 😀");
        QTest::newRow("lone surrogate") << QString(QChar(0xD800)) + QStringLiteral("x");
        QTest::newRow("longer than a short cell") << QStringLiteral("地址").repeated(300);
    }

    // A cell reads back what QString's own UTF-8 round trip gives, through either way in.
    void textReadsBackAsWritten() {
        QFETCH(QString, text);
        FlexGrid grid;
        grid.setFormatString(QStringLiteral("<a|<b"));
        grid.setRows(2);
        grid.setTextMatrix(1, 0, text);
        grid.setTextMatrixUtf8(1, 1, QUtf8StringView(text.toUtf8()));
        const QString expected = QString::fromUtf8(text.toUtf8());
        QCOMPARE(grid.TextMatrix(1, 0), expected);
        QCOMPARE(grid.TextMatrix(1, 1), expected);
    }

    void coloursPerCell_data() {
        QTest::addColumn<QList<ColorWrite>>("writes");
        QTest::addColumn<QList<quint32>>("fore");  // columns 0-4 of the row
        QTest::addColumn<QList<quint32>>("back");
        const quint32 band = 0xFEFCE7;
        QTest::newRow("banding over adjacent columns, one blue cell")
            << QList<ColorWrite>{{1, false, band},
                                 {2, false, band},
                                 {3, false, band},
                                 {4, false, band},
                                 {3, true, 0xFF0000}}
            << QList<quint32>{0, 0, 0, 0xFF0000, 0} << QList<quint32>{0, band, band, band, band};
        QTest::newRow("same colour with a gap")
            << QList<ColorWrite>{{1, false, 0xFF}, {3, false, 0xFF}}
            << QList<quint32>{0, 0, 0, 0, 0} << QList<quint32>{0, 0xFF, 0, 0xFF, 0};
        QTest::newRow("another colour inside a run")
            << QList<ColorWrite>{{1, true, 0xFF},
                                 {2, true, 0xFF},
                                 {3, true, 0xFF},
                                 {2, true, 0x00FF00}}
            << QList<quint32>{0, 0xFF, 0x00FF00, 0xFF, 0} << QList<quint32>{0, 0, 0, 0, 0};
        QTest::newRow("black is a colour, high bits dropped")
            << QList<ColorWrite>{{0, true, 0}, {4, false, 0xAB123456}}
            << QList<quint32>{0, 0, 0, 0, 0} << QList<quint32>{0, 0, 0, 0, 0x123456};
    }

    // Colours written cell by cell read back cell by cell, also after the rows around them move,
    // and reach the view; no other row takes them.
    void coloursPerCell() {
        QFETCH(const QList<ColorWrite>, writes);
        QFETCH(const QList<quint32>, fore);
        QFETCH(const QList<quint32>, back);
        FlexGrid grid;
        grid.setFormatString(QStringLiteral("<a|<b|<c|<d|<e"));
        fill(grid, 4);
        grid.setRow(3);
        for (const ColorWrite& write : writes) {
            grid.setCol(write.col);
            write.fore ? grid.setCellForeColor(write.bgr) : grid.setCellBackColor(write.bgr);
        }
        grid.RemoveItem(1);
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        for (int col = 0; col < grid.Cols(); ++col) {
            QCOMPARE(grid.cellForeColor(2, col), fore[col]);
            QCOMPARE(grid.cellBackColor(2, col), back[col]);
            QCOMPARE(grid.cellForeColor(1, col) + grid.cellBackColor(3, col), 0u);
            const QVariant shown = grid.model()->index(1, col).data(Qt::BackgroundRole);
            QCOMPARE(shown.isValid(), back[col] != 0);
        }
        // The black fore colour reaches the view as a colour, not as "none".
        QCOMPARE(grid.model()->index(1, 0).data(Qt::ForegroundRole).isValid(),
                 writes.front().col == 0);
        grid.hide();
    }

    void findBar_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("result");
        QTest::newRow("Chinese, first of several") << "王" << 2 << "1 / 3";
        QTest::newRow("Latin letters in either case") << "qivo_ab" << 3 << "1 / 1";
        QTest::newRow("digits of a phone") << "13900" << 4 << "1 / 1";
        QTest::newRow("the hidden key column is not searched") << "KEY" << 1 << "无匹配";
        QTest::newRow("no match leaves the row") << "李四" << 1 << "无匹配";
    }

    // Typing moves Row to the first match and tells which of how many it is; it opens nothing.
    void findBar() {
        QFETCH(QString, typed);
        QFETCH(int, row);
        QFETCH(QString, result);
        Window list;
        QSignalSpy clicks(list.grid, &FlexGrid::Click);
        QSignalSpy doubleClicks(list.grid, &FlexGrid::DblClick);
        list.bar->findText()->setText(typed);
        QCOMPARE(list.grid->Row(), row);
        QCOMPARE(list.bar->result(), result);
        QCOMPARE(list.grid->selectionModel()->isRowSelected(row - 1),
                 result != QStringLiteral("无匹配"));
        QCOMPARE(clicks.count() + doubleClicks.count(), 0);
    }

    // Ctrl+F opens the bar, Enter and F3 go forward and Shift+F3 back, round the ends; Escape
    // closes it and leaves the found row current.
    void findBarKeys() {
        Window list;
        QTest::keyClick(list.grid, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(list.bar->isVisible());
        QVERIFY(list.bar->findText()->hasFocus());
        list.bar->findText()->insert(QStringLiteral("王"));  // as an input method commits it
        QCOMPARE(list.grid->Row(), 2);
        QTest::keyClick(list.bar->findText(), Qt::Key_Return);
        QCOMPARE(list.grid->Row(), 5);
        QCOMPARE(list.bar->result(), QStringLiteral("2 / 3"));
        QTest::keyClick(list.bar->findText(), Qt::Key_F3);
        QTest::keyClick(list.bar->findText(), Qt::Key_F3);
        QCOMPARE(list.grid->Row(), 2);
        QCOMPARE(list.bar->result(), QStringLiteral("1 / 3"));
        QTest::keyClick(list.bar->findText(), Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(list.grid->Row(), 6);
        QCOMPARE(list.bar->result(), QStringLiteral("3 / 3"));
        QTest::keyClick(list.bar->findText(), Qt::Key_Escape);
        QVERIFY(!list.bar->isVisible());
        QCOMPARE(list.grid->Row(), 6);
        QVERIFY(list.grid->hasFocus());
    }

    // A row far down comes into view even while the current column is the hidden key column, as
    // it is after a list fill; an empty search moves nothing.
    void findBarScrollsTheRowIntoView() {
        Window list;
        for (int row = list.grid->Rows(); row < 300; ++row) {
            list.grid->setRows(row + 1);
            list.grid->setTextMatrix(row, 1, QStringLiteral("住户%1").arg(row));
        }
        list.grid->setCol(4);
        list.bar->findText()->setText(QStringLiteral("住户299"));
        QCOMPARE(list.grid->Row(), 299);
        const QRect shown = list.grid->visualRect(list.grid->model()->index(298, 1));
        QVERIFY(list.grid->viewport()->rect().contains(shown.center()));
        list.bar->findText()->clear();
        list.bar->findNext();
        QCOMPARE(list.grid->Row(), 299);
        QCOMPARE(list.bar->result(), QString());
    }

    // The file holds the shown columns in their shown order, without the hidden key, the
    // columns left out or the row data; text a spreadsheet would compute stays text. A file that
    // cannot be written is reported, a cancelled dialog writes nothing; only a written file's path
    // comes back.
    void exportWritesTheGridAsShown() {
        Window list;
        list.grid->setTextMatrix(1, 1, QStringLiteral("张\"三\""));
        list.grid->setTextMatrix(1, 3, QStringLiteral("-5"));
        list.grid->setTextMatrix(2, 1, QStringLiteral("=1+2"));
        list.grid->setTextMatrix(2, 3, QStringLiteral("+86 138,139"));
        list.grid->setTextMatrix(3, 1, QStringLiteral("陈\r\n明"));
        list.grid->setTextMatrix(3, 3, QStringLiteral("@13800000003"));
        list.grid->setRows(4);
        list.grid->horizontalHeader()->moveSection(3, 1);
        const QByteArray expected(
            "\xEF\xBB\xBF序,手机,姓名\r\n1,'-5,\"张\"\"三\"\"\"\r\n"
            "2,\"'+86 138,139\",'=1+2\r\n3,'@13800000003,\"陈\r\n明\"\r\n");
        QTemporaryDir dir;
        QStringList asked;
        QStringList paths{dir.filePath("list.csv"), dir.filePath("no/such/folder.csv"), {}};
        widgets::setSaveFileResponder([&](const QString& proposed) {
            asked << proposed;
            return paths.takeFirst();
        });
        test::MsgBoxRecorder boxes;
        QStringList written;
        for (int i = 0; i < 3; ++i) {
            written << widgets::exportGridCsv(*list.grid, &list.window, QStringLiteral("名单.csv"),
                                              {2});
        }
        widgets::setSaveFileResponder({});
        QCOMPARE(written, QStringList({dir.filePath("list.csv"), {}, {}}));
        QFile file(dir.filePath("list.csv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), expected);
        QCOMPARE(asked, QStringList(3, QStringLiteral("名单.csv")));
        QCOMPARE(boxes.prompts().size(), 1);
        QVERIFY(boxes.prompts()[0].contains(QStringLiteral("folder.csv")));
    }

    // Columns that give way narrow, the widest first and group after group, so that the last
    // column stays in view; they widen again as the list grows, and keep their own widths.
    void givingWayKeepsTheLastColumnInView() {
        QWidget window;
        FlexGrid grid(&window);
        grid.setFormatString(QStringLiteral("<序|<地址|<项目|<号码|^操作"));
        const QList<int> twips{600, 4500, 3000, 3000, 900};
        for (int col = 0; col < grid.Cols(); ++col) {
            grid.setColWidth(col, twips[col]);
        }
        fill(grid, 3);
        grid.setGivingWay({{1, 2}, {3}});
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const auto widths = [&grid] {
            QList<int> pixels;
            for (int col = 0; col < grid.Cols(); ++col) {
                pixels << grid.columnWidth(col);
            }
            return pixels;
        };
        const auto lastInView = [&grid] {
            return grid.viewport()->rect().contains(grid.cellRect(1, 4));
        };
        grid.resize(1000, 200);
        QCOMPARE(widths(), QList<int>({40, 300, 200, 200, 60}));
        const int fits = 800 + 2 * grid.frameWidth() + grid.verticalScrollBar()->sizeHint().width();
        grid.resize(fits - 80, 200);
        QCOMPARE(widths(), QList<int>({40, 220, 200, 200, 60}));  // the widest alone gave way
        QVERIFY(lastInView());
        grid.resize(fits - 400, 200);
        QVERIFY(widths()[3] < 200);
        QVERIFY(widths()[1] == widths()[2] && widths()[2] < 100);
        QVERIFY(lastInView());
        QCOMPARE(grid.ColWidth(1), 4500);
        grid.resize(1000, 200);
        QCOMPARE(widths(), QList<int>({40, 300, 200, 200, 60}));
    }

    // Qt's own texts are Chinese, and the save dialog has room for its dates.
    void saveDialogInChineseWithRoomForDates() {
        QVERIFY(widgets::loadQtTranslations(*QCoreApplication::instance()));
        QVERIFY(QCoreApplication::translate("QFileDialog", "Look in:") != "Look in:");
        Window list;
        const auto dialog = widgets::saveFileDialog(&list.window, QStringLiteral("名单.csv"));
        const auto* details = dialog->findChild<QTreeView*>();
        if (details == nullptr) {
            QSKIP("the system's own file dialog");
        }
        const QString date = QLocale::system().toString(
            QDateTime(QDate(2026, 12, 28), QTime(23, 59)), QLocale::ShortFormat);
        QVERIFY(details->header()->sectionSize(3) > details->fontMetrics().horizontalAdvance(date));
    }

  private:
    // A window with a list grid, its find bar, and rows to find.
    struct Window {
        QWidget window;
        FlexGrid* grid = new FlexGrid(&window);
        widgets::GridFindBar* bar = new widgets::GridFindBar(grid, &window);
        Window() {
            grid->setFormatString(QStringLiteral("<序|<姓名|<Qivo号|<手机|"));
            const QStringList rows[] = {{"张三", "zs01", "13800000001", "KEY1"},
                                        {"王丽", "wl02", "13800000002", "KEY2"},
                                        {"陈明", "Qivo_AB", "13800000003", "KEY3"},
                                        {"刘洋", "ly04", "13900001234", "KEY4"},
                                        {"王伟", "ww05", "13800000005", "KEY5"},
                                        {"小王", "xw06", "13800000006", "KEY6"}};
            grid->setColWidth(4, 0);
            for (const QStringList& cells : rows) {
                const int row = grid->Rows();
                grid->setRows(row + 1);
                grid->setTextMatrix(row, 0, QString::number(row));
                for (int col = 1; col < grid->Cols(); ++col) {
                    grid->setTextMatrix(row, col, cells[col - 1]);
                }
            }
            grid->setRow(1);
            grid->setGeometry(0, 0, 400, 150);
            window.resize(400, 250);
            window.show();
            window.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&window));
            grid->setFocus();
        }
    };
};

QIVO_TEST_MAIN(TestPlatformGrid)
#include "test_widgets_grid.moc"
