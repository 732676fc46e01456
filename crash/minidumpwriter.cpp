#include "minidumpwriter.h"

#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include "minidumpformat.h"

// Raw system calls: libc's wrappers may be intercepted (sanitizers check the
// buffers handed to write(), and the stack we copy is partly poisoned).
namespace {

long sysOpen(const char* path, int flags, int mode)
{
    return syscall(SYS_openat, AT_FDCWD, path, flags, mode);
}

long sysRead(int fd, void* buffer, std::size_t size)
{
    return syscall(SYS_read, fd, buffer, size);
}

long sysWrite(int fd, const void* buffer, std::size_t size)
{
    return syscall(SYS_write, fd, buffer, size);
}

void sysClose(int fd)
{
    syscall(SYS_close, fd);
}

std::size_t readWholeFile(const char* path, char* buffer, std::size_t capacity)
{
    const int fd = static_cast<int>(sysOpen(path, O_RDONLY | O_CLOEXEC, 0));
    if (fd < 0)
        return 0;
    std::size_t length = 0;
    while (length < capacity) {
        const long n = sysRead(fd, buffer + length, capacity - length);
        if (n <= 0)
            break;
        length += static_cast<std::size_t>(n);
    }
    sysClose(fd);
    return length;
}

// Sequential writer that knows its file offset (the RVA of what comes next).
class DumpFile final
{
public:
    explicit DumpFile(int fd)
        : m_fd(fd)
    {
    }

    std::uint32_t position() const { return m_position; }
    bool ok() const { return m_ok; }

    void put(const void* data, std::size_t size)
    {
        const char* bytes = static_cast<const char*>(data);
        std::size_t left = size;
        while (m_ok && left > 0) {
            const long n = sysWrite(m_fd, bytes, left);
            if (n <= 0) {
                m_ok = false;
                break;
            }
            bytes += n;
            left -= static_cast<std::size_t>(n);
        }
        m_position += static_cast<std::uint32_t>(size);
    }

    void zeros(std::size_t size)
    {
        static const char nothing[64] = {};
        while (size > 0) {
            const std::size_t chunk = size < sizeof nothing ? size : sizeof nothing;
            put(nothing, chunk);
            size -= chunk;
        }
    }

    void align(std::uint32_t alignment)
    {
        const std::uint32_t rest = m_position % alignment;
        if (rest != 0)
            zeros(alignment - rest);
    }

