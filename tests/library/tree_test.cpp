#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using NODES = std::vector<SBD_NODE*>;
using SYMBOLS = std::vector<SBD_SYMBOL*>;
using TEXTS = std::vector<std::string>;

static_assert(SBD_NODE::NT_BLOCK == 0 && SBD_NODE::NT_STATEMENT == 1 && SBD_NODE::NT_COMMENT == 2);
static_assert(SBD_BLOCK::BT_DEVICE == 0 && SBD_BLOCK::BT_BUS == 1 && SBD_BLOCK::BT_MODULE == 2 &&
              SBD_BLOCK::BT_SLAVE == 3 && SBD_BLOCK::BT_MASTER == 4 && SBD_BLOCK::BT_REGION == 5 &&
              SBD_BLOCK::BT_PARAMETERS == 6 && SBD_BLOCK::BT_UNKNOWN == 7);
static_assert(SBD_STATEMENT::ST_ASSIGNMENT == 0 && SBD_STATEMENT::ST_REFERENCE == 1);
static_assert(SBD_PARA_VALUE::VT_UDECIMAL == 0 && SBD_PARA_VALUE::VT_OCTAL == 1 &&
              SBD_PARA_VALUE::VT_HEXAL == 2 && SBD_PARA_VALUE::VT_BINARY == 3 &&
              SBD_PARA_VALUE::VT_FLOAT == 4 && SBD_PARA_VALUE::VT_BOOL == 5 &&
              SBD_PARA_VALUE::VT_STRING == 6 && SBD_PARA_VALUE::VT_LIST == 7);
static_assert(SBD_PARA_VALUE::QU_NONE == 0 && SBD_PARA_VALUE::QU_KB == 1 &&
              SBD_PARA_VALUE::QU_MB == 2 && SBD_PARA_VALUE::QU_GB == 3 &&
              SBD_PARA_VALUE::QU_HZ == 4 && SBD_PARA_VALUE::QU_MHZ == 5);
static_assert(SBD_SYMBOL::SYM_BLOCK == 0 && SBD_SYMBOL::SYM_PARAMETER == 1);
static_assert(std::has_virtual_destructor_v<SBD_FILE_PARSER>);
static_assert(!std::is_copy_constructible_v<SBD_FILE_PARSER> &&
              !std::is_copy_assignable_v<SBD_FILE_PARSER>);

void expect_empty(const SBD_FILE_PARSER& document) {
  EXPECT_EQ(root_of(document), nullptr);
  EXPECT_EQ(document.get_parser_para().error_count, 0U);
  ASSERT_NE(document.get_parser_para().symbol_table, nullptr);
  EXPECT_EQ(document.get_parser_para().symbol_table->size(), 211U);
  EXPECT_EQ(count_symbols(document), 0U);
}

void expect_error(const MESSAGE_RECORDER& recorder, const char* condition, const char* source) {
  ASSERT_EQ(recorder.conditions(), TEXTS{condition});
  EXPECT_EQ(recorder.internal_errors().front().module, "SBD");
  EXPECT_EQ(recorder.internal_errors().front().source, source);
  EXPECT_GT(recorder.internal_errors().front().line, 0);
  EXPECT_TRUE(recorder.messages().empty());
}

// ---- Whole documents ---------------------------------------------------------------------------

TEST(DOCUMENT, StartsEmpty) {
  const SBD_FILE_PARSER document;
  expect_empty(document);
  EXPECT_EQ(document.get_file_name(), nullptr);
}

TEST(DOCUMENT, MayBeClearedWhenEmpty) {
  SBD_FILE_PARSER document;
  document.clear();
  document.clear();
  expect_empty(document);
}

TEST(DOCUMENT, ClearFreesTreeAndSymbolsAndKeepsTheFileName) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, "device d { a = 1; bus b { r < d.a >; } }\n# c\n", "my.sbd"));
  document.get_parser_para().error_count = 5;
  document.clear();
  expect_empty(document);
  EXPECT_STREQ(document.get_file_name(), "my.sbd");
}

TEST(DOCUMENT, ClearFreesSymbolsThatNoNodeDeclares) {
  SBD_FILE_PARSER document;
  document.add_symbol(make_symbol("stray"));
  document.add_symbol(make_symbol("STRAY"));
  document.add_symbol(make_symbol("other"));
  document.clear();
  expect_empty(document);
}

