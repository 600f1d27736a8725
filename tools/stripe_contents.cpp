#include "tools/stripe_contents.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <mutex>
#include <utility>

#include "sbd/sbd_veldran_keywords.h"
#include "tools/names.h"

namespace sbd_tool {

namespace {

std::string to_lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

CHIP_NAMES collect_names(SBD_VELDRAN::CHIP_TYPE chip) {
  CHIP_NAMES names;
  SBD_STRING_LIST references;
  sbd_get_parameter_names(chip, references);
  for (const SBD_STRING& reference : references) {
    names.parameters.emplace(reference);
    std::string_view block = block_of(reference);
    for (; !block.empty(); block = block_of(block)) names.blocks.emplace(block);
  }
  return names;
}

class CONTENTS_WALK {
 public:
  explicit CONTENTS_WALK(const SBD_VELDRAN& device)
      : m_device(device), m_names(names_of_chip(device.get_chip_type())) {}

  STRIPE_CONTENTS walk() {
    const std::string module(m_device.get_parameter_reader()->get_module_name());
    const NODE* const stripe = find_node(m_device, module, nullptr);
    if (stripe != nullptr) enter(*stripe, "");
    return std::move(m_contents);
  }

 private:
  // Only blocks that the chip has are entered, so this goes no deeper than their names.
  void enter(const NODE& block, const std::string& path) {
    for (const NODE* node = block.block->members; node != nullptr; node = node->next) {
      if (node->type == NODE::NT_COMMENT) continue;
      const std::string name = path + std::string(declared_name(*node));
      const std::string key = to_lower(name);
      m_contents.present.insert(key);
      if (node->type == NODE::NT_BLOCK) {
        take_block(*node, name, key);
      } else {
        take_statement(*node, name, key);
      }
    }
  }

  void take_block(const NODE& node, const std::string& name, const std::string& key) {
    if (m_names.blocks.count(key) != 0) {
      enter(node, name + ".");
    } else {
      m_contents.unread.push_back({&node, name});
    }
  }

  void take_statement(const NODE& node, const std::string& name, const std::string& key) {
    if (key == SBD_VEL_TYPE) return;  // It made the module the stripe's.
    STATED_PARAMETER parameter;
    parameter.statement = &node;
    const bool is_known =
        sbd_get_parameter_rule(m_device.get_chip_type(), key.c_str(), parameter.rule);
    if (!is_known) {
      m_contents.unread.push_back({&node, name});
      return;
    }
    parameter.view = view_parameter(m_device, key);
    m_contents.parameters.push_back(std::move(parameter));
  }

  const SBD_VELDRAN& m_device;
  const CHIP_NAMES& m_names;
  STRIPE_CONTENTS m_contents;
};

}  // namespace

const CHIP_NAMES& names_of_chip(SBD_VELDRAN::CHIP_TYPE chip) {
  static std::mutex mutex;
  static std::map<SBD_VELDRAN::CHIP_TYPE, CHIP_NAMES> names;
  const std::lock_guard<std::mutex> lock(mutex);
  const auto found = names.find(chip);
  return found != names.end() ? found->second
                              : names.emplace(chip, collect_names(chip)).first->second;
}

std::string_view block_of(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(0, dot);
}

std::string_view last_of(std::string_view name) {
  return name.substr(name.rfind('.') + 1);
}

STRIPE_CONTENTS list_contents(const SBD_VELDRAN& device) {
  return CONTENTS_WALK(device).walk();
}

}  // namespace sbd_tool
