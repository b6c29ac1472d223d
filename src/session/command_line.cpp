#include "session/command_line.h"

#include "runtime/runtime_error.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace qivo {
namespace {

QString commandText;

}  // namespace

QString Command() {
    return commandText;
}

void setCommand(const QString& text) {
    commandText = text;
}

QString afterProgramName(const QString& commandLine) {
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    qsizetype at = 0;
    const qsizetype size = commandLine.size();
    if (size > 0 && commandLine[0] == u'"') {
        at = commandLine.indexOf(u'"', 1);
        at = at < 0 ? size : at + 1;
    } else {
        while (at < size && !isBlank(commandLine[at])) {
            ++at;
        }
    }
    while (at < size && isBlank(commandLine[at])) {
        ++at;
    }
    return commandLine.mid(at);
}

QString sessionText(const QStringList& arguments) {
#ifdef Q_OS_WIN
    Q_UNUSED(arguments);
    return afterProgramName(QString::fromWCharArray(GetCommandLineW()));
#else
    return arguments.join(u' ');
#endif
}

QStringList commandLineFields(const QString& text) {
    const QStringList fields = text.split(u',');
    if (fields.size() < 10) {
        throw runtime::RuntimeError(
            runtime::err::SubscriptOutOfRange,
            QStringLiteral("启动参数不完整：需要以逗号分隔的十项（工号,姓名,部门编号,部门名称,"
                           "岗位代号,岗位名称,部门类别代号,部门类别名称,岗位类别编号,"
                           "岗位类别名称），收到 %1 项：%2")
                .arg(fields.size())
                .arg(text));
    }
    return fields;
}

}  // namespace qivo
