# cmake -D READELF=... -D PROGRAM=... -P LinksNothingElse.cmake
# Fails if the program needs a library beyond those of the language and the sanitizers.
execute_process(COMMAND ${READELF} -d ${PROGRAM} OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "NEEDED[^\n]*\\[[^]]*" needed "${dynamic}")
if(NOT needed)
  message(FATAL_ERROR "no needed libraries found in ${PROGRAM}")
endif()
foreach(entry IN LISTS needed)
  string(REGEX REPLACE ".*\\[" "" library "${entry}")
  if(NOT library MATCHES "^(libstdc\\+\\+|libc\\+\\+|libgcc_s|libm|libc|libpthread|ld-linux[^.]*|libasan|libubsan|libtsan)\\.so")
    message(FATAL_ERROR "the metadata core needs ${library}")
  endif()
endforeach()
