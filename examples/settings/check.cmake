# Runs the example and compares what it says with what its README.md shows, but for blanks at line ends.
function(expect_output result expected)
  execute_process(COMMAND "${PROGRAM}" ${ARGN} OUTPUT_VARIABLE output RESULT_VARIABLE actual_result)
  string(REPLACE " \n" "\n" output "${output}")
  if(NOT actual_result EQUAL result OR NOT output STREQUAL expected)
    message(FATAL_ERROR "settings ${ARGN} gives ${actual_result} and says:\n${output}")
  endif()
endfunction()

file(REMOVE "${FILE}")
expect_output(0 "" write "${FILE}")
expect_output(0 [=[
version 2, window at -8,120
title Plan "A" [[1]], zoom 1.25, autosave, panels 5
]=] read "${FILE}")
expect_output(1 [=[
hand-edited.xml:2: Attribute: 'version' (missing or incorrect);
hand-edited.xml:8: Tag 'title'; More than one CData section in tag 'title'
hand-edited.xml:9: Tag 'zoom'; Too many data
hand-edited.xml:10: Tag 'autosave'; 'yes/true' or 'no/false' expected, 'maybe' found
]=] read hand-edited.xml)
