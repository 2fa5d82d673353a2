# vornix_python_tests(LABEL label TIMEOUT seconds [PROPERTIES ...]): one ctest entry for each test
# method of the calling folder's test_*.py; a method under @smoke carries the label "smoke" too.
function(vornix_python_tests)
  cmake_parse_arguments(ARG "" "LABEL;TIMEOUT" "PROPERTIES;ENVIRONMENT" ${ARGN})
  file(GLOB modules CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/test_*.py")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${modules})
  foreach(path IN LISTS modules)
    get_filename_component(module "${path}" NAME_WE)
    set(smoke "")
    file(STRINGS "${path}" lines REGEX "^class |^    @smoke|^    def test_")
    foreach(line IN LISTS lines)
      if(line MATCHES "^class ([A-Za-z0-9]+)")
        set(class "${CMAKE_MATCH_1}")
      elseif(line MATCHES "^    @smoke")
        set(smoke ";smoke")
      elseif(line MATCHES "def (test_([A-Za-z0-9_]+))")
        set(name "${ARG_LABEL}.${class}.${CMAKE_MATCH_2}")
        add_test(NAME "${name}"
          COMMAND /usr/bin/python3 -B -m unittest "${module}.${class}.${CMAKE_MATCH_1}"
          WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
        set_tests_properties("${name}" PROPERTIES LABELS "${ARG_LABEL}${smoke}"
          TIMEOUT "${ARG_TIMEOUT}" ENVIRONMENT "${ARG_ENVIRONMENT}" ${ARG_PROPERTIES})
        set(smoke "")
      endif()
    endforeach()
  endforeach()
endfunction()
