#include "apimessage.h"

const std::string& ApiRequest::header(const std::string& lowerCaseName) const
{
    static const std::string None;
    const auto found = headers.find(lowerCaseName);
    return found == headers.end() ? None : found->second;
}
