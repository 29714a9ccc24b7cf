#pragma once

#include <cstdint>
#include <vector>

// The files of several names met so far, by a number that tells them apart
// (never 0): a flat table of 8 bytes a slot, at most half full, so that a
// Windows scan, where every file is a candidate, keeps a million of them in
// 16 MiB.
class FileIdSet {
public:
    // True when the number was not in the set before.
    bool insert(std::uint64_t id);
    void clear();

private:
    void grow();
    [[nodiscard]] std::size_t slotOf(std::uint64_t id) const;

    std::vector<std::uint64_t> table; // 0 marks a free slot
    std::size_t count = 0;
};
