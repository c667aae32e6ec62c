# Files that cmake --install puts under its prefix, which can be any folder and can be moved
# afterwards:
#   bin                              corvo and every companion that was built
#   lib/corvo                        the module that pipes load, found from bin
#   share/man/man1, share/doc/corvo  manual pages, documents, examples
#   share/bash-completion            one file for all programs, under the name of each

install(TARGETS corvo)
set(PAGES ${PROJECT_SOURCE_DIR}/docs/corvo.1) # one manual page per program
if(CORVO_COMPANIONS) # each installs itself
  file(GLOB PAGES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.1)
endif()
install(FILES ${PAGES} DESTINATION share/man/man1)

# bash searches for a completion under the name of the program.
set(COMPLETIONS ${PROJECT_BINARY_DIR}/completions)
file(MAKE_DIRECTORY ${COMPLETIONS})
install(FILES packaging/completion.bash RENAME corvo DESTINATION share/bash-completion/completions)
foreach(page ${PAGES})
  get_filename_component(command ${page} NAME_WE)
  if(NOT command STREQUAL "corvo")
    file(CREATE_LINK corvo ${COMPLETIONS}/${command} SYMBOLIC)
    install(FILES ${COMPLETIONS}/${command} DESTINATION share/bash-completion/completions)
  endif()
endforeach()

install(DIRECTORY examples DESTINATION share/doc/corvo)
install(FILES README.md CONTRIBUTING.md ROADMAP.md CHANGELOG.md DESTINATION share/doc/corvo)
install(DIRECTORY docs/ DESTINATION share/doc/corvo/docs FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
