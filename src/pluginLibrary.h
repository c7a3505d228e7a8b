#pragma once

#include <QLibrary>
#include <QString>
#include <QVector>

#include <memory>

/**
 * Loads one plug-in library and resolves its entry points: what discovery of algorithms and of data sources share.
 *
 * A file is looked at before it is loaded: one of another machine or word size, one that is no library, one that is
 * shorter than its own headers promise and one whose end was never written is refused with a reason instead of killing
 * the process. Symbols are resolved at once, so a library that lacks a function of another library is refused too, not
 * at its first call.
 *
 * Threads: any, each object on one; used under the lock of the registry that discovers, and there are two of those.
 */
class PluginLibrary
{
public:
    enum class State
    {
        Unloadable,  ///< errorString() says why.
        Incomplete,  ///< Loaded, but an entry point is missing; stays loaded for the life of the process.
        Complete,    ///< Every entry point is in entries(), in the order asked for.
    };

    /// Loads the file and resolves the names in order; stops at the first that is missing.
    PluginLibrary(const QString& path, const QVector<const char*>& names);

    State state() const { return m_eState; }
    QString errorString() const { return m_strError; }
    template <typename Function>
    Function entry(int index) const
    {
        return reinterpret_cast<Function>(m_vecEntries.at(index));
    }

    /// Hands out the loaded library; the caller owns it and unloads it at the end. Null unless complete.
    std::unique_ptr<QLibrary> takeLibrary() { return std::move(m_pcLibrary); }

    /// The files of a folder whose names end in ".so" in any case, sorted by name ignoring case; full paths.
    static QStringList filesIn(const QString& folder);

    /// The folder of the running program; asks a temporary application object when there is none yet.
    static QString applicationFolder();

private:
    State m_eState = State::Unloadable;
    QString m_strError;
    std::unique_ptr<QLibrary> m_pcLibrary;
    QVector<QFunctionPointer> m_vecEntries;
};
