// A program with the standalone host services: prints a parameter, and the findings of a faulty
// text.
#include <cstdio>
#include <string>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_veldran.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string version = std::to_string(SBD_VERSION_MAJOR) + "." +
                              std::to_string(SBD_VERSION_MINOR) + "." +
                              std::to_string(SBD_VERSION_PATCH);
  if (sbd_version() != version) return 3;
  sbd_host::set_message_handler(
      [](const sbd_host::MESSAGE& message) { std::printf("%s\n", message.key); });

  SBD_VELDRAN board("board");
  double frequency = 0;
  if (!board.read(argv[1]) || !board.get_ahb_clock_frequency(1, frequency)) return 1;
  std::printf("AHB1 %.0f\n", frequency);

  SBD_FILE_PARSER faulty;
  const char text[] = "device d { a = ; }";
  if (faulty.read_text(text, sizeof text - 1, "faulty")) return 1;
  return sbd_host::get_memory_account("SBD").peak_bytes > 0 ? 0 : 1;
}
