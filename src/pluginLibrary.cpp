#include "pluginLibrary.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <link.h>

#include <cstring>
#include <utility>

using ElfHeader = ElfW(Ehdr);
using ProgramHeader = ElfW(Phdr);
using SectionHeader = ElfW(Shdr);

/// The header of the running program itself, put in place by the linker: what a fitting library looks like.
extern "C" const ElfHeader __ehdr_start __attribute__((visibility("hidden")));

namespace {

/// True when count entries of size bytes from offset on lie inside a file of fileSize bytes.
bool liesInside(quint64 fileSize, quint64 offset, quint64 count, quint64 size)
{
    return offset <= fileSize && (size == 0 || count <= (fileSize - offset) / size);
}

/// What is wrong with the header of a library of this file size; empty when nothing is.
QString headerProblem(const ElfHeader& header, quint64 fileSize)
{
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return QStringLiteral("not a library");
    if (header.e_ident[EI_CLASS] != __ehdr_start.e_ident[EI_CLASS])
        return QStringLiteral("wrong word size");
    if (header.e_ident[EI_DATA] != __ehdr_start.e_ident[EI_DATA])
        return QStringLiteral("wrong byte order");
    if (header.e_machine != __ehdr_start.e_machine)
        return QStringLiteral("made for another machine");
    if (header.e_type != ET_DYN)
        return QStringLiteral("not a shared library");
    if (header.e_phentsize != sizeof(ProgramHeader) || header.e_phnum == 0)
        return QStringLiteral("no segments to load");
    if (!liesInside(fileSize, header.e_phoff, header.e_phnum, sizeof(ProgramHeader)))
        return QStringLiteral("file is cut off");
    if (header.e_shnum > 0 && !liesInside(fileSize, header.e_shoff, header.e_shnum, sizeof(SectionHeader)))
        return QStringLiteral("file is cut off");
    return {};
}

/**
 * What is wrong with the table of sections; empty when nothing is, or when the library has none.
 *
 * Loading does not need it, but it stands at the end of the file: a file whose rest was never written, as an
 * interrupted copy leaves it, shows here.
 */
QString sectionProblem(QFile& file, const ElfHeader& header)
{
    if (header.e_shnum == 0 || header.e_shstrndx == SHN_UNDEF || header.e_shstrndx == SHN_XINDEX)
        return {};
    SectionHeader names;
    file.seek(static_cast<qint64>(header.e_shoff + quint64{header.e_shstrndx} * sizeof names));
    const bool complete = file.read(reinterpret_cast<char*>(&names), sizeof names) == qint64{sizeof names};
    return complete && names.sh_type == SHT_STRTAB ? QString() : QStringLiteral("file is damaged");
}

/// What is wrong with the segments that would be mapped; empty when all of them lie inside the file.
QString segmentProblem(QFile& file, const ElfHeader& header)
{
    const auto fileSize = static_cast<quint64>(file.size());
    const qint64 tableBytes = qint64{header.e_phnum} * qint64{sizeof(ProgramHeader)};
    file.seek(static_cast<qint64>(header.e_phoff));
    const QByteArray table = file.read(tableBytes);
    if (table.size() != tableBytes)
        return QStringLiteral("file cannot be read");
    bool loadable = false;
    for (int i = 0; i < header.e_phnum; ++i) {
        ProgramHeader segment;
        std::memcpy(&segment, table.constData() + static_cast<std::size_t>(i) * sizeof segment, sizeof segment);
        if (segment.p_type != PT_LOAD)
            continue;
        loadable = true;
        if (!liesInside(fileSize, segment.p_offset, segment.p_filesz, 1))
            return QStringLiteral("file is cut off");
    }
    return loadable ? QString() : QStringLiteral("no segments to load");
}

/// Why the file must not even be tried; empty when it may. Loading a file that is cut off can kill the process.
QString fileProblem(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    ElfHeader header;
    if (file.read(reinterpret_cast<char*>(&header), sizeof header) != qint64{sizeof header})
        return QStringLiteral("file is too short");
    QString problem = headerProblem(header, static_cast<quint64>(file.size()));
    if (problem.isEmpty())
        problem = segmentProblem(file, header);
    return problem.isEmpty() ? sectionProblem(file, header) : problem;
}

}  // namespace

PluginLibrary::PluginLibrary(const QString& path, const QVector<const char*>& names)
{
    const QString problem = fileProblem(path);
    if (!problem.isEmpty()) {
        m_strError = QStringLiteral("Cannot load library %1: (%2)").arg(path, problem);
        return;
    }
    auto library = std::make_unique<QLibrary>(path);
    library->setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (!library->load()) {
        m_strError = library->errorString();
        return;
    }
    for (const char* name : names) {
        const QFunctionPointer function = library->resolve(name);
        if (!function) {
            m_eState = State::Incomplete;
            // Kept on purpose: a half-fitting library stays mapped for the life of the process. A QLibrary that goes
            // unloads nothing.
            return;
        }
        m_vecEntries.append(function);
    }
    m_eState = State::Complete;
    m_pcLibrary = std::move(library);
}

QStringList PluginLibrary::filesIn(const QString& folder)
{
    QStringList paths;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo& file : files) {
        if (file.fileName().endsWith(QLatin1String(".so"), Qt::CaseInsensitive))
            paths.append(file.absoluteFilePath());
    }
    return paths;
}

QString PluginLibrary::applicationFolder()
{
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    int argumentCount = 1;
    char programName[] = "";
    char* arguments[] = {programName, nullptr};
    const QCoreApplication temporary(argumentCount, arguments);
    return QCoreApplication::applicationDirPath();
}
