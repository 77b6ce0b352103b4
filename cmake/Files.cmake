# tavora_put_files(NAME FOLDER DESTINATION FILE...)
# Copies the files into FOLDER of the build whenever they change, as target NAME, and installs them in DESTINATION.
function(tavora_put_files name folder destination)
	set(copies)
	foreach(file ${ARGN})
		get_filename_component(file ${file} ABSOLUTE)
		get_filename_component(leaf ${file} NAME)
		add_custom_command(OUTPUT ${folder}/${leaf}
			COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
			COMMAND ${CMAKE_COMMAND} -E copy ${file} ${folder}/${leaf}
			DEPENDS ${file} VERBATIM)
		list(APPEND copies ${folder}/${leaf})
	endforeach()
	add_custom_target(${name} ALL DEPENDS ${copies})
	install(FILES ${ARGN} DESTINATION ${destination})
endfunction()
