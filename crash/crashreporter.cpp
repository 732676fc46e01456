#include "crashreporter.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <memory>
#include <pthread.h>
#include <spawn.h>
#include <sys/stat.h>
#include <unistd.h>

#include "client/linux/handler/exception_handler.h"
#include "client/linux/handler/minidump_descriptor.h"
#include "crashdatadirectory.h"

extern char** environ;

namespace {

constexpr std::size_t LogCapacity = 16384;
constexpr std::size_t AnnotationLimit = 9999;
// The signals the exception handler takes over.
constexpr int CrashSignals[] = {SIGSEGV, SIGABRT, SIGFPE, SIGILL, SIGBUS, SIGTRAP};

namespace state {

std::unique_ptr<google_breakpad::ExceptionHandler> handler;
pthread_mutex_t logMutex;
char vendor[1024];
char productName[1024];
char version[1024];
char serverUrl[1000];
char applicationDirectory[4096];
char annotationText[10000];
char logRing[LogCapacity];
std::uint64_t logWritePos;
std::uint64_t logSize;
char reporterPath[4096];
posix_spawnattr_t spawnAttributes;
CrashReporter::MemorySizeFunction memorySizeFunction;

} // namespace state

void copyText(char* buffer, std::size_t capacity, const char* text)
{
    std::snprintf(buffer, capacity, "%s", text ? text : "");
}

// Appends as much of text as fits; the result stays NUL-terminated.
void appendBounded(char* buffer, std::size_t capacity, const char* text)
{
    std::size_t length = std::strlen(buffer);
    while (*text && length + 1 < capacity)
        buffer[length++] = *text++;
    buffer[length] = '\0';
}

void writeAll(int fd, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n <= 0)
            return;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
}

std::uint64_t sysconfMemorySize()
{
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0)
        return 0;
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
}

// Breakpad on Linux describes the dump it wrote as <directory>/<id>.dmp;
// hand the directory and the id on. Runs in the crashed process: fixed
// buffers only.
bool minidumpWritten(const google_breakpad::MinidumpDescriptor& descriptor, void* context, bool succeeded)
{
    const char* path = descriptor.path();
    const char* name = std::strrchr(path, '/');
    name = name ? name + 1 : path;
    std::size_t length = std::strlen(name);
    if (length >= 4 && std::strcmp(name + length - 4, ".dmp") == 0)
        length -= 4;
    char minidumpId[256] = {};
    std::memcpy(minidumpId, name, std::min(length, sizeof minidumpId - 1));
    return CrashReporter::onMinidumpWritten(descriptor.directory().c_str(), minidumpId, context, succeeded);
}

} // namespace

CrashReporter::CrashReporter()
{
    state::handler.reset();
    pthread_mutex_init(&state::logMutex, nullptr);
}

CrashReporter::~CrashReporter()
{
    state::handler.reset();
    pthread_mutex_destroy(&state::logMutex);
}

void CrashReporter::setVendor(const char* text)
{
    copyText(state::vendor, sizeof state::vendor, text);
}

void CrashReporter::setProductName(const char* text)
{
    copyText(state::productName, sizeof state::productName, text);
}

void CrashReporter::setVersion(int major, int minor, int release, int build)
{
    std::snprintf(state::version, sizeof state::version, "%d.%d.%d.%d", major, minor, release, build);
}

void CrashReporter::setServerUrl(const char* text)
{
    copyText(state::serverUrl, sizeof state::serverUrl, text);
}

void CrashReporter::setApplicationPath(const char* path)
{
    copyText(state::applicationDirectory, sizeof state::applicationDirectory, path);
    if (char* slash = std::strrchr(state::applicationDirectory, '/'))
        *slash = '\0';
}

