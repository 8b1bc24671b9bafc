# The help pages are made from docs/help during the build, because they contain the explanations of
# the metrics from the program. The first page is index.html.
add_executable(zorvel_help_pages scripts/make_help_pages.cpp)
target_link_libraries(zorvel_help_pages PRIVATE zorvel_model zorvel_warnings)

set(help_source ${PROJECT_SOURCE_DIR}/docs/help)
set(ZORVEL_HELP_FOLDER ${PROJECT_BINARY_DIR}/help)
file(GLOB help_pages CONFIGURE_DEPENDS ${help_source}/*.html)
file(GLOB help_companions CONFIGURE_DEPENDS ${help_source}/*.css ${help_source}/pictures/*.png)

add_custom_command(
  OUTPUT ${ZORVEL_HELP_FOLDER}/made
  COMMAND zorvel_help_pages ${help_source} ${ZORVEL_HELP_FOLDER} ${PROJECT_VERSION}
  COMMAND ${CMAKE_COMMAND} -E copy ${help_source}/style.css ${ZORVEL_HELP_FOLDER}
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${help_source}/pictures ${ZORVEL_HELP_FOLDER}/pictures
  COMMAND ${CMAKE_COMMAND} -E touch ${ZORVEL_HELP_FOLDER}/made
  DEPENDS zorvel_help_pages ${help_pages} ${help_companions}
  COMMENT "Making the help pages"
  VERBATIM)
add_custom_target(zorvel_help ALL DEPENDS ${ZORVEL_HELP_FOLDER}/made)

install(
  DIRECTORY ${ZORVEL_HELP_FOLDER}/
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/help
  FILES_MATCHING
  PATTERN *.html
  PATTERN *.css
  PATTERN *.png)
