// Makers of descriptor texts for tests. The same arguments give the same text on every machine.
#ifndef TESTS_REFERENCE_TEXT_GENERATOR_H
#define TESTS_REFERENCE_TEXT_GENERATOR_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

enum class VALIDITY {
  SYNTAX,    // Any block types and nesting, names declared twice, references to anything.
  SEMANTICS  // A text that the library accepts.
};

// A descriptor without syntax errors. `node_count` is about how many blocks, statements and comment
// lines it has; the seed also decides its layout, which may be all on one line. Blocks nest at most
// `max_depth` deep. Strings hold NUL bytes only with VALIDITY::SYNTAX.
std::string generate_descriptor(std::uint64_t seed, std::size_t node_count, VALIDITY validity,
                                std::size_t max_depth = 60);

// `text` after one to four random changes: characters and tokens deleted, inserted, replaced,
// doubled or swapped, the end or the start cut off, a piece of `other` spliced in, raw bytes.
std::string mutate_text(std::string_view text, std::string_view other, std::uint64_t seed);

// `length` tokens of any kind, valid or not, with random separators.
std::string generate_token_soup(std::uint64_t seed, std::size_t length);

// Token texts that stand for all kinds of token and for the scanner's special cases.
const std::vector<std::string>& full_vocabulary();

// One text for every kind of token that the grammar tells apart and that is needed to reach all of
// its rules; few enough for sequences of five.
const std::vector<std::string>& small_vocabulary();

// Calls `visit` with every sequence of `length` texts of the vocabulary, joined by `glue`, or with
// every `stride`-th of them. The text is valid until `visit` returns. Stops when `visit` returns
// false, and then returns false.
bool for_each_sequence(const std::vector<std::string>& vocabulary, std::size_t length,
                       std::string_view glue, std::size_t stride,
                       const std::function<bool(const std::string&)>& visit);

#endif
