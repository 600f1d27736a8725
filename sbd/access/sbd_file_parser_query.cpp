// Questions about a document: kinds, lists of blocks, references, typed values.
#include <cstdint>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_extended.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_low_bits.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree.h"
#include "sbd/sbd_file_parser.h"

namespace {

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;

SBD_STATEMENT* statement_of(const SBD_NODE* node) {
  return node != nullptr && node->type == SBD_NODE::NT_STATEMENT ? node->statement : nullptr;
}

SBD_STATEMENT* statement_of(const SBD_NODE* node, SBD_STATEMENT::STATEMENT_TYPE type) {
  SBD_STATEMENT* const statement = statement_of(node);
  return statement != nullptr && statement->type == type ? statement : nullptr;
}

const SBD_PARA_VALUE* value_of(const SBD_NODE* node) {
  const SBD_STATEMENT* const statement = statement_of(node, SBD_STATEMENT::ST_ASSIGNMENT);
  return statement != nullptr ? statement->value : nullptr;
}

const SBD_PARA_VALUE* value_of(const SBD_NODE* node, SBD_PARA_VALUE::VALUE_TYPE type) {
  const SBD_PARA_VALUE* const value = value_of(node);
  return value != nullptr && value->type == type ? value : nullptr;
}

const SBD_PARA_VALUE* number_of(const SBD_NODE* node) {
  const SBD_PARA_VALUE* const value = value_of(node);
  return value != nullptr && value->type <= SBD_PARA_VALUE::VT_FLOAT ? value : nullptr;
}

// How many elements of a node refer to `target`, when it is a reference statement.
std::size_t count_references(const SBD_NODE* node, const SBD_NODE* target) {
  const SBD_STATEMENT* const statement = statement_of(node, SBD_STATEMENT::ST_REFERENCE);
  if (statement == nullptr) return 0;
  std::size_t count = 0;
  for (auto* reference = statement->reference; reference != nullptr; reference = reference->next) {
    if (reference->target == target) ++count;
  }
  return count;
}

// How many references to an object stand in the object itself.
std::size_t references_inside(const SBD_NODE* target) {
  if (target->m_references == 0) return 0;
  std::size_t count = count_references(target, target);
  SBD_TREE_WALK walk(sbd_members_of(target));
  while (const SBD_NODE* const node = walk.next()) count += count_references(node, target);
  return count;
}

// A whole number of 32 bits, as nearly all are: its product with a unit has an exact 64-bit result.
bool is_dword(double number) {
  constexpr double k_two_to_32 = 4294967296.0;
  if (!(number >= 0 && number < k_two_to_32)) return false;
  return static_cast<double>(static_cast<std::int64_t>(number)) == number;
}

bool get_number(const SBD_NODE* node, unsigned long& value) {
  const SBD_PARA_VALUE* const number = number_of(node);
  if (number == nullptr) return false;
  const std::uint64_t unit = SBD_FILE_PARSER::get_unit_value(number->unit);
  if (is_dword(number->number)) {
    value = static_cast<std::uint32_t>(static_cast<std::uint64_t>(number->number) * unit);
    return true;
  }
  const auto multiplier = static_cast<long double>(unit);
  value = sbd_low_bits(sbd_extended(static_cast<long double>(number->number) * multiplier));
  return true;
}

bool get_number(const SBD_NODE* node, double& value) {
  const SBD_PARA_VALUE* const number = number_of(node);
  if (number == nullptr) return false;
  value = number->number * static_cast<double>(SBD_FILE_PARSER::get_unit_value(number->unit));
  return true;
}

bool get_flag(const SBD_NODE* node, int& value) {
  const SBD_PARA_VALUE* const flag = value_of(node, SBD_PARA_VALUE::VT_BOOL);
  if (flag == nullptr) return false;
  value = static_cast<int>(flag->flag);
  return true;
}

bool get_text(const SBD_NODE* node, SBD_STRING& value) {
  const SBD_PARA_VALUE* const text = value_of(node, SBD_PARA_VALUE::VT_STRING);
  if (text == nullptr || text->text == nullptr) return false;
  return sbd_guarded(k_source_file_parser, false, [text, &value] {
    value = text->text;
    return true;
  });
}

}  // namespace

