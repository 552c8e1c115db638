# The programs, for both projects that build them.
add_executable(fuzz-declarations ${CMAKE_CURRENT_LIST_DIR}/DeclarationsFuzz.cpp)
add_executable(fuzz-basic ${CMAKE_CURRENT_LIST_DIR}/BasicFuzz.cpp)
add_executable(fuzz-strings ${CMAKE_CURRENT_LIST_DIR}/StringsFuzz.cpp)
add_executable(fuzz-cdtext ${CMAKE_CURRENT_LIST_DIR}/CDTextFuzz.cpp)