TEST(DOCUMENT, DestructorFreesEverything) {
  auto document = document_of("device d { a = {1, {\"s\", 2}} [k .v]; # c\n r < .a, d >; }\n");
  document->add_symbol(make_symbol("stray"));
  enter(*document, make_block("bus", "b"), root_of(*document));
  document.reset();
  EXPECT_EQ(sbd_host::get_memory_account("SBD").live_blocks, 0U);
}

TEST(DOCUMENT, CanBeUsedAgainAfterClear) {
  auto document = document_of("device d { a = 1; }");
  document->clear();
  ASSERT_TRUE(read_text(*document, "device e { b = 2; }"));
  EXPECT_EQ(outline(*document), "device e @1\n  b = 2 @1\n");
}

TEST(DOCUMENT, DoesNotShareSymbolsWithAnother) {
  const auto one = document_of("device d { a = 1; }");
  const auto other = document_of("device d { a = 1; }");
  EXPECT_NE(chain_of(*one, "a"), chain_of(*other, "a"));
  EXPECT_EQ(find_inconsistency(*one), "");
  EXPECT_EQ(find_inconsistency(*other), "");
}

// ---- Block types -------------------------------------------------------------------------------

TEST(BLOCK_TYPE, FollowsTheKeywordInAnyCase) {
  const std::vector<std::pair<const char*, SBD_BLOCK::BLOCK_TYPE>> keywords = {
      {"device", SBD_BLOCK::BT_DEVICE},         {"bus", SBD_BLOCK::BT_BUS},
      {"module", SBD_BLOCK::BT_MODULE},         {"slave", SBD_BLOCK::BT_SLAVE},
      {"master", SBD_BLOCK::BT_MASTER},         {"region", SBD_BLOCK::BT_REGION},
      {"parameters", SBD_BLOCK::BT_PARAMETERS},
  };
  for (const auto& [keyword, type] : keywords) {
    std::string upper;
    std::string mixed;
    for (const char* c = keyword; *c != 0; c++) {
      upper += static_cast<char>(std::toupper(*c));
      mixed += mixed.size() % 2 == 0 ? upper.back() : *c;
    }
    EXPECT_EQ(SBD_FILE_PARSER::lookup_block_type(keyword), type) << keyword;
    EXPECT_EQ(SBD_FILE_PARSER::lookup_block_type(upper.c_str()), type) << upper;
    EXPECT_EQ(SBD_FILE_PARSER::lookup_block_type(mixed.c_str()), type) << mixed;
  }
}

TEST(BLOCK_TYPE, IsUnknownForAnythingElse) {
  for (const char* const keyword : {"", "devic", "devices", " device", "bus ", "unknown", "stripe",
                                    "parameter", "b", "\xc4", "device\n"}) {
    EXPECT_EQ(SBD_FILE_PARSER::lookup_block_type(keyword), SBD_BLOCK::BT_UNKNOWN) << keyword;
  }
}

// ---- Hash --------------------------------------------------------------------------------------

// The hash by its definition, one step after the other.
unsigned long plain_hash(const std::string& name, unsigned long size) {
  std::uint32_t h = 0;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_upper = byte >= 'A' && byte <= 'Z';
    const auto lower = static_cast<std::int8_t>(is_upper ? byte + ('a' - 'A') : byte);
    h = (h << 4) + static_cast<std::uint32_t>(static_cast<std::int32_t>(lower));
    const std::uint32_t g = h & 0xF0000000U;
    if (g != 0) {
      h ^= g >> 24;
      h ^= g;
    }
  }
  return h % size;
}

TEST(HASH, HasKnownValues) {
  // 'a' is 97; "ab" is 97 * 16 + 98 = 1650; a byte of 0x80 adds -128.
  EXPECT_EQ(SBD_FILE_PARSER::hash_pjw("", 211), 0U);
  EXPECT_EQ(SBD_FILE_PARSER::hash_pjw("a", 211), 97U);
  EXPECT_EQ(SBD_FILE_PARSER::hash_pjw("ab", 211), 1650U % 211);
  EXPECT_EQ(SBD_FILE_PARSER::hash_pjw("a\x80", 1000000), 97U * 16 - 128);
}

TEST(HASH, IsTheSameInAnyLetterCase) {
  EXPECT_EQ(SBD_FILE_PARSER::hash_pjw("clk_a", 211), SBD_FILE_PARSER::hash_pjw("CLK_A", 211));
  EXPECT_EQ(SBD_FILE_PARSER::hash_pjw("Region[0]", 100003),
            SBD_FILE_PARSER::hash_pjw("rEGION[0]", 100003));
}

