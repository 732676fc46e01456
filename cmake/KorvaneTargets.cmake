# How every target of the project is made. Each library and program is
# declared through korvane_add_library or korvane_add_executable, which link
# korvane_settings (warnings, sanitizers, fuzzing instrumentation) and turn on
# Qt's moc, uic and rcc only for the targets that say QT.

# KORVANE_SANITIZE: empty, "address,undefined" or "thread"
set(KORVANE_SANITIZE "" CACHE STRING "Sanitizers to build with")
# KORVANE_FUZZ: libFuzzer targets in fuzz/ (clang only, see scripts/fuzz.sh);
# every library is then built with the fuzzer's coverage instrumentation.
option(KORVANE_FUZZ "Build the fuzz targets with libFuzzer" OFF)

add_library(korvane_settings INTERFACE)
target_compile_options(korvane_settings INTERFACE -Wall -Wextra)
if(KORVANE_SANITIZE)
    target_compile_options(korvane_settings INTERFACE
        -fsanitize=${KORVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(korvane_settings INTERFACE -fsanitize=${KORVANE_SANITIZE})
    # Tests that time a crash or read a dump allow for the sanitizers' runtime.
    target_compile_definitions(korvane_settings INTERFACE KORVANE_SANITIZED)
endif()
if(KORVANE_FUZZ)
    target_compile_options(korvane_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Qt's code generators run only for the targets that have Q_OBJECT classes,
# forms or resources.
function(korvane_target_settings target use_qt)
    target_link_libraries(${target} PRIVATE korvane_settings)
    if(use_qt)
        set_target_properties(${target} PROPERTIES
            AUTOMOC ON AUTOUIC ON AUTORCC ON AUTOUIC_OPTIONS --connections=pmf)
    endif()
endfunction()

# korvane_add_library(NAME [STATIC|SHARED|MODULE] [QT] sources...)
function(korvane_add_library name)
    cmake_parse_arguments(K "STATIC;SHARED;MODULE;QT" "" "" ${ARGN})
    set(kind STATIC)
    if(K_SHARED)
        set(kind SHARED)
    elseif(K_MODULE)
        set(kind MODULE)
    endif()
    add_library(${name} ${kind} ${K_UNPARSED_ARGUMENTS})
    korvane_target_settings(${name} ${K_QT})
endfunction()

# korvane_add_executable(NAME [QT] sources...)
function(korvane_add_executable name)
    cmake_parse_arguments(K "QT" "" "" ${ARGN})
    add_executable(${name} ${K_UNPARSED_ARGUMENTS})
    korvane_target_settings(${name} ${K_QT})
endfunction()
