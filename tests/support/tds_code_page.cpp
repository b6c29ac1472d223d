#include "support/tds_code_page.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <iconv.h>

#include <memory>
#endif

namespace qivo::test {

#ifdef _WIN32

QByteArray toCodePage936(const QString& text) {
    const auto* wide = reinterpret_cast<const wchar_t*>(text.utf16());
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(936, 0, wide, length, nullptr, 0, nullptr, nullptr);
    QByteArray out(size, Qt::Uninitialized);
    WideCharToMultiByte(936, 0, wide, length, out.data(), size, nullptr, nullptr);
    return out;
}

#else

QByteArray toCodePage936(const QString& text) {
    // One converter per thread: opening one per value would be most of the server's time.
    thread_local const std::unique_ptr<void, int (*)(iconv_t)> converter(
        iconv_open("CP936//TRANSLIT", "UTF-8"), iconv_close);
    const QByteArray utf8 = text.toUtf8();
    QByteArray out(utf8.size() * 2 + 4, Qt::Uninitialized);
    char* in = const_cast<char*>(utf8.constData());
    size_t inLeft = utf8.size();
    char* target = out.data();
    size_t outLeft = out.size();
    iconv(converter.get(), &in, &inLeft, &target, &outLeft);
    out.truncate(out.size() - qsizetype(outLeft));
    return out;
}

#endif

}  // namespace qivo::test
