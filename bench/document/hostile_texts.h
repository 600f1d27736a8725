// Documents that are made to be slow, 10^5 times the same thing each, laid out as usual but for
// blanks that deep nesting would multiply.
#ifndef BENCH_DOCUMENT_HOSTILE_TEXTS_H
#define BENCH_DOCUMENT_HOSTILE_TEXTS_H

#include <string>

struct HOSTILE_ROW {
  const char* label;
  std::string (*make_text)();
};

// All names in one bucket of the symbol table; all names in one block; a block for each name; many
// references to one target; blocks nested deeply.
std::string make_one_bucket_text();
std::string make_one_block_text();
std::string make_many_blocks_text();
std::string make_one_target_text();
std::string make_nested_text();

constexpr HOSTILE_ROW HOSTILE_ROWS[] = {{"all names in one bucket", make_one_bucket_text},
                                        {"all names in one block", make_one_block_text},
                                        {"each name in its own block", make_many_blocks_text},
                                        {"10^5 references to one target", make_one_target_text},
                                        {"nesting 10^5 deep", make_nested_text}};

#endif
