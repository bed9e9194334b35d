# Runs before a package is created: sets the time of every file and directory in it to
# SOURCE_DATE_EPOCH, so packages of the same commit are the same, whenever they are built.

if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  message(FATAL_ERROR "SOURCE_DATE_EPOCH is not set; \"./dev package\" sets it")
endif()
execute_process(
  COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference
          --date=@$ENV{SOURCE_DATE_EPOCH} {} +
  COMMAND_ERROR_IS_FATAL ANY)
