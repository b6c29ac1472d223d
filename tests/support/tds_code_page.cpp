#include "support/tds_code_page.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <iconv.h>

#include <map>
#include <memory>
#endif

namespace qivo::test {

#ifdef _WIN32

QByteArray toCodePage(const QString& text, int codePage) {
    const auto* wide = reinterpret_cast<const wchar_t*>(text.utf16());
    const int length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(UINT(codePage), 0, wide, length, nullptr, 0, nullptr, nullptr);
    QByteArray out(size, Qt::Uninitialized);
    WideCharToMultiByte(UINT(codePage), 0, wide, length, out.data(), size, nullptr, nullptr);
    return out;
}

#else

QByteArray toCodePage(const QString& text, int codePage) {
    // One converter per thread and code page: opening one per value would be most of the
    // server's time.
    thread_local std::map<int, std::unique_ptr<void, int (*)(iconv_t)> > converters;
    auto found = converters.find(codePage);
    if (found == converters.end()) {
        const QByteArray name = "CP" + QByteArray::number(codePage) + "//TRANSLIT";
        found = converters
                    .emplace(codePage, std::unique_ptr<void, int (*)(iconv_t)>(
                                           iconv_open(name.constData(), "UTF-8"), iconv_close))
                    .first;
    }
    void* converter = found->second.get();
    const QByteArray utf8 = text.toUtf8();
    QByteArray out(utf8.size() * 2 + 4, Qt::Uninitialized);
    char* in = const_cast<char*>(utf8.constData());
    size_t inLeft = utf8.size();
    char* target = out.data();
    size_t outLeft = out.size();
    iconv(converter, &in, &inLeft, &target, &outLeft);
    out.truncate(out.size() - qsizetype(outLeft));
    return out;
}

#endif

}  // namespace qivo::test
