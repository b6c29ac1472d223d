#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <memory>

class QFileDialog;
class QWidget;

namespace qivo::widgets {

class FlexGrid;

// The grid as its user sees it, as CSV that a spreadsheet opens with Chinese intact: UTF-8 with a
// byte-order mark, one line per row (the header row first) ended by CR LF, the shown columns
// (wider than 0) in their shown order, but for the columns `leftOut`. A field holding a comma, a
// quote or a line break is quoted, with its quotes doubled; one that begins with =, +, - or @
// gets a leading ', so that a spreadsheet keeps it as text instead of computing it. Row data is
// not part of it.
QByteArray gridCsv(const FlexGrid& grid, const QList<int>& leftOut = {});

// Asks where to save, proposing `proposedName`; returns the chosen path, or empty text when the
// user cancels.
using SaveFileResponder = std::function<QString(const QString& proposedName)>;

// The dialog that asks where to save, `proposedName` offered, with room for its dates.
std::unique_ptr<QFileDialog> saveFileDialog(QWidget* window, const QString& proposedName);

// Replaces the file dialog (tests choose the path with it); an empty function restores it.
void setSaveFileResponder(SaveFileResponder responder);

// Lets the user save the grid as CSV under a name of their choice, `proposedName` offered, and
// returns the path written: empty when the user cancelled or the file could not be written, which
// is reported in a message box. Reads nothing but the grid.
QString exportGridCsv(const FlexGrid& grid, QWidget* window, const QString& proposedName,
                      const QList<int>& leftOut = {});

}  // namespace qivo::widgets
