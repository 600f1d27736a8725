// What the format has a form for.
#include "sbd/source/sbd_source_verify.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "sbd/access/sbd_refusal.h"
#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_low_bits.h"
#include "sbd/reading/sbd_numbers.h"
#include "sbd/reading/sbd_tree.h"

namespace {

using SBD_BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

bool is_boolean_word(std::string_view word) {
  for (const char* const boolean : {"true", "TRUE", "True", "false", "FALSE", "False"}) {
    if (word == boolean) return true;
  }
  return false;
}

bool is_identifier(std::string_view text) {
  if (text.empty() || !sbd_is(text.front(), CC_NAME_START) || is_boolean_word(text)) return false;
  for (const char c : text) {
    if (!sbd_is(c, CC_NAME)) return false;
  }
  return true;
}

bool has_index_at(std::string_view text, std::size_t at) {
  return text.size() - at > 2 && text[at] == '[' && sbd_is(text[at + 1], CC_DIGIT) &&
         text[at + 2] == ']';
}

// True for a run of name characters, dots and indices that has a dot.
bool is_qualified_name(std::string_view text) {
  constexpr std::size_t k_index_length = 3;
  for (std::size_t at = 0; at < text.size();) {
    if (sbd_is(text[at], CC_QUALIFIED)) {
      // A number can't begin it.
      if (at == 0 && sbd_is(text[at], CC_DIGIT)) return false;
      ++at;
    } else if (at != 0 && has_index_at(text, at)) {
      at += k_index_length;
    } else {
      return false;
    }
  }
  return text.find('.') != std::string_view::npos;
}

bool is_quoted_text(std::string_view text) {
  return text.size() > 1 && text.front() == '"' && text.find('"', 1) == text.size() - 1;
}

// What is wrong with a declared name; null when it is well formed.
const char* name_fault(std::string_view name) {
  constexpr std::size_t k_index_length = 3;
  const std::size_t bracket = std::min(name.find('['), name.size());
  if (is_boolean_word(name.substr(0, bracket))) return "A name can't be a Boolean word.";
  if (!is_identifier(name.substr(0, bracket))) return "The name is not well formed.";
  for (std::size_t at = bracket; at < name.size(); at += k_index_length) {
    if (has_index_at(name, at)) continue;
    if (name.substr(at, 2) == "[]") return "An index can't be empty.";
    return "An index can't have more than one digit.";
  }
  return nullptr;
}

class EXPRESSIBLE_CHECK {
 public:
  EXPRESSIBLE_CHECK(const SBD_FILE_PARSER& document, SBD_LAYOUT layout, SBD_STRING& why)
      : m_document(document), m_is_canonical(layout == SBD_LAYOUT::CANONICAL), m_why(why) {}

  bool check_node(const SBD_NODE& node, const SBD_NODE* block) {
    m_node = &node;
    if (node.type == SBD_NODE::NT_COMMENT) {
      return !m_is_canonical || check_comment(node.comment);
    }
    const SBD_SYMBOL* const symbol = sbd_symbol_of(&node);
    if (symbol == nullptr || symbol->name == nullptr) return refuse({"Something has no name."});
    if (const char* const fault = name_fault(symbol->name)) return refuse({fault});
    if (SBD_LOOKUP::find(m_document, symbol->name, block) != &node) {
      return refuse({"The name is declared twice."});
    }
    return node.type == SBD_NODE::NT_BLOCK ? check_block(*node.block, block)
                                           : check_statement(*node.statement, block);
  }

 private:
  // Puts the node's name in front of the reason.
  bool refuse(std::initializer_list<const char*> reason) {
    SBD_STRING name;
    m_why.clear();
    if (SBD_LOOKUP::make_full_name(m_node, name)) {
      m_why = sbd_join_texts({"'", name.c_str(), "': "});
    }
    m_why += sbd_join_texts(reason);
    return false;
  }

  // What was read is in the text as it was.
  bool is_in_text(std::uint32_t position) const { return !m_is_canonical && position != 0; }

  bool check_comment(const char* comment) {
    const std::size_t length = comment != nullptr ? std::strlen(comment) : 0;
    if (length < 2 || comment[0] != '#') return refuse({"A comment must begin with '#'."});
    if (std::strchr(comment, '\n') == comment + length - 1) return true;
    return refuse({"A comment must be one line with its line end."});
  }

  bool check_block(const SBD_BLOCK& block, const SBD_NODE* outer) {
    if (block.type == nullptr || block.block_type == SBD_BLOCK::BT_UNKNOWN ||
        SBD_FILE_PARSER::lookup_block_type(block.type) != block.block_type) {
      return refuse({"The block's type is unknown."});
    }
    if ((block.block_type == SBD_BLOCK::BT_DEVICE) != (outer == nullptr)) {
      return refuse({"A block of type '", block.type, "' can't stand ",
                     outer == nullptr ? "at top level." : "inside a block."});
    }
    if (block.members == nullptr) return refuse({"A block must have members."});
    return true;
  }

  bool check_statement(const SBD_STATEMENT& statement, const SBD_NODE* block) {
    if (block == nullptr) return refuse({"A statement can't stand at top level."});
    if (m_is_canonical && statement.comment != nullptr && !check_comment(statement.comment)) {
      return false;
    }
    if (statement.type == SBD_STATEMENT::ST_REFERENCE) {
      return check_references(statement.reference, block);
    }
    if (statement.value == nullptr) return refuse({"The parameter has no value."});
    return check_value(*statement.value) && check_attributes(statement.attributes);
  }

