#include "quietconsole.h"

#include <iostream>

QuietConsole::QuietConsole()
    : m_old(std::cout.rdbuf(this))
{
}

QuietConsole::~QuietConsole()
{
    std::cout.rdbuf(m_old);
}

int QuietConsole::overflow(int c)
{
    return traits_type::not_eof(c);
}

std::streamsize QuietConsole::xsputn(const char*, std::streamsize count)
{
    return count;
}
