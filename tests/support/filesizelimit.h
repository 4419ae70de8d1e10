// A disk that is full, for as long as the object lives.
#pragma once

#include <csignal>
#include <sys/resource.h>

// Writing any file beyond the limit fails, for root too.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        previousHandler = ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &previous);
        rlimit limit = previous;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &previous);
        ::signal(SIGXFSZ, previousHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit previous{};
    void (*previousHandler)(int) = nullptr;
};
