// Writing the tree as text, in the one layout that the library has.
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "sbd/access/sbd_text_out.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/diagnostics/sbd_messages.h"
#include "sbd/reading/sbd_address.h"
#include "sbd/reading/sbd_low_bits.h"
#include "sbd/reading/sbd_scratch.h"
#include "sbd/sbd_file_parser.h"

namespace {

using SBD_BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;
using SBD_VALUE_LIST = SBD_FILE_PARSER::SBD_VALUE_LIST;

constexpr unsigned long k_blanks_per_level = 4;

// How integers are written: prefix, base and letter case by kind.
struct INTEGER_FORM {
  const char* prefix;
  int base;
};
constexpr INTEGER_FORM k_integer_forms[] = {{"", 10}, {"0", 8}, {"0x", 16}, {"0b", 2}};

constexpr const char* k_unit_texts[] = {"", "K", "M", "G", "Hz", "MHz"};

const char* text_or_empty(const char* text) {
  return text != nullptr ? text : "";
}

const char* name_text(const SBD_SYMBOL* symbol) {
  return symbol != nullptr ? text_or_empty(symbol->name) : "";
}

void write_integer(SBD_TEXT_OUT& out, const SBD_PARA_VALUE& value) {
  const INTEGER_FORM& form = k_integer_forms[value.type];
  constexpr std::size_t k_most_digits = 32;
  char digits[k_most_digits];
  char* const end =
      std::to_chars(digits, digits + k_most_digits, sbd_low_bits(value.number), form.base).ptr;
  for (char* digit = digits; digit != end; ++digit) {
    if (*digit >= 'a') *digit = static_cast<char>(*digit - 'a' + 'A');
  }
  out.put(form.prefix);
  out.put(digits, static_cast<std::size_t>(end - digits));
}

void write_float(SBD_TEXT_OUT& out, double number) {
  constexpr int k_decimals = 6;
  constexpr std::size_t k_longest = 512;  // The largest double has 309 digits before its point.
  char digits[k_longest];
  const char* const end =
      std::to_chars(digits, digits + k_longest, number, std::chars_format::fixed, k_decimals).ptr;
  out.put(digits, static_cast<std::size_t>(end - digits));
}

void write_unit(SBD_TEXT_OUT& out, SBD_PARA_VALUE::QUANTITY_UNIT unit) {
  const bool is_known =
      SBD_CHECK(unit <= SBD_PARA_VALUE::QU_MHZ, "Trying to write value with unknown unit type",
                k_source_file_parser);
  if (is_known) out.put(k_unit_texts[unit]);
}

// A value that is no list, without its unit.
void write_simple_value(SBD_TEXT_OUT& out, const SBD_PARA_VALUE& value) {
  switch (value.type) {
    case SBD_PARA_VALUE::VT_UDECIMAL:
    case SBD_PARA_VALUE::VT_OCTAL:
    case SBD_PARA_VALUE::VT_HEXAL:
    case SBD_PARA_VALUE::VT_BINARY:
      return write_integer(out, value);
    case SBD_PARA_VALUE::VT_FLOAT:
      return write_float(out, value.number);
    case SBD_PARA_VALUE::VT_BOOL:
      return out.put(value.flag == 1 ? "true" : "false");
    case SBD_PARA_VALUE::VT_STRING:
      return out.put(text_or_empty(value.text));
    default:
      sbd_report_internal_error("Trying to write unknown parameter value type",
                                k_source_file_parser, __LINE__);
  }
}

// Lists nest without limit, and so the ones that are open stand on a stack.
void write_value(SBD_TEXT_OUT& out, const SBD_PARA_VALUE& value) {
  struct OPEN_LIST {
    const SBD_PARA_VALUE* value;
    std::size_t next;
  };
  SBD_SCRATCH<OPEN_LIST, 16> open_lists;
  const SBD_PARA_VALUE* current = &value;
  for (;;) {
    if (current->type == SBD_PARA_VALUE::VT_LIST) {
      out.put('{');
      open_lists.push_back({current, 0});
    } else {
      write_simple_value(out, *current);
      write_unit(out, current->unit);
    }
    for (;;) {
      if (open_lists.empty()) return;
      OPEN_LIST& open = open_lists.back();
      const SBD_VALUE_LIST* const list = open.value->list;
      if (list != nullptr && open.next != list->size()) {
        if (open.next != 0) out.put(',');
        current = (*list)[open.next++];
        if (SBD_CHECK(current != nullptr, "value != NULL", k_source_file_parser)) break;
        continue;
      }
      out.put('}');
      write_unit(out, open.value->unit);
      open_lists.pop_back();
    }
  }
}

void write_attributes(SBD_TEXT_OUT& out, const SBD_PARA_ATTR* first) {
  SBD_CHECK(first->attr_key != nullptr, "aptr->attr_key != NULL", k_source_file_parser);
  out.put(" [");
  for (const SBD_PARA_ATTR* attribute = first; attribute != nullptr; attribute = attribute->next) {
    if (attribute != first) out.put(',');
    out.put(text_or_empty(attribute->attr_key));
    if (attribute->attr_value == nullptr) continue;
    out.put(' ');
    out.put(attribute->attr_value);
  }
  out.put(']');
}

void write_assignment(SBD_TEXT_OUT& out, const SBD_STATEMENT& statement) {
  out.put(name_text(statement.name));
  out.put(" = ");
  if (SBD_CHECK(statement.value != nullptr, "value != NULL", k_source_file_parser)) {
    write_value(out, *statement.value);
  }
  if (statement.attributes != nullptr) write_attributes(out, statement.attributes);
  out.put("; ");
}

void write_reference(SBD_TEXT_OUT& out, const SBD_STATEMENT& statement) {
  out.put(name_text(statement.name));
  out.put(" < ");
  for (const SBD_PARA_REF* reference = statement.reference; reference != nullptr;
       reference = reference->next) {
    if (reference != statement.reference) out.put(", ");
    out.put(text_or_empty(reference->name));
  }
  out.put(" >;");
}

void write_statement(SBD_TEXT_OUT& out, const SBD_STATEMENT* statement, unsigned long blanks) {
  if (!SBD_CHECK(statement != nullptr, "sptr != NULL", k_source_file_parser)) return;
  if (statement->type == SBD_STATEMENT::ST_ASSIGNMENT) {
    out.put_blanks(blanks);
    write_assignment(out, *statement);
  } else if (statement->type == SBD_STATEMENT::ST_REFERENCE) {
    out.put_blanks(blanks);
    write_reference(out, *statement);
  } else {
    sbd_report_internal_error("Invalid statement type", k_source_file_parser, __LINE__);
  }
  if (statement->comment != nullptr) {
    out.put('\t');
    out.put(statement->comment);
  } else {
    out.put('\n');
  }
}

void write_comment(SBD_TEXT_OUT& out, const char* comment, unsigned long blanks) {
  if (!SBD_CHECK(comment != nullptr, "nptr->comment != NULL", k_source_file_parser)) return;
  out.put_blanks(blanks);
  out.put(comment);
}

void write_block_head(SBD_TEXT_OUT& out, const SBD_BLOCK& block, unsigned long blanks) {
  out.put_blanks(blanks);
  out.put(text_or_empty(block.type));
  out.put(' ');
  out.put(name_text(block.name));
  out.put('\n');
  out.put_blanks(blanks);
  out.put("{\n");
}

void write_block_end(SBD_TEXT_OUT& out, unsigned long blanks) {
  out.put_blanks(blanks);
  out.put("}\n\n");
}

// Writes a node except the members of a block; true when members are to follow.
bool write_node(SBD_TEXT_OUT& out, const SBD_NODE& node, unsigned long blanks) {
  switch (node.type) {
    case SBD_NODE::NT_BLOCK:
      SBD_CHECK(node.block != nullptr && node.block->type != nullptr && node.block->name != nullptr,
                "bptr != NULL && bptr->type != NULL && bptr->name != NULL", k_source_file_parser);
      if (node.block == nullptr) return false;
      write_block_head(out, *node.block, blanks);
      if (node.block->members != nullptr) return true;
      write_block_end(out, blanks);
      return false;
    case SBD_NODE::NT_STATEMENT:
      write_statement(out, node.statement, blanks);
      return false;
    case SBD_NODE::NT_COMMENT:
      write_comment(out, node.comment, blanks);
      return false;
    default:
      sbd_report_internal_error("Invalid node type", k_source_file_parser, __LINE__);
      return false;
  }
}

// The reader's records lie in file order: what comes a page later is fetched while this node is
// being written.
void prefetch_behind(const SBD_NODE* node) {
  constexpr std::intptr_t k_lines_per_page = 64;
  constexpr std::intptr_t k_lines = 3;  // As many as the records of a parameter take.
  sbd_prefetch(node, k_lines_per_page, k_lines);
}

void write_nodes(SBD_TEXT_OUT& out, const SBD_NODE* first, unsigned long indent) {
  SBD_SCRATCH<const SBD_NODE*, 32> open_blocks;
  unsigned long blanks = indent * k_blanks_per_level;
  for (const SBD_NODE* node = first; node != nullptr;) {
    prefetch_behind(node);
    if (write_node(out, *node, blanks)) {
      open_blocks.push_back(node);
      blanks += k_blanks_per_level;
      node = node->block->members;
      continue;
    }
    node = node->next;
    while (node == nullptr && !open_blocks.empty()) {
      blanks -= k_blanks_per_level;
      write_block_end(out, blanks);
      node = open_blocks.back()->next;
      open_blocks.pop_back();
    }
  }
}

}  // namespace

