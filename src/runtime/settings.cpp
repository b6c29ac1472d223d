#include "runtime/settings.h"

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "runtime/ini_file.h"
#endif

namespace qivo::runtime {

// The store is located again at every call: tests point it elsewhere between calls.
#ifdef Q_OS_WIN

namespace {

// The key under HKEY_CURRENT_USER: the one Visual Basic programs write, unless QIVO_SETTINGS_KEY
// names another root (each test suite takes one of its own, as XDG_CONFIG_HOME does elsewhere).
QString subKey(const QString& app, const QString& section) {
    QString root = qEnvironmentVariable("QIVO_SETTINGS_KEY");
    if (root.isEmpty()) {
        root = QStringLiteral("Software\\VB and VBA Program Settings");
    }
    return root + u'\\' + app + u'\\' + section;
}

const wchar_t* wide(const QString& text) {
    return reinterpret_cast<const wchar_t*>(text.utf16());
}

}  // namespace

QString settingsLocation(const QString& app, const QString& section) {
    return QStringLiteral("HKEY_CURRENT_USER\\") + subKey(app, section);
}

// Read through the registry API itself: the value comes back exactly as another program wrote
// it (QSettings would read a text starting with '@' as one of its own encodings).
QString GetSetting(const QString& app, const QString& section, const QString& key) {
    const QString path = subKey(app, section);
    DWORD bytes = 0;
    if (RegGetValueW(HKEY_CURRENT_USER, wide(path), wide(key), RRF_RT_REG_SZ, nullptr, nullptr,
                     &bytes) != ERROR_SUCCESS) {
        return {};
    }
    QString value(qsizetype(bytes / sizeof(wchar_t)), QChar());
    if (RegGetValueW(HKEY_CURRENT_USER, wide(path), wide(key), RRF_RT_REG_SZ, nullptr, value.data(),
                     &bytes) != ERROR_SUCCESS) {
        return {};
    }
    value.truncate(qsizetype(bytes / sizeof(wchar_t)) - 1);  // the terminating null
    return value;
}

void SaveSetting(const QString& app, const QString& section, const QString& key,
                 const QString& value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, wide(subKey(app, section)), wide(key), REG_SZ, wide(value),
                    DWORD((value.size() + 1) * sizeof(wchar_t)));
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
