// What a reader keeps besides its table: an index by reference, origins, faults, and the blocks it
// is reading from.
#ifndef SBD_PARAMETER_SBD_PARAMETER_STORE_H
#define SBD_PARAMETER_SBD_PARAMETER_STORE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/reading/sbd_pool.h"
#include "sbd/reading/sbd_scratch.h"
#include "sbd/sbd_parameter_reader.h"

// The reference of a parameter with what follows from it.
struct SBD_PREPARED_NAME {
  std::string_view reference;   // In lower case.
  std::string_view own_name;    // Its last part, behind which a step can be read.
  std::uint64_t name_hash = 0;  // Of own_name, by sbd_hash_name.
  std::uint32_t hash = 0;       // Of SBD_PARAMETER_STORE::hash_of.
  std::uint32_t rank = 0;       // Its place among all prepared names in byte-wise order,
  // and that of the next one among those that are read before it; their number if there is none.
  std::uint32_t next_rank = 0;
};

// Finds the parts of one module in the document. While a walk is under way the document doesn't
// change, and neither the module nor a block is looked up again.
class SBD_MODULE_LOOKUP {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

  // Of the module's name there is a copy with a point behind it.
  SBD_MODULE_LOOKUP(const SBD_FILE_PARSER& parser, const SBD_STRING& prefix)
      : m_parser(parser), m_prefix(prefix) {}

  // Begins a walk; the block names given until its end must live as long as it.
  void begin_walk();
  void end_walk() {
    m_is_walking = false;
    m_known_blocks.release();
  }

  // The node of a block below the module; null when there is none.
  const SBD_NODE* find_block(const char* block_name);
  // The statement node of a parameter whose block (null: the module) is there; else null.
  const SBD_NODE* find_statement(const char* block_name, const char* parameter_name);
  // The same for a prepared parameter during a walk, in its block (null: the module).
  const SBD_NODE* find_prepared(const SBD_NODE* block, const SBD_PREPARED_NAME& name) const;

 private:
  struct KNOWN_BLOCK {
    const char* name;
    const SBD_NODE* node;
  };

  const SBD_NODE* find(const SBD_NODE* scope, const char* name) const;

  const SBD_FILE_PARSER& m_parser;
  const SBD_STRING& m_prefix;
  bool m_is_walking = false;
  const SBD_NODE* m_module = nullptr;
  KNOWN_BLOCK m_last_block = {nullptr, nullptr};
  SBD_SCRATCH<KNOWN_BLOCK, 32> m_known_blocks;  // Of this walk.
};

class SBD_PARAMETER_WALK;

class SBD_PARAMETER_STORE {
 public:
  using SBD_PARAMETER_VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;

  struct RECORD {
    std::string_view reference;  // The part of the record's key behind the module's name.
    SBD_PARAMETER_VALUE* value;
    SBD_PARAMETER_ORIGIN origin;
    std::uint32_t hash;
    const SBD_PREPARED_NAME* prepared;  // By which it was read; null if by another name.
  };

  SBD_PARAMETER_STORE(const SBD_FILE_PARSER& parser, const SBD_STRING& module_name);
  SBD_PARAMETER_STORE(const SBD_PARAMETER_STORE&) = delete;
  SBD_PARAMETER_STORE& operator=(const SBD_PARAMETER_STORE&) = delete;

  static void* operator new(std::size_t size) { return SBD_RECORD::operator new(size); }
  static void operator delete(void* store) noexcept { SBD_RECORD::operator delete(store); }

  static std::uint32_t hash_of(std::string_view reference);

  // The record of a reference in any letter case; null if there is none.
  const RECORD* find(const char* reference) const {
    return reference == m_expected_text ? m_expected : find(std::string_view(reference));
  }
  const RECORD* find(std::string_view reference) const;
  const RECORD* find(std::string_view reference, std::uint32_t hash) const;

  // Expects the next questions to be about one parameter, mostly by `text`, which is its reference
  // until something else is expected. Those are asked for in the order in which they were read, so
  // that each record lies behind the one before.
  void expect(const SBD_PREPARED_NAME& name, const char* text);
  void expect_nothing() {
    m_expected = nullptr;
    m_expected_text = nullptr;
  }

  // Makes sure that `add` finds room.
  void make_room() {
    if (m_records.size() == m_room) make_more_room();
  }
  // Enters a record that is not there yet.
  void add(const RECORD& record) noexcept;

  SBD_POOL pool;                // Where the table's nodes lie.
  const SBD_STRING key_prefix;  // What every key begins with: the module's name and a point.
  SBD_MODULE_LOOKUP lookup;
  SBD_VECTOR<SBD_PARAMETER_FAULT> faults;
  SBD_PARAMETER_WALK* walk = nullptr;  // What is under way.
  bool has_failed = false;             // The host refused memory while something was read.

 private:
  void enter(std::uint32_t number) noexcept;
  void make_more_room();
  void rebuild(std::size_t slot_count);

  SBD_VECTOR<RECORD> m_records;
  std::size_t m_room = 0;  // For so many records there is memory, slots included.
  const RECORD* m_expected = nullptr;
  const char* m_expected_text = nullptr;
  SBD_VECTOR<std::uint32_t> m_slots;  // 1 + number of a record, or 0. A power of two of them.
};

// While it exists, its reader reads prepared names from a document that doesn't change, one after
// the other.
class SBD_PARAMETER_WALK {
 public:
  using PLACE = SBD_PARAMETER_READER::SBD_PARAMETER_MAP::iterator;

  // There are `name_count` prepared names in all.
  SBD_PARAMETER_WALK(SBD_PARAMETER_READER& reader, std::size_t name_count);
  ~SBD_PARAMETER_WALK();
  SBD_PARAMETER_WALK(const SBD_PARAMETER_WALK&) = delete;
  SBD_PARAMETER_WALK& operator=(const SBD_PARAMETER_WALK&) = delete;

  // Goes on to the parameter that is read next; the name must live as long as the walk.
  void move_to(const SBD_PREPARED_NAME& name) { m_name = &name; }
  const SBD_PREPARED_NAME& name() const { return *m_name; }

  // In front of what its record belongs, as far as this walk has read: a hint, and no more.
  PLACE place() const { return m_places[m_name->next_rank]; }
  // Whether nothing was read before this walk, so that it meets nearly nothing twice.
  bool is_first() const { return m_is_first; }
  // Notes where its record is.
  void set_place(PLACE place) { m_places[m_name->rank] = place; }

  // True when everything that was to be read could be kept.
  bool is_good() const { return !m_store.has_failed; }

 private:
  SBD_PARAMETER_STORE& m_store;
  const bool m_is_first;
  const SBD_PREPARED_NAME* m_name = nullptr;
  // By rank; the end where nothing was read yet, and behind the last one.
  SBD_VECTOR<PLACE> m_places;
};

// While it exists, its reader looks at one parameter after the other.
class SBD_PARAMETER_REVIEW {
 public:
  explicit SBD_PARAMETER_REVIEW(SBD_PARAMETER_READER& reader) : m_store(reader.store()) {}
  ~SBD_PARAMETER_REVIEW() { m_store.expect_nothing(); }
  SBD_PARAMETER_REVIEW(const SBD_PARAMETER_REVIEW&) = delete;
  SBD_PARAMETER_REVIEW& operator=(const SBD_PARAMETER_REVIEW&) = delete;

  // Goes on to a parameter; `text` is its reference until the next step.
  void move_to(const SBD_PREPARED_NAME& name, const char* text) { m_store.expect(name, text); }

 private:
  SBD_PARAMETER_STORE& m_store;
};

#endif
