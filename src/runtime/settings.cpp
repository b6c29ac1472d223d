#include "runtime/settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>

#include "runtime/ini_file.h"

namespace qivo::runtime {

// The store is located again at every call: tests point XDG_CONFIG_HOME elsewhere between calls.
#ifdef Q_OS_WIN

QString settingsLocation(const QString& app, const QString& section) {
    return QStringLiteral("HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\") + app +
           '\\' + section;
}

QString GetSetting(const QString& app, const QString& section, const QString& key) {
    return QSettings(settingsLocation(app, section), QSettings::NativeFormat).value(key).toString();
}

void SaveSetting(const QString& app, const QString& section, const QString& key,
                 const QString& value) {
    QSettings store(settingsLocation(app, section), QSettings::NativeFormat);
    store.setValue(key, value);
    store.sync();
}

#else

QString settingsLocation(const QString& app, const QString&) {
    QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (config.isEmpty()) {
        config = QDir::homePath() + QStringLiteral("/.config");
    }
    return config + '/' + app + '/' + app + QStringLiteral(".ini");
}

namespace {

QByteArray readStore(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

QString GetSetting(const QString& app, const QString& section, const QString& key) {
    return iniValue(readStore(settingsLocation(app, section)), section, key);
}

void SaveSetting(const QString& app, const QString& section, const QString& key,
                 const QString& value) {
    const QString path = settingsLocation(app, section);
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(withIniValue(readStore(path), section, key, value));
        file.commit();
    }
}

#endif

}  // namespace qivo::runtime
