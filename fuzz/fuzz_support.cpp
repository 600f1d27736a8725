#include "fuzz/fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "host/sbd_host.h"

namespace {

// What edits work on: every construct, several layouts, names that differ in letter case only in
// different scopes, references inside, outside, upwards and to what is inside a block.
constexpr std::string_view k_descriptors[] = {
    "# head\n"
    "device board\n"
    "{\n"
    "    family = veldran_arm;\t# tail\n"
    "    clk = 33.5MHz [display board.title, readonly];\n"
    "    title = \"a ; } text\";\n"
    "    # above the module\n"
    "    module stripe\n"
    "    {\n"
    "        parameters clocks\n"
    "        {\n"
    "            main = 0x40K;\n"
    "            list = {1, {2, 3K}, \"x\", word};\n"
    "            uses <board.clk, .main>;\n"
    "        }\n"
    "    }\n"
    "}\n",
    "device d { a = 1; b = -2.5; c = true; e = 017; f = 0b101G; r <d.m.x, d.a>; module m { x = 1; "
    "y <.x>; } }\n",
    "device a {\r\n\tx = 1;# one\r\n\tx[0] = {1,2};\r\n\tx[1][2] = {a, b} [k .v];\r\n}\r\n"
    "device A_b { bus B { slave s { a = False; } master S_1 { r < a, a.x >; } } }",
    "device d{bus b{bus b{bus b{region r{v=0X1fMHz;}}q <d.b.b.b.r.v>;}}#last\n}",
    "# only\n# comments\n",
    "device wide { p0 = 0; p1 = 1; p2 = 2; p3 = 3; p4 = 4; p5 = 5; p6 = 6; p7 = 7; p8 = 8; p9 = 9;"
    " q0 = 0; q1 = 1; q2 = 2; q3 = 3; q4 = 4; q5 = 5; q6 = 6; q7 = 7; q8 = 8; q9 = 9; \n"
    " all <wide.p0, wide.p1, wide.p2, wide.q9>; s0 = a; s1 = \"b\"; s2 = \"\"; t = TRUE; }\n",
    ""};

constexpr std::size_t k_longest_descriptor = 2048;

std::size_t live_blocks() {
  return sbd_host::get_memory_account("SBD").live_blocks;
}

}  // namespace

void fuzz_fail(const char* what, int line, std::string_view detail) {
  std::fprintf(stderr, "\nFUZZ: does not hold: %s (line %d)\n%.*s\n", what, line,
               static_cast<int>(detail.size()), detail.data());
  std::abort();
}

// ---- Bytes -------------------------------------------------------------------------------------

std::uint8_t FUZZ_BYTES::byte() {
  if (m_rest.empty()) return 0;
  const auto value = static_cast<std::uint8_t>(m_rest.front());
  m_rest.remove_prefix(1);
  return value;
}

std::uint32_t FUZZ_BYTES::word() {
  std::uint32_t value = 0;
  for (int i = 0; i != 4; ++i) value = value << 8U | byte();
  return value;
}

std::size_t FUZZ_BYTES::pick(std::size_t count) {
  constexpr std::size_t k_byte_values = 256;
  if (count == 0) return 0;
  const std::size_t number = count <= k_byte_values ? byte() : word();
  return number % count;
}

std::string FUZZ_BYTES::text(std::size_t most) {
  const std::size_t wanted = pick(most + 1);
  const std::size_t length = std::min(wanted, m_rest.size());
  std::string result(m_rest.substr(0, length));
  m_rest.remove_prefix(length);
  return result;
}

std::string FUZZ_BYTES::descriptor() {
  constexpr std::size_t k_count = sizeof k_descriptors / sizeof k_descriptors[0];
  const std::size_t choice = pick(k_count + 1);
  return choice < k_count ? std::string(k_descriptors[choice]) : text(k_longest_descriptor);
}

// ---- Runs --------------------------------------------------------------------------------------

FUZZ_RUN::FUZZ_RUN(EMPTY_NAMES empty_names) : m_blocks_before(live_blocks()) {
  sbd_host::set_message_handler([this](const sbd_host::MESSAGE& message) {
    m_posted.push_back({message.number, message.text});
  });
  sbd_host::set_internal_error_handler([empty_names](const sbd_host::INTERNAL_ERROR& error) {
    constexpr std::string_view k_empty_name = "ref[p1] == '.'";
    if (empty_names == EMPTY_NAMES::ARE_ALLOWED && error.condition == k_empty_name) return;
    fuzz_fail("no internal error", error.line, error.condition);
  });
}

