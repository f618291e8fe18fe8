# Writes the man pages of tqv with help2man: tqv.1 from `tqv --help`, and tqv-<command>.1 for every
# command `tqv --help` lists. Run at build time with -DTQV=<program> -DHELP2MAN=<help2man>
# -DVERSION=<version> -DOUTPUT=<directory>.
execute_process(COMMAND ${TQV} --help OUTPUT_VARIABLE help RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${TQV} --help failed")
endif()
file(MAKE_DIRECTORY ${OUTPUT}/wrappers)

# The command names are the first words of the lines after "Subcommands:".
string(REGEX REPLACE "^.*\nSubcommands:\n" "" listing "${help}")
string(REGEX MATCHALL "(^|\n)  [a-z]+" names "${listing}")
set(pages tqv)
foreach(name IN LISTS names)
  string(STRIP "${name}" name)
  # help2man names the page after the program it runs, so each command gets a program of its own.
  file(WRITE ${OUTPUT}/wrappers/tqv-${name} "#!/bin/sh\nexec '${TQV}' ${name} \"$@\"\n")
  file(CHMOD ${OUTPUT}/wrappers/tqv-${name} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  list(APPEND pages tqv-${name})
endforeach()

foreach(page IN LISTS pages)
  if(page STREQUAL "tqv")
    set(program ${TQV})
  else()
    set(program ${OUTPUT}/wrappers/${page})
  endif()
  execute_process(COMMAND ${HELP2MAN} --no-info --section=1 --version-string=${VERSION}
                          --source=tqvspool --output=${OUTPUT}/${page}.1 ${program}
                  RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "help2man failed for ${page}")
  endif()
endforeach()
file(REMOVE_RECURSE ${OUTPUT}/wrappers)