  bool check_attributes(const SBD_PARA_ATTR* first) {
    for (const SBD_PARA_ATTR* attribute = first; attribute != nullptr;
         attribute = attribute->next) {
      if (is_in_text(attribute->m_position)) continue;
      const char* const key = attribute->attr_key != nullptr ? attribute->attr_key : "";
      if (!is_identifier(key)) {
        return refuse({"The attribute's key '", key, "' is not an identifier."});
      }
      const char* const value = attribute->attr_value;
      if (value == nullptr || is_qualified_name(value)) continue;
      if (std::strchr(value, '.') == nullptr) {
        return refuse({"The attribute's value '", value, "' has no '.'."});
      }
      return refuse({"The attribute's value '", value, "' is not a qualified name."});
    }
    return true;
  }

  bool check_references(const SBD_PARA_REF* first, const SBD_NODE* block) {
    if (first == nullptr) return refuse({"A reference statement must have names."});
    for (const SBD_PARA_REF* reference = first; reference != nullptr; reference = reference->next) {
      if (!check_reference(*reference, block)) return false;
    }
    return true;
  }

  // Targets may be gone, and are compared only.
  bool check_reference(const SBD_PARA_REF& reference, const SBD_NODE* block) {
    const char* const name = reference.name != nullptr ? reference.name : "";
    if (!is_in_text(reference.m_position) && !is_identifier(name) && !is_qualified_name(name)) {
      const bool is_indexed =
          std::strchr(name, '.') == nullptr && std::strchr(name, '[') != nullptr;
      return refuse({"The reference '", name, "'",
                     is_indexed ? " is an indexed name without '.'." : " is not a name."});
    }
    const SBD_NODE* target = nullptr;
    if (name[0] != '.') {
      target = SBD_LOOKUP::find(m_document, name, nullptr);
    } else if (name[1] != '\0') {
      target = SBD_LOOKUP::find(m_document, name + 1, block);
    }
    if (target == nullptr) return refuse({"The reference '", name, "' names nothing."});
    if (target == reference.target) return true;
    return refuse({"The reference '", name, "' names another object than it means."});
  }

  // Lists nest without limit, and so the values that are left stand on a stack.
  bool check_value(const SBD_PARA_VALUE& value) {
    SBD_SCRATCH<const SBD_PARA_VALUE*, 16> left;
    left.push_back(&value);
    while (!left.empty()) {
      const SBD_PARA_VALUE& one = *left.back();
      left.pop_back();
      if (is_in_text(one.m_position)) continue;
      if (one.unit > SBD_PARA_VALUE::QU_MHZ) return refuse({"The value's unit is unknown."});
      if (one.type > SBD_PARA_VALUE::VT_FLOAT && one.unit != SBD_PARA_VALUE::QU_NONE) {
        return refuse({"Only a number can have a unit."});
      }
      if (one.type != SBD_PARA_VALUE::VT_LIST) {
        if (!check_simple_value(one)) return false;
        continue;
      }
      if (one.list == nullptr || one.list->size() < 2) {
        return refuse({"A list must have at least two elements."});
      }
      for (const SBD_PARA_VALUE* const element : *one.list) {
        if (element == nullptr) return refuse({"A list has an empty element."});
        left.push_back(element);
      }
    }
    return true;
  }

  bool check_simple_value(const SBD_PARA_VALUE& value) {
    switch (value.type) {
      case SBD_PARA_VALUE::VT_UDECIMAL:
      case SBD_PARA_VALUE::VT_OCTAL:
      case SBD_PARA_VALUE::VT_HEXAL:
      case SBD_PARA_VALUE::VT_BINARY:
        if (value.number == static_cast<double>(sbd_low_bits(value.number))) return true;
        return refuse({"An integer must be a whole number of 32 bits."});
      case SBD_PARA_VALUE::VT_FLOAT:
        return !m_is_canonical || check_float(value.number);
      case SBD_PARA_VALUE::VT_BOOL:
        if (value.flag <= 1) return true;
        return refuse({"A Boolean must be 1 or 0."});
      case SBD_PARA_VALUE::VT_STRING: {
        const char* const text = value.text != nullptr ? value.text : "";
        if (is_identifier(text) || is_quoted_text(text)) return true;
        return refuse({"The text '", text, "' is neither an identifier nor in quotes."});
      }
      default:
        return refuse({"The value's kind is unknown."});
    }
  }

  // The writer gives six decimals.
  bool check_float(double number) {
    if (!std::isfinite(number)) return refuse({"A floating number must be finite."});
    constexpr int k_decimals = 6;
    constexpr std::size_t k_longest = 512;
    char written[k_longest];
    char* const written_end = std::to_chars(written, written + k_longest - 1, number,
                                            std::chars_format::fixed, k_decimals)
                                  .ptr;
    *written_end = '\0';
    const std::string_view text(written, static_cast<std::size_t>(written_end - written));
    if (sbd_convert_float(text) == number) return true;
    char exact[k_longest];
    *std::to_chars(exact, exact + k_longest - 1, number).ptr = '\0';
    return refuse({"The number ", exact, " would be written as ", written, "."});
  }

  const SBD_FILE_PARSER& m_document;
  const bool m_is_canonical;
  SBD_STRING& m_why;
  const SBD_NODE* m_node = nullptr;
};

}  // namespace

bool sbd_check_expressible(const SBD_FILE_PARSER& document, SBD_LAYOUT layout, SBD_STRING& why) {
  EXPRESSIBLE_CHECK check(document, layout, why);
  SBD_TREE_WALK walk(document.get_parser_para().root);
  while (const SBD_NODE* const node = walk.next()) {
    if (!check.check_node(*node, walk.parent())) return false;
  }
  return true;
}

bool sbd_verify_text(const SBD_FILE_PARSER& document, std::string_view text, SBD_LAYOUT layout,
                     SBD_STRING& why) {
  return sbd_check_expressible(document, layout, why) && sbd_compare_text(document, text, why);
}
