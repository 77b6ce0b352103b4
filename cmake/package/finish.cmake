# Run by CPack on what is about to be packed: texts are compressed as Debian has them, and its own list of changes is added.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
file(COPY_FILE ${CPACK_TAVORA_CHANGELOG} ${share}/doc/qubo/changelog.Debian)
file(GLOB texts ${share}/man/*/* ${share}/doc/qubo/changelog*)
foreach(text IN LISTS texts)
	execute_process(COMMAND gzip -9n ${text} COMMAND_ERROR_IS_FATAL ANY)
	file(CHMOD ${text}.gz PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
