#pragma once

#include <cstddef>
#include <memory>
#include <vector>

/// GStreamer's pair of elements that takes pictures from one thread and gives them to another.
class GStreamerPair
{
public:
    /// Six buffers, from a pool or made anew for each picture; used before, as those of a running line.
    GStreamerPair(std::size_t bytes, bool pooled);
    ~GStreamerPair();

    bool isInstalled() const;  ///< Otherwise nothing else may be called.
    void write(const std::vector<unsigned char>& picture);
    void read(std::vector<unsigned char>& picture);

private:
    struct Elements;
    const std::unique_ptr<Elements> m_pcElements;
};