bool CrashReporter::install()
{
    if (state::handler)
        return true;

    const char* home = std::getenv("HOME");
    const std::string dataDirectory
        = crashDataDirectory(home ? home : "~", state::vendor, state::productName);
    makeDirectories(dataDirectory.c_str());
    // NOLINTNEXTLINE(concurrency-mt-unsafe): installed before any thread
    setenv(CrashDataDirectoryVariable, dataDirectory.c_str(), 1);

    state::reporterPath[0] = '\0';
    if (state::applicationDirectory[0]) {
        appendBounded(state::reporterPath, sizeof state::reporterPath, state::applicationDirectory);
    } else {
        char workingDirectory[4096];
        if (getcwd(workingDirectory, sizeof workingDirectory))
            appendBounded(state::reporterPath, sizeof state::reporterPath, workingDirectory);
    }
    appendBounded(state::reporterPath, sizeof state::reporterPath, "/");
    appendBounded(state::reporterPath, sizeof state::reporterPath, "crashreporter");

    if (posix_spawnattr_init(&state::spawnAttributes) != 0)
        return false;
    // The reporter starts from inside a signal handler, where the crash
    // signals are blocked; give it a clean mask and default actions.
    sigset_t emptyMask;
    sigset_t crashSignals;
    sigemptyset(&emptyMask);
    sigemptyset(&crashSignals);
    for (int signalNumber : CrashSignals)
        sigaddset(&crashSignals, signalNumber);
    if (posix_spawnattr_setsigmask(&state::spawnAttributes, &emptyMask) != 0
        || posix_spawnattr_setsigdefault(&state::spawnAttributes, &crashSignals) != 0
        || posix_spawnattr_setflags(&state::spawnAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF)
            != 0) {
        posix_spawnattr_destroy(&state::spawnAttributes);
        return false;
    }

    // -1: the dump is written in-process, with no crash server.
    state::handler = std::make_unique<google_breakpad::ExceptionHandler>(
        google_breakpad::MinidumpDescriptor("/tmp/"), nullptr, &minidumpWritten, nullptr, true, -1);
    writeStaticAnnotations();
    return true;
}

bool CrashReporter::makeDirectories(const char* path)
{
    std::string copy(path);
    if (mkdir(copy.c_str(), 0700) == 0 || errno != ENOENT)
        return true;

    std::size_t at = 1;
    while ((at = copy.find('/', at)) != std::string::npos) {
        if (at + 1 < copy.size() && copy[at + 1] == '/') {
            ++at;
            continue;
        }
        if (at + 1 >= copy.size())
            break;
        copy[at] = '\0';
        if (mkdir(copy.c_str(), 0700) != 0) {
            const int error = errno;
            if (access(copy.c_str(), F_OK) != 0 && error != EEXIST) {
                copy[at] = '/';
                return false;
            }
        }
        copy[at] = '/';
        ++at;
    }
    mkdir(copy.c_str(), 0700);
    return true;
}

void CrashReporter::writeStaticAnnotations()
{
    if (state::vendor[0])
        setAnnotation("Vendor", state::vendor);
    if (state::productName[0])
        setAnnotation("ProductName", state::productName);
    if (state::version[0])
        setAnnotation("Version", state::version);
    if (state::serverUrl[0])
        setAnnotation("ServerURL", state::serverUrl);

    char text[64];
    std::snprintf(text, sizeof text, "Linux %dbit", static_cast<int>(sizeof(void*) * 8));
    setAnnotation("System", text);

    const double memory = static_cast<double>(systemMemorySize());
    text[0] = '\0';
    if (memory > 10737418240.0)
        std::snprintf(text, sizeof text, "%.1lf GB", memory / 1073741824.0);
    else if (memory > 1073741824.0)
        std::snprintf(text, sizeof text, "%.2lf GB", memory / 1073741824.0);
    else if (memory > 1048576.0)
        std::snprintf(text, sizeof text, "%d MB", static_cast<int>(std::lround(memory / 1048576.0)));
    if (text[0])
        setAnnotation("SystemMemory", text);
}

void CrashReporter::setAnnotation(const std::string& key, const std::string& value)
{
    std::map<std::string, std::string> annotations;
    const std::string current(state::annotationText);
    std::size_t start = 0;
    while (start < current.size()) {
        std::size_t end = current.find('\n', start);
        if (end == std::string::npos)
            end = current.size();
        const std::string line = current.substr(start, end - start);
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos)
            annotations[line] = std::string();
        else
            annotations[line.substr(0, equals)] = line.substr(equals + 1);
        start = end + 1;
    }
    annotations[key] = value;

    std::string rebuilt;
    for (const auto& [name, text] : annotations)
        rebuilt.append(name).append("=").append(text).append("\n");
    if (rebuilt.size() <= AnnotationLimit)
        std::memcpy(state::annotationText, rebuilt.c_str(), rebuilt.size() + 1);
}

