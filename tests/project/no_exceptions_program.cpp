// Built without exceptions and run-time types: uses each layer of the library, in good cases and in
// bad ones, and ends with 0 if all went as it should.
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_source_document.h"
#include "sbd/sbd_veldran.h"

namespace {

int g_faults = 0;
int g_messages = 0;

void expect(bool is_fine, const char* what) {
  if (is_fine) return;
  std::printf("failed: %s\n", what);
  g_faults++;
}

void use_document(const char* path) {
  SBD_FILE_PARSER document;
  expect(document.read(path), "reading a good file");
  SBD_STRING_LIST names;
  document.get_typed_blocks("region", names, nullptr);
  expect(!names.empty(), "listing blocks");

  // A record of our own, from the host's memory.
  auto* const comment = new SBD_FILE_PARSER::SBD_NODE;
  comment->comment = sbd_copy_text("# ours\n");
  document.add_node(comment, nullptr);
  expect(document.set_value("board", "note", SBD_STRING("\"text\"")), "setting a text");

  const char faulty[] = "device d { a = ; }";
  expect(!document.read_text(faulty, std::strlen(faulty), "faulty"), "refusing a bad text");
  expect(g_messages == 1, "one message for one fault");
}

void use_source_document(const char* path) {
  SBD_SOURCE_DOCUMENT source;
  expect(source.read(path), "reading for edits");
  const std::size_t size = source.text().size();
  expect(source.begin(), "beginning a transaction");
  expect(source.set_value("board.stripe.sdram.data_width", "0x00000010"), "an edit");
  expect(source.text().size() > size, "longer text after the edit");
  expect(source.roll_back() && source.text().size() == size, "taking the edit back");
}

void use_device(const char* path) {
  SBD_VELDRAN device("board");
  expect(device.read(path), "reading a good device");
  double frequency = 0;
  expect(device.get_ahb_clock_frequency(1, frequency) && frequency > 0, "a clock");
  SBD_PARAMETER_RULE rule;
  expect(sbd_get_parameter_rule(SBD_VELDRAN::CT_QMXA10, "sdram.data_width", rule), "a rule");
  SBD_STRING text;
  expect(sbd_get_values_text(rule, text) && !text.empty(), "a rule in English");
}

// The library deals with the exception of the host's memory manager by itself.
void run_out_of_memory(const char* path) {
  SBD_FILE_PARSER document;
  sbd_host::fail_allocation("SBD", 3, true);
  expect(!document.read(path), "no document without memory");
  sbd_host::fail_allocation("SBD", 0, false);
  expect(document.read(path), "a document when there is memory again");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  sbd_host::set_message_handler([](const sbd_host::MESSAGE&) { g_messages++; });
  sbd_host::set_internal_error_handler([](const sbd_host::INTERNAL_ERROR&) {});
  use_document(argv[1]);
  use_source_document(argv[1]);
  use_device(argv[1]);
  run_out_of_memory(argv[1]);
  return g_faults == 0 ? 0 : 1;
}
