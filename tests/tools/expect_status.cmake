# Runs COMMAND (a ;-list) and checks its exit status against STATUS and its
# standard output against the regular expression OUTPUT.
execute_process(COMMAND ${COMMAND} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
if(NOT rc STREQUAL "${STATUS}")
  message(FATAL_ERROR "exit status ${rc}, expected ${STATUS}\n${out}\n${err}")
endif()
if(NOT out MATCHES "${OUTPUT}")
  message(FATAL_ERROR "output does not match '${OUTPUT}':\n${out}")
endif()
