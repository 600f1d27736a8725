// Large blocks of memory, kept for the next taker: getting fresh pages from the system and giving
// them back costs more than everything that is done with them in between.
#ifndef HOST_LARGE_BLOCKS_H
#define HOST_LARGE_BLOCKS_H

#include <cstddef>

// From this size on it pays to keep blocks.
inline constexpr std::size_t k_least_large_block = std::size_t{64} << 10;

// At least `size` bytes, which is k_least_large_block or more, aligned for any fundamental type;
// null when there is no memory. What stands in them is left over from others.
void* take_large_block(std::size_t size) noexcept;

// Takes a block of take_large_block back, to keep it or to give it back to the system.
void give_back_large_block(void* block) noexcept;

// Keeps no more than `limit` bytes from now on.
void limit_kept_blocks(std::size_t limit) noexcept;

// The bytes that are kept at the moment.
std::size_t size_of_kept_blocks() noexcept;

#endif
