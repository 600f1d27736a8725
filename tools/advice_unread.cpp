#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_veldran_keywords.h"
#include "tools/advice.h"
#include "tools/advice_rules.h"
#include "tools/lookup.h"
#include "tools/names.h"
#include "tools/near_names.h"

namespace sbd_tool {

namespace {

constexpr std::size_t k_most_suggestions = 3;
constexpr std::size_t k_longest_name = 64;

// Words of the format that describe a stripe to people and other programs.
const std::vector<std::string_view>& descriptive_names() {
  static const std::vector<std::string_view> k_names = {SBD_VEL_VANTREL_VERSION,
                                                        SBD_VEL_INPUT_CLOCK_UNITS,
                                                        SBD_VEL_PROGRAMMING_CLOCK_UNITS,
                                                        SBD_VEL_DESIRED_AHB1_CLOCK_FREQUENCY,
                                                        SBD_VEL_DESIRED_AHB1_CLOCK_UNITS,
                                                        SBD_VEL_DESIRED_AHB2_CLOCK_FREQUENCY,
                                                        SBD_VEL_DESIRED_AHB2_CLOCK_UNITS,
                                                        SBD_VEL_DESIRED_SDRAM_CLOCK_FREQUENCY,
                                                        SBD_VEL_DESIRED_SDRAM_CLOCK_UNITS,
                                                        SBD_VEL_DEVICE_NAME,
                                                        SBD_VEL_USE_PLD_TO_STRIPE_BRIDGE,
                                                        SBD_VEL_USE_STRIPE_TO_PLD_BRIDGE,
                                                        SBD_VEL_USE_STRIPE_TO_PLD_INTERRUPTS,
                                                        SBD_VEL_USE_DEBUG_EXTENSIONS,
                                                        SBD_VEL_USE_TRACE_EXTENSIONS};
  return k_names;
}

bool is_descriptive(std::string_view name) {
  const auto& names = descriptive_names();
  return std::any_of(names.begin(), names.end(),
                     [name](std::string_view one) { return equal_ignoring_case(one, name); });
}

// "region" of "region[0]".
std::string_view without_index(std::string_view name) {
  return name.substr(0, name.find('['));
}

// How far a name is from the one it may have been meant for. An index that is left out is next to
// nothing; another index is another thing.
std::size_t distance_between(std::string_view written, std::string_view known) {
  constexpr std::size_t k_unlike = k_longest_name;
  const std::string_view base = without_index(known);
  const bool has_other_index = written.size() != without_index(written).size() &&
                               equal_ignoring_case(without_index(written), base);
  if (has_other_index) return k_unlike;
  if (equal_ignoring_case(written, base)) return 0;
  return edit_distance(written, known);
}

class UNREAD_ADVICE {
 public:
  UNREAD_ADVICE(const SBD_VELDRAN& device, const STRIPE_CONTENTS& contents)
      : m_device(device), m_contents(contents), m_names(names_of_chip(device.get_chip_type())) {
    device.get_chip_type_name(m_chip);
  }

  FINDING make(const UNREAD_NODE& unread) const {
    FINDING finding;
    SOURCE_RANGE place;
    if (m_device.get_name_range(unread.node, place)) finding.place = place;
    if (unread.node->type == NODE::NT_BLOCK) {
      describe_block(unread, finding);
    } else {
      finding.parameter = unread.name;
      describe_parameter(unread, finding);
    }
    return finding;
  }

 private:
  // Blocks of other types say what the stripe is made of.
  static bool holds_settings(const SBD_FILE_PARSER::SBD_BLOCK& block) {
    using BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
    return block.block_type == BLOCK::BT_PARAMETERS || block.block_type == BLOCK::BT_REGION;
  }

  void describe_block(const UNREAD_NODE& unread, FINDING& finding) const {
    const std::vector<std::string> near = find_near(unread.name, m_names.blocks);
    const bool is_setting = !near.empty() || holds_settings(*unread.node->block);
    finding.severity = is_setting ? SEVERITY::WARNING : SEVERITY::INFO;
    finding.key = is_setting ? k_unknown_block_key : k_not_read_key;
    finding.text = is_setting
                       ? fmt::format(
                             "Nothing looks at block \"{}\" and what is in it: {} has none of that "
                             "name",
                             unread.name, m_chip.c_str())
                       : fmt::format("The device does not depend on block \"{}\"", unread.name);
    propose(near, finding);
  }

  void describe_parameter(const UNREAD_NODE& unread, FINDING& finding) const {
    const std::string_view last = last_of(unread.name);
    std::vector<std::string> near;
    const bool is_description = is_descriptive(last);
    if (!is_description) near = find_near(unread.name, m_names.parameters);
    if (!is_description && near.empty()) name_elsewhere(last, finding);
    // References say how things belong together, which is for readers as well.
    const bool is_reference =
        unread.node->statement->type == SBD_FILE_PARSER::SBD_STATEMENT::ST_REFERENCE;
    const bool is_known = is_description || (is_reference && near.empty() && finding.mend.empty());
    finding.severity = is_known ? SEVERITY::INFO : SEVERITY::WARNING;
    finding.key = is_known ? k_not_read_key : k_unknown_parameter_key;
    finding.text = is_known
                       ? fmt::format("The device does not depend on parameter \"{}\"", unread.name)
                       : fmt::format("Nothing looks at parameter \"{}\": {} has none of that name",
                                     unread.name, m_chip.c_str());
    propose(near, finding);
  }

  // The names of the same block that are nearest, if they are near.
  std::vector<std::string> find_near(std::string_view name,
                                     const std::set<std::string, std::less<>>& known) const {
    std::vector<std::string> near;
    const std::string_view last = last_of(name);
    if (last.size() > k_longest_name) return near;
    std::size_t nearest = (last.size() + 1) / 3;
    for (const std::string& one : known) {
      const bool is_same_block = equal_ignoring_case(block_of(one), block_of(name));
      if (!is_same_block) continue;
      const std::size_t distance = distance_between(last, last_of(one));
      if (distance > nearest) continue;
      if (distance < nearest) near.clear();
      nearest = distance;
      near.push_back(one);
    }
    return near;
  }

  // A parameter of that very name may belong to another block.
  void name_elsewhere(std::string_view last, FINDING& finding) const {
    std::vector<std::string> names;
    for (const std::string& one : m_names.parameters) {
      if (equal_ignoring_case(last_of(one), last)) names.push_back(one);
    }
    if (names.size() <= k_most_suggestions) finding.mend = ask_for(names);
  }

  // What is stated already can't have been meant.
  void propose(const std::vector<std::string>& near, FINDING& finding) const {
    std::vector<std::string> names;
    for (const std::string& one : near) {
      const bool is_free = m_contents.present.count(one) == 0;
      if (is_free && names.size() < k_most_suggestions) names.emplace_back(last_of(one));
    }
    if (!names.empty()) {
      finding.mend = ask_for(names);
      if (names.size() == 1) finding.replacement = names.front();
    } else if (!near.empty()) {
      finding.note = fmt::format("\"{}\" is stated as well", near.front());
    }
  }

  const SBD_VELDRAN& m_device;
  const STRIPE_CONTENTS& m_contents;
  const CHIP_NAMES& m_names;
  SBD_STRING m_chip;
};

}  // namespace

void advise_unread(const SBD_VELDRAN& device, const STRIPE_CONTENTS& contents,
                   std::vector<FINDING>& advice) {
  const UNREAD_ADVICE unread(device, contents);
  for (const UNREAD_NODE& node : contents.unread) advice.push_back(unread.make(node));
}

}  // namespace sbd_tool
