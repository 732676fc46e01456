#pragma once

#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

// Changes the working directory for the life of a test and returns to the
// original one afterwards.
class ScopedWorkingDirectory final
{
public:
    explicit ScopedWorkingDirectory(const std::string& directory)
    {
        char buffer[4096];
        if (::getcwd(buffer, sizeof buffer))
            m_original = buffer;
        EXPECT_EQ(::chdir(directory.c_str()), 0) << directory;
    }
    ~ScopedWorkingDirectory() { EXPECT_EQ(::chdir(m_original.c_str()), 0) << m_original; }

    ScopedWorkingDirectory(const ScopedWorkingDirectory&) = delete;
    ScopedWorkingDirectory& operator=(const ScopedWorkingDirectory&) = delete;

private:
    std::string m_original;
};
