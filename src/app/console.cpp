#include "app/console.h"

#ifdef Q_OS_WIN
#include <io.h>
#include <windows.h>
#endif

namespace qivo::app {

#ifdef Q_OS_WIN

namespace {

// A stream already redirected to a file or pipe, or a console of the program's own, is kept.
void attachParentConsole(std::FILE* stream) {
    const DWORD which = stream == stderr ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE;
    const HANDLE handle = GetStdHandle(which);
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE) {
        return;
    }
    if (AttachConsole(ATTACH_PARENT_PROCESS) || GetLastError() == ERROR_ACCESS_DENIED) {
        std::freopen("CONOUT$", "w", stream);
    }
}

}  // namespace

void writeConsole(std::FILE* stream, const QString& text) {
    attachParentConsole(stream);
    std::fflush(stream);
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    DWORD mode = 0;
    if (handle != INVALID_HANDLE_VALUE && GetConsoleMode(handle, &mode)) {
        DWORD written = 0;
        WriteConsoleW(handle, text.utf16(), static_cast<DWORD>(text.size()), &written, nullptr);
        return;
    }
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

#else

void writeConsole(std::FILE* stream, const QString& text) {
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

#endif

}  // namespace qivo::app
