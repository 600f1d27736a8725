// Changes the input clock in a copy of a descriptor; everything else stays as it was typed.
#include <cstdio>

#include "sbd/sbd_source_document.h"

int main(int argc, char** argv) {
  SBD_SOURCE_DOCUMENT source;
  if (argc != 3 || !source.read(argv[1])) return 1;

  // Either both edits or none.
  source.begin();
  const bool is_good =
      source.set_value("board.stripe.clocks.input_clock_frequency", "10MHz") &&
      source.add_value("board.stripe.note", "\"slower\"", SBD_PLACE::behind("type"));
  if (!is_good) {
    source.roll_back();
    return 1;
  }
  source.commit();

  // The text is read back and compared with what it should mean before the file is replaced.
  if (!source.save(argv[2])) return 1;
  std::printf("saved %zu bytes\n", source.text().size());
  return 0;
}