SBD_FILE_PARSER::SBD_NODE* SBD_FILE_PARSER::find_member(const char* block,
                                                        const char* parameter) const {
  return sbd_guarded(k_source_file_parser, static_cast<SBD_NODE*>(nullptr),
                     [=] { return SBD_LOOKUP::find_member(*this, block, parameter); });
}

SBD_FILE_PARSER::SBD_BLOCK* SBD_FILE_PARSER::get_block(const char* name) const {
  const SBD_NODE* const node = get_ref_object(name, nullptr);
  return node != nullptr && node->type == SBD_NODE::NT_BLOCK ? node->block : nullptr;
}

SBD_FILE_PARSER::SBD_STATEMENT* SBD_FILE_PARSER::get_statement(const char* block,
                                                               const char* parameter) const {
  return statement_of(find_member(block, parameter));
}

SBD_FILE_PARSER::SBD_PARA_VALUE* SBD_FILE_PARSER::get_para_value(const char* block,
                                                                 const char* parameter) const {
  const SBD_STATEMENT* const statement =
      statement_of(find_member(block, parameter), SBD_STATEMENT::ST_ASSIGNMENT);
  return statement != nullptr ? statement->value : nullptr;
}

SBD_FILE_PARSER::SBD_PARA_ATTR* SBD_FILE_PARSER::get_para_attr(const char* block,
                                                               const char* parameter) const {
  const SBD_STATEMENT* const statement =
      statement_of(find_member(block, parameter), SBD_STATEMENT::ST_ASSIGNMENT);
  return statement != nullptr ? statement->attributes : nullptr;
}

SBD_FILE_PARSER::SBD_PARA_REF* SBD_FILE_PARSER::get_para_ref(const char* block,
                                                             const char* parameter) const {
  const SBD_STATEMENT* const statement =
      statement_of(find_member(block, parameter), SBD_STATEMENT::ST_REFERENCE);
  return statement != nullptr ? statement->reference : nullptr;
}

bool SBD_FILE_PARSER::is_parameter_defined(const char* block, const char* parameter) const {
  return get_statement(block, parameter) != nullptr;
}

bool SBD_FILE_PARSER::is_parameter_defined(const char* name) const {
  return statement_of(get_ref_object(name, nullptr)) != nullptr;
}

bool SBD_FILE_PARSER::is_block_defined(const char* name) const {
  return get_block(name) != nullptr;
}

bool SBD_FILE_PARSER::is_valid_parameter_name(const char* name) const {
  if (name == nullptr || !sbd_is(*name, CC_LETTER)) return false;
  bool is_in_index = false;
  bool is_behind_index = false;
  for (const char* next = name + 1; *next != '\0'; ++next) {
    if (*next == '[' && !is_in_index) {
      is_in_index = true;
    } else if (*next == ']' && is_in_index) {
      is_in_index = false;
      is_behind_index = true;
    } else if (sbd_is(*next, CC_NAME_START)) {
      if (is_in_index || is_behind_index) return false;
    } else if (sbd_is(*next, CC_DIGIT)) {
      if (!is_in_index && is_behind_index) return false;
    } else {
      return false;
    }
  }
  return !is_in_index;
}

bool SBD_FILE_PARSER::is_referenced(const char* name) const {
  return is_referenced(get_ref_object(name, nullptr), m_parser_para.root);
}

bool SBD_FILE_PARSER::is_referenced(const SBD_NODE* target, const SBD_NODE* first) const {
  return sbd_guarded(k_source_file_parser, false, [this, target, first] {
    return SBD_LOOKUP::is_referenced(*this, target, first);
  });
}

bool SBD_LOOKUP::is_referenced(const SBD_FILE_PARSER& document, const SBD_NODE* target,
                               const SBD_NODE* first) {
  if (document.m_store == nullptr || target == nullptr || first == nullptr) return false;
  if (first == document.m_parser_para.root && document.m_store->counts_references(target)) {
    return target->m_references > references_inside(target);
  }
  SBD_TREE_WALK walk(const_cast<SBD_NODE*>(first));
  while (const SBD_NODE* const node = walk.next()) {
    if (node == target) {
      walk.skip_members();
    } else if (count_references(node, target) != 0) {
      return true;
    }
  }
  return false;
}

