#pragma once

#include <iosfwd>

// Where the client library writes its console lines: connects and
// disconnects, lines that are not JSON, skipped parameters and the traffic
// trace on the narrow stream, a failed name lookup's text on the wide one.
// Standard output (std::cout and std::wcout) unless a program sends them
// elsewhere, as korvane-ctl and the exporter do: their own output is not the
// client's. Set before any client runs; the streams are not locked.
namespace ClientConsole {

std::ostream& narrow();
std::wostream& wide();

// Null for either puts back its standard stream.
void redirect(std::ostream* narrow, std::wostream* wide);
// Nothing the client writes is kept.
void discard();

} // namespace ClientConsole