TEST(HASH, AgreesWithItsDefinitionForNames) {
  std::mt19937 random(1);
  const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_[].";
  for (int i = 0; i < 20000; i++) {
    std::string name(random() % 40, ' ');
    for (char& c : name) c = letters[random() % letters.size()];
    ASSERT_EQ(SBD_FILE_PARSER::hash_pjw(name.c_str(), 211), plain_hash(name, 211)) << name;
  }
}

TEST(HASH, AgreesWithItsDefinitionForAllBytesAndSizes) {
  std::mt19937 random(2);
  for (int i = 0; i < 20000; i++) {
    std::string name(random() % 24, ' ');
    for (char& c : name) c = static_cast<char>(1 + random() % 255);
    const unsigned long size = 1 + random();
    ASSERT_EQ(SBD_FILE_PARSER::hash_pjw(name.c_str(), size), plain_hash(name, size));
  }
}

TEST(HASH, NullNameIsAnInternalError) {
  MESSAGE_RECORDER recorder;
  EXPECT_EQ(SBD_FILE_PARSER::hash_pjw(nullptr, 211), 0U);
  expect_error(recorder, "name != NULL", "sbd_file_parser");
}

// ---- Symbols -----------------------------------------------------------------------------------

TEST(SYMBOL, NullIsIgnored) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  document.add_symbol(nullptr);
  document.delete_symbol(nullptr);
  expect_empty(document);
  EXPECT_TRUE(recorder.is_silent());
}

TEST(SYMBOL, IsEnteredAtTheHeadOfItsBucket) {
  SBD_FILE_PARSER document;
  for (const char* const name : {"ab", "AB", "Ab", "ab"}) document.add_symbol(make_symbol(name));
  EXPECT_EQ(chain_names(document, "aB"), (TEXTS{"ab", "Ab", "AB", "ab"}));
  EXPECT_EQ(count_symbols(document), 4U);
}

TEST(SYMBOL, GoesToTheBucketOfItsHash) {
  SBD_FILE_PARSER document;
  for (int i = 0; i < 500; i++) {
    const std::string name = "Name_" + std::to_string(i);
    SBD_SYMBOL* const symbol = make_symbol(name.c_str());
    document.add_symbol(symbol);
    EXPECT_EQ((*document.get_parser_para().symbol_table)[plain_hash(name, 211)], symbol);
  }
}

TEST(SYMBOL, IsDeletedFromAnyPlaceOfItsChain) {
  for (std::size_t place = 0; place < 3; place++) {
    SBD_FILE_PARSER document;
    for (const char* const name : {"ab", "AB", "Ab"}) document.add_symbol(make_symbol(name));
    SYMBOLS chain = chain_of(document, "ab");
    document.delete_symbol(chain[place]);
    chain.erase(chain.begin() + static_cast<std::ptrdiff_t>(place));
    EXPECT_EQ(chain_of(document, "ab"), chain);
  }
}

TEST(SYMBOL, OfNoBucketIsLeftAlone) {
  SBD_FILE_PARSER document;
  document.add_symbol(make_symbol("a"));
  SBD_SYMBOL* const stranger = make_symbol("a");
  const SYMBOLS before = chain_of(document, "a");
  document.delete_symbol(stranger);
  EXPECT_EQ(chain_of(document, "a"), before);
  EXPECT_STREQ(stranger->name, "a");
  free_symbol(stranger);
}

TEST(SYMBOL, OfAnotherDocumentIsLeftAlone) {
  const auto reader = document_of("device d { a = 1; }");
  SBD_FILE_PARSER document;
  document.delete_symbol(chain_of(*reader, "a").front());
  EXPECT_EQ(chain_names(*reader, "a"), TEXTS{"a"});
}

TEST(SYMBOL, MadeByTheReaderMayBeDeletedByItself) {
  auto document = document_of("device d { a = 1; A2 = 2; }");
  SBD_NODE* const node = root_of(*document)->block->members;
  document->delete_symbol(node->statement->name);
  node->statement->name = nullptr;
  EXPECT_TRUE(chain_of(*document, "a").empty());
  EXPECT_EQ(count_symbols(*document), 2U);
}

