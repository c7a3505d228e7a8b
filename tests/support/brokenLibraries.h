#pragma once

#include "pluginFolders.h"

#include <link.h>

#include <cstring>

/// The content of one of the suite's own libraries.
inline QByteArray libraryBytes(const QString& library)
{
    QFile file(PluginFolders::built(library));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is not built", qPrintable(file.fileName()));
    return file.readAll();
}

/// A library whose header was changed by edit(ElfW(Ehdr)&).
template <typename Edit>
QByteArray withHeader(QByteArray library, const Edit& edit)
{
    ElfW(Ehdr) header;
    std::memcpy(&header, library.constData(), sizeof header);
    edit(header);
    std::memcpy(library.data(), &header, sizeof header);
    return library;
}

/// A library whose last loadable segment was changed by edit(ElfW(Phdr)&).
template <typename Edit>
QByteArray withSegment(QByteArray library, const Edit& edit)
{
    ElfW(Ehdr) header;
    std::memcpy(&header, library.constData(), sizeof header);
    char* last = nullptr;
    ElfW(Phdr) segment;
    for (int i = 0; i < header.e_phnum; ++i) {
        char* at = library.data() + header.e_phoff + static_cast<std::size_t>(i) * sizeof segment;
        std::memcpy(&segment, at, sizeof segment);
        last = segment.p_type == PT_LOAD ? at : last;
    }
    std::memcpy(&segment, last, sizeof segment);
    edit(segment);
    std::memcpy(last, &segment, sizeof segment);
    return library;
}

/// A library whose table of segments begins with the first that is loaded.
inline QByteArray withLoadableFirst(QByteArray library)
{
    ElfW(Ehdr) header;
    std::memcpy(&header, library.constData(), sizeof header);
    char* const first = library.data() + header.e_phoff;
    ElfW(Phdr) segment;
    for (int i = 0; i < header.e_phnum; ++i) {
        char* at = first + static_cast<std::size_t>(i) * sizeof segment;
        std::memcpy(&segment, at, sizeof segment);
        if (segment.p_type != PT_LOAD)
            continue;
        std::memmove(at, first, sizeof segment);
        std::memcpy(first, &segment, sizeof segment);
        return library;
    }
    qFatal("There is no segment to load");
}

/// A library whose entry for the stack, of which nothing is loaded, points behind the end of the file.
inline QByteArray withStackBehindTheEnd(QByteArray library)
{
    ElfW(Ehdr) header;
    std::memcpy(&header, library.constData(), sizeof header);
    for (int i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment;
        char* at = library.data() + header.e_phoff + static_cast<std::size_t>(i) * sizeof segment;
        std::memcpy(&segment, at, sizeof segment);
        if (segment.p_type != PT_GNU_STACK)
            continue;
        segment.p_offset = static_cast<decltype(segment.p_offset)>(library.size()) + 1;
        std::memcpy(at, &segment, sizeof segment);
        return library;
    }
    qFatal("There is no entry for the stack");
}

/// A library whose table of segments lies behind everything else; zeros are left where it was.
inline QByteArray withSegmentsAtTheEnd(QByteArray library)
{
    ElfW(Ehdr) header;
    std::memcpy(&header, library.constData(), sizeof header);
    const int size = header.e_phnum * int{sizeof(ElfW(Phdr))};
    library += QByteArray(-library.size() & 15, '\0');
    const QByteArray table = library.mid(static_cast<int>(header.e_phoff), size);
    std::memset(library.data() + header.e_phoff, 0, static_cast<std::size_t>(size));
    header.e_phoff = static_cast<decltype(header.e_phoff)>(library.size());
    std::memcpy(library.data(), &header, sizeof header);
    return library + table;
}

/// A good library as another machine would have it.
inline QByteArray libraryOfAnotherMachine()
{
    return withHeader(libraryBytes("algorithmEcho"), [](ElfW(Ehdr) & header) { header.e_machine ^= 1; });
}

/// A good library that ends in the middle.
inline QByteArray libraryCutInTheMiddle()
{
    const QByteArray whole = libraryBytes("algorithmEcho");
    return whole.left(whole.size() / 2);
}
