#include "support/tds_server.h"

#include <sqlite3.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMutex>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <bit>
#include <optional>
#include <vector>

#include "database/sqlite/sqlite_functions.h"
#include "support/tds_catalog.h"
#include "support/tds_results.h"

namespace qivo::test {
namespace {

using namespace tds;

constexpr quint16 kPacketSize = 4096;
constexpr quint16 kExecuteSql = 10;  // sp_executesql
const QByteArray kTransaction("\x01\0\0\0\0\0\0\0", 8);

// The procedure names of the ids FreeTDS sends instead of a name.
QString procedureName(quint16 id) {
    static const char* const names[] = {"",
                                        "sp_cursor",
                                        "sp_cursoropen",
                                        "sp_cursorprepare",
                                        "sp_cursorexecute",
                                        "sp_cursorprepexec",
                                        "sp_cursorunprepare",
                                        "sp_cursorfetch",
                                        "sp_cursoroption",
                                        "sp_cursorclose",
                                        "sp_executesql",
                                        "sp_prepare",
                                        "sp_execute",
                                        "sp_prepexec",
                                        "sp_prepexecrpc",
                                        "sp_unprepare"};
    return id < std::size(names) ? QString::fromLatin1(names[id]) : QString::number(id);
}

// One parameter value of an RPC, of the types FreeTDS sends for the program's bindings; nothing
// for another type (binary, as an untyped Null would go), which the columns refuse.
std::optional<QVariant> readParameter(Reader& in) {
    const quint8 type = in.u8();
    switch (type) {
        case 0x26:    // intn: the program's whole numbers go out as bigint, the driver's as int
        case 0x68:    // bitn
        case 0x6D: {  // floatn: doubles
            in.u8();
            const quint8 length = in.u8();
            if (length == 0) {
                return QVariant();
            }
            const qint64 raw = length == 8   ? qint64(in.u64())
                               : length == 4 ? qint32(in.u32())
                               : length == 2 ? qint16(in.u16())
                                             : in.u8();
            return type == 0x6D ? QVariant(std::bit_cast<double>(raw)) : QVariant(qlonglong(raw));
        }
        case 0xE7: {  // nvarchar
            const quint16 max = in.u16();
            in.skip(5);
            if (max == 0xFFFF) {  // nvarchar(max): chunks of a known or unknown total
                if (in.u64() == ~quint64(0)) {
                    return QVariant();
                }
                QByteArray bytes;
                while (const quint32 chunk = in.u32()) {
                    bytes += in.take(chunk);
                }
                return Reader::fromUcs2(bytes);
            }
            const quint16 length = in.u16();
            if (length == 0xFFFF) {
                return QVariant();
            }
            return Reader::fromUcs2(in.take(length));
        }
        case 0x63: {  // ntext
            in.u32();
            in.skip(5);
            const quint32 length = in.u32();
            return length == 0xFFFFFFFF ? QVariant() : QVariant(Reader::fromUcs2(in.take(length)));
        }
        default:
            return std::nullopt;
    }
}

// Requests held back before they run (holdStatements).
struct Hold {
    QByteArray text;  // as the request carries it, UTF-16
    int ms = 0;
    bool cancelReadLate = false;
};

// What the server's sessions share with the test that runs it.
struct Shared {
    std::atomic<qint64> busy{0};
    std::atomic<bool> dayFirst{false};
    std::atomic<int> codePage{936};
    std::atomic<bool> rollbackKeeps{false};
    QMutex mutex;  // guards the members below
    QStringList calls;
    QString password;
    QString defaultLanguage = QStringLiteral("us_english");
    TdsServer::Login lastLogin;
    std::optional<std::pair<TdsServer::Fault, QString>> fault;
    Hold hold;
};

// The fields of a LOGIN7 record that the server checks: offsets and lengths in characters from
// a table at the record's start; the password's bytes have their halves swapped and 0xA5 mixed in.
TdsServer::Login readLogin(const QByteArray& record) {
    auto field = [&record](int at) {
        Reader in(record, at);
        const quint16 offset = in.u16();
        return Reader(record, offset).ucs2(in.u16());
    };
    QByteArray password = record.mid(qFromLittleEndian<quint16>(record.constData() + 44),
                                     qFromLittleEndian<quint16>(record.constData() + 46) * 2);
    for (char& byte : password) {
        const quint8 plain = quint8(byte) ^ 0xA5;
        byte = char(quint8(plain << 4) | quint8(plain >> 4));
    }
    return {field(40), Reader::fromUcs2(password), field(64)};
}

QString quoted(const QString& text) {
    return u'\'' + QString(text).replace(u'\'', QStringLiteral("''")) + u'\'';
}

class Session {
  public:
    Session(QTcpSocket* socket, const QString& path, Shared& shared)
        : socket_(socket), dayFirst_(shared.dayFirst), shared_(shared), hold_(shared.hold) {
        sqlite3_open_v2(path.toUtf8().constData(), &db_, SQLITE_OPEN_READWRITE, nullptr);
        database::registerSqliteFunctions(db_);
        addCatalog(db_);
        sqlite3_busy_timeout(db_, 5000);
        // Answers go out at once, as a server's do, not held back for the client's next packet.
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this] { read(); });
    }
    ~Session() { sqlite3_close(db_); }

