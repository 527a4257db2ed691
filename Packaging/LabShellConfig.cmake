include(${CMAKE_CURRENT_LIST_DIR}/LabShellTargets.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/LabShellChecksum.cmake)
