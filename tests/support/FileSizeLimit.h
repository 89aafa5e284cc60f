#pragma once

#include <csignal>
#include <sys/resource.h>

// The process's file size limit (ulimit -f) lowered while alive: a write that would take a file
// past it fails with EFBIG after writing what fits, as on a disk that fills up, for root as for
// anyone. The signal such a write raises is ignored, as the program ignores it.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_previous);
        rlimit lowered = m_previous;
        lowered.rlim_cur = bytes;
        m_lowered = ::setrlimit(RLIMIT_FSIZE, &lowered) == 0;
    }
    ~FileSizeLimit() { lift(); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    bool lowered() const { return m_lowered; }
    // Writing works again.
    void lift()
    {
        if (m_lowered)
            ::setrlimit(RLIMIT_FSIZE, &m_previous);
        m_lowered = false;
    }

private:
    rlimit m_previous{};
    bool m_lowered = false;
};
