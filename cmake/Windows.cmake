# The Windows build: the program folder laid out in the build tree (so the programs and the
# suites run there under Wine as they do installed), a version resource and the icon on each
# executable, the suites under Wine, and the setup program and portable zip (target
# windows-package).
set(QIVO_WINDOWS_SDK "" CACHE PATH "Windows SDK: Qt, SQLite and the mingw runtime")
if(NOT EXISTS "${QIVO_WINDOWS_SDK}/mingw64.cmake")
  message(FATAL_ERROR "QIVO_WINDOWS_SDK must name the Windows SDK (make windows finds it)")
endif()

# What the installed program needs beside it, and what the suites need on top.
set(QIVO_WINDOWS_DLLS
  qt/bin/Qt6Core.dll qt/bin/Qt6Gui.dll qt/bin/Qt6Widgets.dll qt/bin/Qt6Sql.dll
  sqlite/bin/libsqlite3-0.dll
  runtime/libstdc++-6.dll runtime/libgcc_s_seh-1.dll runtime/libwinpthread-1.dll)
set(QIVO_WINDOWS_PLUGINS
  platforms/qwindows.dll styles/qwindowsvistastyle.dll sqldrivers/qsqlite.dll)
set(QIVO_WINDOWS_TEST_DLLS qt/bin/Qt6Test.dll qt/bin/Qt6Network.dll)
set(QIVO_WINDOWS_TEST_PLUGINS platforms/qoffscreen.dll)

foreach(dll ${QIVO_WINDOWS_DLLS} ${QIVO_WINDOWS_TEST_DLLS})
  file(COPY "${QIVO_WINDOWS_SDK}/${dll}" DESTINATION "${CMAKE_BINARY_DIR}")
endforeach()
foreach(plugin ${QIVO_WINDOWS_PLUGINS} ${QIVO_WINDOWS_TEST_PLUGINS})
  get_filename_component(folder ${plugin} DIRECTORY)
  file(COPY "${QIVO_WINDOWS_SDK}/qt/plugins/${plugin}" DESTINATION "${CMAKE_BINARY_DIR}/${folder}")
endforeach()

# Qt's own texts in Chinese: Debian's translation of the same Qt version (qt6-translations-l10n),
# in translations/ beside the program, where it looks first.
set(QIVO_QT_CHINESE /usr/share/qt6/translations/qtbase_zh_CN.qm)
if(NOT EXISTS ${QIVO_QT_CHINESE})
  message(FATAL_ERROR "${QIVO_QT_CHINESE} is missing: install qt6-translations-l10n")
endif()
file(COPY ${QIVO_QT_CHINESE} DESTINATION "${CMAKE_BINARY_DIR}/translations")

set(QIVO_ICON "${CMAKE_SOURCE_DIR}/packaging/windows/qivo-review.ico")
function(qivo_windows_resource target description)
  set(QIVO_TARGET ${target})
  set(QIVO_DESCRIPTION "${description}")
  configure_file("${CMAKE_SOURCE_DIR}/packaging/windows/version.rc.in"
                 "${CMAKE_BINARY_DIR}/${target}.rc" @ONLY)
  target_sources(${target} PRIVATE "${CMAKE_BINARY_DIR}/${target}.rc")
endfunction()
qivo_windows_resource(qivo-review "Qivo账号审核")
qivo_windows_resource(qivo-demo-db "Qivo账号审核 演示数据库")

# The suites run under Wine, in the build's own prefix.
set(CMAKE_CROSSCOMPILING_EMULATOR
    "${CMAKE_SOURCE_DIR}/packaging/windows/wine-run.sh" "${CMAKE_BINARY_DIR}/wine-prefix")

# build-windows/qivo-review-<version>-win64-setup.exe and qivo-review-<version>-win64.zip.
add_custom_target(windows-package
  COMMAND "${CMAKE_SOURCE_DIR}/packaging/windows/package.sh" "${CMAKE_BINARY_DIR}"
          "${PROJECT_VERSION}" ${QIVO_WINDOWS_DLLS} -- ${QIVO_WINDOWS_PLUGINS}
  WORKING_DIRECTORY "${QIVO_WINDOWS_SDK}"
  DEPENDS qivo-review qivo-demo-db
  COMMENT "Packing the setup program and the zip"
  VERBATIM)
