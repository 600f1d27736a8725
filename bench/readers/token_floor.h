// What no reader of our text can do without: finding where its tokens begin and end.
#ifndef BENCH_READERS_TOKEN_FLOOR_H
#define BENCH_READERS_TOKEN_FLOOR_H

#include <cstddef>
#include <string_view>

// Walks the text once, byte by byte, with one table of byte classes. Returns the number of tokens.
std::size_t count_tokens(std::string_view text);

#endif
