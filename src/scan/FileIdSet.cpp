#include "FileIdSet.h"

namespace {

// Inode numbers and file IDs are dense and close together: mixed, they spread.
std::uint64_t mixed(std::uint64_t id)
{
    id ^= id >> 33;
    id *= 0xff51afd7ed558ccdull;
    id ^= id >> 33;
    return id;
}

} // namespace

bool FileIdSet::insert(std::uint64_t id)
{
    if (2 * (count + 1) > table.size())
        grow();
    const std::size_t slot = slotOf(id);
    if (table[slot] == id)
        return false;
    table[slot] = id;
    ++count;
    return true;
}

void FileIdSet::clear()
{
    table.clear();
    count = 0;
}

std::size_t FileIdSet::slotOf(std::uint64_t id) const
{
    const std::size_t mask = table.size() - 1;
    std::size_t slot = mixed(id) & mask;
    while (table[slot] != 0 && table[slot] != id)
        slot = (slot + 1) & mask;
    return slot;
}

void FileIdSet::grow()
{
    std::vector<std::uint64_t> old(table.empty() ? 64 : 2 * table.size(), 0);
    old.swap(table);
    for (std::uint64_t id : old) {
        if (id != 0)
            table[slotOf(id)] = id;
    }
}
