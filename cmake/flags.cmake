# Compiler settings shared by every target of the project.
add_library(vireo_flags INTERFACE)
target_compile_options(vireo_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2
    $<$<CXX_COMPILER_ID:GNU>:-Wcast-align=strict>
    $<$<BOOL:${VIREO_WERROR}>:-Werror>)
target_compile_definitions(vireo_flags INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
# A literal in a test is a literal; the product says of each whether it is UTF-16 already or made so at run time.
target_compile_definitions(vireo_flags INTERFACE
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:VIREO_PLAIN_LITERALS>>>:QT_NO_CAST_FROM_ASCII>)
if(VIREO_SANITIZE)
    target_compile_options(vireo_flags INTERFACE
        -fsanitize=${VIREO_SANITIZE} -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(vireo_flags INTERFACE -fsanitize=${VIREO_SANITIZE})
endif()
if(VIREO_FUZZ) # the fuzzer follows the program by what this puts into its branches
    target_compile_options(vireo_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
