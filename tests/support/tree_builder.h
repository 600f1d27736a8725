// Builds records by hand, as a caller of the library does, and reads texts.
#ifndef TESTS_SUPPORT_TREE_BUILDER_H
#define TESTS_SUPPORT_TREE_BUILDER_H

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sbd/sbd_file_parser.h"

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;
using SBD_TOKEN_INFO = SBD_FILE_PARSER::SBD_TOKEN_INFO;
using SBD_VALUE_LIST = SBD_FILE_PARSER::SBD_VALUE_LIST;

// The file name that read_text below gives.
inline constexpr char TEST_FILE[] = "test.sbd";

bool read_text(SBD_FILE_PARSER& document, std::string_view text, const char* name = TEST_FILE);

// A document that was read from `text`; a test failure when it has a fault.
std::unique_ptr<SBD_FILE_PARSER> document_of(std::string_view text);

// Nodes with their symbols, which are not entered anywhere yet.
SBD_NODE* make_block(const char* type, const char* name);
SBD_NODE* make_assignment(const char* name, SBD_PARA_VALUE* value,
                          SBD_PARA_ATTR* attributes = nullptr, const char* comment = nullptr);
SBD_NODE* make_reference(const char* name, std::initializer_list<const char*> names,
                         const char* comment = nullptr);
SBD_NODE* make_comment(const char* text);
SBD_SYMBOL* make_symbol(const char* name, SBD_SYMBOL::SYMBOL_TYPE type = SBD_SYMBOL::SYM_PARAMETER,
                        SBD_NODE* node = nullptr);

SBD_PARA_VALUE* make_number(double number,
                            SBD_PARA_VALUE::QUANTITY_UNIT unit = SBD_PARA_VALUE::QU_NONE,
                            SBD_PARA_VALUE::VALUE_TYPE type = SBD_PARA_VALUE::VT_UDECIMAL);
SBD_PARA_VALUE* make_bool(bool flag);
SBD_PARA_VALUE* make_string(const char* text);
SBD_PARA_VALUE* make_list(std::initializer_list<SBD_PARA_VALUE*> elements);
SBD_PARA_ATTR* make_attributes(
    std::initializer_list<std::pair<const char*, const char*>> attributes);

// The symbol of a block or statement; null for a comment.
SBD_SYMBOL* symbol_of(const SBD_NODE* node);

// Enters the node's symbol and appends the node; returns the node.
SBD_NODE* enter(SBD_FILE_PARSER& document, SBD_NODE* node, SBD_NODE* parent);

// Frees a symbol that no document owns.
void free_symbol(SBD_SYMBOL* symbol);

SBD_NODE* root_of(const SBD_FILE_PARSER& document);
// The members of a block, or the top-level nodes for null.
std::vector<SBD_NODE*> members_of(const SBD_FILE_PARSER& document, const SBD_NODE* parent);
// The symbols of one bucket, from its head on.
std::vector<SBD_SYMBOL*> chain_of(const SBD_FILE_PARSER& document, unsigned long bucket);
std::vector<SBD_SYMBOL*> chain_of(const SBD_FILE_PARSER& document, const char* name);
// The names of the symbols in the bucket of `name`, from its head on.
std::vector<std::string> chain_names(const SBD_FILE_PARSER& document, const char* name);
std::size_t count_symbols(const SBD_FILE_PARSER& document);

#endif
