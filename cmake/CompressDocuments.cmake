# Run by CPack between installing and packing: manual pages and change logs are compressed, as Debian has it, and
# without a time, so that the same source makes the same file.
file(GLOB_RECURSE documents ${CPACK_TEMPORARY_DIRECTORY}/*/korvex-dao.1 ${CPACK_TEMPORARY_DIRECTORY}/*/changelog)
if(NOT documents)
  message(FATAL_ERROR "No manual page in ${CPACK_TEMPORARY_DIRECTORY}")
endif()
execute_process(COMMAND gzip -9n ${documents} COMMAND_ERROR_IS_FATAL ANY)
