# A terminal's SDK as -DPARKOMAT_PLATFORM=package looks for it: the five target names, here over the libraries of an
# earlier build in PLATFORM_LIBRARIES and the headers in PLATFORM_HEADERS, both from the environment.
add_library(Platform::PluginInterface INTERFACE IMPORTED)
set_target_properties(Platform::PluginInterface PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "$ENV{PLATFORM_HEADERS}")
foreach(name IN ITEMS Extension Bus Core GuiClient)
  string(TOLOWER "${name}" lower)
  add_library(Platform::${name} SHARED IMPORTED)
  set_target_properties(Platform::${name} PROPERTIES
    IMPORTED_LOCATION "$ENV{PLATFORM_LIBRARIES}/libplatform_${lower}.so"
    INTERFACE_INCLUDE_DIRECTORIES "$ENV{PLATFORM_HEADERS}")
endforeach()
set(TerminalPlatform_FOUND TRUE)
