// Reading a file or a text into the document.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/diagnostics/sbd_messages.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_target_search.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_parser.h"

namespace {

struct FILE_CLOSER {
  void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
using FILE_HANDLE = std::unique_ptr<std::FILE, FILE_CLOSER>;

struct BUFFER_FREER {
  void operator()(char* buffer) const { SBD_SOURCE::free(buffer); }
};
using SOURCE_BUFFER = std::unique_ptr<char, BUFFER_FREER>;

// A text to be parsed, in a buffer of SBD_SOURCE::allocate.
struct LOADED_TEXT {
  SOURCE_BUFFER buffer;
  std::size_t length = 0;
};

// Where `long` is too short for a place in a large file, the system has others.
#if defined(__unix__) || defined(__APPLE__)
std::int64_t place_in(std::FILE* file) {
  return ftello(file);
}
bool go_to(std::FILE* file, std::int64_t place, int origin) {
  return fseeko(file, static_cast<off_t>(place), origin) == 0;
}
#else
std::int64_t place_in(std::FILE* file) {
  return std::ftell(file);
}
bool go_to(std::FILE* file, std::int64_t place, int origin) {
  return std::fseek(file, static_cast<long>(place), origin) == 0;
}
#endif

// How much of the file is left, or 0 where that can't be told (pipes, devices).
std::uint64_t rest_of_file(std::FILE* file) {
  const std::int64_t here = place_in(file);
  if (here < 0 || !go_to(file, 0, SEEK_END)) return 0;
  const std::int64_t end = place_in(file);
  if (!go_to(file, here, SEEK_SET) || end <= here) return 0;
  return static_cast<std::uint64_t>(end - here);
}

// Moves the text into a buffer for `capacity` bytes.
void enlarge(LOADED_TEXT& text, std::size_t capacity) {
  SOURCE_BUFFER larger(SBD_SOURCE::allocate(capacity));
  std::memcpy(larger.get(), text.buffer.get(), text.length);
  text.buffer = std::move(larger);
}

// The whole content of the file; false when it can't be read or is too long.
bool load(std::FILE* file, LOADED_TEXT& text) {
  constexpr std::size_t k_first_guess = 16384;
  // Our buffer is the only one that the bytes need to go through.
  (void)std::setvbuf(file, nullptr, _IONBF, 0);
  const std::uint64_t rest = rest_of_file(file);
  if (rest > SBD_SOURCE::k_longest) return false;
  // One byte more than the file has shows its end without another round.
  std::size_t capacity = rest != 0 ? static_cast<std::size_t>(rest) + 1 : k_first_guess;
  text.buffer.reset(SBD_SOURCE::allocate(capacity));
  for (;;) {
    text.length += std::fread(text.buffer.get() + text.length, 1, capacity - text.length, file);
    if (std::ferror(file) != 0 || text.length > SBD_SOURCE::k_longest) return false;
    if (text.length < capacity) return true;
    capacity = std::min(capacity * 2, SBD_SOURCE::k_longest + 1);
    enlarge(text, capacity);
  }
}

}  // namespace

bool SBD_FILE_PARSER::read(const char* path) {
  if (!SBD_CHECK(path != nullptr, "path != NULL", k_source_file_parser)) return false;
  return sbd_guarded(k_source_file_parser, false, [this, path] {
    LOADED_TEXT text;
    const FILE_HANDLE file(std::fopen(path, "rb"));
    if (file == nullptr || !load(file.get(), text)) {
      refuse_file(path);
      return false;
    }
    return read_loaded(text.buffer.release(), text.length, path);
  });
}

bool SBD_FILE_PARSER::read_text(const char* text, std::size_t length, const char* name) {
  if (!SBD_CHECK(text != nullptr && name != nullptr, "text != NULL && name != NULL",
                 k_source_file_parser)) {
    return false;
  }
  return sbd_guarded(k_source_file_parser, false, [this, text, length, name] {
    if (length > SBD_SOURCE::k_longest) {
      refuse_file(name);
      return false;
    }
    char* const buffer = SBD_SOURCE::allocate(length);
    std::memcpy(buffer, text, length);
    return read_loaded(buffer, length, name);
  });
}

void SBD_FILE_PARSER::refuse_file(const char* name) {
  if (m_store != nullptr) m_store->has_fault_range = false;
  post_message(sbd_make_message<MSG_E>(k_msg_file_error, name));
}

bool SBD_FILE_PARSER::read_loaded(char* buffer, std::size_t length, const char* name) {
  SOURCE_BUFFER owned_buffer(buffer);
  if (m_store == nullptr) return false;
  m_file_name = m_store->file_name.set(name);  // It may lie in what is going to be freed.
  clear();
  m_store->source.adopt(owned_buffer.release(), length);

  const bool is_good = sbd_guarded(k_source_file_parser, false, [this] {
    const std::string_view text = m_store->source.text();
    sbd_yyFlexLexer scanner(text.data(), text.size());
    scanner.set_file_name(m_file_name);
    m_store->facts.gives_parents = true;
    const int result = sbd_yyparse(&scanner, &m_parser_para);
    return result == 0 && m_parser_para.error_count == 0 && run_checks();
  });
  if (!is_good) clear();
  return is_good;
}

// From so many statements with references on, these are looked for together: before, the document
// lies in the cache.
constexpr std::size_t k_many_statements = 256;

// The parser has seen whether the checks have anything to say, and has found the parents; the
// checks proper run when they have messages to post.
bool SBD_FILE_PARSER::run_checks() {
  const SBD_PARSE_FACTS& facts = m_store->facts;
  if (facts.has_duplicate_names) return resolve_symbol(m_parser_para.root, m_parser_para.root);
  if (facts.has_misplaced_blocks || !find_all_targets()) return check_semantic(m_parser_para.root);
  m_store->facts.references.release();
  m_store->names.begin_paths();
  return true;
}

bool SBD_FILE_PARSER::find_all_targets() {
  const auto& statements = m_store->facts.references;
  if (statements.size() >= k_many_statements) return find_many_targets();
  for (const SBD_STATEMENT* const statement : statements) {
    for (auto* reference = statement->reference; reference != nullptr;
         reference = reference->next) {
      if (!find_target(*reference, *statement)) return false;
    }
  }
  return true;
}

// The same, quicker for what the cache does not hold.
bool SBD_FILE_PARSER::find_many_targets() {
  using SEARCH = SBD_TARGET_SEARCH;
  SEARCH search(m_store->names, m_parser_para.root);
  SEARCH::QUESTION questions[SEARCH::k_most_questions];
  std::size_t count = 0;
  const auto settle = [&] {
    search.answer(questions, count);
    for (const SEARCH::QUESTION* question = questions; count != 0; --count, ++question) {
      if (question->target == nullptr) return false;
      set_target(*question->reference, question->target);
    }
    return true;
  };

  const auto& statements = m_store->facts.references;
  for (std::size_t i = 0; i != statements.size(); ++i) {
    const std::size_t ahead = i + SEARCH::k_most_questions;
    if (ahead < statements.size()) SEARCH::fetch(statements[ahead]);
    for (auto* reference = statements[i]->reference; reference != nullptr;
         reference = reference->next) {
      questions[count++] = {reference, statements[i], nullptr};
      if (count == SEARCH::k_most_questions && !settle()) return false;
    }
  }
  return settle();
}
