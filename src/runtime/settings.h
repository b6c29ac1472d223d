#pragma once

#include <QString>

namespace qivo::runtime {

// Reads the per-user settings store: on Windows the registry key
// HKCU\Software\VB and VBA Program Settings\<app>\<section>
// (HKCU\$QIVO_SETTINGS_KEY\<app>\<section> when that is set), elsewhere the INI file
// <config>/<app>/<app>.ini with <config> = $XDG_CONFIG_HOME or ~/.config, read as written
// (see ini_file.h). A missing key reads as empty text.
QString GetSetting(const QString& app, const QString& section, const QString& key);

// Writes the same store; only tools (the demo database) write, the program never does.
void SaveSetting(const QString& app, const QString& section, const QString& key,
                 const QString& value);

// Where the store of an application lives: the registry key or the INI file's path.
QString settingsLocation(const QString& app, const QString& section);

}  // namespace qivo::runtime
