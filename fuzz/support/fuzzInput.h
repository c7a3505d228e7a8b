#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

/// Takes the values of a scenario off the bytes that the fuzzer chose; zeros and empty texts once they are used up.
class FuzzInput
{
public:
    FuzzInput(const std::uint8_t* data, std::size_t size)
        : m_cBytes(QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size)))
    {
    }

    bool isEmpty() const { return m_nPos >= m_cBytes.size(); }

    int byte() { return isEmpty() ? 0 : static_cast<unsigned char>(m_cBytes.at(m_nPos++)); }

    /// A number from 0 to most.
    int upTo(int most) { return byte() % (most + 1); }

    bool flag() { return (byte() & 1) != 0; }

    /// Any int: small ones and the ends of the range come up often.
    int anyInt()
    {
        constexpr std::array<int, 8> special{std::numeric_limits<int>::max(),
                                             std::numeric_limits<int>::min(),
                                             std::numeric_limits<int>::max() - 1,
                                             32767,
                                             -32768,
                                             1 << 24,
                                             -(1 << 24),
                                             999999999};
        const int kind = byte();
        if (kind < 128)
            return kind - 32;
        if (kind < 192)
            return special[static_cast<std::size_t>(kind) % special.size()];
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | static_cast<std::uint32_t>(byte());
        return static_cast<int>(value);
    }

    /// The bytes up to the next zero byte, which is taken off too.
    QByteArray text()
    {
        const int end = m_cBytes.indexOf('\0', m_nPos);
        const int length = end < 0 ? -1 : end - m_nPos;
        const QByteArray result = m_cBytes.mid(m_nPos, length);
        m_nPos = end < 0 ? m_cBytes.size() : end + 1;
        return result;
    }

    QByteArray rest()
    {
        const QByteArray result = m_cBytes.mid(m_nPos);
        m_nPos = m_cBytes.size();
        return result;
    }

private:
    QByteArray m_cBytes;  ///< Not a copy.
    int m_nPos = 0;
};
