# Installs the build in BUILD_FOLDER into the folder PREFIX, which is emptied first.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_FOLDER} --prefix ${PREFIX}
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