TEST(SYMBOL, ReadLaterIsAheadInItsChain) {
  // A block's own name is entered after the names of its members.
  const auto document = document_of("device ab { aB = 1; bus b { Ab = 2; } slave s { AB = 3; } }");
  EXPECT_EQ(chain_names(*document, "ab"), (TEXTS{"ab", "AB", "Ab", "aB"}));
}

class CREATED_SYMBOL : public testing::Test {
 protected:
  SBD_SYMBOL* create(const char* name, SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node) {
    SBD_TOKEN_INFO token;
    token.line = 7;
    token.text = name;
    return sbd_create_symbol(type, node, &token, m_document.get_parser_para().symbol_table);
  }

  SBD_FILE_PARSER m_document;
  SBD_NODE m_node;
  SBD_NODE m_other_node;
  MESSAGE_RECORDER m_recorder;
};

TEST_F(CREATED_SYMBOL, HoldsNameLineTypeAndNode) {
  const SBD_SYMBOL* const symbol = create("Name[1]", SBD_SYMBOL::SYM_BLOCK, &m_node);
  ASSERT_NE(symbol, nullptr);
  EXPECT_STREQ(symbol->name, "Name[1]");
  EXPECT_EQ(symbol->line, 7U);
  EXPECT_EQ(symbol->type, SBD_SYMBOL::SYM_BLOCK);
  EXPECT_EQ(symbol->node, &m_node);
  EXPECT_EQ(symbol->parent, nullptr);
  EXPECT_EQ(chain_of(m_document, "name[1]").front(), symbol);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(CREATED_SYMBOL, OfTheSameNameTypeAndNodeIsAnInternalError) {
  create("a", SBD_SYMBOL::SYM_PARAMETER, &m_node);
  SBD_SYMBOL* const second = create("a", SBD_SYMBOL::SYM_PARAMETER, &m_node);
  expect_error(m_recorder, "Error in symbol table", "sbd_parser");
  ASSERT_EQ(chain_of(m_document, "a").size(), 2U);
  EXPECT_EQ(chain_of(m_document, "a").front(), second);
}

TEST_F(CREATED_SYMBOL, ThatDiffersInOneOfThemIsNone) {
  create("a", SBD_SYMBOL::SYM_PARAMETER, &m_node);
  create("A", SBD_SYMBOL::SYM_PARAMETER, &m_node);
  create("a", SBD_SYMBOL::SYM_BLOCK, &m_node);
  create("a", SBD_SYMBOL::SYM_PARAMETER, &m_other_node);
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_EQ(chain_names(m_document, "a"), (TEXTS{"a", "a", "A", "a"}));
}

// ---- add_node ----------------------------------------------------------------------------------

TEST(ADD_NODE, WithoutParentMakesTheRoot) {
  SBD_FILE_PARSER document;
  SBD_NODE* const node = make_comment("# c\n");
  document.add_node(node, nullptr);
  EXPECT_EQ(root_of(document), node);
}

TEST(ADD_NODE, WithoutParentAppendsToTheTopLevel) {
  SBD_FILE_PARSER document;
  const NODES nodes = {make_comment("# 1\n"), make_block("device", "d"), make_comment("# 2\n")};
  document.add_symbol(symbol_of(nodes[1]));
  for (SBD_NODE* const node : nodes) document.add_node(node, nullptr);
  EXPECT_EQ(members_of(document, nullptr), nodes);
}

TEST(ADD_NODE, AppendsToTheMembersOfABlock) {
  SBD_FILE_PARSER document;
  SBD_NODE* const block = enter(document, make_block("device", "d"), nullptr);
  NODES nodes = {make_comment("# 1\n")};
  document.add_node(nodes[0], block);
  nodes.push_back(enter(document, make_block("bus", "b"), block));
  nodes.push_back(enter(document, make_assignment("a", make_number(1)), block));
  nodes.push_back(enter(document, make_reference("r", {"d"}), block));
  EXPECT_EQ(members_of(document, block), nodes);
  EXPECT_EQ(members_of(document, nullptr), NODES{block});
}

TEST(ADD_NODE, CutsTheNodeOffItsFormerSuccessor) {
  SBD_FILE_PARSER document;
  SBD_NODE* const first = make_comment("# 1\n");
  SBD_NODE* const second = make_comment("# 2\n");
  first->next = second;
  document.add_node(first, nullptr);
  EXPECT_EQ(first->next, nullptr);
  document.add_node(second, nullptr);
  EXPECT_EQ(members_of(document, nullptr), (NODES{first, second}));
}

TEST(ADD_NODE, FindsTheEndOfMembersThatWereLinkedByHand) {
  SBD_FILE_PARSER document;
  SBD_NODE* const block = make_block("device", "d");
  const NODES nodes = {make_comment("# 1\n"), make_comment("# 2\n"), make_comment("# 3\n")};
  block->block->members = nodes[0];
  nodes[0]->next = nodes[1];
  enter(document, block, nullptr);
  document.add_node(nodes[2], block);
  EXPECT_EQ(members_of(document, block), nodes);
}

TEST(ADD_NODE, AppendsToWhatTheReaderMade) {
  auto document = document_of("device d { a = 1;\nbus b { # c\n } }\n# last\n");
  SBD_NODE* const device = root_of(*document);
  SBD_NODE* const bus = device->block->members->next;
  enter(*document, make_assignment("x", make_number(2)), bus);
  enter(*document, make_assignment("y", make_bool(true)), device);
  document->add_node(make_comment("# end\n"), nullptr);
  EXPECT_EQ(outline(*document),
            "device d @1\n"
            "  a = 1 @1\n"
            "  bus b @2\n"
            "    '# c\\n'\n"
            "    x = 2 @0\n"
            "  y = true @0\n"
            "'# last\\n'\n"
            "'# end\\n'\n");
}

TEST(ADD_NODE, ToAStatementOrCommentIsAnInternalErrorAndChangesNothing) {
  auto document = document_of("device d { # c\n a = 1; # t\n r < d >; }");
  const std::string before = outline(*document);
  for (SBD_NODE* const parent : members_of(*document, root_of(*document))) {
    MESSAGE_RECORDER recorder;
    SBD_NODE* const node = make_comment("# new\n");
    document->add_node(node, parent);
    expect_error(recorder, "parent->type == SBD_FILE_PARSER::SBD_NODE::NT_BLOCK",
                 "sbd_file_parser");
    EXPECT_EQ(outline(*document), before);
    document->free_node(node);
  }
}

// ---- delete_node -------------------------------------------------------------------------------

class DELETE_MEMBER : public testing::TestWithParam<bool> {
 protected:
  // A block with three comments, made by the reader or by hand.
  void make_three() {
    const bool is_read = GetParam();
    if (is_read) {
      ASSERT_TRUE(read_text(m_document, "device d {\n# 1\n# 2\n# 3\n}"));
      m_parent = root_of(m_document);
    } else {
      m_parent = enter(m_document, make_block("device", "d"), nullptr);
      for (const char* const text : {"# 1\n", "# 2\n", "# 3\n"}) {
        m_document.add_node(make_comment(text), m_parent);
      }
    }
    m_nodes = members_of(m_document, m_parent);
  }

  SBD_FILE_PARSER m_document;
  SBD_NODE* m_parent = nullptr;
  NODES m_nodes;
};

TEST_P(DELETE_MEMBER, UnlinksFromAnyPlaceOfTheMembers) {
  for (std::size_t place = 0; place < 3; place++) {
    m_document.clear();
    make_three();
    m_document.delete_node(m_nodes[place], m_parent);
    m_nodes.erase(m_nodes.begin() + static_cast<std::ptrdiff_t>(place));
    EXPECT_EQ(members_of(m_document, m_parent), m_nodes);
  }
}

TEST_P(DELETE_MEMBER, LeavesTheEndWhereNodesAreAppended) {
  for (std::size_t place = 0; place < 3; place++) {
    m_document.clear();
    make_three();
    m_document.delete_node(m_nodes[place], m_parent);
    m_nodes.erase(m_nodes.begin() + static_cast<std::ptrdiff_t>(place));
    m_nodes.push_back(make_comment("# new\n"));
    m_document.add_node(m_nodes.back(), m_parent);
    EXPECT_EQ(members_of(m_document, m_parent), m_nodes);
  }
}

TEST_P(DELETE_MEMBER, MayEmptyABlockThatIsFilledAgain) {
  make_three();
  for (SBD_NODE* const node : m_nodes) m_document.delete_node(node, m_parent);
  EXPECT_EQ(m_parent->block->members, nullptr);
  SBD_NODE* const node = make_comment("# new\n");
  m_document.add_node(node, m_parent);
  EXPECT_EQ(members_of(m_document, m_parent), NODES{node});
}

TEST_P(DELETE_MEMBER, OfAnotherListIsLeftAlone) {
  make_three();
  m_document.delete_node(m_nodes[1], nullptr);
  m_document.delete_node(m_parent, m_parent);
  EXPECT_EQ(members_of(m_document, m_parent), m_nodes);
  EXPECT_EQ(members_of(m_document, nullptr), NODES{m_parent});
}

INSTANTIATE_TEST_SUITE_P(Made, DELETE_MEMBER, testing::Values(true, false),
                         [](const testing::TestParamInfo<bool>& made) {
                           return made.param ? "ByTheReader" : "ByTheCaller";
                         });

TEST(DELETE_NODE, UnlinksFromAnyPlaceOfTheTopLevel) {
  for (std::size_t place = 0; place < 3; place++) {
    auto document = document_of("# 1\ndevice d { a = 1; }\n# 3\n");
    NODES nodes = members_of(*document, nullptr);
    document->delete_node(nodes[place], nullptr);
    nodes.erase(nodes.begin() + static_cast<std::ptrdiff_t>(place));
    nodes.push_back(make_comment("# new\n"));
    document->add_node(nodes.back(), nullptr);
    EXPECT_EQ(members_of(*document, nullptr), nodes);
  }
}

TEST(DELETE_NODE, MayEmptyTheTopLevel) {
  auto document = document_of("device d { a = 1; }");
  document->delete_node(root_of(*document), nullptr);
  expect_empty(*document);
}

TEST(DELETE_NODE, StrangerIsLeftAlone) {
  auto document = document_of("device d { a = 1; }");
  const std::string before = outline(*document);
  SBD_NODE* const stranger = make_assignment("a", make_number(1));
  document->delete_node(stranger, root_of(*document));
  document->delete_node(stranger, nullptr);
  EXPECT_EQ(outline(*document), before);
  EXPECT_STREQ(stranger->statement->name->name, "a");
  document->add_symbol(stranger->statement->name);
  document->free_node(stranger);
}

TEST(DELETE_NODE, OfAParentThatIsNoBlockDoesNothing) {
  MESSAGE_RECORDER recorder;
  auto document = document_of("device d { # c\n a = 1; r < d >; }");
  const std::string before = outline(*document);
  const NODES members = members_of(*document, root_of(*document));
  for (SBD_NODE* const parent : members) {
    for (SBD_NODE* const node : members) document->delete_node(node, parent);
  }
  EXPECT_EQ(outline(*document), before);
  EXPECT_TRUE(recorder.is_silent());
}

TEST(DELETE_NODE, TakesTheSymbolsOfAllMembersOut) {
  auto document = document_of("device d { bus b { a = 1; slave s { r < d >; } } b2 = 2; }");
  document->delete_node(root_of(*document)->block->members, root_of(*document));
  EXPECT_EQ(outline(*document), "device d @1\n  b2 = 2 @1\n");
  EXPECT_EQ(find_inconsistency(*document), "");
}

// ---- free_node ---------------------------------------------------------------------------------

TEST(FREE_NODE, NullIsIgnored) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  document.free_node(nullptr);
  EXPECT_TRUE(recorder.is_silent());
}

