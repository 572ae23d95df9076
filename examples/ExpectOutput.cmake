# Runs PROGRAM with ARGUMENTS and fails unless it ends with RESULT (or 0) and writes what stands in the file EXPECTED.
if(NOT RESULT)
  set(RESULT 0)
endif()
execute_process(COMMAND "${PROGRAM}" ${ARGUMENTS} OUTPUT_VARIABLE output RESULT_VARIABLE result)
file(READ "${EXPECTED}" expected)
if(NOT result EQUAL RESULT OR NOT output STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} ${ARGUMENTS} ends with ${result} and does not write ${EXPECTED}, but:\n${output}")
endif()
