#include "widgets/qt_translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <memory>

namespace qivo::widgets {

namespace {

bool loadFor(QTranslator& translator, const QLocale& locale) {
    const QStringList folders{
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("translations")),
        QLibraryInfo::path(QLibraryInfo::TranslationsPath)};
    for (const QString& folder : folders) {
        if (translator.load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), folder)) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool loadQtTranslations(QCoreApplication& app) {
    auto translator = std::make_unique<QTranslator>();
    const QLocale system = QLocale::system();
    const bool loaded = (system.language() == QLocale::Chinese && loadFor(*translator, system)) ||
                        loadFor(*translator, QLocale(QLocale::Chinese, QLocale::SimplifiedHanScript,
                                                     QLocale::China));
    if (!loaded) {
        return false;
    }
    translator->setParent(&app);
    QCoreApplication::installTranslator(translator.release());
    return true;
}

}  // namespace qivo::widgets