FUZZ_RUN::~FUZZ_RUN() {
  FUZZ_EXPECT(live_blocks() == m_blocks_before, "the library left memory behind");
  sbd_host::set_message_handler({});
  sbd_host::set_internal_error_handler({});
}

std::vector<POSTED> FUZZ_RUN::take_posted() {
  return std::exchange(m_posted, {});
}

// ---- Documents ---------------------------------------------------------------------------------

std::string OBJECT::scope() const {
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos ? std::string() : name.substr(0, dot);
}

bool OBJECT::is_assignment() const {
  return node->type == NODE::NT_STATEMENT && node->statement->type == STATEMENT::ST_ASSIGNMENT;
}

bool OBJECT::is_reference() const {
  return node->type == NODE::NT_STATEMENT && node->statement->type == STATEMENT::ST_REFERENCE;
}

std::vector<OBJECT> objects_of(const SBD_FILE_PARSER& document) {
  struct LEVEL {
    NODE* next;
    NODE* block;
    std::string prefix;
  };
  std::vector<OBJECT> objects;
  std::vector<LEVEL> levels;
  levels.push_back({document.get_parser_para().root, nullptr, ""});
  while (!levels.empty()) {
    NODE* const node = levels.back().next;
    if (node == nullptr) {
      levels.pop_back();
      continue;
    }
    levels.back().next = node->next;
    if (node->type == NODE::NT_COMMENT) continue;
    const bool is_block = node->type == NODE::NT_BLOCK;
    const auto* const symbol = is_block ? node->block->name : node->statement->name;
    const std::string name = levels.back().prefix + symbol->name;
    objects.push_back({name, node, levels.back().block});
    if (is_block) levels.push_back({node->block->members, node, name + "."});
  }
  return objects;
}

void expect_consistent(const SBD_FILE_PARSER& document) {
  const auto& table = *document.get_parser_para().symbol_table;
  const std::vector<OBJECT> objects = objects_of(document);
  for (const OBJECT& object : objects) {
    const auto* const symbol =
        object.is_block() ? object.node->block->name : object.node->statement->name;
    FUZZ_EXPECT(symbol->node == object.node, object.name);
    FUZZ_EXPECT(symbol->parent == (object.block != nullptr ? object.block : object.node),
                object.name);
    FUZZ_EXPECT(document.get_ref_object(object.name.c_str(), nullptr) == object.node, object.name);
    FUZZ_EXPECT(document.get_ref_object(object.own_name().c_str(), object.block) == object.node ||
                    object.block == nullptr,
                object.name);
    SBD_STRING name;
    FUZZ_EXPECT(document.get_ref_name(object.node, name), object.name);
    FUZZ_EXPECT(std::string_view(name) == object.name, object.name);
    const auto* entered = table[SBD_FILE_PARSER::hash_pjw(symbol->name, table.size())];
    while (entered != nullptr && entered != symbol) entered = entered->next;
    FUZZ_EXPECT(entered == symbol, object.name);
  }
  std::size_t count = 0;
  for (const auto* symbol : table) {
    for (; symbol != nullptr; symbol = symbol->next) ++count;
  }
  FUZZ_EXPECT(count == objects.size(), std::to_string(count));
}

std::string written(const SBD_FILE_PARSER& document) {
  char* text = nullptr;
  std::size_t length = 0;
  std::FILE* const stream = open_memstream(&text, &length);
  FUZZ_EXPECT(stream != nullptr, "no stream");
  FUZZ_EXPECT(document.write(stream, document.get_parser_para().root, 0), "write");
  std::fclose(stream);
  std::string result(text, length);
  std::free(text);
  return result;
}

bool read_text(SBD_FILE_PARSER& document, std::string_view text) {
  // A buffer of just this size, so that the sanitizer sees what reads beyond it.
  const std::vector<char> exact(text.begin(), text.end());
  return document.read_text(exact.empty() ? "" : exact.data(), exact.size(), k_file_name);
}
