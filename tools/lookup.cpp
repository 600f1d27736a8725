#include "tools/lookup.h"

#include <fmt/format.h>

#include "tools/near_names.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

// Names may be of any length, too.
constexpr std::size_t k_widest_name = 200;

void complain_of_missing(SESSION& session, const DESCRIPTOR& descriptor, const std::string& name,
                         WANTED wanted) {
  const std::string suggestion = suggest_names(descriptor.document, name, wanted);
  session.complain(
      fmt::format("no {} {} in {}{}{}", description_of(wanted), quote_name(name),
                  make_visible(descriptor.name), suggestion.empty() ? "" : "; ", suggestion),
      EXIT_FAULTS);
}

void complain_of_unwanted(SESSION& session, const DESCRIPTOR& descriptor, const NODE& node,
                          WANTED wanted) {
  const std::string_view found = node.type == NODE::NT_BLOCK ? "block" : "parameter";
  session.complain(
      fmt::format("{} in {} is a {}, not a {}", quote_name(full_name(descriptor.document, node)),
                  make_visible(descriptor.name), found, description_of(wanted)),
      EXIT_FAULTS);
}

}  // namespace

std::string quote_name(std::string_view name) {
  return fmt::format("'{}'", make_visible(name, k_widest_name));
}

std::string_view description_of(WANTED wanted) {
  switch (wanted) {
    case WANTED::BLOCK:
      return "block";
    case WANTED::PARAMETER:
      return "parameter";
    case WANTED::ANY:
      break;
  }
  return "block or parameter";
}

std::string ask_for(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "did you mean " : " or ") + quote_name(name);
  }
  return text.empty() ? text : text + "?";
}

std::string suggest_names(const SBD_FILE_PARSER& document, const std::string& name, WANTED wanted) {
  return ask_for(find_near_names(document, name, wanted));
}

const NODE* find_wanted(SESSION& session, const DESCRIPTOR& descriptor, const std::string& name,
                        WANTED wanted) {
  const NODE* const node = find_node(descriptor.document, name, nullptr);
  if (node == nullptr) {
    complain_of_missing(session, descriptor, name, wanted);
    return nullptr;
  }
  if (!is_wanted(*node, wanted)) {
    complain_of_unwanted(session, descriptor, *node, wanted);
    return nullptr;
  }
  return node;
}

}  // namespace sbd_tool
