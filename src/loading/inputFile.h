#pragma once

#include <QFile>
#include <QString>

#include <cstddef>
#include <cstdint>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/// A regular file that is read at any place.
class InputFile
{
public:
    /// Does not wait for a pipe's other end.
    explicit InputFile(const QString& path)
        : m_nHandle(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
        struct stat status = {};
        if (m_nHandle >= 0 && ::fstat(m_nHandle, &status) == 0 && S_ISREG(status.st_mode))
            m_nSize = status.st_size;
    }
    ~InputFile()
    {
        if (m_nHandle >= 0)
            ::close(m_nHandle);
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    std::int64_t size() const { return m_nSize; }  ///< Bytes; 0 for what is no readable regular file.

    /// False when the file does not have all of the bytes.
    bool read(std::int64_t position, unsigned char* target, std::size_t count) const
    {
        while (count > 0) {
            const ssize_t done = ::pread(m_nHandle, target, count, position);
            if (done <= 0)
                return false;
            target += done;
            position += done;
            count -= static_cast<std::size_t>(done);
        }
        return true;
    }

private:
    int m_nHandle;
    std::int64_t m_nSize = 0;
};