bool SBD_FILE_PARSER::get_block_type(const char* name, SBD_STRING& type) const {
  const SBD_BLOCK* const block = get_block(name);
  if (block == nullptr || block->type == nullptr) return false;
  return sbd_guarded(k_source_file_parser, false, [block, &type] {
    type = block->type;
    return true;
  });
}

bool SBD_FILE_PARSER::get_block_type(const char* name, SBD_BLOCK::BLOCK_TYPE& type) const {
  const SBD_BLOCK* const block = get_block(name);
  if (block == nullptr) return false;
  type = block->block_type;
  return true;
}

void SBD_FILE_PARSER::get_typed_blocks(const char* type, SBD_STRING_LIST& names,
                                       const char* scope) const {
  get_typed_blocks(lookup_block_type(type), names, scope);
}

void SBD_FILE_PARSER::get_typed_blocks(SBD_BLOCK::BLOCK_TYPE type, SBD_STRING_LIST& names,
                                       const char* scope) const {
  names.clear();
  if (type == SBD_BLOCK::BT_UNKNOWN) return;
  const SBD_NODE* scope_node = nullptr;
  if (scope != nullptr) {
    scope_node = get_ref_object(scope, nullptr);
    if (scope_node == nullptr) return;
  }
  get_typed_blocks(type, names, scope_node);
}

void SBD_FILE_PARSER::get_typed_blocks(SBD_BLOCK::BLOCK_TYPE type, SBD_STRING_LIST& names,
                                       const SBD_NODE* scope) const {
  sbd_guarded(k_source_file_parser, false, [this, type, &names, scope] {
    SBD_STRING_LIST found;
    SBD_TREE_WALK walk(first_member(scope));
    while (const SBD_NODE* const node = walk.next()) {
      if (node->type != SBD_NODE::NT_BLOCK || node->block == nullptr) continue;
      if (node->block->block_type != type) continue;
      SBD_STRING name;
      if (SBD_CHECK(SBD_LOOKUP::make_full_name(node, name),
                    "Can not get block ref name from block node", k_source_file_parser)) {
        found.push_back(std::move(name));
      }
    }
    names.splice(names.end(), found);
    return true;
  });
}

unsigned long SBD_FILE_PARSER::get_unit_value(SBD_PARA_VALUE::QUANTITY_UNIT unit) noexcept {
  static constexpr unsigned long k_multipliers[] = {1, 1024, 1UL << 20, 1UL << 30, 1, 1000000};
  constexpr std::size_t k_unit_count = sizeof k_multipliers / sizeof *k_multipliers;
  return unit < k_unit_count ? k_multipliers[unit] : 1;
}

bool SBD_FILE_PARSER::get_value(const char* block, const char* parameter,
                                unsigned long& value) const {
  return get_number(find_member(block, parameter), value);
}

bool SBD_FILE_PARSER::get_value(const char* name, unsigned long& value) const {
  return get_number(get_ref_object(name, nullptr), value);
}

bool SBD_FILE_PARSER::get_value(const char* block, const char* parameter, double& value) const {
  return get_number(find_member(block, parameter), value);
}

bool SBD_FILE_PARSER::get_value(const char* name, double& value) const {
  return get_number(get_ref_object(name, nullptr), value);
}

bool SBD_FILE_PARSER::get_value(const char* block, const char* parameter, int& value) const {
  return get_flag(find_member(block, parameter), value);
}

bool SBD_FILE_PARSER::get_value(const char* name, int& value) const {
  return get_flag(get_ref_object(name, nullptr), value);
}

bool SBD_FILE_PARSER::get_value(const char* block, const char* parameter, SBD_STRING& value) const {
  return get_text(find_member(block, parameter), value);
}

bool SBD_FILE_PARSER::get_value(const char* name, SBD_STRING& value) const {
  return get_text(get_ref_object(name, nullptr), value);
}

bool SBD_FILE_PARSER::get_value(const char* block, const char* parameter,
                                SBD_STRING_LIST& names) const {
  const SBD_PARA_REF* const first = get_para_ref(block, parameter);
  if (first == nullptr) return false;
  return sbd_guarded(k_source_file_parser, false, [first, &names] {
    SBD_STRING_LIST found;
    for (const SBD_PARA_REF* reference = first; reference != nullptr; reference = reference->next) {
      found.emplace_back(reference->name != nullptr ? reference->name : "");
    }
    names.splice(names.end(), found);
    return true;
  });
}
