#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QtEndian>

namespace qivo::test::tds {

// Token and packet codes of the protocol, as far as the stand-in server uses them.
enum : quint8 {
    kPacketBatch = 0x01,
    kPacketRpc = 0x03,
    kPacketReply = 0x04,
    kPacketAttention = 0x06,
    kPacketTransaction = 0x0E,
    kPacketLogin = 0x10,
    kPacketPrelogin = 0x12,
    kTokenReturnStatus = 0x79,
    kTokenError = 0xAA,
    kTokenLoginAck = 0xAD,
    kTokenRow = 0xD1,
    kTokenColumns = 0x81,
    kTokenEnvChange = 0xE3,
    kTokenDone = 0xFD,
    kTokenDoneProc = 0xFE,
    kTokenDoneInProc = 0xFF,
};

enum DoneStatus : quint16 {
    kDoneMore = 0x01,
    kDoneError = 0x02,
    kDoneCount = 0x10,
    kDoneAttention = 0x20
};

// Little-endian writer of token streams.
class Writer {
  public:
    QByteArray data;
    void u8(quint8 v) { data.append(char(v)); }
    void u16(quint16 v) { put(qToLittleEndian(v)); }
    void u32(quint32 v) { put(qToLittleEndian(v)); }
    void u64(quint64 v) { put(qToLittleEndian(v)); }
    void ucs2(const QString& s) {
        for (QChar c : s) {
            u16(c.unicode());
        }
    }
    void bVarchar(const QString& s) {
        u8(quint8(s.size()));
        ucs2(s);
    }
    void usVarchar(const QString& s) {
        u16(quint16(s.size()));
        ucs2(s);
    }
    // A length-prefixed token: writes the token, reserves its length and returns where it is.
    qsizetype beginToken(quint8 token) {
        u8(token);
        u16(0);
        return data.size();
    }
    void endToken(qsizetype start) {
        qToLittleEndian(quint16(data.size() - start), data.data() + start - 2);
    }

  private:
    template <typename T>
    void put(T v) {
        data.append(reinterpret_cast<const char*>(&v), sizeof v);
    }
};

// Little-endian reader of a request; reading past the end yields zeros.
class Reader {
  public:
    explicit Reader(const QByteArray& data, qsizetype pos = 0) : data_(data), pos_(pos) {}
    bool atEnd() const { return pos_ >= data_.size(); }
    qsizetype pos() const { return pos_; }
    void skip(qsizetype n) { pos_ += n; }
    quint8 u8() { return quint8(take(1).leftJustified(1, 0).at(0)); }
    quint16 u16() { return qFromLittleEndian<quint16>(take(2).leftJustified(2, 0).constData()); }
    quint32 u32() { return qFromLittleEndian<quint32>(take(4).leftJustified(4, 0).constData()); }
    quint64 u64() { return qFromLittleEndian<quint64>(take(8).leftJustified(8, 0).constData()); }
    QByteArray take(qsizetype n) {
        const QByteArray part = data_.mid(pos_, n);
        pos_ += n;
        return part;
    }
    QString ucs2(qsizetype characters) { return fromUcs2(take(characters * 2)); }
    static QString fromUcs2(const QByteArray& bytes) {
        return QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()),
                                  bytes.size() / 2);
    }

  private:
    const QByteArray& data_;
    qsizetype pos_;
};

}  // namespace qivo::test::tds
