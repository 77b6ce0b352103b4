# tavora_add_resources(TARGET TYPE ID NAME FILE [TYPE ID NAME FILE ...])
# Puts files into a program or library as resources, after it is linked. NAME must not be empty. Where objcopy is at
# hand they go into the section .beresources, which survives a strip later on; else they are appended, and a strip
# removes them.
function(tavora_add_resources target)
	list(LENGTH ARGN count)
	math(EXPR rest "${count} % 4")
	if(count EQUAL 0 OR NOT rest EQUAL 0)
		message(FATAL_ERROR "tavora_add_resources(${target}): TYPE ID NAME FILE, each once or more")
	endif()
	set(arguments)
	set(files)
	math(EXPR last "${count} - 1")
	foreach(i RANGE 0 ${last} 4)
		list(SUBLIST ARGN ${i} 4 each)
		list(POP_BACK each file)
		get_filename_component(file ${file} ABSOLUTE)
		if(TAVORA_NATIVE)
			list(JOIN each ":" each)
			list(APPEND arguments -a ${each} ${file})
		else()
			list(APPEND arguments ${each} ${file})
		endif()
		list(APPEND files ${file})
	endforeach()
	set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${files})

	if(TAVORA_NATIVE)
		add_custom_command(TARGET ${target} POST_BUILD
			COMMAND xres -o $<TARGET_FILE:${target}> ${arguments} VERBATIM)
		return()
	endif()
	add_dependencies(${target} tavora-rsrc)
	if(NOT CMAKE_OBJCOPY)
		add_custom_command(TARGET ${target} POST_BUILD
			COMMAND tavora-rsrc $<TARGET_FILE:${target}> ${arguments} VERBATIM)
		return()
	endif()
	set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}.rsrc)
	add_custom_command(TARGET ${target} POST_BUILD
		COMMAND ${CMAKE_COMMAND} -E rm -f ${resources}
		COMMAND tavora-rsrc ${resources} ${arguments}
		COMMAND ${CMAKE_OBJCOPY} --add-section .beresources=${resources}
			--set-section-flags .beresources=noload,readonly $<TARGET_FILE:${target}>
		VERBATIM)
endfunction()

# tavora_make_layout(NAME LAYOUT ARCHIVE)
# Makes ARCHIVE, a flattened archived view, of its description LAYOUT whenever that changes, as target NAME. Needs no screen.
function(tavora_make_layout name layout archive)
	get_filename_component(layout ${layout} ABSOLUTE)
	# what it has to say it says itself
	set(environment QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES=default.warning=false)
	if(TAVORA_SANITIZE)
		list(APPEND environment LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0)
	endif()
	add_custom_command(OUTPUT ${archive}
		COMMAND ${CMAKE_COMMAND} -E env ${environment} $<TARGET_FILE:tavora-layout> ${layout} ${archive}
		DEPENDS tavora-layout ${layout} VERBATIM)
	add_custom_target(${name} DEPENDS ${archive})
endfunction()