    void seekStart()
    {
        if (syscall(SYS_lseek, m_fd, 0, SEEK_SET) != 0)
            m_ok = false;
        m_position = 0;
    }

private:
    int m_fd;
    std::uint32_t m_position = 0;
    bool m_ok = true;
};

bool parseHex(const char*& p, const char* end, std::uint64_t& value)
{
    value = 0;
    const char* start = p;
    while (p < end) {
        const char c = *p;
        int digit;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        else
            break;
        value = value * 16 + static_cast<std::uint64_t>(digit);
        ++p;
    }
    return p != start;
}

bool parseDecimal(const char*& p, const char* end, std::uint64_t& value)
{
    value = 0;
    const char* start = p;
    while (p < end && *p >= '0' && *p <= '9') {
        value = value * 10 + static_cast<std::uint64_t>(*p - '0');
        ++p;
    }
    return p != start;
}

void skipSpaces(const char*& p, const char* end)
{
    while (p < end && *p == ' ')
        ++p;
}

void skipField(const char*& p, const char* end)
{
    while (p < end && *p != ' ' && *p != '\n')
        ++p;
}

// UTF-8 to UTF-16 for the module names; invalid bytes pass as Latin-1.
std::size_t utf16Units(const char* text, std::size_t length, std::uint16_t* out)
{
    std::size_t units = 0;
    std::size_t i = 0;
    while (i < length) {
        const auto c = static_cast<unsigned char>(text[i]);
        std::uint32_t code = c;
        std::size_t extra = 0;
        if (c >= 0xf0 && c < 0xf8) {
            code = c & 0x07;
            extra = 3;
        } else if (c >= 0xe0) {
            code = c & 0x0f;
            extra = 2;
        } else if (c >= 0xc0) {
            code = c & 0x1f;
            extra = 1;
        }
        bool valid = true;
        for (std::size_t k = 1; valid && k <= extra; ++k) {
            if (i + k >= length || (static_cast<unsigned char>(text[i + k]) & 0xc0) != 0x80)
                valid = false;
            else
                code = (code << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3f);
        }
        if (!valid) {
            code = c;
            extra = 0;
        }
        i += extra + 1;
        if (code >= 0x10000) {
            code -= 0x10000;
            if (out) {
                out[units] = static_cast<std::uint16_t>(0xd800 + (code >> 10));
                out[units + 1] = static_cast<std::uint16_t>(0xdc00 + (code & 0x3ff));
            }
            units += 2;
        } else {
            if (out)
                out[units] = static_cast<std::uint16_t>(code);
            ++units;
        }
    }
    return units;
}

void putString(DumpFile& file, const char* text, std::size_t length)
{
    const auto units = static_cast<std::uint32_t>(utf16Units(text, length, nullptr));
    const std::uint32_t bytes = units * 2;
    file.put(&bytes, sizeof bytes);
    // Converted in small pieces so that no buffer the size of a path is needed.
    std::uint16_t chunk[256];
    std::size_t i = 0;
    while (i < length) {
        std::size_t end = i + 120 < length ? i + 120 : length;
        while (end < length && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80)
            ++end;
        const std::size_t n = utf16Units(text + i, end - i, chunk);
        file.put(chunk, n * 2);
        i = end;
    }
    const std::uint16_t terminator = 0;
    file.put(&terminator, sizeof terminator);
}

std::uint32_t stringSize(const char* text, std::size_t length)
{
    return static_cast<std::uint32_t>(4 + utf16Units(text, length, nullptr) * 2 + 2);
}

void fillContext(Minidump::ContextAmd64Record& out, const ucontext_t* context)
{
    std::memset(&out, 0, sizeof out);
    out.contextFlags = Minidump::ContextFull;
    const greg_t* regs = context->uc_mcontext.gregs;
    out.rax = static_cast<std::uint64_t>(regs[REG_RAX]);
    out.rcx = static_cast<std::uint64_t>(regs[REG_RCX]);
    out.rdx = static_cast<std::uint64_t>(regs[REG_RDX]);
    out.rbx = static_cast<std::uint64_t>(regs[REG_RBX]);
    out.rsp = static_cast<std::uint64_t>(regs[REG_RSP]);
    out.rbp = static_cast<std::uint64_t>(regs[REG_RBP]);
    out.rsi = static_cast<std::uint64_t>(regs[REG_RSI]);
    out.rdi = static_cast<std::uint64_t>(regs[REG_RDI]);
    out.r8 = static_cast<std::uint64_t>(regs[REG_R8]);
    out.r9 = static_cast<std::uint64_t>(regs[REG_R9]);
    out.r10 = static_cast<std::uint64_t>(regs[REG_R10]);
    out.r11 = static_cast<std::uint64_t>(regs[REG_R11]);
    out.r12 = static_cast<std::uint64_t>(regs[REG_R12]);
    out.r13 = static_cast<std::uint64_t>(regs[REG_R13]);
    out.r14 = static_cast<std::uint64_t>(regs[REG_R14]);
    out.r15 = static_cast<std::uint64_t>(regs[REG_R15]);
    out.rip = static_cast<std::uint64_t>(regs[REG_RIP]);
    out.eflags = static_cast<std::uint32_t>(regs[REG_EFL]);
    // cs, gs and fs share one slot, 16 bits each
    const auto segments = static_cast<std::uint64_t>(regs[REG_CSGSFS]);
    out.segCs = static_cast<std::uint16_t>(segments & 0xffff);
    out.segGs = static_cast<std::uint16_t>((segments >> 16) & 0xffff);
    out.segFs = static_cast<std::uint16_t>((segments >> 32) & 0xffff);
    if (context->uc_mcontext.fpregs) {
        static_assert(sizeof(*context->uc_mcontext.fpregs) == sizeof out.fltSave);
        std::memcpy(out.fltSave, context->uc_mcontext.fpregs, sizeof out.fltSave);
        out.mxCsr = context->uc_mcontext.fpregs->mxcsr;
    }
}

} // namespace

MinidumpWriter::MinidumpWriter()
    : m_maps(new char[MapsCapacity])
    , m_status(new char[StatusCapacity])
    , m_mapEntries(new MapEntry[MaxMapEntries])
    , m_modules(new ModuleEntry[MaxModules])
{
    // Touch every page now so that the crash path never faults them in
    // from an exhausted system.
    std::memset(m_maps.get(), 0, MapsCapacity);
    std::memset(m_status.get(), 0, StatusCapacity);
    std::memset(m_mapEntries.get(), 0, sizeof(MapEntry) * MaxMapEntries);
    std::memset(m_modules.get(), 0, sizeof(ModuleEntry) * MaxModules);
    const long processors = sysconf(_SC_NPROCESSORS_ONLN);
    m_processorCount = static_cast<std::uint8_t>(processors > 0 && processors < 255 ? processors : 255);
}

