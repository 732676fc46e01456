// Stands in for the crash reporter: records its arguments and the data
// directory variable in the file named by KORVANE_TEST_REPORTER_RECORD
// (written beside it first, then renamed, so a reader sees all or nothing).
#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
    const char* record = std::getenv("KORVANE_TEST_REPORTER_RECORD");
    if (!record)
        return 1;
    const std::string partial = std::string(record) + ".part";
    FILE* file = std::fopen(partial.c_str(), "w");
    if (!file)
        return 1;
    std::fprintf(file, "argc=%d\n", argc);
    for (int i = 0; i < argc; ++i)
        std::fprintf(file, "argv=%s\n", argv[i]);
    const char* data = std::getenv("MOZ_CRASHREPORTER_DATA_DIRECTORY");
    std::fprintf(file, "data=%s\n", data ? data : "(unset)");
    std::fclose(file);
    return std::rename(partial.c_str(), record) == 0 ? 0 : 1;
}
