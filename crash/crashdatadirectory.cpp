#include "crashdatadirectory.h"

#include <cctype>

std::string crashDataDirectory(const std::string& home, const std::string& vendor, const std::string& product)
{
    std::string suffix = "/." + vendor + "/" + product + "/";
    for (char& c : suffix)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return home + suffix + "Crash Reports";
}
