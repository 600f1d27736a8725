// Collects what the library says instead of printing it, and tells faults of the library itself
// from faults of a file.
#include <cstdio>
#include <string>
#include <vector>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"

namespace {

struct FINDING {
  bool is_error;
  int number;
  std::string text;
};

}  // namespace

int main() {
  std::vector<FINDING> findings;
  // A handler runs in the thread that posts; the texts live until it returns. It must not throw.
  sbd_host::set_message_handler([&findings](const sbd_host::MESSAGE& message) {
    const bool is_error = message.severity == sbd_host::SEVERITY::ERROR;
    findings.push_back({is_error, message.number, message.text});
  });
  sbd_host::set_internal_error_handler([](const sbd_host::INTERNAL_ERROR& error) {
    std::fprintf(stderr, "please report: %s (%s:%d)\n", error.condition, error.source, error.line);
  });

  constexpr char text[] = "device board {\n  size = ;\n  chip = qmxa1;\n}\n";
  SBD_FILE_PARSER document;
  const bool is_good = document.read_text(text, sizeof text - 1, "generated");
  for (const FINDING& finding : findings) {
    std::printf("%s %d: %s\n", finding.is_error ? "error" : "warning", finding.number,
                finding.text.c_str());
  }
  // The handler refers to a variable that ends with this function.
  sbd_host::set_message_handler(nullptr);
  return is_good ? 1 : 0;
}
