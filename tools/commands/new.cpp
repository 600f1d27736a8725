// sbd new: writes a descriptor to begin with.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/commands/command.h"
#include "tools/device_view.h"
#include "tools/input.h"
#include "tools/json_tree.h"
#include "tools/lookup.h"
#include "tools/parameter_help.h"
#include "tools/starter.h"
#include "tools/text_file.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;

constexpr char k_all_features[] = "all";

std::string join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined.append(joined.empty() ? "" : ", ").append(text);
  return joined;
}

std::string make_footer() {
  std::string text =
      "Writes a commented descriptor that keeps the rules of the chip, for you to change. It has\n"
      "what must be stated, and behind \"#\" what may be stated besides, with its default.\n"
      "\n"
      "Features:\n";
  for (const STARTER_FEATURE& feature : starter_features()) {
    text += fmt::format("  {:<12}{}\n", feature.name, feature.description);
  }
  return text +
         "  all         all that the chip has\n"
         "\n"
         "Examples:\n"
         "  sbd new --chip qmxa10 > board.sbd\n"
         "  sbd new --chip qmxa4 --with pll,sdram,uart --name panel -o panel.sbd\n"
         "  sbd new --chip qmxa1 --with all | sbd check -";
}

// A name that the format does not take shows when the result is read.
bool is_right(const std::string& text, const std::string& name) {
  DESCRIPTOR descriptor;
  const FINDING_COLLECTOR collector(descriptor.document, 1, descriptor.findings);
  if (!descriptor.document.read_text(text.data(), text.size(), "new")) return false;
  return list_devices(descriptor.document) == std::vector<std::string>{name} &&
         descriptor.document.select_device(name.c_str()) && descriptor.findings.empty();
}

class NEW_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command = tool.add_command("new", "Write a descriptor to begin with");
    command
        .add_choice(
            "--chip", "CHIP", list_chips(), [this](const std::string& chip) { m_chip = chip; },
            join(list_chips()))
        .required();
    command.add_option("--with", "FEATURES", m_lists,
                       "What it is to have, with commas in between. May be repeated");
    command.add_option("--name", "NAME", m_name, "The name of the device block (board)");
    command.add_option("-o,--output", "OUT", m_output,
                       "Write a new file; without it, or for \"-\", standard output");
    command.add_flag("--json", m_is_json, "Print JSON with the text in it");
    command.set_footer(make_footer());
    return command;
  }

  void run(SESSION& session) override {
    if (!choose_features(session)) return;
    const std::string text = make_starter(m_chip, m_name, m_features);
    if (!is_right(text, m_name)) {
      session.complain(fmt::format("{} can't be the name of a block", quote_name(m_name)),
                       EXIT_UNUSABLE);
      return;
    }
    const bool is_file = !m_output.empty() && m_output != k_standard_input;
    if (is_file && !save(session, text)) return;
    if (m_is_json) {
      print_json(session.out(), text, is_file);
    } else if (!is_file) {
      session.out().write(text);
    }
  }

 private:
  bool choose_features(SESSION& session) {
    const std::vector<std::string> available = list_chip_features(m_chip);
    for (const std::string& list : m_lists) {
      for (std::string_view rest = list; !rest.empty();) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        if (!choose_feature(session, std::string(rest.substr(0, end)), available)) return false;
        rest.remove_prefix(std::min(end + 1, rest.size()));
      }
    }
    return true;
  }

  bool choose_feature(SESSION& session, const std::string& name,
                      const std::vector<std::string>& available) {
    const auto is_chosen = [this](const std::string& feature) {
      return std::find(m_features.begin(), m_features.end(), feature) != m_features.end();
    };
    const bool is_all = name == k_all_features;
    for (const std::string& feature : available) {
      if ((is_all || feature == name) && !is_chosen(feature)) m_features.push_back(feature);
    }
    if (is_all || is_chosen(name)) return true;
    session.complain(fmt::format("{} has no feature {}; it has {}, {}", m_chip, quote_name(name),
                                 join(available), k_all_features),
                     EXIT_UNUSABLE);
    return false;
  }

  // A file that is there already is somebody's work.
  bool save(SESSION& session, const std::string& text) const {
    return write_text_file(session, m_output, text, PRESENT_FILE::STAYS);
  }

  void print_json(OUTPUT& output, const std::string& text, bool is_file) const {
    JSON_WRITER json(output);
    json.begin_object(LAYOUT::LINES);
    json.key("version");
    json.count(k_json_version);
    json.key("chip");
    json.text(m_chip);
    json.key("device");
    json.text(m_name);
    json.key("features");
    json.begin_array(LAYOUT::ONE_LINE);
    for (const std::string& feature : m_features) json.text(feature);
    json.end();
    json.key("written");
    if (is_file) {
      json.text(m_output);
    } else {
      json.null();
    }
    json.key("text");
    json.text(text);
    json.end();
    json.finish();
  }

  std::string m_chip;
  std::vector<std::string> m_lists;
  std::vector<std::string> m_features;
  std::string m_name = "board";
  std::string m_output;
  bool m_is_json = false;
};

}  // namespace

std::unique_ptr<COMMAND> make_new_command() {
  return std::make_unique<NEW_COMMAND>();
}

}  // namespace sbd_tool
