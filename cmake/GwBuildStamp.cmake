# Version numbers and the build stamp that the log's session header shows.
find_package(Git QUIET)
set(GW_BUILD_COMMIT "unknown")
if(GIT_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --short=7 HEAD
                    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                    OUTPUT_VARIABLE _gw_commit OUTPUT_STRIP_TRAILING_WHITESPACE
                    RESULT_VARIABLE _gw_git_result ERROR_QUIET)
    if(_gw_git_result EQUAL 0 AND _gw_commit)
        set(GW_BUILD_COMMIT "${_gw_commit}")
    endif()
endif()
string(TIMESTAMP GW_BUILD_DAY "%d.%m.")
configure_file(${CMAKE_SOURCE_DIR}/cmake/gwBuildInfo.h.in ${CMAKE_BINARY_DIR}/gwBuildInfo.h @ONLY)
