# Run by CPack between installing and packaging: compresses manual pages and change logs, as Debian requires, without a
# timestamp, so that builds are reproducible.
file(GLOB_RECURSE documents ${CPACK_TEMPORARY_DIRECTORY}/*/korvex-dao.1 ${CPACK_TEMPORARY_DIRECTORY}/*/changelog)
if(NOT documents)
  message(FATAL_ERROR "No manual page in ${CPACK_TEMPORARY_DIRECTORY}")
endif()
execute_process(COMMAND gzip -9n ${documents} COMMAND_ERROR_IS_FATAL ANY)