MinidumpWriter::~MinidumpWriter() = default;

void MinidumpWriter::readProcFiles()
{
    m_mapsLength = readWholeFile("/proc/self/maps", m_maps.get(), MapsCapacity);
    m_statusLength = readWholeFile("/proc/self/status", m_status.get(), StatusCapacity);
}

void MinidumpWriter::parseMaps()
{
    m_mapCount = 0;
    const char* p = m_maps.get();
    const char* end = p + m_mapsLength;
    while (p < end && m_mapCount < MaxMapEntries) {
        const char* lineEnd = p;
        while (lineEnd < end && *lineEnd != '\n')
            ++lineEnd;
        MapEntry entry = {};
        const char* q = p;
        bool ok = parseHex(q, lineEnd, entry.start) && q < lineEnd && *q++ == '-'
            && parseHex(q, lineEnd, entry.end);
        skipSpaces(q, lineEnd);
        if (ok && q < lineEnd)
            entry.readable = *q == 'r';
        skipField(q, lineEnd);
        skipSpaces(q, lineEnd);
        ok = ok && parseHex(q, lineEnd, entry.offset);
        skipSpaces(q, lineEnd);
        skipField(q, lineEnd); // device
        skipSpaces(q, lineEnd);
        ok = ok && parseDecimal(q, lineEnd, entry.inode);
        skipSpaces(q, lineEnd);
        if (q < lineEnd && *q == '/') {
            entry.pathOffset = static_cast<std::uint32_t>(q - m_maps.get());
            entry.pathLength = static_cast<std::uint32_t>(lineEnd - q);
        }
        if (ok)
            m_mapEntries[m_mapCount++] = entry;
        p = lineEnd + 1;
    }
}

const MinidumpWriter::MapEntry* MinidumpWriter::findMapping(std::uint64_t address) const
{
    for (std::size_t i = 0; i < m_mapCount; ++i) {
        if (address >= m_mapEntries[i].start && address < m_mapEntries[i].end)
            return &m_mapEntries[i];
    }
    return nullptr;
}

bool MinidumpWriter::isReadable(std::uint64_t address, std::uint64_t length) const
{
    // The range may span adjacent mappings; each must be readable.
    std::uint64_t at = address;
    const std::uint64_t end = address + length;
    if (end < address)
        return false;
    while (at < end) {
        const MapEntry* entry = findMapping(at);
        if (!entry || !entry->readable)
            return false;
        at = entry->end;
    }
    return true;
}

void MinidumpWriter::collectModules()
{
    m_moduleCount = 0;
    for (std::size_t i = 0; i < m_mapCount && m_moduleCount < MaxModules; ++i) {
        const MapEntry& first = m_mapEntries[i];
        if (first.pathLength == 0 || first.inode == 0 || first.offset != 0)
            continue;
        // A module is the run of mappings of one file that starts at offset 0.
        ModuleEntry module = {};
        module.base = first.start;
        module.end = first.end;
        module.pathOffset = first.pathOffset;
        module.pathLength = first.pathLength;
        std::size_t j = i + 1;
        while (j < m_mapCount) {
            const MapEntry& next = m_mapEntries[j];
            const bool sameFile = next.inode == first.inode && next.pathLength == first.pathLength
                && std::memcmp(
                       m_maps.get() + next.pathOffset, m_maps.get() + first.pathOffset, first.pathLength)
                    == 0;
            if (!sameFile || next.offset == 0)
                break;
            module.end = next.end;
            ++j;
        }
        readBuildId(module);
        m_modules[m_moduleCount++] = module;
    }
}

// Reads memory of this process without faulting: a mapped file that was
// truncated raises SIGBUS when touched, while this system call just fails.
bool MinidumpWriter::readMemory(std::uint64_t address, void* buffer, std::size_t size) const
{
    if (!isReadable(address, size))
        return false;
    struct iovec local = {buffer, size};
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the kernel wants the remote address as a pointer
    struct iovec remote = {reinterpret_cast<void*>(address), size};
    return syscall(SYS_process_vm_readv, getpid(), &local, 1, &remote, 1, 0) == static_cast<long>(size);
}

