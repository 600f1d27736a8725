// Editing parameters: values, references, attributes, deletion.
#include "sbd/access/sbd_new_records.h"
#include "sbd/access/sbd_refusal.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_parser_build.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/sbd_file_parser.h"

namespace {

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

constexpr std::uint32_t kind(SBD_PARA_VALUE::VALUE_TYPE type) {
  return 1U << type;
}

// The kinds of value that give way to a new one, by what is set.
constexpr std::uint32_t k_yields_to_boolean = kind(SBD_PARA_VALUE::VT_BOOL);
constexpr std::uint32_t k_yields_to_text = kind(SBD_PARA_VALUE::VT_STRING);
constexpr std::uint32_t k_yields_to_number = ~(k_yields_to_boolean | k_yields_to_text);

struct BASE_ROW {
  unsigned char base;
  SBD_PARA_VALUE::VALUE_TYPE type;
};
constexpr BASE_ROW k_bases[] = {{2, SBD_PARA_VALUE::VT_BINARY},
                                {8, SBD_PARA_VALUE::VT_OCTAL},
                                {10, SBD_PARA_VALUE::VT_UDECIMAL},
                                {16, SBD_PARA_VALUE::VT_HEXAL}};

// The kind of a number written in that base.
SBD_PARA_VALUE::VALUE_TYPE type_of_base(unsigned char base) {
  for (const BASE_ROW& row : k_bases) {
    if (row.base == base) return row.type;
  }
  sbd_warn({"Specified base for the unsigned integer is not supported. Use default base (10)"});
  return SBD_PARA_VALUE::VT_UDECIMAL;
}

SBD_STATEMENT* find_statement(const SBD_FILE_PARSER& document, const char* block,
                              const char* parameter) {
  const SBD_NODE* const node = SBD_LOOKUP::find_member(document, block, parameter);
  return node != nullptr && node->type == SBD_NODE::NT_STATEMENT ? node->statement : nullptr;
}

bool refuse_value(const char* block, const char* parameter, const char* reason) {
  return sbd_refuse({"Cannot set value to the parameter: '", parameter, "' in the block: '", block,
                     "'. ", reason});
}

bool refuse_attributes(const char* block, const char* parameter, const char* reason) {
  return sbd_refuse({"Cannot set the attribute to the parameter: '", parameter, "' in the block: '",
                     block, "'. ", reason});
}

}  // namespace

bool SBD_FILE_PARSER::set_value_check(const char* block, const char* parameter,
                                      SBD_STATEMENT::STATEMENT_TYPE type, SBD_NODE** block_node,
                                      SBD_NODE** para_node) const {
  if (!SBD_CHECK(block_node != nullptr && para_node != nullptr,
                 "block_node != NULL && para_node != NULL", k_source_file_parser)) {
    return false;
  }
  return sbd_guarded(k_source_file_parser, false, [=] {
    if (block == nullptr || parameter == nullptr) {
      return sbd_refuse({"Cannot set parameter value. NULL block/parameter name."});
    }
    if (!is_valid_parameter_name(parameter)) {
      return sbd_refuse({"Cannot set parameter value. Illegal parameter name."});
    }
    SBD_NODE* const scope = SBD_LOOKUP::find(*this, block, nullptr);
    if (scope == nullptr || scope->type != SBD_NODE::NT_BLOCK) {
      return refuse_value(block, parameter, "Block does not exit.");
    }
    SBD_NODE* const present = SBD_LOOKUP::find(*this, parameter, scope);
    if (present != nullptr && present->type != SBD_NODE::NT_STATEMENT) {
      return refuse_value(block, parameter,
                          "The parameter name has already been used as a block name.");
    }
    if (present != nullptr && present->statement->type != type) {
      return refuse_value(block, parameter,
                          "The parameter name has already been used in other type of statement.");
    }
    *block_node = scope;
    *para_node = present;
    return true;
  });
}

SBD_FILE_PARSER::SBD_STATEMENT* SBD_FILE_PARSER::add_statement(SBD_NODE* block_node,
                                                               const char* parameter,
                                                               SBD_STATEMENT::STATEMENT_TYPE type) {
  auto node = std::make_unique<SBD_NODE>();
  auto statement = std::make_unique<SBD_STATEMENT>();
  SBD_NEW_SYMBOL symbol(parameter, SBD_SYMBOL::SYM_PARAMETER, node.get(), block_node);
  node->type = SBD_NODE::NT_STATEMENT;
  node->statement = statement.get();
  statement->type = type;
  statement->name = symbol.record.get();
  sbd_enter_foreign_symbol(symbol.record.get(), *m_parser_para.symbol_table);
  (void)symbol.release();
  link_node(node.release(), block_node);
  return statement.release();
}

