#include "tools/descriptor.h"

#include "sbd/msg_sbd.h"
#include "tools/finding_printer.h"
#include "tools/input.h"

namespace sbd_tool {

namespace {

// What the library would have said, had it opened the file itself.
void post_unreadable(const std::string& name) {
  SBD_FILE_PARSER::post_message(MSG_SBD::E::SBD_FILE_ERROR(name.c_str()));
}

}  // namespace

std::unique_ptr<DESCRIPTOR> read_descriptor(const std::string& path, std::size_t finding_limit) {
  auto descriptor = std::make_unique<DESCRIPTOR>();
  INPUT input = read_input(path);
  descriptor->name = std::move(input.name);
  descriptor->source = std::move(input.bytes);

  const FINDING_COLLECTOR collector(descriptor->document, finding_limit, descriptor->findings);
  if (!input.failure.empty()) {
    post_unreadable(descriptor->name);
    for (FINDING& finding : descriptor->findings.list) finding.note = input.failure;
    return descriptor;
  }
  const bool is_faultless = descriptor->document.read_text(
      descriptor->source.data(), descriptor->source.size(), descriptor->name.c_str());
  descriptor->outcome = is_faultless ? EXIT_FINE : EXIT_FAULTS;
  return descriptor;
}

std::unique_ptr<DESCRIPTOR> read_faultless(SESSION& session, const std::string& path,
                                           COLOR_CHOICE colors) {
  auto descriptor = read_descriptor(path, k_default_finding_limit);
  print_findings(session.err(), make_painter(colors, session.err()), descriptor->name,
                 descriptor->source, descriptor->findings);
  session.note(descriptor->outcome);
  if (descriptor->outcome != EXIT_FINE) return nullptr;
  return descriptor;
}

}  // namespace sbd_tool
