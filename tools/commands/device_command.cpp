#include "tools/commands/device_command.h"

#include <fmt/format.h>

#include <vector>

#include "tools/device_view.h"
#include "tools/finding_printer.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

// Empty, which is then told, when nobody can say which one is meant.
std::string choose_device(SESSION& session, const DESCRIPTOR& descriptor,
                          const std::string& asked) {
  if (!asked.empty()) return asked;
  const std::vector<std::string> names = list_devices(descriptor.document);
  if (names.size() == 1) return names.front();
  const std::string file = make_visible(descriptor.name);
  if (names.empty()) {
    session.complain(fmt::format("{} has no device block", file), EXIT_FAULTS);
  } else {
    session.complain(fmt::format("{} has several device blocks: {}; choose one with --device", file,
                                 make_visible(join_device_names(names))),
                     EXIT_UNUSABLE);
  }
  return {};
}

}  // namespace

void add_device(const COMMAND_SYNTAX& command, std::string& device) {
  command.add_option("--device", "NAME", device,
                     "The device block; needed only if the file has several");
}

std::unique_ptr<DESCRIPTOR> read_device(SESSION& session, const std::string& file,
                                        const std::string& device, COLOR_CHOICE colors) {
  auto descriptor = read_faultless(session, file, colors);
  if (descriptor == nullptr) return nullptr;
  const std::string name = choose_device(session, *descriptor, device);
  if (name.empty()) return nullptr;
  const bool has_parameters = open_device(*descriptor, name, k_default_finding_limit);
  print_findings(session.err(), make_painter(colors, session.err()), descriptor->name,
                 descriptor->source, descriptor->findings);
  session.note(has_parameters ? descriptor->outcome : EXIT_FAULTS);
  return has_parameters ? std::move(descriptor) : nullptr;
}

}  // namespace sbd_tool