template <class CHANGE>
bool SBD_FILE_PARSER::change_value(const char* block, const char* parameter, std::uint32_t kinds,
                                   CHANGE&& change) {
  if (m_store == nullptr) return false;
  return sbd_guarded(k_source_file_parser, false, [&] {
    SBD_NODE* block_node = nullptr;
    SBD_NODE* para_node = nullptr;
    if (!set_value_check(block, parameter, SBD_STATEMENT::ST_ASSIGNMENT, &block_node, &para_node)) {
      return false;
    }
    if (para_node == nullptr) {
      auto value = std::make_unique<SBD_PARA_VALUE>();
      change(*value);
      try {
        add_statement(block_node, parameter, SBD_STATEMENT::ST_ASSIGNMENT)->value = value.get();
      } catch (...) {
        m_store->free_content(*value);
        throw;
      }
      (void)value.release();
      return true;
    }
    SBD_PARA_VALUE* const value = para_node->statement->value;
    if (!SBD_CHECK(value != nullptr, "value != NULL", k_source_file_parser)) return false;
    if ((kinds & kind(value->type)) == 0) {
      return refuse_value(block, parameter, "Incompatible value type.");
    }
    SBD_PARA_VALUE old_content = *value;
    change(*value);
    value->m_position = 0;
    m_store->has_foreign = true;
    m_store->free_content(old_content);
    return true;
  });
}

bool SBD_FILE_PARSER::set_value(const char* block, const char* parameter, unsigned long number,
                                unsigned char base, SBD_PARA_VALUE::QUANTITY_UNIT unit) {
  return change_value(block, parameter, k_yields_to_number, [=](SBD_PARA_VALUE& value) {
    value.type = type_of_base(base);
    value.number = static_cast<double>(number);
    value.unit = unit;
  });
}

bool SBD_FILE_PARSER::set_value(const char* block, const char* parameter, double number,
                                SBD_PARA_VALUE::QUANTITY_UNIT unit) {
  return change_value(block, parameter, k_yields_to_number, [=](SBD_PARA_VALUE& value) {
    value.type = SBD_PARA_VALUE::VT_FLOAT;
    value.number = number;
    value.unit = unit;
  });
}

bool SBD_FILE_PARSER::set_value(const char* block, const char* parameter, int flag) {
  return change_value(block, parameter, k_yields_to_boolean, [=](SBD_PARA_VALUE& value) {
    value.type = SBD_PARA_VALUE::VT_BOOL;
    value.flag = static_cast<std::uint32_t>(flag);
  });
}

bool SBD_FILE_PARSER::set_value(const char* block, const char* parameter, const SBD_STRING& text) {
  return change_value(block, parameter, k_yields_to_text, [&text](SBD_PARA_VALUE& value) {
    value.text = sbd_duplicate_text(text.c_str());
    value.type = SBD_PARA_VALUE::VT_STRING;
  });
}

bool SBD_FILE_PARSER::set_para_value(const char* block, const char* parameter,
                                     const SBD_PARA_VALUE& new_value) {
  std::uint32_t kinds = k_yields_to_number;
  if (new_value.type == SBD_PARA_VALUE::VT_BOOL) kinds = k_yields_to_boolean;
  if (new_value.type == SBD_PARA_VALUE::VT_STRING) kinds = k_yields_to_text;
  return change_value(block, parameter, kinds, [this, &new_value](SBD_PARA_VALUE& value) {
    SBD_PARA_VALUE* const copy = copy_value(new_value);
    value = *copy;
    delete copy;
  });
}

SBD_FILE_PARSER::SBD_PARA_VALUE* SBD_FILE_PARSER::copy_value(const SBD_PARA_VALUE& value) const {
  const auto free_value = [this](SBD_PARA_VALUE* one) { m_store->free_value(one); };
  std::unique_ptr<SBD_PARA_VALUE, decltype(free_value)> root(new SBD_PARA_VALUE, free_value);

  // Copies that are still to be filled, with what they are copied from.
  struct PAIR {
    const SBD_PARA_VALUE* from;
    SBD_PARA_VALUE* to;
  };
  SBD_SCRATCH<PAIR, 16> left;
  left.push_back({&value, root.get()});
  while (!left.empty()) {
    const PAIR pair = left.back();
    left.pop_back();
    pair.to->unit = pair.from->unit;
    if (pair.from->type == SBD_PARA_VALUE::VT_STRING) {
      pair.to->text = sbd_duplicate_text(pair.from->text);
    } else if (pair.from->type == SBD_PARA_VALUE::VT_BOOL) {
      pair.to->flag = pair.from->flag;
    } else if (pair.from->type != SBD_PARA_VALUE::VT_LIST) {
      pair.to->number = pair.from->number;
    } else {
      pair.to->list = new SBD_VALUE_LIST;
      pair.to->type = SBD_PARA_VALUE::VT_LIST;
      for (const SBD_PARA_VALUE* const element : *pair.from->list) {
        auto copy = std::make_unique<SBD_PARA_VALUE>();
        SBD_STORE::append(*pair.to->list, copy.get());
        left.push_back({element, copy.release()});
      }
    }
    pair.to->type = pair.from->type;
  }
  return root.release();
}

