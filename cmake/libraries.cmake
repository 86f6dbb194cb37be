# The libraries that Debian 12 brings; the README says what each of them is for.

find_package(PkgConfig REQUIRED)
find_package(SDL2 REQUIRED)
find_package(glm REQUIRED)
find_package(fmt REQUIRED)
find_package(CLI11 REQUIRED)
find_package(tomlplusplus REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(LibLZMA REQUIRED)
find_package(OpenGL REQUIRED COMPONENTS OpenGL EGL)
pkg_check_modules(EPOXY REQUIRED IMPORTED_TARGET epoxy)
pkg_check_modules(STB REQUIRED IMPORTED_TARGET stb)