// Reads the GNU build id from the ELF notes of a module mapped in memory.
void MinidumpWriter::readBuildId(ModuleEntry& module) const
{
    module.buildIdLength = 0;
    Elf64_Ehdr header;
    if (!readMemory(module.base, &header, sizeof header))
        return;
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64
        || header.e_phentsize != sizeof(Elf64_Phdr))
        return;
    const std::uint64_t phdrs = module.base + header.e_phoff;

    // Load bias: where the lowest loadable segment ended up.
    std::uint64_t lowest = ~std::uint64_t(0);
    for (unsigned k = 0; k < header.e_phnum; ++k) {
        Elf64_Phdr ph;
        if (!readMemory(phdrs + k * sizeof ph, &ph, sizeof ph))
            return;
        if (ph.p_type == PT_LOAD && ph.p_vaddr < lowest)
            lowest = ph.p_vaddr;
    }
    if (lowest == ~std::uint64_t(0))
        return;
    const std::uint64_t bias = module.base - (lowest & ~std::uint64_t(0xfff));

    for (unsigned k = 0; k < header.e_phnum; ++k) {
        Elf64_Phdr ph;
        if (!readMemory(phdrs + k * sizeof ph, &ph, sizeof ph) || ph.p_type != PT_NOTE)
            continue;
        std::uint64_t at = bias + ph.p_vaddr;
        const std::uint64_t end = at + ph.p_memsz;
        while (at + sizeof(Elf64_Nhdr) <= end) {
            Elf64_Nhdr note;
            if (!readMemory(at, &note, sizeof note))
                break;
            const std::uint64_t nameSize = (note.n_namesz + 3) & ~3u;
            const std::uint64_t descSize = (note.n_descsz + 3) & ~3u;
            const std::uint64_t name = at + sizeof note;
            const std::uint64_t desc = name + nameSize;
            if (desc + descSize > end)
                break;
            char owner[4] = {};
            if (note.n_type == NT_GNU_BUILD_ID && note.n_namesz == 4 && readMemory(name, owner, 4)
                && std::memcmp(owner, "GNU", 4) == 0) {
                std::uint32_t length = note.n_descsz;
                if (length > sizeof module.buildId)
                    length = sizeof module.buildId;
                if (readMemory(desc, module.buildId, length))
                    module.buildIdLength = length;
                return;
            }
            at = desc + descSize;
        }
    }
}

