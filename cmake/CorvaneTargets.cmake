# Warnings and Qt strictness for the project's own targets only.
function(corvane_strict target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_TO_ASCII
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_NO_KEYWORDS)
endfunction()