  private:
    void read() {
        input_ += socket_->readAll();
        while (input_.size() >= 8) {
            const quint16 length = qFromBigEndian<quint16>(input_.constData() + 2);
            if (input_.size() < length) {
                return;
            }
            const quint8 type = quint8(input_[0]);
            const bool last = input_[1] & 0x01;
            message_ += input_.mid(8, length - 8);
            input_.remove(0, length);
            if (last && holds(type)) {
                holdBack(type);
            } else if (last) {
                if (type == kPacketAttention) {
                    answerHeldLate();
                    ++held_;
                }
                QElapsedTimer timer;
                timer.start();
                answer(type, message_);
                shared_.busy += timer.nsecsElapsed();
                message_.clear();
            }
        }
    }

    bool holds(quint8 type) {
        QMutexLocker lock(&shared_.mutex);
        return (type == kPacketBatch || type == kPacketRpc) && !hold_.text.isEmpty() &&
               message_.contains(hold_.text);
    }

    // Answers the request later unless an attention comes first.
    void holdBack(quint8 type) {
        int ms = 0;
        {
            QMutexLocker lock(&shared_.mutex);
            ms = hold_.ms;
        }
        pending_ = {type, message_};
        QTimer::singleShot(ms, socket_, [this, type, request = message_, id = ++held_] {
            if (id == held_) {
                pending_.reset();
                answer(type, request);
            }
        });
        message_.clear();
    }

    // A server that reads the cancel only once the held statement could run: it runs and
    // answers it, and acknowledges the cancel after that.
    void answerHeldLate() {
        bool late = false;
        {
            QMutexLocker lock(&shared_.mutex);
            late = hold_.cancelReadLate;
        }
        if (pending_ && late) {
            answer(pending_->first, pending_->second);
        }
        pending_.reset();
    }

    void answer(quint8 type, const QByteArray& request) {
        Writer out;
        switch (type) {
            case kPacketPrelogin:
                return send(prelogin());
            case kPacketLogin:
                return send(login(request));
            case kPacketBatch:
                run(Reader::fromUcs2(request.mid(headersLength(request))), {}, false, out);
                if (out.data.isEmpty()) {
                    writeDone(out, kTokenDone, 0);
                }
                out.data[out.data.size() - 12] &= ~kDoneMore;
                return send(out.data);
            case kPacketRpc:
                return send(rpc(request));
            case kPacketTransaction:
                return send(transaction(request));
            case kPacketAttention:
                writeDone(out, kTokenDone, kDoneAttention);
                return send(out.data);
            default:
                writeError(out, 50000, QStringLiteral("packet type %1 is not served").arg(type));
                writeDone(out, kTokenDone, kDoneError);
                return send(out.data);
        }
    }

    static qsizetype headersLength(const QByteArray& request) {
        return qFromLittleEndian<quint32>(request.constData());
    }

    static QByteArray prelogin() {
        Writer out;
        const QList<QByteArray> options = {QByteArray("\x10\x00\x10\x00\x00\x00", 6),
                                           QByteArray(1, 0x02),  // encryption not supported
                                           QByteArray(1, 0x00), QByteArray(4, 0x00),
                                           QByteArray(1, 0x00)};
        quint16 offset = quint16(options.size() * 5 + 1);
        for (int i = 0; i < options.size(); ++i) {
            out.u8(quint8(i));
            out.data.append(char(offset >> 8)).append(char(offset & 0xFF));
            out.data.append(char(0)).append(char(options[i].size()));
            offset += quint16(options[i].size());
        }
        out.u8(0xFF);
        for (const QByteArray& option : options) {
            out.data += option;
        }
        return out.data;
    }

