# Every library the system builds on, gathered into one interface target.
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Concurrent Sql Xml Network PrintSupport Svg)
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(TIFF 4.5 REQUIRED)
find_package(JPEG REQUIRED)
find_package(ZLIB REQUIRED)
pkg_check_modules(EXIV2 REQUIRED IMPORTED_TARGET exiv2>=0.27)
pkg_check_modules(LCMS2 REQUIRED IMPORTED_TARGET lcms2)
pkg_check_modules(OPENJPEG REQUIRED IMPORTED_TARGET libopenjp2)
pkg_check_modules(LIBRAW REQUIRED IMPORTED_TARGET libraw_r>=0.20)

# QZipWriter lives in Qt's private headers.
if(NOT Qt5Gui_PRIVATE_INCLUDE_DIRS)
    message(FATAL_ERROR "Qt's private headers are missing (Debian package qtbase5-private-dev)")
endif()

# The sqlite driver is a run-time plug-in; without it no database opens.
find_file(GW_QSQLITE_PLUGIN libqsqlite.so
          PATHS "${Qt5Core_DIR}/../../qt5/plugins/sqldrivers" /usr/lib/x86_64-linux-gnu/qt5/plugins/sqldrivers
          NO_DEFAULT_PATH)
if(NOT GW_QSQLITE_PLUGIN)
    message(FATAL_ERROR "Qt's QSQLITE driver is missing (Debian package libqt5sql5-sqlite)")
endif()

add_library(gw_deps INTERFACE)
add_library(gw::deps ALIAS gw_deps)
target_include_directories(gw_deps INTERFACE ${Qt5Gui_PRIVATE_INCLUDE_DIRS})
target_link_libraries(gw_deps INTERFACE
    Qt5::Core Qt5::Gui Qt5::Widgets Qt5::Concurrent Qt5::Sql Qt5::Xml Qt5::Network
    Qt5::PrintSupport Qt5::Svg
    TIFF::TIFF JPEG::JPEG ZLIB::ZLIB
    PkgConfig::EXIV2 PkgConfig::LCMS2 PkgConfig::OPENJPEG PkgConfig::LIBRAW
    Threads::Threads)
