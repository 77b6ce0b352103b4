# What every target of our own shares: warnings, sanitizers, output folders.

find_package(Threads REQUIRED)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
	set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

add_library(tavora_options INTERFACE)
# The platform's message codes are four-character constants.
target_compile_options(tavora_options INTERFACE -Wall -Wextra -Wnon-virtual-dtor -Wno-multichar -Werror)
# Without unique symbols an add-on can really be unloaded.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
	# With -O3 its warning of overlapping copies takes std::string's own for such.
	target_compile_options(tavora_options INTERFACE -fno-gnu-unique -Wno-restrict)
endif()
target_link_libraries(tavora_options INTERFACE Threads::Threads)

if(TAVORA_SANITIZE STREQUAL "address")
	# Locking a looper that is gone is documented to answer false; the vptr check would look into it first.
	add_compile_options(-fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=undefined
		-fno-omit-frame-pointer)
	add_link_options(-fsanitize=address,undefined)
elseif(TAVORA_SANITIZE STREQUAL "thread")
	add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
	add_link_options(-fsanitize=thread)
elseif(NOT TAVORA_SANITIZE STREQUAL "")
	message(FATAL_ERROR "TAVORA_SANITIZE is '${TAVORA_SANITIZE}', not empty, address or thread")
elseif(NOT TAVORA_FUZZ AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
	# Hardened as Debian wants its packages, so that what is tested is what is packed.
	add_compile_options(-fstack-protector-strong -Wformat -Werror=format-security)
	add_compile_definitions($<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
	add_link_options(LINKER:-z,relro,-z,now)
	# Our libraries call themselves directly: a tick of the lyrics runs through cold code, where each look into a table costs.
	add_compile_options(-fno-semantic-interposition)
	add_link_options(LINKER:-Bsymbolic-functions)
endif()
if(TAVORA_FUZZ)
	add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
	add_link_options(-fsanitize=address,undefined)
endif()
