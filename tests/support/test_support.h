#pragma once

#include <QList>
#include <QString>
#include <QTemporaryDir>
#include <QTest>
#include <QVariant>
#include <deque>
#include <functional>

#include "runtime/runtime_error.h"
#include "widgets/error_path.h"
#include "widgets/msgbox.h"

namespace qivo::test {

// Records every message box; answers questions from a queue (vbYes when the queue is empty)
// and notices with vbOK.
class MsgBoxRecorder {
  public:
    MsgBoxRecorder();
    ~MsgBoxRecorder();
    void answer(int reply) { replies_.push_back(reply); }
    QList<widgets::MsgBoxRequest> messages;
    QStringList prompts() const;

  private:
    std::deque<int> replies_;
};

// Counts calls of End() instead of ending the program.
class EndRecorder {
  public:
    EndRecorder();
    ~EndRecorder();
    int count = 0;
};

// A temporary embedded database with the full schema, opened as the shared connection
// (Connection::Cn) and named by the settings store, so the screens find it as in production.
class FixtureDb {
  public:
    FixtureDb();
    ~FixtureDb();  // closes the shared connection: Windows removes no file that is open
    QString path() const { return path_; }
    QString dataSource() const { return "sqlite:" + path_; }
    void exec(const QString& sql);        // one or more statements through the shared connection
    QVariant scalar(const QString& sql);  // first column of the first row, null when none
    int count(const QString& sql) { return scalar(sql).toInt(); }

  private:
    QTemporaryDir dir_;
    QString path_;
};

// A settings store of the suite's own for its life: a temporary XDG_CONFIG_HOME, or on Windows
// a registry key of its own (QIVO_SETTINGS_KEY), removed at the end. Programs the suite starts
// inherit it.
class SettingsSandbox {
  public:
    SettingsSandbox();
    ~SettingsSandbox();

  private:
    QTemporaryDir home_;
};

// The suite's exit status, handed to the system. On Windows the process ends there without
// unloading its libraries: under Wine, after FreeTDS served a connection, the C++ runtime's unload
// waits forever.
int finish(int status);

// The run-time error an action ends in; number 0 when it ends without one.
runtime::RuntimeError errorOf(const std::function<void()>& action);

}  // namespace qivo::test

// A test main with the program's own application object, so the common error path is in place,
// and a settings store of its own, so suites running side by side never share a data source.
#define QIVO_TEST_MAIN(TestClass)                       \
    int main(int argc, char** argv) {                   \
        int status = 0;                                 \
        {                                               \
            qivo::test::SettingsSandbox settings;       \
            qivo::widgets::Application app(argc, argv); \
            TestClass test;                             \
            QTEST_SET_MAIN_SOURCE_PATH                  \
            status = QTest::qExec(&test, argc, argv);   \
        }                                               \
        return qivo::test::finish(status);              \
    }