bool MinidumpWriter::write(const char* path, const siginfo_t* info, const ucontext_t* context)
{
    using namespace Minidump;

    readProcFiles();
    parseMaps();
    collectModules();

    const int fd = static_cast<int>(sysOpen(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (fd < 0)
        return false;
    DumpFile file(fd);

    constexpr std::uint32_t streamCount = 7;
    Directory directory[streamCount] = {};
    file.zeros(sizeof(Header) + sizeof directory);

    // System info, with an empty service-pack string after it.
    file.align(8);
    SystemInfo system = {};
    system.processorArchitecture = ProcessorArchitectureAmd64;
    system.numberOfProcessors = m_processorCount;
    system.platformId = PlatformLinux;
    const std::uint32_t systemRva = file.position();
    system.csdVersionRva = systemRva + sizeof system;
    file.put(&system, sizeof system);
    putString(file, "", 0);
    directory[0] = {SystemInfoStream, {sizeof system, systemRva}};

    // The crashing thread's registers.
    file.align(16);
    ContextAmd64Record registers;
    fillContext(registers, context);
    const LocationDescriptor contextLocation = {sizeof registers, file.position()};
    file.put(&registers, sizeof registers);

    // Its stack, from just below the stack pointer (red zone) upwards.
    MemoryDescriptor stack = {};
    std::uint64_t stackStart = registers.rsp >= RedZone ? registers.rsp - RedZone : 0;
    const MapEntry* stackMapping = findMapping(registers.rsp);
    if (stackMapping && stackMapping->readable) {
        if (stackStart < stackMapping->start)
            stackStart = stackMapping->start;
        std::uint64_t stackEnd = stackMapping->end;
        if (stackEnd - stackStart > MaxStackBytes)
            stackEnd = stackStart + MaxStackBytes;
        file.align(16);
        stack.startOfMemoryRange = stackStart;
        stack.memory = {static_cast<std::uint32_t>(stackEnd - stackStart), file.position()};
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the stack range comes from the thread's registers
        file.put(reinterpret_cast<const void*>(stackStart), stackEnd - stackStart);
    }

    const auto threadId = static_cast<std::uint32_t>(syscall(SYS_gettid));
    file.align(8);
    const std::uint32_t threadCount = 1;
    Thread thread = {};
    thread.threadId = threadId;
    thread.stack = stack;
    thread.threadContext = contextLocation;
    const std::uint32_t threadListRva = file.position();
    file.put(&threadCount, sizeof threadCount);
    file.put(&thread, sizeof thread);
    directory[1] = {ThreadListStream, {file.position() - threadListRva, threadListRva}};

    file.align(8);
    ExceptionStreamRecord exception = {};
    exception.threadId = threadId;
    exception.exceptionRecord.exceptionCode = static_cast<std::uint32_t>(info->si_signo);
    exception.exceptionRecord.exceptionFlags = static_cast<std::uint32_t>(info->si_code);
    // Only a fault raised by the processor carries an address; a sent
    // signal carries the sender instead, so its address is the instruction.
    exception.exceptionRecord.exceptionAddress = info->si_code > 0 && info->si_code != SI_KERNEL
        ? reinterpret_cast<std::uint64_t>(info->si_addr)
        : registers.rip;
    exception.threadContext = contextLocation;
    const std::uint32_t exceptionRva = file.position();
    file.put(&exception, sizeof exception);
    directory[2] = {ExceptionStream, {sizeof exception, exceptionRva}};

    // Module list: the records first, then their names and CodeView records.
    file.align(8);
    const auto moduleCount = static_cast<std::uint32_t>(m_moduleCount);
    const std::uint32_t moduleListRva = file.position();
    std::uint32_t extraRva = moduleListRva + 4 + moduleCount * static_cast<std::uint32_t>(sizeof(Module));
    file.put(&moduleCount, sizeof moduleCount);
    for (std::size_t i = 0; i < m_moduleCount; ++i) {
        const ModuleEntry& entry = m_modules[i];
        Module module = {};
        module.baseOfImage = entry.base;
        module.sizeOfImage = static_cast<std::uint32_t>(entry.end - entry.base);
        module.moduleNameRva = extraRva;
        extraRva += stringSize(m_maps.get() + entry.pathOffset, entry.pathLength);
        extraRva = (extraRva + 3) & ~3u;
        module.cvRecord = {4 + entry.buildIdLength, extraRva};
        extraRva += 4 + entry.buildIdLength;
        extraRva = (extraRva + 3) & ~3u;
        file.put(&module, sizeof module);
    }
    directory[3] = {ModuleListStream, {file.position() - moduleListRva, moduleListRva}};
    for (std::size_t i = 0; i < m_moduleCount; ++i) {
        const ModuleEntry& entry = m_modules[i];
        putString(file, m_maps.get() + entry.pathOffset, entry.pathLength);
        file.align(4);
        const std::uint32_t signature = CvSignatureElfBuildId;
        file.put(&signature, sizeof signature);
        file.put(entry.buildId, entry.buildIdLength);
        file.align(4);
    }

    // Memory list: the stack again, pointing at the same bytes.
    file.align(8);
    const std::uint32_t memoryCount = stack.memory.dataSize ? 1 : 0;
    const std::uint32_t memoryListRva = file.position();
    file.put(&memoryCount, sizeof memoryCount);
    if (memoryCount)
        file.put(&stack, sizeof stack);
    directory[4] = {MemoryListStream, {file.position() - memoryListRva, memoryListRva}};

    const std::uint32_t mapsRva = file.position();
    file.put(m_maps.get(), m_mapsLength);
    directory[5] = {LinuxMapsStream, {static_cast<std::uint32_t>(m_mapsLength), mapsRva}};

    const std::uint32_t statusRva = file.position();
    file.put(m_status.get(), m_statusLength);
    directory[6] = {LinuxProcStatusStream, {static_cast<std::uint32_t>(m_statusLength), statusRva}};

    Header header = {};
    header.signature = Signature;
    header.version = Version;
    header.numberOfStreams = streamCount;
    header.streamDirectoryRva = sizeof(Header);
    struct timespec now = {};
    syscall(SYS_clock_gettime, CLOCK_REALTIME, &now);
    header.timeDateStamp = static_cast<std::uint32_t>(now.tv_sec);
    file.seekStart();
    file.put(&header, sizeof header);
    file.put(directory, sizeof directory);

    const bool ok = file.ok();
    sysClose(fd);
    return ok;
}