void CrashReporter::appendLog(const std::string& text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (char c : text) {
        if (c == '\\')
            escaped += "\\\\";
        else if (c == '\n')
            escaped += "\\n";
        else if (c == '\t')
            escaped += "\\t";
        else
            escaped += c;
    }

    pthread_mutex_lock(&state::logMutex);
    std::size_t copied = 0;
    while (copied < escaped.size()) {
        if (state::logWritePos > LogCapacity - 1)
            state::logWritePos = 0;
        std::size_t chunk = LogCapacity - state::logWritePos;
        if (chunk > escaped.size() - copied)
            chunk = escaped.size() - copied;
        std::memcpy(state::logRing + state::logWritePos, escaped.data() + copied, chunk);
        state::logWritePos += chunk;
        state::logSize += chunk;
        copied += chunk;
    }
    if (state::logSize > LogCapacity)
        state::logSize = LogCapacity;
    pthread_mutex_unlock(&state::logMutex);
}

std::string CrashReporter::unescapeLogText(const std::string& text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        if (i + 1 >= text.size())
            break;
        const char next = text[++i];
        if (next == '\\')
            result += '\\';
        else if (next == 'n')
            result += '\n';
        else if (next == 't')
            result += '\t';
    }
    return result;
}

bool CrashReporter::onMinidumpWritten(
    const char* dumpDirectory, const char* minidumpId, void*, bool succeeded)
{
    char dumpPath[4096] = {};
    char extraPath[4096] = {};
    appendBounded(dumpPath, sizeof dumpPath, dumpDirectory);
    appendBounded(dumpPath, sizeof dumpPath, "/");
    appendBounded(dumpPath, sizeof dumpPath, minidumpId);
    appendBounded(dumpPath, sizeof dumpPath, ".dmp");
    appendBounded(extraPath, sizeof extraPath, dumpDirectory);
    appendBounded(extraPath, sizeof extraPath, "/");
    appendBounded(extraPath, sizeof extraPath, minidumpId);
    appendBounded(extraPath, sizeof extraPath, ".extra");

    // No lock here: the crashed thread may hold it. Repair the indexes instead.
    if (state::logSize > LogCapacity)
        state::logSize = LogCapacity;
    if (state::logWritePos > LogCapacity - 1)
        state::logWritePos = 0;

    if (state::annotationText[0]) {
        // Private like the directory it is in: it holds the environment.
        const int fd = open(extraPath, O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (fd >= 0) {
            writeAll(fd, state::annotationText, std::strlen(state::annotationText));
            if (state::logSize) {
                writeAll(fd, "XLog=", 5);
                if (state::logSize > state::logWritePos)
                    writeAll(fd, state::logRing + state::logWritePos, state::logSize - state::logWritePos);
                if (state::logWritePos)
                    writeAll(fd, state::logRing, state::logWritePos);
                writeAll(fd, "\n", 1);
            }
            close(fd);
        }
    }

    char* const arguments[] = {state::reporterPath, dumpPath, nullptr};
    pid_t child = 0;
    if (posix_spawnp(&child, state::reporterPath, nullptr, &state::spawnAttributes, arguments, environ) != 0)
        return false;
    return succeeded;
}

void CrashReporter::setMemorySizeFunction(MemorySizeFunction function)
{
    state::memorySizeFunction = function;
}

std::uint64_t CrashReporter::systemMemorySize()
{
    return state::memorySizeFunction ? state::memorySizeFunction() : sysconfMemorySize();
}

std::string CrashReporter::annotationText()
{
    return state::annotationText;
}

void CrashReporter::clearAnnotations()
{
    state::annotationText[0] = '\0';
}

const char* CrashReporter::applicationDirectory()
{
    return state::applicationDirectory;
}

const char* CrashReporter::reporterPath()
{
    return state::reporterPath;
}

bool CrashReporter::isInstalled()
{
    return state::handler != nullptr;
}