// Builds a node by hand, enters its symbols and frees it, twice: what is live must not grow.
void expect_freed(SBD_NODE* (*make)(SBD_FILE_PARSER&)) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  document.free_node(make(document));
  const std::size_t blocks = sbd_host::get_memory_account("SBD").live_blocks;
  document.free_node(make(document));
  EXPECT_EQ(sbd_host::get_memory_account("SBD").live_blocks, blocks);
  expect_empty(document);
  EXPECT_TRUE(recorder.is_silent());
}

SBD_NODE* with_symbol(SBD_FILE_PARSER& document, SBD_NODE* node) {
  document.add_symbol(symbol_of(node));
  return node;
}

TEST(FREE_NODE, FreesAComment) {
  expect_freed([](SBD_FILE_PARSER&) { return make_comment("# c\n"); });
}

TEST(FREE_NODE, FreesAnAssignment) {
  expect_freed([](SBD_FILE_PARSER& document) {
    return with_symbol(document,
                       make_assignment("a", make_string("\"text\""),
                                       make_attributes({{"k", nullptr}, {"l", ".v"}}), "# c\n"));
  });
}

TEST(FREE_NODE, FreesAListValue) {
  expect_freed([](SBD_FILE_PARSER& document) {
    SBD_PARA_VALUE* const inner = make_list({make_string("s"), make_list({}), make_bool(true)});
    return with_symbol(document, make_assignment("a", make_list({make_number(1), inner})));
  });
}

