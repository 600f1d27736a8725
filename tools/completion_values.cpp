#include "tools/completion_values.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <system_error>

#include "tools/advice.h"
#include "tools/descriptor.h"
#include "tools/device_view.h"
#include "tools/message_help.h"
#include "tools/names.h"
#include "tools/near_names.h"
#include "tools/notation.h"
#include "tools/parameter_help.h"
#include "tools/parameter_kind.h"
#include "tools/starter.h"
#include "tools/value_meaning.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

using CANDIDATES = std::vector<CANDIDATE>;

constexpr std::size_t k_description_width = 48;
// Nobody waits for a completion as long as it takes to read more.
constexpr std::uintmax_t k_largest_file = 64U << 20U;

void add(CANDIDATES& candidates, const std::string& word, std::string text,
         std::string_view description) {
  if (!begins_with(text, word)) return;
  candidates.push_back({std::move(text), make_visible(description, k_description_width)});
}

// ---- The file on the line ----------------------------------------------------------------------

// The file that the command is about; null where it can't be read. Pipes are left to the command.
std::unique_ptr<DESCRIPTOR> read_file(const VALUE_QUESTION& question) {
  if (question.positionals.empty()) return nullptr;
  const std::string& path = question.positionals.front();
  std::error_code failure;
  if (!std::filesystem::is_regular_file(path, failure)) return nullptr;
  if (std::filesystem::file_size(path, failure) > k_largest_file || failure) return nullptr;
  auto descriptor = read_descriptor(path, 1);
  return descriptor->outcome == EXIT_FINE ? std::move(descriptor) : nullptr;
}

std::string outer_of(const std::string& name) {
  return name.substr(0, name.rfind('.') + 1);
}

// A block of a name with a dot behind it; null for none.
const NODE* find_block(const SBD_FILE_PARSER& document, const std::string& outer) {
  if (outer.empty()) return nullptr;
  const NODE* const node = find_node(document, outer.substr(0, outer.size() - 1), nullptr);
  return node != nullptr && node->type == NODE::NT_BLOCK ? node : nullptr;
}

bool has_blocks(const NODE& block) {
  for (const NODE* member = block.block->members; member != nullptr; member = member->next) {
    if (member->type == NODE::NT_BLOCK) return true;
  }
  return false;
}

std::string describe(const SBD_FILE_PARSER& document, const NODE& node) {
  if (node.type == NODE::NT_BLOCK) return node.block->type;
  if (node.statement->type == STATEMENT::ST_REFERENCE) return "reference";
  return get_notation(document, *node.statement->value);
}

void add_node(CANDIDATES& candidates, const std::string& word, const std::string& name,
              const SBD_FILE_PARSER& document, const NODE& node, WANTED wanted) {
  const bool is_block = node.type == NODE::NT_BLOCK;
  const std::string description = describe(document, node);
  if (is_wanted(node, wanted)) add(candidates, word, name, description);
  const bool has_more = is_block && (wanted != WANTED::BLOCK || has_blocks(node));
  if (has_more) add(candidates, word, name + '.', description);
}

// Full names, block by block, as paths are completed.
void add_names(CANDIDATES& candidates, const SBD_FILE_PARSER& document, const std::string& word,
               WANTED wanted) {
  const NODE* const block = find_block(document, outer_of(word));
  if (block == nullptr && !outer_of(word).empty()) return;
  const NODE* node = block != nullptr ? block->block->members : document.get_parser_para().root;
  const std::string outer = block != nullptr ? full_name(document, *block) + '.' : std::string();
  for (; node != nullptr; node = node->next) {
    if (node->type == NODE::NT_COMMENT) continue;
    add_node(candidates, word, outer + std::string(declared_name(*node)), document, *node, wanted);
  }
}

COMPLETION complete_names(const VALUE_QUESTION& question, WANTED wanted) {
  COMPLETION completion;
  const auto descriptor = read_file(question);
  if (descriptor == nullptr) return completion;
  add_names(completion.candidates, descriptor->document, question.word, wanted);
  return completion;
}

COMPLETION give_names(const VALUE_QUESTION& question) {
  return complete_names(question, WANTED::ANY);
}

COMPLETION give_blocks(const VALUE_QUESTION& question) {
  return complete_names(question, WANTED::BLOCK);
}