    static void envChange(Writer& out, quint8 type, const QString& now, const QString& before) {
        const qsizetype start = out.beginToken(kTokenEnvChange);
        out.u8(type);
        out.bVarchar(now);
        out.bVarchar(before);
        out.endToken(start);
    }

    static void envChangeBytes(Writer& out, quint8 type, const QByteArray& now,
                               const QByteArray& before) {
        const qsizetype start = out.beginToken(kTokenEnvChange);
        out.u8(type);
        out.u8(quint8(now.size()));
        out.data += now;
        out.u8(quint8(before.size()));
        out.data += before;
        out.endToken(start);
    }

    // A login that names no language gets the login's own default.
    QByteArray login(const QByteArray& record) {
        Writer out;
        const TdsServer::Login given = readLogin(record);
        QMutexLocker lock(&shared_.mutex);
        shared_.lastLogin = given;
        if (!shared_.password.isEmpty() && given.password != shared_.password) {
            writeError(out, 18456, QStringLiteral("Login failed for user '%1'.").arg(given.user));
            writeDone(out, kTokenDone, kDoneError);
            return out.data;
        }
        language_ = given.language.isEmpty() ? shared_.defaultLanguage : given.language;
        user_ = given.user;
        const QString principals =
            QStringLiteral(
                "create temp view if not exists \"sys.server_principals\" as select "
                "%1 as name, %2 as default_language_name")
                .arg(quoted(given.user), quoted(shared_.defaultLanguage));
        sqlite3_exec(db_, principals.toUtf8().constData(), nullptr, nullptr, nullptr);
        envChange(out, 1, "qivo", "master");
        envChangeBytes(out, 7, QByteArray("\x04\x08\xD0\x00\x00", 5), {});
        envChange(out, 2, language_, "");
        envChange(out, 4, QString::number(kPacketSize), QString::number(kPacketSize));
        const qsizetype start = out.beginToken(kTokenLoginAck);
        out.u8(1);
        out.data.append("\x73\x0B\x00\x03", 4);  // TDS 7.3
        out.bVarchar("Microsoft SQL Server");
        out.data.append("\x10\x00\x10\x00", 4);
        out.endToken(start);
        writeDone(out, kTokenDone, 0);
        return out.data;
    }

    QByteArray rpc(const QByteArray& request) {
        Reader in(request, headersLength(request));
        const quint16 nameLength = in.u16();
        const QString name = nameLength == 0xFFFF ? procedureName(in.u16()) : in.ucs2(nameLength);
        in.u16();  // options
        QList<QVariant> values;
        Parameters named;
        bool typed = true;
        while (typed && !in.atEnd()) {
            const QString parameter = in.ucs2(in.u8());
            in.u8();  // status
            const std::optional<QVariant> value = readParameter(in);
            typed = value.has_value();
            values << value.value_or(QVariant());
            named << qMakePair(parameter, values.last());
        }
        {
            QMutexLocker lock(&shared_.mutex);
            shared_.calls << name;
        }
        Writer out;
        if (!typed) {
            writeError(out, 206, "Operand type clash: varbinary is incompatible with date");
        } else if (name == procedureName(kExecuteSql)) {
            // Parameters after the text and its declarations are @P1, @P2, ... in order.
            Parameters parameters;
            for (int i = 2; i < values.size(); ++i) {
                parameters << qMakePair(
                    named[i].first.isEmpty() ? "@P" + QString::number(i - 1) : named[i].first,
                    asLoginReadsIt(values[i]));
            }
            run(values.value(0).toString(), parameters, true, out);
        } else if (name == "sp_cursoropen") {
            writeError(out, 16937,
                       "A server cursor is not allowed on a remote stored procedure or stored "
                       "procedure with more than one SELECT statement. Use a default result set "
                       "or client cursor.");
        } else {
            writeError(out, 2812,
                       QStringLiteral("Could not find stored procedure '%1'.").arg(name));
        }
        out.u8(kTokenReturnStatus);
        out.u32(0);
        writeDone(out, kTokenDoneProc, 0);
        return out.data;
    }

