// qivo-demo-db [--rows N] [--out FILE] [--no-settings]: writes an embedded demo database and
// points the settings store at it.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

#include "database/ado.h"
#include "db/demo_data.h"
#include "db/schema.h"
#include "runtime/runtime_error.h"
#include "runtime/settings.h"

using namespace qivo;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Writes a Qivo账号审核 demo database."));
    parser.addHelpOption();
    const QCommandLineOption rowsOption("rows", "Number of registrations (default 200).", "N",
                                        "200");
    const QCommandLineOption outOption("out", "Database file (default qivo-demo.db).", "FILE",
                                       "qivo-demo.db");
    const QCommandLineOption noSettingsOption("no-settings", "Leave the settings store alone.");
    parser.addOptions({rowsOption, outOption, noSettingsOption});
    parser.process(app);
    bool numeric = false;
    const int rows = parser.value(rowsOption).toInt(&numeric);
    if (!numeric || rows < 1 || !parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "qivo-demo-db: --rows takes a whole number of at least 1\n%s",
                     qPrintable(parser.helpText()));
        return 2;
    }
    const QString path = QFileInfo(parser.value(outOption)).absoluteFilePath();
    QElapsedTimer timer;
    timer.start();
    try {
        QFile::remove(path);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            throw runtime::RuntimeError(runtime::err::ProviderError,
                                        "cannot create " + path + ": " + file.errorString());
        }
        file.close();
        database::AdoConnection connection;
        connection.ConnectionString = "Data Source='sqlite:" + path + "'";
        connection.Open();
        db::createEmbeddedSchema(connection);
        db::writeDemoData(connection, rows);
    } catch (const runtime::RuntimeError& error) {
        std::fprintf(stderr, "qivo-demo-db: %s\n", qPrintable(error.description()));
        return 1;
    }
    if (!parser.isSet(noSettingsOption)) {
        const QString app_ = QStringLiteral("Merivane");
        const QString section = QStringLiteral("DBConfig");
        runtime::SaveSetting(app_, section, "Svr", "sqlite:" + path);
        runtime::SaveSetting(app_, section, "UID", {});
        runtime::SaveSetting(app_, section, "PWD", {});
        runtime::SaveSetting(app_, section, "DBname", "qivo_demo");
    }
    std::printf("qivo-demo-db: %d registrations written to %s in %.1f s%s\n", rows,
                qPrintable(path), static_cast<double>(timer.elapsed()) / 1000.0,
                parser.isSet(noSettingsOption) ? "" : "; settings point at it");
    return 0;
}
