# What the boards' toolchain files share. They set VIREO_BOARD (Debian's name of the architecture),
# VIREO_BOARD_TRIPLE and VIREO_BOARD_EMULATOR; packaging/cross.sh lays out the sysroot.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${VIREO_BOARD_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${VIREO_BOARD_TRIPLE}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${VIREO_BOARD_TRIPLE})

get_filename_component(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot/${VIREO_BOARD} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The code generators run here, not on the board, so they are the host's own.
set(QT_HOST_PATH /usr CACHE PATH "Where the host's own toolkit is")
file(GLOB host_tools /usr/lib/*/cmake/Qt6CoreTools)
list(GET host_tools 0 host_tools)
get_filename_component(host_packages ${host_tools} DIRECTORY)
set(QT_HOST_PATH_CMAKE_DIR ${host_packages} CACHE PATH "Where the host's own toolkit describes itself")

# The emulator looks paths up in the sysroot first, but not in every way that the toolkit looks for its plugins.
find_program(VIREO_EMULATOR ${VIREO_BOARD_EMULATOR})
if(VIREO_EMULATOR)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${VIREO_EMULATOR} -L ${CMAKE_SYSROOT}
        -E QT_PLUGIN_PATH=${CMAKE_SYSROOT}/usr/lib/${VIREO_BOARD_TRIPLE}/qt6/plugins)
endif()
