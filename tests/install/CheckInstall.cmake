# Installs the build BUILD_DIR into PREFIX (emptied first) and checks the result; see
# CMakeLists.txt beside this file. Every fault found is reported before the check fails.
cmake_minimum_required(VERSION 3.25)

set(faults "")
macro(fault text)
  string(APPEND faults "\n  ${text}")
endmacro()

# The validators come with scripts/install-deps.sh; a missing one fails rather than skips, since
# a check that silently does not run would let a broken install through CI.
function(require_tool variable name)
  find_program(${variable} ${name})
  if(NOT ${variable})
    message(FATAL_ERROR "${name} is not installed (scripts/install-deps.sh installs it)")
  endif()
endfunction()
require_tool(DESKTOP_FILE_VALIDATE desktop-file-validate)
require_tool(APPSTREAMCLI appstreamcli)
require_tool(XMLLINT xmllint)
require_tool(UPDATE_MIME_DATABASE update-mime-database)
require_tool(UPDATE_DESKTOP_DATABASE update-desktop-database)

file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "cmake --install failed:\n${output}")
endif()

# Every file in its place.
set(expected
  bin/tarve-cli
  bin/tarve-compile
  lib/tarve/tarve-sound.so
  share/tarve/tarve.dat
  share/applications/tarve.desktop
  share/mime/packages/tarve.xml
  share/icons/hicolor/scalable/apps/${APP_ID}.svg
  share/metainfo/${APP_ID}.metainfo.xml)
if(WITH_DESKTOP_PROGRAM)
  list(APPEND expected bin/tarve)
endif()
file(GLOB_RECURSE examples RELATIVE ${SOURCE_DIR}/examples ${SOURCE_DIR}/examples/*)
foreach(example IN LISTS examples)
  list(APPEND expected share/tarve/${example})
endforeach()
foreach(file IN LISTS expected)
  if(NOT EXISTS ${PREFIX}/${file})
    fault("${file} is not installed")
  endif()
endforeach()
if(NOT faults STREQUAL "")
  message(FATAL_ERROR "The install into ${PREFIX} is incomplete:${faults}")
endif()

# Runs a validator on an installed file; any error or warning it reports is a fault.
function(validate file)
  execute_process(COMMAND ${ARGN} ${PREFIX}/${file}
                  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0 OR output MATCHES "(error|warning):")
    fault("${file} does not validate (${ARGV1}):\n${output}")
  endif()
  set(faults "${faults}" PARENT_SCOPE)
endfunction()
validate(share/applications/tarve.desktop ${DESKTOP_FILE_VALIDATE})
# --strict fails on anything above pedantic hints; --no-net keeps CI off the network.
validate(share/metainfo/${APP_ID}.metainfo.xml ${APPSTREAMCLI} validate --no-net --strict)
validate(share/mime/packages/tarve.xml ${XMLLINT} --noout)
validate(share/icons/hicolor/scalable/apps/${APP_ID}.svg ${XMLLINT} --noout)

# Software centres show the newest release first: it must be this version.
file(READ ${PREFIX}/share/metainfo/${APP_ID}.metainfo.xml metainfo)
string(REGEX MATCH "<release version=\"([^\"]*)\"" release "${metainfo}")
if(NOT CMAKE_MATCH_1 STREQUAL VERSION)
  fault("the metainfo's newest release is '${CMAKE_MATCH_1}', not this version ${VERSION}")
endif()

# The install refreshed the prefix's MIME and application caches: the three extensions have
# their types, and the types open with Tarve.
file(READ ${PREFIX}/share/mime/globs2 globs)
file(READ ${PREFIX}/share/applications/mimeinfo.cache associations)
foreach(pair "gwl=application/x-tarve-game" "cgw=application/x-tarve-compiled-game"
             "tsg=application/x-tarve-saved-game")
  string(REPLACE "=" ";" pair "${pair}")
  list(GET pair 0 extension)
  list(GET pair 1 type)
  if(NOT globs MATCHES "\n[0-9]+:${type}:\\*\\.${extension}\n")
    fault("*.${extension} is not ${type} in the installed MIME database:\n${globs}")
  endif()
  if(NOT associations MATCHES "\n${type}=tarve\\.desktop;")
    fault("${type} does not open with tarve.desktop:\n${associations}")
  endif()
endforeach()

# The installed programs find their data in the prefix they were installed into: the compiler
# needs the installed keyword table, and the terminal player plays the installed demo game and
# its compiled form. HOME points into the prefix so that nothing is written to the user's own.
set(run ${CMAKE_COMMAND} -E env HOME=${PREFIX}/home XDG_CONFIG_HOME=${PREFIX}/home/.config
    XDG_DATA_HOME=${PREFIX}/home/.local/share)
execute_process(
  COMMAND ${run} ${PREFIX}/bin/tarve-compile ${PREFIX}/share/tarve/demo.gwl ${PREFIX}/demo.cgw
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
  fault("the installed tarve-compile cannot compile the installed demo game:\n${output}")
endif()
file(WRITE ${PREFIX}/commands.txt "look\n")
foreach(game ${PREFIX}/share/tarve/demo.gwl ${PREFIX}/demo.cgw)
  execute_process(
    COMMAND ${run} ${PREFIX}/bin/tarve-cli --plain ${game}
    INPUT_FILE ${PREFIX}/commands.txt
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0 OR NOT output MATCHES "The Lighthouse")
    fault("the installed tarve-cli does not play ${game} (status ${result}):\n${output}")
  endif()
endforeach()

# The installed player loads its sound module from the prefix: the module, not the fallback
# warning, reports a missing sound.
file(WRITE ${PREFIX}/sound.gwl
  "define game <Sound>\n start <Hall>\n startscript playwav <none.wav>\nend define\n"
  "define room <Hall>\nend define\n")
execute_process(
  COMMAND ${run} ${PREFIX}/bin/tarve-cli --plain --log ${PREFIX}/sound.log ${PREFIX}/sound.gwl
  INPUT_FILE ${PREFIX}/commands.txt OUTPUT_QUIET ERROR_QUIET)
file(READ ${PREFIX}/sound.log log)
if(NOT log MATCHES "none.wav: the file does not exist")
  fault("the installed tarve-cli does not load its sound module:\n${log}")
endif()

if(NOT faults STREQUAL "")
  message(FATAL_ERROR "The install into ${PREFIX} has faults:${faults}")
endif()
message(STATUS "The install into ${PREFIX} is complete and valid")
