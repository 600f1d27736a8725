// Host services as a program of its own might bring them: everything is kept in plain sight.
#ifndef TESTS_HOST_REPLACEMENT_REPLACEMENT_HOST_H
#define TESTS_HOST_REPLACEMENT_REPLACEMENT_HOST_H

#include <map>
#include <string>
#include <vector>

namespace replacement_host {

struct MESSAGE {
  char severity;       // 'E', 'W' or 'D'.
  int number;          // 0 for a debug message.
  std::string filled;  // The template as it came and the arguments, each behind a "|".
  std::string module;
  bool has_parent;
  bool has_target;
};

struct INTERNAL_ERROR {
  std::string condition, module, source;
};

struct RECORD {
  std::vector<MESSAGE> messages;
  std::vector<INTERNAL_ERROR> internal_errors;
  std::map<std::string, long> live_blocks;  // By tag.
  std::vector<std::string> registered_tags;
};

RECORD& record();

}  // namespace replacement_host

#endif