COMPLETION give_parameters(const VALUE_QUESTION& question) {
  return complete_names(question, WANTED::PARAMETER);
}

COMPLETION give_devices(const VALUE_QUESTION& question) {
  COMPLETION completion;
  const auto descriptor = read_file(question);
  if (descriptor == nullptr) return completion;
  for (const std::string& name : list_devices(descriptor->document)) {
    add(completion.candidates, question.word, name, "device");
  }
  return completion;
}

// The NAME that the command is about; empty where it is not given yet.
std::string find_name(const VALUE_QUESTION& question) {
  const auto& arguments = question.command->positionals;
  for (std::size_t i = 0; i != arguments.size() && i != question.positionals.size(); ++i) {
    if (arguments[i].name() == "NAME") return question.positionals[i];
  }
  return {};
}

// Members of the block that the name is in: by their own names, as nobody has to type more.
COMPLETION give_siblings(const VALUE_QUESTION& question) {
  COMPLETION completion;
  const auto descriptor = read_file(question);
  if (descriptor == nullptr) return completion;
  const SBD_FILE_PARSER& document = descriptor->document;
  const NODE* const block = find_block(document, outer_of(find_name(question)));
  const NODE* node = block != nullptr ? block->block->members : nullptr;
  for (; node != nullptr; node = node->next) {
    if (node->type == NODE::NT_COMMENT) continue;
    add(completion.candidates, question.word, std::string(declared_name(*node)),
        describe(document, *node));
  }
  return completion;
}

// ---- Devices in it -----------------------------------------------------------------------------

// Opens the device block with the stripe that the name is inside of; the rest of the name is
// relative to the stripe's module.
bool open_stripe_of(DESCRIPTOR& descriptor, const std::string& name, std::string& rest) {
  for (const std::string& device : list_devices(descriptor.document)) {
    if (!begins_with(name, device + '.') || !open_device(descriptor, device, 1)) continue;
    SBD_STRING module;
    if (!descriptor.document.get_module_ref_name(module)) continue;
    const std::string beginning = std::string(module) + '.';
    if (!begins_with(name, beginning)) continue;
    rest = name.substr(beginning.size());
    return true;
  }
  return false;
}

// The parameters of the chip that the block could state, and does not.
void add_possible_parameters(CANDIDATES& candidates, DESCRIPTOR& descriptor,
                             const std::string& word) {
  const NODE* const node = find_block(descriptor.document, outer_of(word));
  if (node == nullptr) return;
  const std::string outer = full_name(descriptor.document, *node) + '.';
  std::string block;
  if (!open_stripe_of(descriptor, outer, block)) return;
  SBD_STRING chip;
  descriptor.document.get_chip_type_name(chip);
  for (const std::string& name : list_all_parameters(fold_case(chip))) {
    if (fold_case(outer_of(name)) != fold_case(block)) continue;
    const std::string full = outer + name.substr(block.size());
    if (find_node(descriptor.document, full, nullptr) != nullptr) continue;
    add(candidates, word, full, "new");
  }
}

COMPLETION give_settable(const VALUE_QUESTION& question) {
  COMPLETION completion;
  const auto descriptor = read_file(question);
  if (descriptor == nullptr) return completion;
  add_names(completion.candidates, descriptor->document, question.word, WANTED::PARAMETER);
  add_possible_parameters(completion.candidates, *descriptor, question.word);
  return completion;
}

// What the rules of the chip allow, where that is a list.
std::vector<std::string> list_allowed(DESCRIPTOR& descriptor, const std::string& name) {
  std::string reference;
  SBD_PARAMETER_RULE rule;
  std::vector<std::string> values;
  if (!open_stripe_of(descriptor, name, reference)) return values;
  const auto chip = descriptor.document.get_chip_type();
  if (!sbd_get_parameter_rule(chip, reference.c_str(), rule)) return values;
  if (rule.type == PARAMETER_VALUE::BOOL_VALUE) return {"true", "false"};
  if (rule.value_rule == nullptr) return values;
  const SBD_VALUE_SET& set = rule.value_rule->values;
  for (std::size_t i = 0; i != set.count; ++i) {
    values.push_back(set.kind == SBD_VALUE_SET::VS_TEXTS ? set.texts[i]
                                                         : std::to_string(set.numbers[i]));
  }
  return values;
}

