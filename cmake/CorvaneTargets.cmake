# Warnings and Qt strictness for the project's own targets only.
option(CORVANE_CLANG_TIDY "Run clang-tidy with the checks of .clang-tidy on the project's own sources while building" OFF)
if(CORVANE_CLANG_TIDY)
    find_program(CORVANE_CLANG_TIDY_EXE NAMES clang-tidy clang-tidy-14 REQUIRED)
endif()

function(corvane_strict target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Werror
        -Wshadow -Wold-style-cast -Woverloaded-virtual -Wnon-virtual-dtor -Wcast-align -Wundef
        -Wformat=2)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_TO_ASCII
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_NO_KEYWORDS)
    if(CORVANE_CLANG_TIDY)
        set_target_properties(${target} PROPERTIES CXX_CLANG_TIDY "${CORVANE_CLANG_TIDY_EXE}")
    endif()
endfunction()