TEST(FREE_NODE, FreesAReference) {
  expect_freed([](SBD_FILE_PARSER& document) {
    return with_symbol(document, make_reference("r", {"a.b", ".c"}, "# c\n"));
  });
}

TEST(FREE_NODE, FreesABlockWithItsMembers) {
  expect_freed([](SBD_FILE_PARSER& document) {
    SBD_NODE* const block = with_symbol(document, make_block("device", "d"));
    SBD_NODE* const inner = enter(document, make_block("bus", "d"), block);
    enter(document, make_assignment("d", make_number(1)), inner);
    enter(document, make_reference("D", {"x"}), block);
    document.add_node(make_comment("# c\n"), inner);
    return block;
  });
}

TEST(FREE_NODE, LeavesSymbolsOfTheSameNameInTheirBucket) {
  auto document = document_of("device d { a = 1; bus b { A = 2; } }");
  SBD_NODE* const node = with_symbol(*document, make_assignment("a", make_number(3)));
  document->free_node(node);
  EXPECT_EQ(chain_names(*document, "a"), (TEXTS{"A", "a"}));
  EXPECT_EQ(find_inconsistency(*document), "");
}

TEST(FREE_NODE, UnknownTypeIsAnInternalErrorAndTheRecordIsFreed) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  auto* const node = new SBD_NODE;
  node->type = static_cast<SBD_NODE::NODE_TYPE>(3);
  document.free_node(node);
  expect_error(recorder, "Invalid node type\n", "sbd_file_parser");
}

