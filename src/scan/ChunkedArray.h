#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// An array addressed by a 32-bit index that grows in chunks of 2^ChunkBits
// elements: growing never moves what is stored, so a large tree never needs
// twice its size while it grows, and freeing it is a few large frees.
template <typename T, unsigned ChunkBits> class ChunkedArray {
public:
    static constexpr std::size_t chunkSize = std::size_t(1) << ChunkBits;

    [[nodiscard]] std::size_t size() const { return count; }

    T& operator[](std::size_t index) { return chunks[index >> ChunkBits][index & (chunkSize - 1)]; }
    const T& operator[](std::size_t index) const
    {
        return chunks[index >> ChunkBits][index & (chunkSize - 1)];
    }

    // Adds n default elements at the end; returns the index of the first.
    std::size_t grow(std::size_t n)
    {
        const std::size_t first = count;
        count += n;
        while (chunks.size() * chunkSize < count)
            chunks.push_back(std::make_unique<T[]>(chunkSize));
        return first;
    }

private:
    std::vector<std::unique_ptr<T[]>> chunks;
    std::size_t count = 0;
};
