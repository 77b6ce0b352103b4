# Where things are installed, below the prefix; the program finds them from its own folder. The target "uninstall".

# not in lib/qubo itself, which CPack takes for a folder that every program looks into
set(TAVORA_LIBRARY_FOLDER lib/qubo/kits)

# When this version came out, in the forms that are asked for.
set(ENV{SOURCE_DATE_EPOCH} ${TAVORA_RELEASED})
string(TIMESTAMP TAVORA_RELEASE_DAY "%Y-%m-%d" UTC)
string(TIMESTAMP TAVORA_RELEASE_MAN_DAY "%B %d, %Y" UTC)
string(TIMESTAMP TAVORA_RELEASE_MAIL_DAY "%a, %d %b %Y %H:%M:%S +0000" UTC)
unset(ENV{SOURCE_DATE_EPOCH})

# tavora_find_libraries(TARGET FOLDER): TARGET, installed in FOLDER, finds our own two libraries wherever the prefix is.
function(tavora_find_libraries target folder)
	if(TAVORA_NATIVE)
		return()
	endif()
	file(RELATIVE_PATH way /${folder} /${TAVORA_LIBRARY_FOLDER})
	string(REGEX REPLACE "/$" "" way "$ORIGIN/${way}")
	set_target_properties(${target} PROPERTIES INSTALL_RPATH "${way}")
endfunction()

add_custom_target(uninstall
	COMMAND ${CMAKE_COMMAND} -DMANIFEST=${CMAKE_BINARY_DIR}/install_manifest.txt
		-P ${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake
	VERBATIM)
