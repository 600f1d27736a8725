#include "tests/support/tree_outline.h"

#include <array>
#include <cstdio>
#include <vector>

namespace {

using NODE = SBD_FILE_PARSER::SBD_NODE;
using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

std::string escaped(const char* text) {
  if (text == nullptr) return "null";
  std::string result = "'";
  for (; *text != 0; text++) {
    if (*text == '\n') {
      result += "\\n";
    } else if (*text == '\r') {
      result += "\\r";
    } else {
      result += *text;
    }
  }
  return result + "'";
}

std::string number_text(double number) {
  std::array<char, 64> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.17g", number);
  return buffer.data();
}

const char* unit_text(VALUE::QUANTITY_UNIT unit) {
  switch (unit) {
    case VALUE::QU_NONE:
      return "";
    case VALUE::QU_KB:
      return " K";
    case VALUE::QU_MB:
      return " M";
    case VALUE::QU_GB:
      return " G";
    case VALUE::QU_HZ:
      return " Hz";
    case VALUE::QU_MHZ:
      return " MHz";
  }
  return " ?";
}

std::string attributes_text(const STATEMENT& statement) {
  if (statement.attributes == nullptr) return "";
  std::string result;
  for (const auto* attribute = statement.attributes; attribute; attribute = attribute->next) {
    result += result.empty() ? " [" : ", ";
    result += attribute->attr_key;
    if (attribute->attr_value != nullptr) result += std::string(" ") + attribute->attr_value;
  }
  return result + "]";
}

std::string references_text(const STATEMENT& statement) {
  std::string result;
  for (const auto* reference = statement.reference; reference; reference = reference->next) {
    result += result.empty() ? " < " : ", ";
    result += reference->name;
  }
  return result + " >";
}

std::string name_text(const SYMBOL& symbol) {
  return " @" + std::to_string(symbol.line);
}

std::string statement_text(const STATEMENT& statement) {
  std::string result = statement.name->name;
  if (statement.type == STATEMENT::ST_ASSIGNMENT) {
    result += " = " + outline(*statement.value) + attributes_text(statement);
  } else {
    result += references_text(statement);
  }
  result += name_text(*statement.name);
  if (statement.comment != nullptr) result += " " + escaped(statement.comment);
  return result;
}

void append_nodes(std::string& result, const NODE* node, std::size_t depth) {
  for (; node != nullptr; node = node->next) {
    result.append(2 * depth, ' ');
    if (node->type == NODE::NT_COMMENT) {
      result += escaped(node->comment) + "\n";
    } else if (node->type == NODE::NT_STATEMENT) {
      result += statement_text(*node->statement) + "\n";
    } else {
      const auto& block = *node->block;
      result += std::string(block.type) + " " + block.name->name + name_text(*block.name) + "\n";
      append_nodes(result, block.members, depth + 1);
    }
  }
}

// Appends the symbols of the nodes in the order that the parser enters them in.
void collect_symbols(const NODE* node, const NODE* parent, std::vector<const SYMBOL*>& symbols,
                     std::string& fault) {
  for (; node != nullptr; node = node->next) {
    const SYMBOL* symbol = nullptr;
    if (node->type == NODE::NT_BLOCK) {
      collect_symbols(node->block->members, node, symbols, fault);
      symbol = node->block->name;
      if (symbol->type != SYMBOL::SYM_BLOCK) fault = "type of a block's symbol";
      if (node->block->block_type != SBD_FILE_PARSER::lookup_block_type(node->block->type)) {
        fault = "type of a block";
      }
    } else if (node->type == NODE::NT_STATEMENT) {
      symbol = node->statement->name;
      if (symbol->type != SYMBOL::SYM_PARAMETER) fault = "type of a statement's symbol";
    } else {
      continue;
    }
    if (symbol->node != node) fault = std::string("node of ") + symbol->name;
    if (symbol->parent != (parent == nullptr ? node : parent)) {
      fault = std::string("parent of ") + symbol->name;
    }
    symbols.push_back(symbol);
  }
}

}  // namespace

std::string outline(const VALUE& value) {
  std::string result;
  switch (value.type) {
    case VALUE::VT_UDECIMAL:
      result = number_text(value.number);
      break;
    case VALUE::VT_OCTAL:
      result = "0o" + number_text(value.number);
      break;
    case VALUE::VT_HEXAL:
      result = "0x" + number_text(value.number);
      break;
    case VALUE::VT_BINARY:
      result = "0b" + number_text(value.number);
      break;
    case VALUE::VT_FLOAT:
      result = number_text(value.number) + "f";
      break;
    case VALUE::VT_BOOL:
      result = value.flag == 1 ? "true" : value.flag == 0 ? "false" : "?";
      break;
    case VALUE::VT_STRING:
      result = escaped(value.text);
      break;
    case VALUE::VT_LIST:
      for (const VALUE* const element : *value.list) {
        result += result.empty() ? "{" : ", ";
        result += outline(*element);
      }
      result += "}";
      break;
  }
  return result + unit_text(value.unit);
}

std::string outline(const SBD_FILE_PARSER& document) {
  std::string result;
  append_nodes(result, document.get_parser_para().root, 0);
  return result;
}

std::string find_inconsistency(const SBD_FILE_PARSER& document) {
  std::string fault;
  std::vector<const SYMBOL*> symbols;
  collect_symbols(document.get_parser_para().root, nullptr, symbols, fault);
  if (!fault.empty()) return fault;

  const auto& table = *document.get_parser_para().symbol_table;
  if (table.size() != SBD_FILE_PARSER::SBD_SYMBOL_TABLE::k_bucket_count) return "bucket count";
  std::vector<const SYMBOL*> heads(table.begin(), table.end());
  for (auto symbol = symbols.rbegin(); symbol != symbols.rend(); ++symbol) {
    const SYMBOL*& head = heads[SBD_FILE_PARSER::hash_pjw((*symbol)->name, heads.size())];
    if (head != *symbol) return std::string("place of ") + (*symbol)->name + " in its chain";
    head = head->next;
  }
  for (const SYMBOL* const head : heads) {
    if (head != nullptr) return std::string("left over: ") + head->name;
  }
  return "";
}
