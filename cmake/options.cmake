# What every target of the project is compiled with.
include(CheckPIESupported)
find_package(PkgConfig REQUIRED)

set(CMAKE_CXX_FLAGS_RELEASE "-O2 -D_FORTIFY_SOURCE=2 -fstack-protector-strong")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g")
set(CMAKE_EXE_LINKER_FLAGS_RELEASE "-Wl,-z,relro,-z,now")
check_pie_supported()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# A warning that a newer compiler has is nothing that somebody who builds a package can mend.
option(WARNINGS_AS_ERRORS "Refuse what the compiler warns about; the presets do" OFF)

add_library(project_options INTERFACE)
target_include_directories(project_options INTERFACE ${CMAKE_SOURCE_DIR})
# Assertions stay active in every build type, whatever the type's own flags say.
target_compile_options(project_options INTERFACE
  -UNDEBUG
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2 $<$<BOOL:${WARNINGS_AS_ERRORS}>:-Werror>
  # Definitions are never deleted through their base, so it has no virtual destructor.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-delete-non-abstract-non-virtual-dtor>)
