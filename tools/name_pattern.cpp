#include "tools/name_pattern.h"

#include <algorithm>
#include <cctype>

namespace sbd_tool {

namespace {

bool is_same_letter(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

bool contains(std::string_view name, std::string_view part) {
  return std::search(name.begin(), name.end(), part.begin(), part.end(), is_same_letter) !=
         name.end();
}

// Only the last "*" is ever tried again, so this takes no more than name times pattern steps.
bool fits_whole(std::string_view name, std::string_view pattern) {
  std::size_t at = 0;
  std::size_t in_pattern = 0;
  std::size_t star = std::string_view::npos;
  std::size_t star_end = 0;  // Behind what the last "*" stands for at present.
  while (at < name.size()) {
    const bool is_more = in_pattern < pattern.size();
    if (is_more && pattern[in_pattern] == '*') {
      star = in_pattern++;
      star_end = at;
    } else if (is_more &&
               (pattern[in_pattern] == '?' || is_same_letter(pattern[in_pattern], name[at]))) {
      ++in_pattern;
      ++at;
    } else if (star != std::string_view::npos) {
      in_pattern = star + 1;
      at = ++star_end;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in_pattern) == std::string_view::npos;
}

}  // namespace

bool matches_pattern(std::string_view name, std::string_view pattern) {
  if (pattern.empty()) return true;
  const bool is_glob = pattern.find_first_of("*?") != std::string_view::npos;
  return is_glob ? fits_whole(name, pattern) : contains(name, pattern);
}

}  // namespace sbd_tool