TEST(FREE_NODE, UnknownTypeOfStatementIsAnInternalError) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  SBD_NODE* const node = make_assignment("a", nullptr, nullptr, "# c\n");
  document.add_symbol(node->statement->name);
  node->statement->type = static_cast<SBD_STATEMENT::STATEMENT_TYPE>(2);
  document.free_node(node);
  expect_error(recorder, "Invalid statement type", "sbd_file_parser");
}

TEST(FREE_NODE, UnknownNodeInATreeDoesNotStopClear) {
  MESSAGE_RECORDER recorder;
  auto document = document_of("device d { a = 1; b = 2; }");
  auto* const odd = new SBD_NODE;
  odd->type = static_cast<SBD_NODE::NODE_TYPE>(77);
  document->add_node(odd, root_of(*document));
  enter(*document, make_assignment("c", make_number(3)), root_of(*document));
  document->clear();
  expect_error(recorder, "Invalid node type\n", "sbd_file_parser");
  expect_empty(*document);
}

// ---- free_para_val -----------------------------------------------------------------------------

TEST(FREE_VALUE, FreesEveryKind) {
  const SBD_FILE_PARSER document;
  const std::size_t blocks = sbd_host::get_memory_account("SBD").live_blocks;
  document.free_para_val(make_number(1.5, SBD_PARA_VALUE::QU_MHZ, SBD_PARA_VALUE::VT_FLOAT));
  document.free_para_val(make_bool(true));
  document.free_para_val(make_string("text"));
  document.free_para_val(make_list({}));
  document.free_para_val(
      make_list({make_string("s"), make_list({make_list({make_string("t")}), make_number(2)})}));
  EXPECT_EQ(sbd_host::get_memory_account("SBD").live_blocks, blocks);
}

TEST(FREE_VALUE, MadeByTheReaderMayBeReplaced) {
  auto document = document_of("device d { a = {1, \"s\", {2, 3}}; }");
  SBD_STATEMENT* const statement = document->get_statement("d", "a");
  document->free_para_val(statement->value);
  statement->value = make_list({make_string("t"), make_number(4)});
  EXPECT_EQ(outline(*document), "device d @1\n  a = {'t', 4} @1\n");
}

TEST(VALUE_LIST, KeepsItsElementsInOrder) {
  SBD_PARA_VALUE* const value = make_list({});
  EXPECT_TRUE(value->list->empty());
  for (int i = 0; i < 100; i++) value->list->push_back(make_number(i));
  ASSERT_EQ(value->list->size(), 100U);
  double expected = 0;
  for (const SBD_PARA_VALUE* const element : *value->list) EXPECT_EQ(element->number, expected++);
  EXPECT_EQ((*value->list)[42]->number, 42);
  SBD_FILE_PARSER().free_para_val(value);
}

