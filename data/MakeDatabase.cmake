# Runs SCRIPT into a new database. The file takes its name only when it is whole, so that a script with a
# mistake leaves the database of the last good one in place and the build fails.

set(unfinished ${DATABASE}.unfinished)
file(REMOVE ${unfinished})
execute_process(COMMAND ${SQLITE3} -batch -bail -init /dev/null ${unfinished}
  INPUT_FILE ${SCRIPT}
  RESULT_VARIABLE failed)
if(failed)
  file(REMOVE ${unfinished})
  message(FATAL_ERROR "${SCRIPT} can't be made into a database")
endif()
file(RENAME ${unfinished} ${DATABASE})
