#include "platform/settings.h"

#include <QDir>
#include <QSettings>
#include <memory>

namespace qivo::platform {

namespace {

// The store is located again at every call: tests point XDG_CONFIG_HOME elsewhere between calls.
std::unique_ptr<QSettings> openStore(const QString& app, const QString& section) {
#ifdef Q_OS_WIN
    auto store = std::make_unique<QSettings>(
        QStringLiteral("HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\") + app + '\\' +
            section,
        QSettings::NativeFormat);
#else
    QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (config.isEmpty()) {
        config = QDir::homePath() + QStringLiteral("/.config");
    }
    auto store = std::make_unique<QSettings>(
        config + '/' + app + '/' + app + QStringLiteral(".ini"), QSettings::IniFormat);
    store->beginGroup(section);
#endif
    return store;
}

}  // namespace

QString GetSetting(const QString& app, const QString& section, const QString& key) {
    return openStore(app, section)->value(key).toString();
}

void SaveSetting(const QString& app, const QString& section, const QString& key,
                 const QString& value) {
    auto store = openStore(app, section);
    store->setValue(key, value);
    store->sync();
}

}  // namespace qivo::platform
