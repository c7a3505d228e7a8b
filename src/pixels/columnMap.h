#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/**
 * Which pixel of a picture's row each pixel of a shown row takes, and what the vector code wants to know about that.
 *
 * Immutable; any thread.
 */
class ColumnMap
{
public:
    ColumnMap() = default;

    /// The columns do not descend and lie in 0 to rowWidth - 1.
    ColumnMap(std::vector<std::int32_t> columns, int rowWidth);

    std::size_t count() const { return m_vecColumns.size(); }
    const std::int32_t* columns() const { return m_vecColumns.data(); }

    /// Neighbours taken from neighbours: the row is shown as it is.
    bool isContiguous() const { return m_bContiguous; }

    /// So many leading columns take pixels that are not the row's last: of each, one byte more may be read.
    std::size_t innerCount() const { return m_nInner; }

    static constexpr std::size_t WindowColumns = 8;
    static constexpr int WindowBytes = 16;

    /// Eight columns that lie within sixteen neighbours of a row.
    struct Window
    {
        std::int32_t m_nFirst;                               ///< The first of the sixteen.
        std::array<std::uint8_t, WindowColumns> m_anPlaces;  ///< Of each of the eight, counted from the first.
    };

    /// One for each eight columns, the rest of fewer than eight left out; none at all when some are too far apart.
    const std::vector<Window>& windows() const { return m_vecWindows; }

private:
    void findWindows(int rowWidth);

    std::vector<std::int32_t> m_vecColumns;
    std::vector<Window> m_vecWindows;
    std::size_t m_nInner = 0;
    bool m_bContiguous = false;
};
