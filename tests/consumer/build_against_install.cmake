# Installs the library into a prefix of its own, then configures, builds and runs a consumer.
set(prefix "${WORK_DIRECTORY}/prefix")
set(build "${WORK_DIRECTORY}/build")
file(REMOVE_RECURSE "${WORK_DIRECTORY}")

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run("${CMAKE_COMMAND}" --install "${BUILD_DIRECTORY}" --prefix "${prefix}")
run("${CMAKE_COMMAND}" -G "${GENERATOR}" -S "${CONSUMER_SOURCE}" -B "${build}"
  -D "CMAKE_PREFIX_PATH=${prefix}")
run("${CMAKE_COMMAND}" --build "${build}")
run("${build}/consumer")