TEST(VALUE_LIST, MadeByTheReaderMayGrow) {
  auto document = document_of("device d { a = {1, 2}; }");
  SBD_VALUE_LIST* const list = document->get_para_value("d", "a")->list;
  for (int i = 3; i < 20; i++) list->push_back(make_number(i));
  list->push_back(make_string("end"));
  EXPECT_EQ(outline(*document->get_para_value("d", "a")),
            "{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 'end'}");
}

TEST(TEXT_COPY, IsIndependentOfItsOriginal) {
  std::string original = "text";
  char* const copy = sbd_copy_text(original.c_str());
  original[0] = 'n';
  EXPECT_STREQ(copy, "text");
  sbd_free_text(copy);
}

TEST(TEXT_COPY, OfNullIsNull) {
  EXPECT_EQ(sbd_copy_text(nullptr), nullptr);
  sbd_free_text(nullptr);
}

// ---- Records of both origins -------------------------------------------------------------------

TEST(MIXED_TREE, KeepsItsOrderAndItsSymbols) {
  auto document = document_of("device d { a = 1; bus b { c = 2; } }");
  SBD_NODE* const device = root_of(*document);
  SBD_NODE* const bus = document->get_ref_object("d.b", nullptr);
  SBD_NODE* const module = enter(*document, make_block("module", "m"), bus);
  enter(*document, make_assignment("x", make_number(3)), module);
  enter(*document, make_assignment("y", make_string("\"s\"")), device);
  ASSERT_TRUE(document->resolve_symbol(device, device));
  EXPECT_EQ(outline(*document),
            "device d @1\n"
            "  a = 1 @1\n"
            "  bus b @1\n"
            "    c = 2 @1\n"
            "    module m @0\n"
            "      x = 3 @0\n"
            "  y = '\"s\"' @0\n");
  EXPECT_TRUE(document->is_parameter_defined("d.b.m", "x"));
}

TEST(MIXED_TREE, IsTakenApartNodeByNode) {
  auto document = document_of("device d { a = 1; bus b { c = 2; } e < d >; }");
  SBD_NODE* const device = root_of(*document);
  SBD_NODE* const bus = document->get_ref_object("d.b", nullptr);
  enter(*document, make_assignment("x", make_number(3)), bus);
  enter(*document, make_assignment("y", make_number(4)), device);
  for (SBD_NODE* const node : members_of(*document, bus)) document->delete_node(node, bus);
  for (SBD_NODE* const node : members_of(*document, device)) document->delete_node(node, device);
  EXPECT_EQ(outline(*document), "device d @1\n");
  EXPECT_EQ(count_symbols(*document), 1U);
}

TEST(MIXED_TREE, IsClearedAfterDeletions) {
  auto document = document_of("device d { a = {1, \"s\"}; bus b { c = 2; } }\n# c\n");
  SBD_NODE* const device = root_of(*document);
  enter(*document, make_assignment("x", make_list({make_number(3)})), device);
  document->delete_node(device->block->members, device);
  document->clear();
  expect_empty(*document);
}

// Random edits of a document that was read, compared with a plain model of its member lists.
TEST(MIXED_TREE, FollowsAModelThroughRandomEdits) {
  std::mt19937 random(3);
  for (int round = 0; round < 20; round++) {
    std::string text = "device d {\n";
    for (int i = 0; i < 30; i++)
      text += "  p" + std::to_string(i) + " = " + std::to_string(i) + ";\n";
    auto document = document_of(text + "}");
    SBD_NODE* const device = root_of(*document);
    NODES model = members_of(*document, device);
    for (int step = 0; step < 200; step++) {
      if (model.empty() || random() % 2 == 0) {
        const std::string name = "n" + std::to_string(step);
        model.push_back(enter(*document, make_assignment(name.c_str(), make_number(step)), device));
      } else {
        const auto place = model.begin() + static_cast<std::ptrdiff_t>(random() % model.size());
        document->delete_node(*place, device);
        model.erase(place);
      }
      ASSERT_EQ(members_of(*document, device), model);
    }
    EXPECT_EQ(count_symbols(*document), model.size() + 1);
  }
}

}  // namespace
