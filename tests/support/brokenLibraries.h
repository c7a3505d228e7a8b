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