// Of "set": the present value, and what else it may be.
COMPLETION give_values(const VALUE_QUESTION& question) {
  COMPLETION completion;
  const auto descriptor = read_file(question);
  if (descriptor == nullptr) return completion;
  const std::string& name = question.positionals.back();
  const NODE* const node = find_node(descriptor->document, name, nullptr);
  std::vector<std::string> values = list_allowed(*descriptor, name);
  const bool is_assignment = node != nullptr && node->type == NODE::NT_STATEMENT &&
                             node->statement->type == STATEMENT::ST_ASSIGNMENT;
  if (is_assignment) {
    const VALUE& value = *node->statement->value;
    const std::string present = get_notation(descriptor->document, value);
    // A candidate has to fit on a line.
    const bool is_plain = make_visible(present) == present;
    if (is_plain) add(completion.candidates, question.word, present, "present value");
    if (value.type == VALUE::VT_BOOL && values.empty()) values = {"true", "false"};
    values.erase(std::remove(values.begin(), values.end(), present), values.end());
  }
  for (const std::string& value : values) add(completion.candidates, question.word, value, "");
  return completion;
}

// ---- Names that need no file -------------------------------------------------------------------

// Names with dots, part by part; the parts in front are blocks, which may be meant as well.
void add_dotted(CANDIDATES& candidates, const std::vector<std::string>& names,
                const std::string& word) {
  const std::size_t begin = outer_of(word).size();
  std::set<std::string> blocks;
  for (const std::string& name : names) {
    if (!begins_with(name, word)) continue;
    const std::size_t dot = name.find('.', begin);
    const std::string text = name.substr(0, dot);
    if (dot == std::string::npos) {
      add(candidates, word, text, "parameter");
    } else if (blocks.insert(text).second) {
      add(candidates, word, text, "block");
      add(candidates, word, text + '.', "block");
    }
  }
}

COMPLETION give_topics(const VALUE_QUESTION& question) {
  COMPLETION completion;
  add_dotted(completion.candidates, list_all_parameters(question.find_option("--chip")),
             question.word);
  for (const MESSAGE_HELP& message : list_messages()) {
    add(completion.candidates, question.word, message.key, message.title);
  }
  return completion;
}

COMPLETION give_patterns(const VALUE_QUESTION& question) {
  COMPLETION completion;
  std::string chip;
  const auto descriptor = read_file(question);
  if (descriptor != nullptr) {
    const std::vector<std::string> devices = list_devices(descriptor->document);
    const std::string asked = question.find_option("--device");
    const std::string device = asked.empty() && !devices.empty() ? devices.front() : asked;
    SBD_STRING name;
    if (open_device(*descriptor, device, 1) && descriptor->document.get_chip_type_name(name)) {
      chip = fold_case(name);
    }
  }
  add_dotted(completion.candidates, list_all_parameters(chip), question.word);
  return completion;
}

COMPLETION give_codes(const VALUE_QUESTION& question) {
  COMPLETION completion;
  for (const std::string_view key : list_advice_keys()) {
    const MESSAGE_HELP* const message = find_message(key);
    add(completion.candidates, question.word, std::string(key),
        message != nullptr ? message->title : "");
  }
  return completion;
}

COMPLETION give_block_types(const VALUE_QUESTION& question) {
  COMPLETION completion;
  for (const char* const type :
       {"device", "bus", "module", "slave", "master", "region", "parameters"}) {
    add(completion.candidates, question.word, type, "type of block");
  }
  return completion;
}

// The last one of a list with commas in between.
COMPLETION give_features(const VALUE_QUESTION& question) {
  COMPLETION completion;
  const std::size_t begin = question.word.rfind(',') + 1;
  const std::string front = question.word.substr(0, begin);
  const std::string last = question.word.substr(begin);
  const std::string chip = question.find_option("--chip");
  const std::vector<std::string> available =
      chip.empty() ? std::vector<std::string>() : list_chip_features(chip);
  for (const STARTER_FEATURE& feature : starter_features()) {
    const bool is_available = chip.empty() || std::find(available.begin(), available.end(),
                                                        feature.name) != available.end();
    const bool is_given =
        (',' + front).find(',' + std::string(feature.name) + ',') != std::string::npos;
    if (is_available && !is_given) {
      add(completion.candidates, question.word, front + feature.name, feature.description);
    }
  }
  if (front.empty()) add(completion.candidates, question.word, "all", "all that the chip has");
  return completion;
}

