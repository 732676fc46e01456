#pragma once

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sys/types.h>
#include <ucontext.h>

// Writes a minidump of the calling process from inside a signal handler.
// Every buffer is allocated by the constructor; write() allocates nothing,
// takes no locks and uses raw system calls only, so it is safe to call
// after a crash. The dump holds the system info, the exception, the
// crashing thread (registers and stack), the memory list with that stack,
// the modules mapped from files with their ELF build ids, and the raw
// /proc/self/maps and /proc/self/status.
class MinidumpWriter final
{
public:
    MinidumpWriter();
    ~MinidumpWriter();

    // Writes the dump for the signal to the file at path (created or
    // truncated, mode 0600). Returns false when the file could not be
    // written completely.
    bool write(const char* path, const siginfo_t* info, const ucontext_t* context);

    struct MapEntry
    {
        std::uint64_t start;
        std::uint64_t end;
        std::uint64_t offset;
        std::uint64_t inode;
        std::uint32_t pathOffset; // into the maps text, 0 when anonymous
        std::uint32_t pathLength;
        bool readable;
    };

    struct ModuleEntry
    {
        std::uint64_t base;
        std::uint64_t end;
        std::uint32_t pathOffset;
        std::uint32_t pathLength;
        std::uint8_t buildId[64];
        std::uint32_t buildIdLength;
    };

    static constexpr std::size_t MapsCapacity = std::size_t {1024} * 1024;
    static constexpr std::size_t StatusCapacity = std::size_t {16} * 1024;
    static constexpr std::size_t MaxMapEntries = 16384;
    static constexpr std::size_t MaxModules = 2048;
    static constexpr std::size_t MaxStackBytes = std::size_t {256} * 1024;
    static constexpr std::size_t RedZone = 128;

private:
    MinidumpWriter(const MinidumpWriter&) = delete;
    MinidumpWriter& operator=(const MinidumpWriter&) = delete;

    void readProcFiles();
    void parseMaps();
    void collectModules();
    bool isReadable(std::uint64_t address, std::uint64_t length) const;
    const MapEntry* findMapping(std::uint64_t address) const;
    bool readMemory(std::uint64_t address, void* buffer, std::size_t size) const;
    void readBuildId(ModuleEntry& module) const;

    std::unique_ptr<char[]> m_maps;
    std::size_t m_mapsLength = 0;
    std::unique_ptr<char[]> m_status;
    std::size_t m_statusLength = 0;
    std::unique_ptr<MapEntry[]> m_mapEntries;
    std::size_t m_mapCount = 0;
    std::unique_ptr<ModuleEntry[]> m_modules;
    std::size_t m_moduleCount = 0;
    std::uint8_t m_processorCount = 0;
};
