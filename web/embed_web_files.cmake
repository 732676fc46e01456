# Writes a C++ source holding every file of a folder as bytes, with the
# table embeddedWebFiles() returns:
#   cmake -DSOURCE_DIR=<folder> -DOUTPUT=<file.cpp> -P embed_web_files.cmake
file(GLOB_RECURSE files RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/*)
list(SORT files)
set(arrays "")
set(table "")
set(index 0)
foreach(name IN LISTS files)
    file(READ ${SOURCE_DIR}/${name} bytes HEX)
    string(LENGTH "${bytes}" digits)
    math(EXPR size "${digits} / 2")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
    string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
    string(APPEND arrays "const unsigned char file${index}[] = {\n${bytes}0};\n")
    string(APPEND table "    {\"${name}\", file${index}, ${size}},\n")
    math(EXPR index "${index} + 1")
endforeach()
file(WRITE ${OUTPUT}.new "// Generated from the built browser application; do not edit.
#include \"webassets.h\"

namespace {
${arrays}
const WebAssets::EmbeddedFile files[] = {
${table}};
} // namespace

const WebAssets::EmbeddedFile* embeddedWebFiles(std::size_t& count)
{
    count = sizeof files / sizeof files[0];
    return files;
}
")
file(COPY_FILE ${OUTPUT}.new ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.new)
