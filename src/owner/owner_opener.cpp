#include "owner/owner_opener.h"

#include <QIODevice>
#include <QRegularExpression>
#include <cstdio>

#include "database/ado.h"
#include "owner/owner_form.h"
#include "owner/owner_sql.h"
#include "runtime/end.h"
#include "runtime/runtime_error.h"
#include "session/connection.h"

namespace qivo {

namespace {

const QString kOwnerOption = QStringLiteral("--owner");
const QString kNewOwnerOption = QStringLiteral("--new-owner");

// The key goes into SQL text unquoted, so only a decimal number is taken.
bool isDecimalKey(const QString& text) {
    static const QRegularExpression decimal(QStringLiteral("^[0-9]+$"));
    return decimal.match(text).hasMatch();
}

bool anyRow(const QString& sql) {
    database::Recordset rows;
    rows.Open(sql, Connection::cn());
    return !rows.Eof();
}

// A screen for a key with no owner row would show an empty owner as if stored; one for a room
// that does not exist would store an owner nobody lives with.
QString refusalOf(const QString& option, const QString& key) {
    if (option == kOwnerOption) {
        return anyRow(owner_sql::ownerQuery(key))
                   ? QString()
                   : QStringLiteral("业主表中没有编号为 %1 的业主").arg(key);
    }
    return anyRow(QStringLiteral("Select S_ID From 室表 Where S_ID=") + key)
               ? QString()
               : QStringLiteral("室表中没有编号为 %1 的房间").arg(key);
}

}  // namespace

OwnerKeyLine::OwnerKeyLine(std::unique_ptr<QIODevice> out) : out_(std::move(out)) {}

OwnerKeyLine::~OwnerKeyLine() = default;

void OwnerKeyLine::receiveOwnerKey(const QString& ownerKey) {
    out_->write(QStringLiteral("ZH_ID=%1\n").arg(ownerKey).toUtf8());
}

void openOwnerScreen(frm业户信息& screen, const QString& ownerKey, const QString& roomId,
                     OwnerKeyReceiver& opener) {
    screen.Frame1[0]->Tag = ownerKey;
    screen.Frame1[1]->Tag = roomId;
    screen.setOpener(&opener);
    screen.Show();
}

OwnerLaunch::OwnerLaunch(std::unique_ptr<QIODevice> keyOut) : keyLine_(std::move(keyOut)) {}

OwnerLaunch::~OwnerLaunch() = default;

std::unique_ptr<OwnerLaunch> OwnerLaunch::fromArguments(QStringList& arguments,
                                                        std::unique_ptr<QIODevice> keyOut) {
    qsizetype at = arguments.indexOf(kOwnerOption);
    if (at < 0) {
        at = arguments.indexOf(kNewOwnerOption);
    }
    if (at < 0) {
        return nullptr;
    }
    const QString option = arguments.takeAt(at);
    const QString value = at < arguments.size() ? arguments.takeAt(at) : QString();
    auto launch = std::make_unique<OwnerLaunch>(std::move(keyOut));
    if (!isDecimalKey(value)) {
        launch->refuse(option + QStringLiteral(" 后须跟一个数字编号"));
        return launch;
    }
    if (!ConnectDatabase()) {
        runtime::End();
        return launch;
    }
    try {
        if (const QString refusal = refusalOf(option, value); !refusal.isEmpty()) {
            launch->refuse(refusal);
            return launch;
        }
    } catch (const runtime::RuntimeError& error) {
        launch->refuse(error.description());
        return launch;
    }
    if (option == kOwnerOption) {
        launch->open(value, {});
    } else {
        launch->open({}, value);
    }
    return launch;
}

void OwnerLaunch::refuse(const QString& reason) {
    // UTF-8, as the opener reads it: the system's own code page would lose the Chinese.
    std::fputs(QStringLiteral("qivo-review: %1\n").arg(reason).toUtf8().constData(), stderr);
    exitStatus_ = 2;
    runtime::End();
}

void OwnerLaunch::open(const QString& ownerKey, const QString& roomId) {
    screen_ = std::make_unique<frm业户信息>();
    openOwnerScreen(*screen_, ownerKey, roomId, keyLine_);
}

}  // namespace qivo
