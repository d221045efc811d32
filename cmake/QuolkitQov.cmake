# Which library the program measures. Every form ends in a target `qov`, or in none at all:
#   (default)          the bundled library in qov/
#   -DQOV_ROOT=dir     another library: dir/include with the same headers, dir/lib/libqov.a or .so
#   -DQOV=none         no library: the harness alone
set(QOV "bundled" CACHE STRING "bundled or none")
set_property(CACHE QOV PROPERTY STRINGS bundled none)
set(QOV_ROOT "" CACHE PATH "Folder of a library to link instead of the bundled one")

add_library(qov_types INTERFACE)
if(QOV STREQUAL "none")
  target_include_directories(qov_types INTERFACE ${PROJECT_SOURCE_DIR}/qov/include)
elseif(QOV_ROOT)
  find_library(QOV_LIBRARY NAMES qov PATHS ${QOV_ROOT}/lib NO_DEFAULT_PATH REQUIRED NO_CACHE)
  if(NOT EXISTS ${QOV_ROOT}/include/qovdefs.h)
    message(FATAL_ERROR "QOV_ROOT=${QOV_ROOT} holds no include/qovdefs.h")
  endif()
  target_include_directories(qov_types INTERFACE ${QOV_ROOT}/include)
  add_library(qov UNKNOWN IMPORTED)
  set_target_properties(qov PROPERTIES IMPORTED_LOCATION ${QOV_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${QOV_ROOT}/include)
elseif(QOV STREQUAL "bundled")
  target_include_directories(qov_types INTERFACE ${PROJECT_SOURCE_DIR}/qov/include)
  add_subdirectory(qov)
else()
  message(FATAL_ERROR "QOV=${QOV}: bundled or none is wanted")
endif()
