# Fills the templates with the absolute path of the prefix and installs them, DESTDIR respected.

cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX NORMALIZE OUTPUT_VARIABLE prefix)
string(REGEX REPLACE "(.)/+$" "\\1" prefix "${prefix}")
if(prefix MATCHES "[\r\n]")
  message(FATAL_ERROR "The prefix has a line break, which no service file can carry: ${prefix}")
endif()

# As an argument between double quotes, which each kind of file understands its own way. Bus and
# desktop files unescape a value before they look at its quotes.
string(REGEX REPLACE "([\"\\$`])" "\\\\\\\\\\1" PREFIX_FOR_BUS "${prefix}")
string(REPLACE "%" "%%" PREFIX_FOR_DESKTOP "${PREFIX_FOR_BUS}")
string(REGEX REPLACE "([\"\\\\])" "\\\\\\1" PREFIX_FOR_SYSTEMD "${prefix}")
string(REPLACE "%" "%%" PREFIX_FOR_SYSTEMD "${PREFIX_FOR_SYSTEMD}")

function(install_template name folder)
  configure_file("${VORNIX_TEMPLATES}/${name}.in" "${VORNIX_FILLED}/${name}" @ONLY)
  file(INSTALL DESTINATION "${prefix}/${folder}" TYPE FILE FILES "${VORNIX_FILLED}/${name}")
endfunction()

install_template(com.orvane.Vornix3.Scheduler.service share/dbus-1/services)
install_template(com.orvane.Vornix3.NotificationCenter.service share/dbus-1/services)
install_template(com.orvane.Vornix3.Scheduler.desktop share/applications)
install_template(vornix-scheduler.service lib/systemd/user)
install_template(vornix-scheduler.timer lib/systemd/user)
