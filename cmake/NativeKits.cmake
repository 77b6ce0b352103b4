# The kits of the system itself, under the names that the add-on's folders link with.
add_library(platform_core INTERFACE)
target_link_libraries(platform_core INTERFACE be textencoding)
add_library(platform_interface INTERFACE)
target_link_libraries(platform_interface INTERFACE platform_core tracker translation)
