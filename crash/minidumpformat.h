#pragma once

#include <cstdint>

// Record layouts of the minidump file format, little endian, packed as they
// lie in the file. Only what the writer below produces is declared.
namespace Minidump {

constexpr std::uint32_t Signature = 0x504d444d; // "MDMP"
constexpr std::uint32_t Version = 0xa793;

enum StreamType : std::uint32_t
{
    ThreadListStream = 3,
    ModuleListStream = 4,
    MemoryListStream = 5,
    ExceptionStream = 6,
    SystemInfoStream = 7,
    LinuxProcStatusStream = 0x47670004,
    LinuxMapsStream = 0x47670009,
};

constexpr std::uint16_t ProcessorArchitectureAmd64 = 9;
constexpr std::uint32_t PlatformLinux = 0x8201;
constexpr std::uint32_t CvSignatureElfBuildId = 0x4270454c; // "BpEL"

constexpr std::uint32_t ContextAmd64 = 0x00100000;
constexpr std::uint32_t ContextControl = ContextAmd64 | 0x1;
constexpr std::uint32_t ContextInteger = ContextAmd64 | 0x2;
constexpr std::uint32_t ContextSegments = ContextAmd64 | 0x4;
constexpr std::uint32_t ContextFloatingPoint = ContextAmd64 | 0x8;
constexpr std::uint32_t ContextFull
    = ContextControl | ContextInteger | ContextSegments | ContextFloatingPoint;

#pragma pack(push, 1)

struct LocationDescriptor
{
    std::uint32_t dataSize;
    std::uint32_t rva;
};

struct Header
{
    std::uint32_t signature;
    std::uint32_t version;
    std::uint32_t numberOfStreams;
    std::uint32_t streamDirectoryRva;
    std::uint32_t checkSum;
    std::uint32_t timeDateStamp;
    std::uint64_t flags;
};

struct Directory
{
    std::uint32_t streamType;
    LocationDescriptor location;
};

struct MemoryDescriptor
{
    std::uint64_t startOfMemoryRange;
    LocationDescriptor memory;
};

struct SystemInfo
{
    std::uint16_t processorArchitecture;
    std::uint16_t processorLevel;
    std::uint16_t processorRevision;
    std::uint8_t numberOfProcessors;
    std::uint8_t productType;
    std::uint32_t majorVersion;
    std::uint32_t minorVersion;
    std::uint32_t buildNumber;
    std::uint32_t platformId;
    std::uint32_t csdVersionRva;
    std::uint16_t suiteMask;
    std::uint16_t reserved2;
    std::uint32_t vendorId[3];
    std::uint32_t versionInformation;
    std::uint32_t featureInformation;
    std::uint32_t amdExtendedCpuFeatures;
};

struct Exception
{
    std::uint32_t exceptionCode;
    std::uint32_t exceptionFlags;
    std::uint64_t exceptionRecord;
    std::uint64_t exceptionAddress;
    std::uint32_t numberParameters;
    std::uint32_t unusedAlignment;
    std::uint64_t exceptionInformation[15];
};

struct ExceptionStreamRecord
{
    std::uint32_t threadId;
    std::uint32_t alignment;
    Exception exceptionRecord;
    LocationDescriptor threadContext;
};

struct Thread
{
    std::uint32_t threadId;
    std::uint32_t suspendCount;
    std::uint32_t priorityClass;
    std::uint32_t priority;
    std::uint64_t teb;
    MemoryDescriptor stack;
    LocationDescriptor threadContext;
};

struct FixedFileInfo
{
    std::uint32_t signature;
    std::uint32_t structVersion;
    std::uint32_t fileVersionHi;
    std::uint32_t fileVersionLo;
    std::uint32_t productVersionHi;
    std::uint32_t productVersionLo;
    std::uint32_t fileFlagsMask;
    std::uint32_t fileFlags;
    std::uint32_t fileOs;
    std::uint32_t fileType;
    std::uint32_t fileSubtype;
    std::uint32_t fileDateHi;
    std::uint32_t fileDateLo;
};

struct Module
{
    std::uint64_t baseOfImage;
    std::uint32_t sizeOfImage;
    std::uint32_t checkSum;
    std::uint32_t timeDateStamp;
    std::uint32_t moduleNameRva;
    FixedFileInfo versionInfo;
    LocationDescriptor cvRecord;
    LocationDescriptor miscRecord;
    std::uint64_t reserved0;
    std::uint64_t reserved1;
};

struct ContextAmd64Record
{
    std::uint64_t p1Home, p2Home, p3Home, p4Home, p5Home, p6Home;
    std::uint32_t contextFlags;
    std::uint32_t mxCsr;
    std::uint16_t segCs, segDs, segEs, segFs, segGs, segSs;
    std::uint32_t eflags;
    std::uint64_t dr0, dr1, dr2, dr3, dr6, dr7;
    std::uint64_t rax, rcx, rdx, rbx, rsp, rbp, rsi, rdi;
    std::uint64_t r8, r9, r10, r11, r12, r13, r14, r15;
    std::uint64_t rip;
    std::uint8_t fltSave[512];
    std::uint8_t vectorRegister[26 * 16];
    std::uint64_t vectorControl;
    std::uint64_t debugControl;
    std::uint64_t lastBranchToRip;
    std::uint64_t lastBranchFromRip;
    std::uint64_t lastExceptionToRip;
    std::uint64_t lastExceptionFromRip;
};

#pragma pack(pop)

static_assert(sizeof(Header) == 32);
static_assert(sizeof(Directory) == 12);
static_assert(sizeof(SystemInfo) == 56);
static_assert(sizeof(ExceptionStreamRecord) == 168);
static_assert(sizeof(Thread) == 48);
static_assert(sizeof(Module) == 108);
static_assert(sizeof(ContextAmd64Record) == 1232);

} // namespace Minidump
