# Where things are installed, below the prefix unless the system wants them elsewhere.
include(GNUInstallDirs)

# Programs, bundle and libraries find each other by their place in this folder, so it is installed and moved as a whole.
set(DIRECTFAX_HOME ${CMAKE_INSTALL_LIBDIR}/directfax)

# CUPS runs filters out of this one folder only, whatever the prefix.
find_program(CUPS_CONFIG cups-config REQUIRED)
execute_process(COMMAND ${CUPS_CONFIG} --serverbin OUTPUT_VARIABLE cups_programs
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(DIRECTFAX_CUPS_FILTERS ${cups_programs}/filter)

# It looks for PPD files in /usr/share/ppd and in /usr/local/share/ppd, the folders below them included.
set(DIRECTFAX_PPD_FOLDER ${CMAKE_INSTALL_DATADIR}/ppd/directfax)

# A program in a wrapper of that name is started through a link among the commands.
function(directfax_command name)
  install(CODE "
    file(MAKE_DIRECTORY \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR})
    file(RELATIVE_PATH program \${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}
         \${CMAKE_INSTALL_PREFIX}/${DIRECTFAX_HOME}/${name}.app/${name})
    file(CREATE_LINK \${program} \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${name} SYMBOLIC)")
endfunction()
