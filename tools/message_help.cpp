#include "tools/message_help.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "tools/advice.h"
#include "tools/device_view.h"
#include "tools/near_names.h"

namespace sbd_tool {

namespace {

using EXAMPLE = MESSAGE_HELP::EXAMPLE;

constexpr char k_not_posted[] =
    "This library and this tool do not report it; the number is kept for programs that work with "
    "descriptors.";

constexpr MESSAGE_HELP k_messages[] = {
    {1, "ESBD_SBD_FILE_ERROR", "a file can't be opened or written",
     "The file does not exist, is a directory, may not be read or written by this user, has 4 "
     "GiB or more, or there is no room for it. The note behind the message says which, where the "
     "system tells.",
     "Look at the spelling of the path, at the permissions of the file and its directory, and at "
     "the free space.",
     EXAMPLE::COMMAND, "sbd check bord.sbd\n", "sbd check board.sbd\n"},
    {2, "ESBD_SBD_SYNTAX_ERROR", "the text breaks off from the form of a descriptor",
     "The word that the message quotes can't stand where it does; nothing at all is quoted at "
     "the end of the file. What is wrong is this word or the one in front of it, often a missing "
     "\";\" or \"}\", a blank between a number and its unit, or a digit that the base of a "
     "number "
     "does not have.",
     "Put the statement right: NAME = VALUE; or NAME < TARGET >; where a VALUE is a number such "
     "as 32, 64K, 50MHz or 0x40, true, false, a word, a \"text\" or a list {1, 2}. Mend the "
     "first "
     "message first; others may go with it.",
     EXAMPLE::FILE, "device board\n{\n    clock = 50 MHz;\n    width = 32\n    size = 64K;\n}\n",
     "device board\n{\n    clock = 50MHz;\n    width = 32;\n    size = 64K;\n}\n"},
    {3, "ESBD_SBD_DECLARATION_ERROR", "a name is declared twice in its block",
     "Blocks and parameters of one block share their names, and letter case makes no difference. "
     "The message is about the second declaration.",
     "Remove one of the two, or give it another name. Names that differ in an index, such as "
     "region[0] and region[1], are different names.",
     EXAMPLE::FILE, "device board\n{\n    width = 16;\n    Width = 32;\n}\n",
     "device board\n{\n    width = 32;\n}\n"},
    {4, "ESBD_SBD_REFERENCE_ERROR", "a reference leads nowhere",
     "The name between \"<\" and \">\" is that of no block and no parameter. Names are looked "
     "for "
     "from the top level down; one that begins with a dot is looked for in the block of the "
     "statement.",
     "Write the full name of the target, such as board.stripe.clocks, or .divider for a "
     "neighbour "
     "of the statement. sbd list --parameters shows the names of a file without faults.",
     EXAMPLE::FILE, "device board\n{\n    clock = 50MHz;\n    source < board.clok >;\n}\n",
     "device board\n{\n    clock = 50MHz;\n    source < board.clock >;\n}\n"},
    {5, "ESBD_SBD_BLOCK_ERROR", "a block has no known type or stands in the wrong place",
     "Known types are device, bus, module, slave, master, region and parameters. A device block "
     "stands at the top level, and nothing else does.",
     "Look at the spelling of the type, and at the braces in front of the block: one too many "
     "closes the device too early.",
     EXAMPLE::FILE, "device board\n{\n    memory ram\n    {\n        size = 64K;\n    }\n}\n",
     "device board\n{\n    region ram\n    {\n        size = 64K;\n    }\n}\n"},
    {6, "ESBD_SBD_VEL_DEVICE_ERROR", "the device block can't be used",
     "There is no device block of the name that was asked for, its type is missing or is that of "
     "no known chip, or the chip is not one of the family that the block states.",
     "State family and type in the device block. Family veldran_arm has the chips qmxa1, qmxa4 "
     "and qmxa10; family veldran_mips has qmxm1, qmxm4 and qmxm10.",
     EXAMPLE::FILE, "device board\n{\n    family = veldran_arm;\n    type = qmxm10;\n}\n",
     "device board\n{\n    family = veldran_arm;\n    type = qmxa10;\n}\n"},
    {7, "ESBD_SBD_VEL_MODULE_ERROR", "the device has several stripe modules",
     "A device has one stripe, and so one module block with the type veldran_stripe. As long as "
     "there are several, nobody knows which one counts, and the parameters are not checked.",
     "Remove all but one of these modules, or give the others another type.", EXAMPLE::FILE,
     "device board\n{\n    family = veldran_arm;\n    type = qmxa10;\n"
     "    module stripe { type = veldran_stripe; }\n"
     "    module spare { type = veldran_stripe; }\n}\n",
     "device board\n{\n    family = veldran_arm;\n    type = qmxa10;\n"
     "    module stripe { type = veldran_stripe; }\n"
     "    module spare { type = unused; }\n}\n"},
    {8, "ESBD_SBD_ERROR", "an error in the words of a program", k_not_posted,
     "Read the text of the message, and the manual of the program that posts it.", EXAMPLE::NONE,
     nullptr, nullptr},
    {9, "WSBD_SBD_WARNING", "a warning in the words of a program", k_not_posted,
     "Read the text of the message, and the manual of the program that posts it.", EXAMPLE::NONE,
     nullptr, nullptr, SEVERITY::WARNING},
    {10, "ESBD_SBD_NO_DEVICE_BLOCK_ERROR", "there is no device block",
     "A program needs a device block and the file has none. This library and this tool do not "
     "report it: without device blocks they check the format alone.",
     "Put what describes the board into a device block.", EXAMPLE::NONE, nullptr, nullptr},
    {11, "ESBD_SBD_VELDRAN_MODULE_BLOCK_ERROR", "there is not exactly one stripe module",
     "A program needs the one module block with the type veldran_stripe of an ARM-based device, "
     "and there is none or several. This library reports several as ESBD_SBD_VEL_MODULE_ERROR, "
     "and this tool none as TOOL_NO_STRIPE_MODULE.",
     "Keep one module block with type = veldran_stripe; in the device block.", EXAMPLE::NONE,
     nullptr, nullptr},
    {12, "ESBD_SBD_PARAMETER_MISSING_ERROR", "a required parameter is not stated",
     "The rules of the chip want the file to state the parameter, always or because of another "
     "setting, which the note names. A default does not stand in for a required parameter.",
     "State the parameter in its block, which the message marks or which has to be added, or "
     "change the setting that makes it required. sbd explain with the parameter's name tells its "
     "rules.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n"
     "    pll_ahb_n = 1;\n    pll_ahb_k = 2;\n    pll_sdram_bypass = true;\n}\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_m = 8;\n"
     "    pll_ahb_n = 1;\n    pll_ahb_k = 2;\n    pll_sdram_bypass = true;\n}\n"},
    {13, "ESBD_SBD_PARAMETER_VALUE_ERROR", "the value of a parameter is not valid",
     "The value is out of range, is none of the known words, or is of another kind: a number "
     "where true or false is wanted, a word in quotes, a list. A word that has no default and is "
     "not stated is not valid either. The note says what is valid on the chip.",
     "State a valid value. The unit of a number counts: 1K is 1024. sbd explain with the "
     "parameter's name tells its rules.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_m = 16;\n"
     "    pll_ahb_n = 1;\n    pll_ahb_k = 2;\n    pll_sdram_bypass = \"true\";\n}\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_m = 15;\n"
     "    pll_ahb_n = 1;\n    pll_ahb_k = 2;\n    pll_sdram_bypass = true;\n}\n"},
    {14, "ESBD_UNSUPPORTED_FAMILY_ERROR", "the device block states an unknown family",
     "There are the families veldran_arm and veldran_mips, written without quotes.",
     "State the family that the chip belongs to.", EXAMPLE::FILE,
     "device board\n{\n    family = \"veldran_arm\";\n    type = qmxa10;\n}\n",
     "device board\n{\n    family = veldran_arm;\n    type = qmxa10;\n}\n"},
    {15, "ESBD_FAMILY_NOT_DEFINED_ERROR", "the device block states no family",
     "The rules depend on the family of the chip, so the device block has to state it as a word.",
     "State the family in the device block: veldran_arm or veldran_mips.", EXAMPLE::FILE,
     "device board\n{\n    type = qmxa10;\n}\n",
     "device board\n{\n    family = veldran_arm;\n    type = qmxa10;\n}\n"},
    {0, k_no_rules_key, "there are no rules for the chip",
     "The chips qmxm1, qmxm4 and qmxm10 of family veldran_mips are known, but not what "
     "parameters "
     "their stripe has. The device block can't be validated; a program that reads it through the "
     "library's device layer is refused, too.",
     "Nothing is wrong with the file as such: check it with --format-only, or name the other "
     "devices of the file with --device.",
     EXAMPLE::COMMAND, "sbd check rack.sbd\n",
     "sbd check --device control_board --device io_board rack.sbd\n"},
    {0, k_no_stripe_key, "the device has no stripe module",
     "Parameters are looked for in the one module block with the type veldran_stripe. The device "
     "block has none, so nothing but its family and type was checked.",
     "State the type in the module that describes the stripe, as a word without quotes. A file "
     "that is meant to have none is checked with --format-only.",
     EXAMPLE::FILE,
     "device board\n{\n    family = veldran_arm;\n    type = qmxa10;\n"
     "    module stripe { endian = little; }\n}\n",
     "device board\n{\n    family = veldran_arm;\n    type = qmxa10;\n"
     "    module stripe { type = veldran_stripe; endian = little; }\n}\n",
     SEVERITY::WARNING},
    {0, k_unknown_parameter_key, "nothing looks at a parameter",
     "The stripe's module has a parameter that the device does not know in this block, so what it "
     "says is ignored without a word, and a default may count in its place. Mostly the name is "
     "misspelled, or the parameter stands in the wrong block.",
     "Correct the name, or move the parameter to its block. sbd explain with the block's name "
     "lists what it has. A parameter that is there for other programs is waived with a comment.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    ahb1_divde = 8;\n    pll_sdram_bypass = true;\n}\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    ahb1_divide = 8;\n    pll_sdram_bypass = true;\n}\n",
     SEVERITY::WARNING},
    {0, k_unknown_block_key, "nothing looks at a block",
     "The stripe's module has a block whose name the device does not know in this place. All that "
     "is in it is ignored without a word, as if the block were not there.",
     "Correct the name, or move the block. A block that is there for other programs is waived with "
     "a comment.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_sdram_bypass = true;\n}\nparameters urat { enabled = false; }\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_sdram_bypass = true;\n}\nparameters uart { enabled = false; }\n",
     SEVERITY::WARNING},
    {0, k_not_read_key, "the device does not depend on a parameter or block",
     "The name is one that the format uses to describe a stripe, the statement is a reference, or "
     "the block says what the stripe is made of; people and other programs may read it. What the "
     "device is set to does not depend on it.",
     "Nothing has to be done. What is meant to change a setting has to be stated in the parameter "
     "of that setting.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    desired_ahb1_clock_frequency = 6250000;\n    pll_sdram_bypass = true;\n}\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    ahb1_divide = 4;\n    pll_sdram_bypass = true;\n}\n",
     SEVERITY::INFO},
    {0, k_windows_overlap_key, "two enabled memory windows overlap",
     "An address that belongs to both windows can be answered by one of them only. Windows that "
     "are disabled, or whose controller is, do not count.",
     "Move one of the windows, make it smaller, or disable it. sbd params with '*.address_*' shows "
     "where they are.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_sdram_bypass = true;\n}\nregion sram[0] { address_base = 0x20000000; address_size = "
     "128K; }\n"
     "region sram[1] { address_base = 0x20010000; address_size = 128K; }\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_sdram_bypass = true;\n}\nregion sram[0] { address_base = 0x20000000; address_size = "
     "128K; }\n"
     "region sram[1] { address_base = 0x20020000; address_size = 128K; }\n",
     SEVERITY::WARNING},
    {0, k_window_end_key, "a memory window ends beyond 4 GiB",
     "Addresses have 32 bits. What a window has beyond the last one, 0xFFFFFFFF, can't be reached; "
     "of a base or size of 4 GiB or more, the device takes the low 32 bits only.",
     "Move the window to a lower address, or make it smaller.", EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_sdram_bypass = true;\n}\nregion pld[0] { address_base = 0xFFFF0000; address_size = "
     "128K; }\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_sdram_bypass = true;\n}\nregion pld[0] { address_base = 0xFFFE0000; address_size = "
     "128K; }\n",
     SEVERITY::WARNING},
    {0, k_no_effect_key, "settings have no effect",
     "Another setting, which the note names, makes these void: their controller is disabled, a PLL "
     "is bypassed, or a mode does without them. The first of them is marked.",
     "Remove them, or change the setting that makes them void. Values that are kept on purpose are "
     "waived with a comment.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_ahb_m = 8;\n    pll_sdram_bypass = true;\n}\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_sdram_bypass = true;\n}\n",
     SEVERITY::WARNING},
    {0, k_default_key, "a parameter states its default",
     "The value is the one that counts without the statement.",
     "Nothing has to be done: stating a default may make a descriptor clearer. Otherwise remove "
     "the statement, but not the last one of its block, whose presence counts.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    ahb1_divide = 2;\n    pll_sdram_bypass = true;\n}\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_sdram_bypass = true;\n}\n",
     SEVERITY::INFO},
    {0, k_value_changes_key, "a value changes with the chip",
     "With --chip, the device is checked as if it had another chip. This parameter is not stated, "
     "and the default of that chip is another one, so the device would be set up differently, "
     "though nothing breaks.",
     "State the parameter, if the value matters.", EXAMPLE::COMMAND,
     "sbd check --chip qmxa1 board.sbd\n", "sbd set board.sbd board.stripe.trace.enabled false\n",
     SEVERITY::WARNING},
    {0, k_idle_waiver_key, "a waiver matches nothing",
     "A comment waives advice that is not given in its scope: the statement or block that follows "
     "it, the block that it opens, or its line.",
     "Remove the comment, or put it where the advice is.", EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_ahb_m = 8;\n"
     "    # sbd: allow TOOL_NO_EFFECT - values of the bench\n    pll_sdram_bypass = true;\n}\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    # sbd: allow TOOL_NO_EFFECT - values of the bench\n"
     "    pll_ahb_m = 8;\n    pll_sdram_bypass = true;\n}\n",
     SEVERITY::WARNING},
    {0, k_faulty_waiver_key, "a waiver is not well formed",
     "Comments that begin with \"sbd:\" are waivers. This one has no code, no reason, or a code "
     "that is no advice: errors can't be waived. It is not heeded.",
     "Write it as # sbd: allow CODE - reason, with several codes as CODE, CODE. The reason is for "
     "those who wonder later.",
     EXAMPLE::FRAGMENT,
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_ahb_m = 8;   # sbd: allow TOOL_NO_EFFECT\n    pll_sdram_bypass = true;\n}\n",
     "parameters clocks\n{\n    input_clock_frequency = 25MHz;\n    pll_ahb_bypass = true;\n"
     "    pll_ahb_m = 8;   # sbd: allow TOOL_NO_EFFECT - values of the bench\n    pll_sdram_bypass "
     "= true;\n}\n",
     SEVERITY::WARNING}};

bool is_key(std::string_view key, std::string_view topic) {
  if (equal_ignoring_case(key, topic)) return true;
  for (const std::string_view prefix : {"ESBD_", "ESBD_SBD_", "WSBD_", "WSBD_SBD_", "TOOL_"}) {
    const bool has_prefix = key.substr(0, prefix.size()) == prefix;
    if (has_prefix && equal_ignoring_case(key.substr(prefix.size()), topic)) return true;
  }
  return false;
}

}  // namespace

const std::vector<MESSAGE_HELP>& list_messages() {
  static const std::vector<MESSAGE_HELP> messages(std::begin(k_messages), std::end(k_messages));
  return messages;
}

int greatest_message_number() {
  int greatest = 0;
  for (const MESSAGE_HELP& message : list_messages()) greatest = std::max(greatest, message.number);
  return greatest;
}

const MESSAGE_HELP* find_message(std::string_view topic) {
  const std::vector<MESSAGE_HELP>& messages = list_messages();
  const auto found = std::find_if(messages.begin(), messages.end(), [topic](const auto& message) {
    const bool is_number = message.number != 0 && topic == std::to_string(message.number);
    return is_number || is_key(message.key, topic);
  });
  return found != messages.end() ? &*found : nullptr;
}

}  // namespace sbd_tool
