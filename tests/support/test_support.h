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
    QString path() const { return path_; }
    QString dataSource() const { return "sqlite:" + path_; }
    void exec(const QString& sql);        // one or more statements through the shared connection
    QVariant scalar(const QString& sql);  // first column of the first row, null when none
    int count(const QString& sql) { return scalar(sql).toInt(); }

  private:
    QTemporaryDir dir_;
    QString path_;
};

// The run-time error an action ends in; number 0 when it ends without one.
runtime::RuntimeError errorOf(const std::function<void()>& action);

}  // namespace qivo::test

// A test main with the program's own application object, so the common error path is in place,
// and a settings store of its own, so suites running side by side never share a data source.
#define QIVO_TEST_MAIN(TestClass)                                      \
    int main(int argc, char** argv) {                                  \
        QTemporaryDir settingsHome;                                    \
        qputenv("XDG_CONFIG_HOME", settingsHome.path().toLocal8Bit()); \
        qivo::widgets::Application app(argc, argv);                    \
        TestClass test;                                                \
        QTEST_SET_MAIN_SOURCE_PATH                                     \
        return QTest::qExec(&test, argc, argv);                        \
    }
