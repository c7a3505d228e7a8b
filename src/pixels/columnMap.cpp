#include "pixels/columnMap.h"

#include <algorithm>
#include <utility>

ColumnMap::ColumnMap(std::vector<std::int32_t> columns, int rowWidth) : m_vecColumns(std::move(columns))
{
    if (m_vecColumns.empty())
        return;
    const auto lastColumns = std::lower_bound(m_vecColumns.begin(), m_vecColumns.end(), rowWidth - 1);
    m_nInner = static_cast<std::size_t>(lastColumns - m_vecColumns.begin());
    const auto gap = std::adjacent_find(m_vecColumns.begin(), m_vecColumns.end(),
                                        [](std::int32_t left, std::int32_t right) { return right != left + 1; });
    m_bContiguous = gap == m_vecColumns.end();
    findWindows(rowWidth);
}

void ColumnMap::findWindows(int rowWidth)
{
    if (rowWidth < WindowBytes)
        return;
    std::vector<Window> windows(m_vecColumns.size() / WindowColumns);
    const std::int32_t* columns = m_vecColumns.data();
    for (Window& window : windows) {
        window.m_nFirst = std::min(columns[0], rowWidth - WindowBytes);
        if (columns[WindowColumns - 1] - window.m_nFirst >= WindowBytes)
            return;
        for (std::uint8_t& place : window.m_anPlaces)
            place = static_cast<std::uint8_t>(*columns++ - window.m_nFirst);
    }
    m_vecWindows = std::move(windows);
}
