#include "resultText.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// The integer part of 1.5 times the capacity, repeatedly, until it exceeds the length.
int grownCapacity(int capacity, int length)
{
    constexpr qint64 largest = std::numeric_limits<int>::max();
    qint64 grown = std::max(capacity, 2);  // 1 would never grow
    while (grown <= length)
        grown = std::min(grown + grown / 2, largest);
    return static_cast<int>(grown);
}

}  // namespace

char* putResultText(std::unique_ptr<char[]>& buffer, int& capacity, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    if (!buffer || capacity <= utf8.size()) {
        capacity = grownCapacity(capacity, utf8.size());
        buffer = std::make_unique<char[]>(static_cast<std::size_t>(capacity));
    }
    std::memcpy(buffer.get(), utf8.constData(), static_cast<std::size_t>(utf8.size()) + 1);
    return buffer.get();
}
