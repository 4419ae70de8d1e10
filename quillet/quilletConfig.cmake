# find_package(quillet): the target quillet::quillet. It is a static library, so that what it is made
# with must be there too: the Debian packages libutf8proc-dev, librsvg2-dev and pkg-config.
include(CMakeFindDependencyMacro)
find_dependency(PkgConfig)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET libutf8proc)
pkg_check_modules(rsvg REQUIRED IMPORTED_TARGET librsvg-2.0 cairo-png)
include("${CMAKE_CURRENT_LIST_DIR}/quilletTargets.cmake")
