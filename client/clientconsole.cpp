#include "clientconsole.h"

#include <atomic>
#include <iostream>
#include <streambuf>

namespace {

// Takes every character and keeps none. The stream stays good, so writing to
// it changes no state that threads could race on.
template <class Char>
class DiscardBuffer final : public std::basic_streambuf<Char>
{
protected:
    using Traits = typename std::basic_streambuf<Char>::traits_type;
    typename Traits::int_type overflow(typename Traits::int_type c) override { return Traits::not_eof(c); }
    std::streamsize xsputn(const Char*, std::streamsize count) override { return count; }
};

std::atomic<std::ostream*> narrowSink {&std::cout};
std::atomic<std::wostream*> wideSink {&std::wcout};

} // namespace

std::ostream& ClientConsole::narrow()
{
    return *narrowSink.load(std::memory_order_acquire);
}

std::wostream& ClientConsole::wide()
{
    return *wideSink.load(std::memory_order_acquire);
}

void ClientConsole::redirect(std::ostream* narrow, std::wostream* wide)
{
    narrowSink.store(narrow ? narrow : &std::cout, std::memory_order_release);
    wideSink.store(wide ? wide : &std::wcout, std::memory_order_release);
}

void ClientConsole::discard()
{
    // Never destroyed: a client may still write while static objects go.
    static auto* const narrowBuffer = new DiscardBuffer<char>;
    static auto* const wideBuffer = new DiscardBuffer<wchar_t>;
    static auto* const narrowNowhere = new std::ostream(narrowBuffer);
    static auto* const wideNowhere = new std::wostream(wideBuffer);
    redirect(narrowNowhere, wideNowhere);
}
