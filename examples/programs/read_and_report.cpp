// Reads descriptors and prints what is wrong with them, one finding on a line.
#include <cstdio>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"

int main(int argc, char** argv) {
  int faulty_files = 0;
  for (int i = 1; i < argc; i++) {
    SBD_FILE_PARSER document;
    // While a message is posted, the document knows the place that it is about.
    sbd_host::set_message_handler([&document](const sbd_host::MESSAGE& message) {
      SBD_FILE_PARSER::SBD_SOURCE_RANGE place;
      if (document.get_fault_range(place)) std::printf("%lu:%lu: ", place.line, place.column);
      std::printf("%s [%s]\n", message.text, message.key);
    });
    if (!document.read(argv[i])) faulty_files++;
    sbd_host::set_message_handler(nullptr);
  }
  return faulty_files == 0 ? 0 : 1;
}
