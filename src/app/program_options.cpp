#include "app/program_options.h"

#include "app/console.h"
#include "session/connection.h"

namespace qivo::app {

namespace {

QString version() {
    return QStringLiteral("qivo-review（Qivo账号审核）%1.%2\n")
        .arg(QIVO_VERSION_MAJOR)
        .arg(QIVO_VERSION_MINOR);
}

QString usage() {
    return QStringLiteral(
               "用法：qivo-review [会话]\n"
               "      qivo-review --owner ZH_ID | --new-owner S_ID\n"
               "      qivo-review --check | --help | --version\n"
               "\n"
               "不带参数时打开登录窗口，以工号和密码登录。\n"
               "会话：另一程序交来的已登录会话，十项以逗号分隔，依次为\n"
               "  工号,姓名,部门编号,部门名称,岗位代号,岗位名称,部门类别代号,部门类别名称,"
               "岗位类别编号,岗位类别名称\n"
               "  例：qivo-review \"1001,王丽,KF,客服中心,KF01,客服主管,WY,物业管理,GL,管理岗\"\n"
               "\n"
               "选项：\n"
               "  --owner ZH_ID      打开该业主的业户信息，关闭时输出一行 ZH_ID=<键>\n"
               "  --new-owner S_ID   为房间 S_ID 新建业主，关闭时输出新业主的 ZH_ID=<键>\n"
               "  --check            检查本机的设置、ODBC 驱动、登录和程序用到的表和列\n"
               "                     （退出码 0 齐全，1 有缺，2 连不上）\n"
               "  -h, --help         显示本说明\n"
               "  -v, --version      显示版本\n"
               "\n"
               "数据库连接设置（程序只读不写）：\n") +
           connectionSettingsHelp() + '\n';
}

bool isKnownOption(const QString& argument) {
    static const QStringList known{"--check", "--owner", "--new-owner"};
    return known.contains(argument);
}

}  // namespace

std::optional<int> answerInformationOptions(const QStringList& arguments) {
    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        writeConsole(stdout, usage());
        return 0;
    }
    if (arguments.contains(QStringLiteral("--version")) ||
        arguments.contains(QStringLiteral("-v"))) {
        writeConsole(stdout, version());
        return 0;
    }
    for (const QString& argument : arguments) {
        if (argument.startsWith(QStringLiteral("--")) && !isKnownOption(argument)) {
            writeConsole(stderr, "qivo-review：未知选项 " + argument + "\n\n" + usage());
            return 2;
        }
    }
    return std::nullopt;
}

}  // namespace qivo::app
