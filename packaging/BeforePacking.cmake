# Runs between the installation into the package's folder and the packing of it.
# Takes out of the program what only a linker or a debugger reads, and gives everything the time of SOURCE_DATE_EPOCH.
file(GLOB_RECURSE programs "${CPACK_TEMPORARY_DIRECTORY}/usr/bin/*" "${CPACK_TEMPORARY_DIRECTORY}/usr/libexec/*")
foreach(program IN LISTS programs)
  if(IS_SYMLINK "${program}")
    continue()
  endif()
  execute_process(COMMAND "${CPACK_OBJCOPY}" --strip-all --remove-section=.comment --remove-section=.note "${program}"
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec touch --no-dereference
    "--date=@$ENV{SOURCE_DATE_EPOCH}" {} + COMMAND_ERROR_IS_FATAL ANY)
endif()
