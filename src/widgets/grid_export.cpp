#include "widgets/grid_export.h"

#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QLocale>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTreeView>
#include <algorithm>
#include <utility>

#include "widgets/flex_grid.h"
#include "widgets/msgbox.h"

namespace qivo::widgets {

namespace {

// Where the file dialog's details list shows the time a file was changed.
constexpr int kDateColumn = 3;

SaveFileResponder& responder() {
    static SaveFileResponder instance;
    return instance;
}

// A spreadsheet computes a cell that starts like a formula; the ' keeps it as typed.
QString spreadsheetText(const QString& text) {
    static const QString formulaStarts = QStringLiteral("=+-@");
    return !text.isEmpty() && formulaStarts.contains(text.front()) ? u'\'' + text : text;
}

QString csvField(const QString& cell) {
    const QString text = spreadsheetText(cell);
    if (!text.contains(u',') && !text.contains(u'"') && !text.contains(u'\n') &&
        !text.contains(u'\r')) {
        return text;
    }
    QString quoted = text;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

QString askSaveFile(QWidget* window, const QString& proposedName) {
    if (responder()) {
        return responder()(proposedName);
    }
    const auto dialog = saveFileDialog(window, proposedName);
    return dialog->exec() == QDialog::Accepted ? dialog->selectedFiles().value(0) : QString();
}

}  // namespace

std::unique_ptr<QFileDialog> saveFileDialog(QWidget* window, const QString& proposedName) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    auto dialog = std::make_unique<QFileDialog>(window, QStringLiteral("导出列表"),
                                                QDir(folder).filePath(proposedName),
                                                QStringLiteral("CSV 文件 (*.csv)"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    // Qt's own dialog, where the system has none, sizes its date column for English dates; the
    // dates are written in the system's short form.
    if (auto* details = dialog->findChild<QTreeView*>()) {
        const QString latest = QLocale::system().toString(
            QDateTime(QDate(2026, 12, 28), QTime(23, 59)), QLocale::ShortFormat);
        const int needed =
            details->fontMetrics().horizontalAdvance(latest + QStringLiteral("    "));
        details->header()->resizeSection(
            kDateColumn, std::max(details->header()->sectionSize(kDateColumn), needed));
    }
    return dialog;
}

QByteArray gridCsv(const FlexGrid& grid, const QList<int>& leftOut) {
    std::vector<int> shown;
    const QHeaderView* header = grid.horizontalHeader();
    for (int visual = 0; visual < grid.Cols(); ++visual) {
        const int col = header->logicalIndex(visual);
        if (grid.ColWidth(col) > 0 && !leftOut.contains(col)) {
            shown.push_back(col);
        }
    }
    QByteArray csv("\xEF\xBB\xBF");
    for (int row = 0; row < grid.Rows(); ++row) {
        QStringList fields;
        for (const int col : shown) {
            fields << csvField(grid.TextMatrix(row, col));
        }
        csv += fields.join(u',').toUtf8() + "\r\n";
    }
    return csv;
}

void setSaveFileResponder(SaveFileResponder responder) {
    qivo::widgets::responder() = std::move(responder);
}

QString exportGridCsv(const FlexGrid& grid, QWidget* window, const QString& proposedName,
                      const QList<int>& leftOut) {
    const QString path = askSaveFile(window, proposedName);
    if (path.isEmpty()) {
        return {};
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(gridCsv(grid, leftOut)) < 0 ||
        !file.commit()) {
        MsgBox(QStringLiteral("列表未能导出：无法写入文件 %1（%2）。请换一个位置或文件名再试。")
                   .arg(QDir::toNativeSeparators(path), file.errorString()),
               vbInformation);
        return {};
    }
    return path;
}

}  // namespace qivo::widgets
