#include "bench/document/hostile_texts.h"

#include "sbd/sbd_file_parser.h"

namespace {

constexpr int TIMES = 100000;
constexpr int NAMES_OF_BLOCK = 10;

// The next name after `number` that falls into the first bucket.
std::string next_name_of_bucket(int& number) {
  constexpr unsigned long BUCKETS = SBD_FILE_PARSER::SBD_SYMBOL_TABLE::k_bucket_count;
  for (;;) {
    std::string name = "name_" + std::to_string(number++);
    if (SBD_FILE_PARSER::hash_pjw(name.c_str(), BUCKETS) == 0) return name;
  }
}

}  // namespace

std::string make_one_bucket_text() {
  int number = 0;
  std::string text = "device " + next_name_of_bucket(number) + "\n{\n";
  for (int i = 0; i < TIMES; i += NAMES_OF_BLOCK) {
    text += "    parameters " + next_name_of_bucket(number) + "\n    {\n";
    for (int j = 0; j < NAMES_OF_BLOCK; j++) {
      text += "        " + next_name_of_bucket(number) + " = 1;\n";
    }
    text += "    }\n";
  }
  return text + "}\n";
}

std::string make_one_block_text() {
  std::string text = "device board\n{\n";
  for (int i = 0; i < TIMES; i++) text += "    name_" + std::to_string(i) + " = 1;\n";
  return text + "}\n";
}

std::string make_many_blocks_text() {
  std::string text = "device board\n{\n";
  for (int i = 0; i < TIMES; i++) {
    text += "    parameters block_" + std::to_string(i) + "\n    {\n        name = 1;\n    }\n";
  }
  return text + "}\n";
}

std::string make_one_target_text() {
  std::string text = "device board\n{\n    target = 1;\n";
  for (int i = 0; i < TIMES; i++) {
    text += "    reference_" + std::to_string(i) + " < .target >;\n";
  }
  return text + "}\n";
}

std::string make_nested_text() {
  std::string text = "device board\n{\n";
  for (int i = 0; i < TIMES; i++) text += "bus inner\n{\n";
  text += "name = 1;\n";
  for (int i = 0; i < TIMES; i++) text += "}\n";
  return text + "}\n";
}