    // A login whose language puts the day first reads the text 2024-03-05 as 3 May; digits only
    // (20240305) read the same under every language.
    QVariant asLoginReadsIt(const QVariant& value) const {
        static const QRegularExpression dashed(R"(^(\d{4})([-/.])(\d{1,2})\2(\d{1,2})(.*)$)");
        const QRegularExpressionMatch match = dashed.match(value.toString());
        if (!dayFirst_ || value.typeId() != QMetaType::QString || !match.hasMatch()) {
            return value;
        }
        return match.captured(1) + match.captured(2) + match.captured(4) + match.captured(2) +
               match.captured(3) + match.captured(5);
    }

    // Begin, commit and rollback requests; a commit or rollback may begin the next at once.
    QByteArray transaction(const QByteArray& request) {
        Reader in(request, headersLength(request));
        const quint16 kind = in.u16();
        Writer out;
        auto begin = [&] {
            sqlite3_exec(db_, "begin", nullptr, nullptr, nullptr);
            envChangeBytes(out, 8, kTransaction, {});
        };
        if (kind == 5) {
            begin();
        } else if ((kind == 7 || kind == 8) && sqlite3_get_autocommit(db_)) {
            writeError(out, kind == 7 ? 3902 : 3903,
                       QStringLiteral("The %1 TRANSACTION request has no corresponding BEGIN "
                                      "TRANSACTION.")
                           .arg(kind == 7 ? "COMMIT" : "ROLLBACK"));
            writeDone(out, kTokenDone, kDoneError);
            return out.data;
        } else if (kind == 7 || kind == 8) {
            sqlite3_exec(db_, kind == 7 || shared_.rollbackKeeps ? "commit" : "rollback", nullptr,
                         nullptr, nullptr);
            envChangeBytes(out, kind == 7 ? 9 : 10, {}, kTransaction);
            in.skip(in.u8() * 2);  // transaction name
            if (in.u8() & 0x01) {
                begin();
            }
        }
        writeDone(out, kTokenDone, 0);
        return out.data;
    }

    // Runs a request's text as the server's variables read for this session, unless a fault
    // set for it strikes first.
    void run(QString text, const Parameters& parameters, bool inProcedure, Writer& out) {
        std::optional<TdsServer::Fault> fault;
        {
            QMutexLocker lock(&shared_.mutex);
            if (shared_.fault && text.contains(shared_.fault->second)) {
                fault = shared_.fault->first;
                shared_.fault.reset();
            }
        }
        if (fault == TdsServer::Fault::Deadlock) {
            endTransaction();
            writeError(
                out, 1205,
                "Transaction (Process ID 52) was deadlocked on lock resources with another "
                "process and has been chosen as the deadlock victim. Rerun the transaction.");
            writeDone(out, inProcedure ? kTokenDoneInProc : kTokenDone, kDoneError | kDoneMore);
            return;
        }
        dropping_ = fault == TdsServer::Fault::Drop;
        droppingHalfway_ = fault == TdsServer::Fault::DropHalfway;
        text.replace(QStringLiteral("@@language"), quoted(language_), Qt::CaseInsensitive);
        text.replace(QStringLiteral("suser_sname()"), quoted(user_), Qt::CaseInsensitive);
        text.replace(QStringLiteral("@@trancount"), sqlite3_get_autocommit(db_) ? "0" : "1",
                     Qt::CaseInsensitive);
        runText(db_, text, parameters, inProcedure, shared_.codePage, out);
    }

    // The server ends an open transaction: what it wrote is undone.
    void endTransaction() {
        if (!sqlite3_get_autocommit(db_)) {
            sqlite3_exec(db_, "rollback", nullptr, nullptr, nullptr);
        }
    }

    void send(const QByteArray& payload) {
        if (dropping_) {
            endTransaction();
            socket_->abort();
            return;
        }
        QByteArray packets;
        qsizetype offset = 0;
        do {
            const qsizetype size = qMin<qsizetype>(payload.size() - offset, kPacketSize - 8);
            const bool last = offset + size == payload.size();
            QByteArray header(8, 0);
            header[0] = char(kPacketReply);
            header[1] = char(last ? 0x01 : 0x00);
            qToBigEndian(quint16(size + 8), header.data() + 2);
            header[6] = char(++packetId_);
            packets += header + payload.mid(offset, size);
            offset += size;
        } while (offset < payload.size());
        if (droppingHalfway_) {
            droppingHalfway_ = false;
            endTransaction();
            socket_->write(packets.left(packets.size() / 2));
            socket_->disconnectFromHost();
            return;
        }
        socket_->write(packets);
    }