COMPLETION give_clocks(const VALUE_QUESTION& question) {
  COMPLETION completion;
  for (const char* const clock : {"ahb1", "ahb2", "sdram"}) {
    add(completion.candidates, question.word, std::string(clock) + '=', "wanted frequency");
  }
  return completion;
}

COMPLETION give_descriptors(const VALUE_QUESTION&) {
  return {COMPLETION::FILES::DESCRIPTORS, {}};
}

COMPLETION give_files(const VALUE_QUESTION&) {
  return {COMPLETION::FILES::ANY, {}};
}

COMPLETION give_nothing(const VALUE_QUESTION&) {
  return {};
}

// ---- Who gives what ----------------------------------------------------------------------------

struct VALUE_SOURCE {
  const char* command;   // Path; empty for all commands.
  const char* argument;  // Name of an option, or what help calls the value.
  COMPLETION (*give)(const VALUE_QUESTION& question);
};

// The first row that fits counts.
constexpr VALUE_SOURCE k_sources[] = {
    {"", "FILE", give_descriptors},
    {"", "FILE-OR-FOLDER", give_descriptors},
    {"", "OLD", give_descriptors},
    {"", "NEW", give_descriptors},
    {"", "OUT", give_files},
    {"", "EDITS", give_files},
    {"", "--device", give_devices},
    {"sbd new", "--name", give_nothing},
    {"", "--scope", give_blocks},
    {"sbd get", "NAME", give_parameters},
    {"sbd set", "NAME", give_settable},
    {"sbd set", "VALUE", give_values},
    {"sbd unset", "NAME", give_parameters},
    {"sbd ref", "NAME", give_parameters},
    {"sbd attr", "NAME", give_parameters},
    {"sbd block add", "NAME", give_blocks},
    {"sbd block remove", "NAME", give_blocks},
    {"", "NAME", give_names},
    {"", "TARGET", give_names},
    {"", "SIBLING", give_siblings},
    {"", "NEW_NAME", give_nothing},
    {"", "ATTRIBUTE", give_nothing},
    {"", "NAME=VALUE", give_nothing},
    {"", "TYPE", give_block_types},
    {"", "CODE", give_codes},
    {"", "TOPIC", give_topics},
    {"", "PATTERN", give_patterns},
    {"", "FEATURES", give_features},
    {"", "CLOCK=FREQUENCY", give_clocks},
    {"", "N", give_nothing},
    {"", "PPM", give_nothing},
};

const VALUE_SOURCE* find_source(const COMMAND_DESCRIPTION& command,
                                const ARGUMENT_DESCRIPTION& argument,
                                const std::string& value_name) {
  for (const VALUE_SOURCE& source : k_sources) {
    const std::string_view path = source.command;
    const std::string_view name = source.argument;
    const bool is_meant =
        name == value_name || (!argument.is_positional() && name == argument.name());
    if ((path.empty() || path == command.path) && is_meant) return &source;
  }
  return nullptr;
}

}  // namespace

std::string VALUE_QUESTION::find_option(const std::string& name) const {
  for (const GIVEN_OPTION& given : options) {
    if (given.option->name() == name) return given.value;
  }
  return {};
}

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() &&
         equal_ignoring_case(text.substr(0, beginning.size()), beginning);
}

bool has_value_source(const COMMAND_DESCRIPTION& command, const ARGUMENT_DESCRIPTION& argument,
                      const std::string& value_name) {
  return !argument.choices.empty() || find_source(command, argument, value_name) != nullptr;
}

COMPLETION complete_value(const VALUE_QUESTION& question) {
  COMPLETION completion;
  for (const std::string& choice : question.argument->choices) {
    add(completion.candidates, question.word, choice, "");
  }
  if (!question.argument->choices.empty()) return completion;
  const VALUE_SOURCE* const source =
      find_source(*question.command, *question.argument, question.value_name);
  return source != nullptr ? source->give(question) : completion;
}

}  // namespace sbd_tool