bool SBD_FILE_PARSER::write(const char* path) const {
  return sbd_guarded(k_source_file_parser, false, [this, path] {
    std::FILE* const stream = path != nullptr ? std::fopen(path, "w") : stdout;
    if (stream == nullptr) {
      post_message(sbd_make_message<MSG_E>(k_msg_file_error, path));
      return false;
    }
    const bool is_written = write(stream, m_parser_para.root, 0);
    (void)std::fclose(stream);
    return is_written;
  });
}

bool SBD_FILE_PARSER::write(std::FILE* stream, SBD_NODE* node, unsigned long indent) const {
  if (!SBD_CHECK(stream != nullptr, "stream != NULL", k_source_file_parser)) return true;
  sbd_guarded(k_source_file_parser, false, [stream, node, indent] {
    SBD_TEXT_OUT out(stream);
    write_nodes(out, node, indent);
    return true;
  });
  return true;
}

void SBD_FILE_PARSER::write(std::FILE* stream, SBD_PARA_VALUE* value) const {
  if (!SBD_CHECK(stream != nullptr && value != nullptr, "stream != NULL && value != NULL",
                 k_source_file_parser)) {
    return;
  }
  sbd_guarded(k_source_file_parser, false, [stream, value] {
    SBD_TEXT_OUT out(stream);
    write_value(out, *value);
    return true;
  });
}
