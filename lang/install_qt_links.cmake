# Run by cmake --install: links lang/qt_<code>.qm and the module catalogues it
# names to Qt's own, relative to where the program is installed.
set(lang_dir ${CMAKE_INSTALL_PREFIX}/${KORVANE_LANG_DIR})
file(MAKE_DIRECTORY $ENV{DESTDIR}${lang_dir})
foreach(name IN LISTS KORVANE_QT_CATALOGUES)
    file(RELATIVE_PATH target ${lang_dir} ${KORVANE_QT_TRANSLATION_DIR}/${name})
    message(STATUS "Installing: $ENV{DESTDIR}${lang_dir}/${name} -> ${target}")
    file(CREATE_LINK ${target} $ENV{DESTDIR}${lang_dir}/${name} SYMBOLIC)
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES $ENV{DESTDIR}${lang_dir}/${name})
endforeach()