    QTcpSocket* socket_;
    bool dayFirst_;
    Shared& shared_;
    QString language_;
    QString user_;
    bool dropping_ = false;
    bool droppingHalfway_ = false;
    const Hold& hold_;
    quint64 held_ = 0;  // the hold now waiting; an attention moves it on
    std::optional<std::pair<quint8, QByteArray>> pending_;  // the request held now
    sqlite3* db_ = nullptr;
    QByteArray input_;
    QByteArray message_;
    quint8 packetId_ = 0;
};

}  // namespace

struct TdsServer::State {
    QThread thread;
    QTcpServer* listener = new QTcpServer;
    std::vector<std::unique_ptr<Session>> sessions;
    Shared shared;
};

TdsServer::TdsServer(const QString& databasePath) : state_(std::make_unique<State>()) {
    State& s = *state_;
    s.listener->listen(QHostAddress::LocalHost);
    QObject::connect(s.listener, &QTcpServer::newConnection, s.listener, [&s, databasePath] {
        while (QTcpSocket* socket = s.listener->nextPendingConnection()) {
            s.sessions.push_back(std::make_unique<Session>(socket, databasePath, s.shared));
        }
    });
    s.listener->moveToThread(&s.thread);
    s.thread.start();
}

TdsServer::~TdsServer() {
    state_->thread.quit();
    state_->thread.wait();
    state_->sessions.clear();
    delete state_->listener;
}

QString TdsServer::dataSource() const {
    return QStringLiteral("127.0.0.1,%1").arg(state_->listener->serverPort());
}

void TdsServer::setCodePage(int codePage) {
    state_->shared.codePage = codePage;
}

void TdsServer::setDayFirstLogins(bool dayFirst) {
    state_->shared.dayFirst = dayFirst;
}

void TdsServer::setRollbackKeepsWrites(bool keeps) {
    state_->shared.rollbackKeeps = keeps;
}

void TdsServer::setLoginPassword(const QString& password) {
    QMutexLocker lock(&state_->shared.mutex);
    state_->shared.password = password;
}

void TdsServer::setDefaultLanguage(const QString& language) {
    QMutexLocker lock(&state_->shared.mutex);
    state_->shared.defaultLanguage = language;
}

TdsServer::Login TdsServer::lastLogin() const {
    QMutexLocker lock(&state_->shared.mutex);
    return state_->shared.lastLogin;
}

void TdsServer::failNext(Fault fault, const QString& fragment) {
    QMutexLocker lock(&state_->shared.mutex);
    state_->shared.fault = std::pair(fault, fragment);
}

void TdsServer::holdStatements(const QString& containing, int ms, bool cancelReadLate) {
    QMutexLocker lock(&state_->shared.mutex);
    state_->shared.hold = {
        QByteArray(reinterpret_cast<const char*>(containing.utf16()), containing.size() * 2), ms,
        cancelReadLate};
}

qint64 TdsServer::busyNanoseconds() const {
    return state_->shared.busy;
}

QStringList TdsServer::procedureCalls() const {
    QMutexLocker lock(&state_->shared.mutex);
    return state_->shared.calls;
}

bool registerFreeTds(const QString& directory) {
    const QStringList found = QDir("/usr/lib").entryList({"*-linux-gnu*"}, QDir::Dirs);
    QString driver;
    for (const QString& arch : found) {
        const QString candidate = QStringLiteral("/usr/lib/%1/odbc/libtdsodbc.so").arg(arch);
        if (QFile::exists(candidate)) {
            driver = candidate;
        }
    }
    if (driver.isEmpty()) {
        return false;
    }
    QFile ini(QDir(directory).filePath("odbcinst.ini"));
    if (!ini.open(QIODevice::WriteOnly)) {
        return false;
    }
    ini.write("[FreeTDS]\nDriver=" + driver.toUtf8() + "\n");
    ini.close();
    qputenv("ODBCSYSINI", directory.toLocal8Bit());
    qputenv("ODBCINSTINI", "odbcinst.ini");
    return true;
}

}  // namespace qivo::test
