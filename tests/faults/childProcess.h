#pragma once

#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <vector>

/**
 * The test program itself once more, as a child that plays the part its first argument names.
 *
 * Started with fork and exec; what it prints to standard output can be waited for.
 */
class ChildProcess
{
public:
    explicit ChildProcess(const QStringList& arguments)
    {
        std::vector<QByteArray> texts = program();
        for (const QString& argument : arguments)
            texts.push_back(QFile::encodeName(argument));
        std::vector<char*> pointers;
        for (QByteArray& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return;
        m_nId = ::fork();
        if (m_nId == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::execv(pointers.front(), pointers.data());
            ::_exit(127);
        }
        ::close(ends[1]);
        m_nOutput = ends[0];
    }
    ~ChildProcess()
    {
        kill();
        if (m_nOutput >= 0)
            ::close(m_nOutput);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool isStarted() const { return m_nId > 1; }

    /// Waits for the next byte that the child prints; false when it ends without.
    bool waitForSign() const
    {
        char sign = 0;
        return ::read(m_nOutput, &sign, 1) == 1;
    }

    void send(int signal) const
    {
        if (m_nId > 1)
            ::kill(m_nId, signal);
    }

    /// Ends the child in the middle of whatever it does.
    void kill()
    {
        if (m_nId <= 1)
            return;
        ::kill(m_nId, SIGKILL);
        wait();
    }

    /// Waits for the child's end; its status as waitpid gives it.
    int wait()
    {
        int status = -1;
        if (m_nId > 1)
            ::waitpid(m_nId, &status, 0);
        m_nId = -1;
        return status;
    }

private:
    /// This program's path; an emulator that runs it runs the child as well.
    static std::vector<QByteArray> program()
    {
        std::vector<QByteArray> words;
        for (const QByteArray& word : qgetenv("LUMIVANT_TEST_EMULATOR").split('|')) {
            if (!word.isEmpty())
                words.push_back(word);
        }
        words.push_back(QFile::encodeName(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath()));
        return words;
    }

    pid_t m_nId = -1;
    int m_nOutput = -1;
};
