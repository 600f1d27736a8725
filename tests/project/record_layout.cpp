// The layout of the public records, as programs were compiled with it.
//
// Whoever has to change a number here breaks programs that are linked to the shared library:
// docs/compatibility.md tells what goes with that. The numbers are those of 64-bit Linux.
#include <cstddef>

#include "capi/sbd_c.h"
#include "h/msg_service.h"
#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_parameter_reader.h"
#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_parser.h"
#include "sbd/sbd_source_document.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_parameter_reader.h"

#if defined(__x86_64__) || defined(__aarch64__)

// Some records have members that the standard does not let offsetof look into; the compilers do.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

#define SIZE(type, bytes) static_assert(sizeof(type) == (bytes), #type " has another size")
#define AT(type, member, offset) \
  static_assert(offsetof(type, member) == (offset), #type "::" #member " has moved")

// ---- capi/sbd_c.h ------------------------------------------------------------------------------

SIZE(sbdc_position, 16);
AT(sbdc_position, offset, 0);
AT(sbdc_position, length, 4);
AT(sbdc_position, line, 8);
AT(sbdc_position, column, 12);

SIZE(sbdc_finding, 48);
AT(sbdc_finding, severity, 0);
AT(sbdc_finding, number, 4);
AT(sbdc_finding, key, 8);
AT(sbdc_finding, text, 16);
AT(sbdc_finding, parameter, 24);
AT(sbdc_finding, position, 32);

SIZE(sbdc_value, 64);
AT(sbdc_value, kind, 0);
AT(sbdc_value, unit, 4);
AT(sbdc_value, number, 8);
AT(sbdc_value, unscaled, 16);
AT(sbdc_value, text, 24);
AT(sbdc_value, target, 32);
AT(sbdc_value, first_element, 40);
AT(sbdc_value, element_count, 44);
AT(sbdc_value, position, 48);

SIZE(sbdc_attribute, 32);
AT(sbdc_attribute, key, 0);
AT(sbdc_attribute, value, 8);
AT(sbdc_attribute, position, 16);

SIZE(sbdc_item, 128);
AT(sbdc_item, name, 0);
AT(sbdc_item, type, 8);
AT(sbdc_item, kind, 16);
AT(sbdc_item, depth, 20);
AT(sbdc_item, position, 24);
AT(sbdc_item, name_position, 40);
AT(sbdc_item, value, 56);
AT(sbdc_item, first_attribute, 120);
AT(sbdc_item, attribute_count, 124);

SIZE(sbdc_listing_view, 40);
AT(sbdc_listing_view, items, 0);
AT(sbdc_listing_view, item_count, 8);
AT(sbdc_listing_view, item_size, 16);
AT(sbdc_listing_view, names, 24);
AT(sbdc_listing_view, name_length, 32);

SIZE(sbdc_parameter, 64);
AT(sbdc_parameter, name, 0);
AT(sbdc_parameter, type, 8);
AT(sbdc_parameter, origin, 12);
AT(sbdc_parameter, has_value, 16);
AT(sbdc_parameter, is_required, 20);
AT(sbdc_parameter, number, 24);
AT(sbdc_parameter, text, 32);
AT(sbdc_parameter, allowed, 40);
AT(sbdc_parameter, position, 48);

// ---- h/msg_service.h ----------------------------------------------------------------------------

SIZE(MSG_BASE, 16);
SIZE(MSG_E, 16);

// ---- host/sbd_host.h ----------------------------------------------------------------------------

SIZE(sbd_host::MESSAGE, 40);
AT(sbd_host::MESSAGE, severity, 0);
AT(sbd_host::MESSAGE, number, 4);
AT(sbd_host::MESSAGE, text_template, 8);
AT(sbd_host::MESSAGE, key, 16);
AT(sbd_host::MESSAGE, text, 24);
AT(sbd_host::MESSAGE, module, 32);

SIZE(sbd_host::INTERNAL_ERROR, 32);
AT(sbd_host::INTERNAL_ERROR, condition, 0);
AT(sbd_host::INTERNAL_ERROR, module, 8);
AT(sbd_host::INTERNAL_ERROR, source, 16);
AT(sbd_host::INTERNAL_ERROR, line, 24);

SIZE(sbd_host::MEMORY_ACCOUNT, 32);
AT(sbd_host::MEMORY_ACCOUNT, live_bytes, 0);
AT(sbd_host::MEMORY_ACCOUNT, live_blocks, 8);
AT(sbd_host::MEMORY_ACCOUNT, total_allocations, 16);
AT(sbd_host::MEMORY_ACCOUNT, peak_bytes, 24);

SIZE(sbd_host::MEMORY_EVENT, 32);
AT(sbd_host::MEMORY_EVENT, is_allocation, 0);
AT(sbd_host::MEMORY_EVENT, module_tag, 8);
AT(sbd_host::MEMORY_EVENT, size, 16);
AT(sbd_host::MEMORY_EVENT, block, 24);

// ---- sbd/sbd_file_parser.h ----------------------------------------------------------------------

SIZE(SBD_FILE_PARSER::SBD_NODE, 24);
AT(SBD_FILE_PARSER::SBD_NODE, type, 0);
AT(SBD_FILE_PARSER::SBD_NODE, m_references, 2);
AT(SBD_FILE_PARSER::SBD_NODE, m_position, 4);
AT(SBD_FILE_PARSER::SBD_NODE, next, 8);
AT(SBD_FILE_PARSER::SBD_NODE, block, 16);

SIZE(SBD_FILE_PARSER::SBD_BLOCK, 48);
AT(SBD_FILE_PARSER::SBD_BLOCK, block_type, 0);
AT(SBD_FILE_PARSER::SBD_BLOCK, m_end_position, 4);
AT(SBD_FILE_PARSER::SBD_BLOCK, type, 8);
AT(SBD_FILE_PARSER::SBD_BLOCK, name, 16);
AT(SBD_FILE_PARSER::SBD_BLOCK, members, 24);
AT(SBD_FILE_PARSER::SBD_BLOCK, m_last, 32);
AT(SBD_FILE_PARSER::SBD_BLOCK, m_scope_table, 40);

SIZE(SBD_FILE_PARSER::SBD_STATEMENT, 40);
AT(SBD_FILE_PARSER::SBD_STATEMENT, type, 0);
AT(SBD_FILE_PARSER::SBD_STATEMENT, name, 8);
AT(SBD_FILE_PARSER::SBD_STATEMENT, value, 16);
AT(SBD_FILE_PARSER::SBD_STATEMENT, attributes, 24);
AT(SBD_FILE_PARSER::SBD_STATEMENT, comment, 32);

SIZE(SBD_FILE_PARSER::SBD_VALUE_LIST, 32);
SIZE(SBD_FILE_PARSER::SBD_PARA_VALUE, 16);
AT(SBD_FILE_PARSER::SBD_PARA_VALUE, type, 0);
AT(SBD_FILE_PARSER::SBD_PARA_VALUE, unit, 1);
AT(SBD_FILE_PARSER::SBD_PARA_VALUE, m_length, 2);
AT(SBD_FILE_PARSER::SBD_PARA_VALUE, m_position, 4);
AT(SBD_FILE_PARSER::SBD_PARA_VALUE, number, 8);

SIZE(SBD_FILE_PARSER::SBD_PARA_REF, 32);
AT(SBD_FILE_PARSER::SBD_PARA_REF, name, 0);
AT(SBD_FILE_PARSER::SBD_PARA_REF, target, 8);
AT(SBD_FILE_PARSER::SBD_PARA_REF, next, 16);
AT(SBD_FILE_PARSER::SBD_PARA_REF, m_position, 24);

SIZE(SBD_FILE_PARSER::SBD_PARA_ATTR, 32);
AT(SBD_FILE_PARSER::SBD_PARA_ATTR, attr_key, 0);
AT(SBD_FILE_PARSER::SBD_PARA_ATTR, attr_value, 8);
AT(SBD_FILE_PARSER::SBD_PARA_ATTR, next, 16);
AT(SBD_FILE_PARSER::SBD_PARA_ATTR, m_position, 24);

SIZE(SBD_FILE_PARSER::SBD_SYMBOL, 40);
AT(SBD_FILE_PARSER::SBD_SYMBOL, line, 0);
AT(SBD_FILE_PARSER::SBD_SYMBOL, type, 4);
AT(SBD_FILE_PARSER::SBD_SYMBOL, m_tag, 6);
AT(SBD_FILE_PARSER::SBD_SYMBOL, name, 8);
AT(SBD_FILE_PARSER::SBD_SYMBOL, node, 16);
AT(SBD_FILE_PARSER::SBD_SYMBOL, parent, 24);
AT(SBD_FILE_PARSER::SBD_SYMBOL, next, 32);

SIZE(SBD_FILE_PARSER::SBD_TOKEN_INFO, 24);
AT(SBD_FILE_PARSER::SBD_TOKEN_INFO, line, 0);
AT(SBD_FILE_PARSER::SBD_TOKEN_INFO, text, 8);

SIZE(SBD_FILE_PARSER::SBD_SYMBOL_TABLE, 32);
SIZE(SBD_FILE_PARSER::SBD_PARSER_PARA, 24);
AT(SBD_FILE_PARSER::SBD_PARSER_PARA, symbol_table, 0);
AT(SBD_FILE_PARSER::SBD_PARSER_PARA, root, 8);
AT(SBD_FILE_PARSER::SBD_PARSER_PARA, error_count, 16);

SIZE(SBD_FILE_PARSER::SBD_SOURCE_RANGE, 32);
AT(SBD_FILE_PARSER::SBD_SOURCE_RANGE, offset, 0);
AT(SBD_FILE_PARSER::SBD_SOURCE_RANGE, length, 8);
AT(SBD_FILE_PARSER::SBD_SOURCE_RANGE, line, 16);
AT(SBD_FILE_PARSER::SBD_SOURCE_RANGE, column, 24);

SIZE(SBD_FILE_PARSER, 48);

// ---- sbd/sbd_parameter_reader.h -----------------------------------------------------------------

SIZE(SBD_PARAMETER_FAULT, 56);
AT(SBD_PARAMETER_FAULT, reference, 0);
AT(SBD_PARAMETER_FAULT, is_missing, 32);
AT(SBD_PARAMETER_FAULT, statement, 40);
AT(SBD_PARAMETER_FAULT, block, 48);

SIZE(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, 56);
AT(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, m_value_type, 0);
AT(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, m_has_value, 4);
AT(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, m_is_defined, 5);
AT(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, m_is_validated, 6);
AT(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, m_bool_value, 7);
AT(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, m_dword_value, 8);
AT(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, m_double_value, 16);
AT(SBD_PARAMETER_READER::SBD_PARAMETER_VALUE, m_string_value, 24);

SIZE(SBD_PARAMETER_READER, 120);

// ---- sbd/sbd_parameter_rules.h ------------------------------------------------------------------

SIZE(SBD_RULE_CONDITION, 24);
AT(SBD_RULE_CONDITION, reference, 0);
AT(SBD_RULE_CONDITION, test, 8);
AT(SBD_RULE_CONDITION, text, 16);

SIZE(SBD_VALUE_SET, 48);
AT(SBD_VALUE_SET, kind, 0);
AT(SBD_VALUE_SET, low, 8);
AT(SBD_VALUE_SET, high, 16);
AT(SBD_VALUE_SET, numbers, 24);
AT(SBD_VALUE_SET, texts, 32);
AT(SBD_VALUE_SET, count, 40);

SIZE(SBD_VALUE_RULE, 120);
AT(SBD_VALUE_RULE, reference, 0);
AT(SBD_VALUE_RULE, values, 8);
AT(SBD_VALUE_RULE, exceptions, 56);
AT(SBD_VALUE_RULE, exception_count, 64);
AT(SBD_VALUE_RULE, exception_values, 72);

SIZE(SBD_REQUIREMENT_RULE, 32);
AT(SBD_REQUIREMENT_RULE, reference, 0);
AT(SBD_REQUIREMENT_RULE, condition, 8);

SIZE(SBD_PARAMETER_RULE, 192);
AT(SBD_PARAMETER_RULE, reference, 0);
AT(SBD_PARAMETER_RULE, block_name, 32);
AT(SBD_PARAMETER_RULE, parameter_name, 40);
AT(SBD_PARAMETER_RULE, type, 48);
AT(SBD_PARAMETER_RULE, present_block_default, 56);
AT(SBD_PARAMETER_RULE, absent_block_default, 112);
AT(SBD_PARAMETER_RULE, requirement, 168);
AT(SBD_PARAMETER_RULE, condition, 176);
AT(SBD_PARAMETER_RULE, value_rule, 184);

SIZE(SBD_RULE_SETTING, 104);
AT(SBD_RULE_SETTING, reference, 0);
AT(SBD_RULE_SETTING, value, 32);
AT(SBD_RULE_SETTING, origin, 88);
AT(SBD_RULE_SETTING, statement, 96);

SIZE(SBD_PARAMETER_STATE, 144);
AT(SBD_PARAMETER_STATE, value, 0);
AT(SBD_PARAMETER_STATE, origin, 56);
AT(SBD_PARAMETER_STATE, statement, 64);
AT(SBD_PARAMETER_STATE, block, 72);
AT(SBD_PARAMETER_STATE, is_required, 80);
AT(SBD_PARAMETER_STATE, requirement_settings, 88);
AT(SBD_PARAMETER_STATE, allowed_values, 112);
AT(SBD_PARAMETER_STATE, value_settings, 120);

// ---- sbd/sbd_parser.h ---------------------------------------------------------------------------

SIZE(FlexLexer::LOCATION, 40);
AT(FlexLexer::LOCATION, offset, 0);
AT(FlexLexer::LOCATION, length, 8);
AT(FlexLexer::LOCATION, first_line, 16);
AT(FlexLexer::LOCATION, column, 24);
AT(FlexLexer::LOCATION, line, 32);

SIZE(FlexLexer, 152);
SIZE(sbd_yyFlexLexer, 184);

// ---- sbd/sbd_source_document.h ------------------------------------------------------------------

SIZE(SBD_PLACE, 16);
AT(SBD_PLACE, kind, 0);
AT(SBD_PLACE, sibling, 8);

SIZE(SBD_SOURCE_DOCUMENT, 8);

// ---- sbd/sbd_veldran.h --------------------------------------------------------------------------

SIZE(SBD_VELDRAN, 104);

// ---- sbd/sbd_veldran_parameter_reader.h ---------------------------------------------------------

SIZE(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, 48);
AT(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, block_name, 0);
AT(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, parameter_name, 8);
AT(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, device_mask, 16);
AT(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, has_default, 24);
AT(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, validate_value, 25);
AT(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, requirement, 32);
AT(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, default_value, 40);
AT(SBD_VELDRAN_PARAMETER_READER::BOOL_ROW, absent_block_value, 41);

SIZE(SBD_VELDRAN_PARAMETER_READER::DWORD_ROW, 56);
AT(SBD_VELDRAN_PARAMETER_READER::DWORD_ROW, requirement, 32);
AT(SBD_VELDRAN_PARAMETER_READER::DWORD_ROW, default_value, 40);
AT(SBD_VELDRAN_PARAMETER_READER::DWORD_ROW, absent_block_value, 48);

SIZE(SBD_VELDRAN_PARAMETER_READER::DOUBLE_ROW, 56);
AT(SBD_VELDRAN_PARAMETER_READER::DOUBLE_ROW, requirement, 32);
AT(SBD_VELDRAN_PARAMETER_READER::DOUBLE_ROW, default_value, 40);
AT(SBD_VELDRAN_PARAMETER_READER::DOUBLE_ROW, absent_block_value, 48);

SIZE(SBD_VELDRAN_PARAMETER_READER::STRING_ROW, 56);
AT(SBD_VELDRAN_PARAMETER_READER::STRING_ROW, requirement, 32);
AT(SBD_VELDRAN_PARAMETER_READER::STRING_ROW, default_value, 40);
AT(SBD_VELDRAN_PARAMETER_READER::STRING_ROW, absent_block_value, 48);

SIZE(SBD_VELDRAN_PARAMETER_READER, 120);
SIZE(SBD_QMXA10_PARAMETER_READER, 120);

#undef SIZE
#undef AT

#endif
