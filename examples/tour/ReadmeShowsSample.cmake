# Fails unless README holds what stands in SAMPLE between the lines "README: begin" and "README: end".
file(READ "${README}" readme)
file(READ "${SAMPLE}" sample)
string(REGEX REPLACE ".*// README: begin\n" "" sample "${sample}")
string(REGEX REPLACE "// README: end.*" "" sample "${sample}")
string(FIND "${readme}" "${sample}" position)
if(sample STREQUAL "" OR position EQUAL -1)
  message(FATAL_ERROR "${README} does not show ${SAMPLE} as it stands.")
endif()
