# Turns files into a C++ source that defines one std::string_view a file:
#     cmake -P EmbedFiles.cmake OUTPUT HEADER NAMESPACE NAME=FILE...
# HEADER declares the names in NAMESPACE. A file of no bytes is an error.
set(arguments "")
set(script_seen FALSE)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE ${last})
    if(script_seen)
        list(APPEND arguments "${CMAKE_ARGV${i}}")
    elseif(CMAKE_ARGV${i} STREQUAL CMAKE_SCRIPT_MODE_FILE)
        set(script_seen TRUE)
    endif()
endforeach()
list(POP_FRONT arguments output header namespace)

set(bytes "")
set(views "")
foreach(argument IN LISTS arguments)
    string(REGEX MATCH "^([A-Za-z0-9_]+)=(.+)$" matched "${argument}")
    set(name ${CMAKE_MATCH_1})
    file(READ "${CMAKE_MATCH_2}" hex HEX)
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," literals "${hex}")
    string(APPEND bytes "constexpr char ${name}Bytes[] = {${literals}};\n")
    string(APPEND views "const std::string_view ${name}(${name}Bytes, sizeof ${name}Bytes);\n")
endforeach()

file(WRITE "${output}" "#include \"${header}\"\n\nnamespace ${namespace} {\n\nnamespace {\n\n${bytes}\n}  // namespace\n\n${views}\n}  // namespace ${namespace}\n")
