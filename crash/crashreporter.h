#pragma once

#include <cstdint>
#include <string>

// Crash reporting glue. All state is process-wide and static: the product
// identity given by main(), the annotations that go into the ".extra" file
// beside a dump, a rolling log, and the reporter launch prepared in
// advance. install() computes the data directory
// (~/.<vendor>/<product>/Crash Reports, exported as
// MOZ_CRASHREPORTER_DATA_DIRECTORY), prepares the spawn of
// <application directory>/crashreporter and installs Breakpad's exception
// handler, which writes dumps of every thread to /tmp/. At a crash
// onMinidumpWritten() writes /tmp/<id>.extra and starts the reporter with
// the dump's path; it uses only fixed buffers and system calls, no
// allocation and no locks.
//
// A CrashReporter object is the guard: it lives for the whole of main() and
// uninstalls the handler when it goes.
class CrashReporter final
{
public:
    CrashReporter();
    ~CrashReporter();

    static void setVendor(const char* vendor);
    static void setProductName(const char* productName);
    static void setVersion(int major, int minor, int release, int build);
    static void setServerUrl(const char* serverUrl);
    // The directory is the path up to its last "/"; a path without one is
    // kept whole.
    static void setApplicationPath(const char* path);

    // True when the handler is installed (or already was).
    static bool install();

    static void setAnnotation(const std::string& key, const std::string& value);
    static void appendLog(const std::string& text);
    static std::string unescapeLogText(const std::string& text);

    // Called after Breakpad has written <dumpDirectory>/<minidumpId>.dmp.
    static bool onMinidumpWritten(
        const char* dumpDirectory, const char* minidumpId, void* context, bool succeeded);

    // mkdir -p with mode 0700; false only when a parent cannot be made.
    static bool makeDirectories(const char* path);

    static void writeStaticAnnotations();

    // Physical memory in bytes; replaceable so that the "SystemMemory"
    // thresholds can be checked. Null restores the system's own value.
    using MemorySizeFunction = std::uint64_t (*)();
    static void setMemorySizeFunction(MemorySizeFunction function);
    static std::uint64_t systemMemorySize();

    static std::string annotationText();
    static void clearAnnotations();
    static const char* applicationDirectory();
    static const char* reporterPath();
    static bool isInstalled();

private:
    CrashReporter(const CrashReporter&) = delete;
    CrashReporter& operator=(const CrashReporter&) = delete;
};