bool SBD_FILE_PARSER::set_value(const char* block, const char* parameter,
                                const SBD_STRING_LIST& names) {
  if (m_store == nullptr) return false;
  return sbd_guarded(k_source_file_parser, false, [&] {
    SBD_NODE* block_node = nullptr;
    SBD_NODE* para_node = nullptr;
    if (!set_value_check(block, parameter, SBD_STATEMENT::ST_REFERENCE, &block_node, &para_node)) {
      return false;
    }
    SBD_NEW_LIST<SBD_PARA_REF> references;
    for (const SBD_STRING& name : names) {
      SBD_PARA_REF& reference = references.append();
      reference.target = SBD_LOOKUP::find(*this, name.c_str(), nullptr);
      if (reference.target == nullptr) {
        return refuse_value(block, parameter, "Invalid input reference value.");
      }
      reference.name = sbd_duplicate_text(name.c_str());
    }
    SBD_STATEMENT* const statement =
        para_node != nullptr ? para_node->statement
                             : add_statement(block_node, parameter, SBD_STATEMENT::ST_REFERENCE);
    m_store->drop_references_of(*statement);
    m_store->free_references(statement->reference);
    statement->reference = references.release();
    for (auto* reference = statement->reference; reference != nullptr;
         reference = reference->next) {
      SBD_STORE::add_reference(reference->target);
    }
    m_store->has_foreign = true;
    return true;
  });
}

bool SBD_FILE_PARSER::set_attribute(const char* block, const char* parameter,
                                    const SBD_PARA_ATTR* attributes) {
  if (m_store == nullptr) return false;
  return sbd_guarded(k_source_file_parser, false, [=] {
    if (block == nullptr || parameter == nullptr) {
      return sbd_refuse({"Cannot set the attribute. NULL block/parameter name"});
    }
    SBD_STATEMENT* const statement = find_statement(*this, block, parameter);
    if (statement == nullptr) {
      return refuse_attributes(block, parameter, "Parameter is not defined.");
    }
    if (statement->type == SBD_STATEMENT::ST_REFERENCE) {
      return refuse_attributes(block, parameter,
                               "Parameter can not be associated with attributes.");
    }
    SBD_NEW_LIST<SBD_PARA_ATTR> copies;
    for (const SBD_PARA_ATTR* attribute = attributes; attribute != nullptr;
         attribute = attribute->next) {
      if (!SBD_CHECK(attribute->attr_key != nullptr, "attr_key != NULL", k_source_file_parser)) {
        return false;
      }
      SBD_PARA_ATTR& copy = copies.append();
      copy.attr_key = sbd_duplicate_text(attribute->attr_key);
      copy.attr_value = sbd_duplicate_text(attribute->attr_value);
    }
    m_store->free_attributes(statement->attributes);
    statement->attributes = copies.release();
    m_store->has_foreign = true;
    return true;
  });
}

void SBD_FILE_PARSER::delete_attribute(const char* block, const char* parameter) {
  if (m_store == nullptr) return;
  sbd_guarded(k_source_file_parser, false, [=] {
    if (block == nullptr || parameter == nullptr) {
      sbd_warn({"Cannot delete attributes. NULL block/parameter name"});
      return false;
    }
    SBD_STATEMENT* const statement = find_statement(*this, block, parameter);
    if (statement == nullptr || statement->type == SBD_STATEMENT::ST_REFERENCE) {
      sbd_warn({"Cannot delete attributes of the parameter: '", parameter, "' in the block: '",
                block, "'. ",
                statement == nullptr ? "Parameter is not defined."
                                     : "Parameter can not be associated with attributes."});
      return false;
    }
    m_store->free_attributes(statement->attributes);
    statement->attributes = nullptr;
    return true;
  });
}

void SBD_FILE_PARSER::delete_parameter(const char* block, const char* parameter) {
  if (m_store == nullptr) return;
  sbd_guarded(k_source_file_parser, false, [=] {
    if (block == nullptr || parameter == nullptr) {
      sbd_warn({"Cannot delete parameter. NULL block/parameter name"});
      return false;
    }
    SBD_NODE* const node = SBD_LOOKUP::find_member(*this, block, parameter);
    if (node == nullptr) return false;
    const SBD_STRING prefix =
        sbd_join_texts({"Cannot delete parameter: '", parameter, "' from block: '", block, "'. "});
    if (node->type != SBD_NODE::NT_STATEMENT) {
      sbd_warn({prefix.c_str(), "Parameter does not exist."});
      return false;
    }
    if (SBD_LOOKUP::is_referenced(*this, node, m_parser_para.root)) {
      return sbd_refuse(
          {prefix.c_str(), "Parameter is being used (referenced) by other block/parameter"});
    }
    delete_node(node, node->statement->name->parent);
    return true;
  });
}
