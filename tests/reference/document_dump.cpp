#include "tests/reference/document_dump.h"

#include <cstddef>
#include <vector>

#include "tests/reference/reference_reader.h"

namespace {

void append_text(std::string& line, const char* text) {
  if (text == nullptr) {
    line += "!null";
  } else {
    append_quoted(line, text);
  }
}

void append_unit(std::string& line, const SBD_FILE_PARSER::SBD_PARA_VALUE* value) {
  line += " unit ";
  line += std::to_string(static_cast<unsigned>(value->unit));
  line += '\n';
}

void append_symbol(std::string& line, const SBD_FILE_PARSER::SBD_SYMBOL* symbol,
                   const SBD_FILE_PARSER::SBD_NODE* node,
                   SBD_FILE_PARSER::SBD_SYMBOL::SYMBOL_TYPE type) {
  if (symbol == nullptr) {
    line += "!null\n";
    return;
  }
  append_text(line, symbol->name);
  line += " line ";
  line += std::to_string(symbol->line);
  line += '\n';
  if (symbol->node != node) line += "!node\n";
  if (symbol->type != type) line += "!type\n";
}

// One list value whose elements are being written.
struct OPEN_LIST {
  const SBD_FILE_PARSER::SBD_VALUE_LIST* list;
  std::size_t next;
};

void append_value(std::string& lines, const SBD_FILE_PARSER::SBD_PARA_VALUE* value) {
  using VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
  std::vector<OPEN_LIST> open;
  while (true) {
    if (value == nullptr) {
      lines += "!null\n";
    } else if (value->type <= VALUE::VT_FLOAT) {
      lines += "number ";
      lines += std::to_string(static_cast<unsigned>(value->type));
      lines += ' ';
      append_number(lines, value->number);
      append_unit(lines, value);
    } else if (value->type == VALUE::VT_BOOL) {
      lines += "bool ";
      lines += std::to_string(value->flag);
      append_unit(lines, value);
    } else if (value->type == VALUE::VT_STRING) {
      lines += "string ";
      append_text(lines, value->text);
      append_unit(lines, value);
    } else if (value->type == VALUE::VT_LIST && value->list != nullptr) {
      lines += "list";
      append_unit(lines, value);
      open.push_back({value->list, 0});
    } else {
      lines += "!value\n";
    }
    while (!open.empty() && open.back().next == open.back().list->size()) {
      lines += "end\n";
      open.pop_back();
    }
    if (open.empty()) return;
    value = (*open.back().list)[open.back().next++];
  }
}

void append_statement(std::string& lines, const SBD_FILE_PARSER::SBD_NODE* node) {
  using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
  const STATEMENT* statement = node->statement;
  const bool is_assignment = statement->type == STATEMENT::ST_ASSIGNMENT;
  if (!is_assignment && statement->type != STATEMENT::ST_REFERENCE) {
    lines += "!statement\n";
    return;
  }
  lines += is_assignment ? "assignment " : "reference ";
  append_symbol(lines, statement->name, node, SBD_FILE_PARSER::SBD_SYMBOL::SYM_PARAMETER);
  if (is_assignment) {
    append_value(lines, statement->value);
  } else {
    for (const auto* element = statement->reference; element != nullptr; element = element->next) {
      lines += "target ";
      append_text(lines, element->name);
      lines += '\n';
    }
  }
  for (const auto* attribute = statement->attributes; attribute != nullptr;
       attribute = attribute->next) {
    lines += "attribute ";
    append_text(lines, attribute->attr_key);
    if (attribute->attr_value != nullptr) {
      lines += ' ';
      append_text(lines, attribute->attr_value);
    }
    lines += '\n';
  }
  if (statement->comment != nullptr) {
    lines += "tail ";
    append_text(lines, statement->comment);
    lines += '\n';
  }
}

}  // namespace

std::string dump_document(const SBD_FILE_PARSER& document) {
  using NODE = SBD_FILE_PARSER::SBD_NODE;
  std::string lines;
  std::vector<const NODE*> open;  // Blocks whose members are being written.
  const NODE* node = document.get_parser_para().root;
  while (true) {
    while (node == nullptr) {
      if (open.empty()) return lines;
      lines += "end\n";
      node = open.back()->next;
      open.pop_back();
    }
    switch (node->type) {
      case NODE::NT_BLOCK:
        lines += "block ";
        lines += std::to_string(static_cast<unsigned>(node->block->block_type));
        lines += ' ';
        append_text(lines, node->block->type);
        lines += ' ';
        append_symbol(lines, node->block->name, node, SBD_FILE_PARSER::SBD_SYMBOL::SYM_BLOCK);
        open.push_back(node);
        node = node->block->members;
        continue;
      case NODE::NT_STATEMENT:
        append_statement(lines, node);
        break;
      case NODE::NT_COMMENT:
        lines += "comment ";
        append_text(lines, node->comment);
        lines += '\n';
        break;
      default:
        lines += "!node type\n";
        break;
    }
    node = node->next;
  }
}

std::string dump_shape(const SBD_FILE_PARSER& document) {
  const std::string dump = dump_document(document);
  std::string result;
  for (std::size_t at = 0; at < dump.size();) {
    const std::size_t end = dump.find('\n', at);
    std::string line = dump.substr(at, end - at);
    const bool is_named = line.rfind("block ", 0) == 0 || line.rfind("assignment ", 0) == 0 ||
                          line.rfind("reference ", 0) == 0;
    if (is_named) line.resize(line.rfind(" line "));
    result += line + "\n";
    at = end + 1;
  }
  return result;
}
