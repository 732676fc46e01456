#pragma once

#include "utf8.h"

// Installs a codec (or none) for the life of a test and puts the previous one
// back afterwards, so tests never leak their codec into the next one.
class ScopedCodec final
{
public:
    explicit ScopedCodec(utf8::Utf8Codec* codec)
        : m_previous(utf8::setCodec(codec))
    {
    }
    ~ScopedCodec() { utf8::setCodec(m_previous); }

    ScopedCodec(const ScopedCodec&) = delete;
    ScopedCodec& operator=(const ScopedCodec&) = delete;

private:
    utf8::Utf8Codec* m_previous;
};
