// The parameters of one module block as a flat, typed table.
//
// A reader takes each parameter of a document once, by type, with its defaults, and answers later
// queries without looking at the document again. What is read and what is valid is up to a derived
// class.
//
// A parameter is named by its reference relative to the module: the parameter's name, or block path
// "." name, such as "sdram.region[0].enabled". Letter case does not matter. Its full reference
// name is the module's name "." the reference, in lower case.
//
// Nothing throws across this interface. Faults of the descriptor are messages (sbd/msg_sbd.h);
// misuse goes to MSG_INTERNAL_ERROR::report as source "sbd_parameter_reader", and the operation
// carries on with false, 0, 0.0 or "". One thread uses a reader at a time.
#ifndef SBD_SBD_PARAMETER_READER_H
#define SBD_SBD_PARAMETER_READER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "h/msg_service.h"
#include "sbd/sbd_api.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_memory.h"

class SBD_PARAMETER_STORE;  // What a reader keeps besides the table itself.
class SBD_POOL;

// Memory of the host's for the records of a reader: taken from `pool`, which gives it back all at
// once, or, when that is null, block by block.
SBD_API void* sbd_take_parameter_memory(SBD_POOL* pool, std::size_t size);
SBD_API void sbd_give_parameter_memory(SBD_POOL* pool, void* memory) noexcept;

// Standard allocator over these. Copies of a container have no pool.
template <class T>
class SBD_PARAMETER_ALLOCATOR {
 public:
  using value_type = T;

  SBD_PARAMETER_ALLOCATOR() noexcept = default;
  explicit SBD_PARAMETER_ALLOCATOR(SBD_POOL* pool) noexcept : m_pool(pool) {}
  template <class OTHER>
  SBD_PARAMETER_ALLOCATOR(const SBD_PARAMETER_ALLOCATOR<OTHER>& other)
  noexcept : m_pool(other.pool()) {}

  T* allocate(std::size_t count) {
    return static_cast<T*>(sbd_take_parameter_memory(m_pool, count * sizeof(T)));
  }
  void deallocate(T* memory, std::size_t) noexcept { sbd_give_parameter_memory(m_pool, memory); }
  SBD_PARAMETER_ALLOCATOR select_on_container_copy_construction() const noexcept { return {}; }
  SBD_POOL* pool() const noexcept { return m_pool; }

  template <class OTHER>
  bool operator==(const SBD_PARAMETER_ALLOCATOR<OTHER>& other) const noexcept {
    return m_pool == other.pool();
  }
  template <class OTHER>
  bool operator!=(const SBD_PARAMETER_ALLOCATOR<OTHER>& other) const noexcept {
    return m_pool != other.pool();
  }

 private:
  SBD_POOL* m_pool = nullptr;
};

// Where the value of a parameter comes from.
enum SBD_PARAMETER_ORIGIN : std::uint32_t {
  PO_NONE = 0,                   // There is none: no statement and no default.
  PO_STATEMENT = 1,              // A statement; one of the wrong kind of value gives no value.
  PO_PRESENT_BLOCK_DEFAULT = 2,  // The default for a parameter that its block does not state.
  PO_ABSENT_BLOCK_DEFAULT = 3    // The default for a parameter whose block is not there.
};

// A parameter that validation refused.
//
// The nodes belong to the document and are valid until it is edited, cleared or read again.
struct SBD_PARAMETER_FAULT {
  SBD_STRING reference;     // Relative to the module.
  bool is_missing = false;  // True: required and not there. False: there, but not valid.
  const SBD_FILE_PARSER::SBD_NODE* statement = nullptr;  // Null when there is none.
  const SBD_FILE_PARSER::SBD_NODE* block = nullptr;      // Where it belongs; null if not there.
};

// Reads, keeps and validates the parameters of one module.
class SBD_API SBD_PARAMETER_READER {
 public:
  // The value of one parameter and what is known about it.
  class SBD_API SBD_PARAMETER_VALUE {
   public:
    // The types of parameters.
    enum VALUE_TYPE : std::uint32_t {
      BOOL_VALUE = 0,
      DWORD_VALUE = 1,
      DOUBLE_VALUE = 2,
      STRING_VALUE = 3
    };

    // Of a dword the low 32 bits are kept. A string that the host has no memory for is reported as
    // an internal error and left empty; the same holds for copies.
    SBD_PARAMETER_VALUE(bool value, bool is_defined, bool has_value) noexcept;
    SBD_PARAMETER_VALUE(unsigned long value, bool is_defined, bool has_value) noexcept;
    SBD_PARAMETER_VALUE(double value, bool is_defined, bool has_value) noexcept;
    SBD_PARAMETER_VALUE(const SBD_STRING& value, bool is_defined, bool has_value) noexcept;
    SBD_PARAMETER_VALUE(const SBD_PARAMETER_VALUE& other) noexcept;
    SBD_PARAMETER_VALUE(SBD_PARAMETER_VALUE&& other) noexcept;
    SBD_PARAMETER_VALUE& operator=(const SBD_PARAMETER_VALUE& other) noexcept;
    SBD_PARAMETER_VALUE& operator=(SBD_PARAMETER_VALUE&& other) noexcept;
    ~SBD_PARAMETER_VALUE();

    VALUE_TYPE m_value_type;      // Which of the values below counts; the others are zero.
    bool m_has_value;             // A value is known, from the document or from a default.
    bool m_is_defined;            // The document has the statement; always true for strings.
    bool m_is_validated = false;  // Validation has dealt with the parameter.
    bool m_bool_value = false;
    std::uint32_t m_dword_value = 0;
    double m_double_value = 0.0;
    SBD_STRING m_string_value;
  };

  // The names and records of a reader, by bytes of the name. Any kind of string finds a name.
  using SBD_PARAMETER_NAME =
      std::basic_string<char, std::char_traits<char>, SBD_PARAMETER_ALLOCATOR<char>>;
  // Orders names by their bytes.
  struct SBD_PARAMETER_NAME_LESS {
    using is_transparent = void;  // Other kinds of strings need not be copied.
    bool operator()(std::string_view left, std::string_view right) const { return left < right; }
  };
  // Names with their records.
  using SBD_PARAMETER_MAP =
      std::map<SBD_PARAMETER_NAME, SBD_PARAMETER_VALUE, SBD_PARAMETER_NAME_LESS,
               SBD_PARAMETER_ALLOCATOR<std::pair<const SBD_PARAMETER_NAME, SBD_PARAMETER_VALUE>>>;

  // A reader of the parameters below the block named `module_name` of `parser`, which must outlive
  // the reader. Nothing is read yet; the document may be filled later.
  SBD_PARAMETER_READER(const SBD_FILE_PARSER& parser, const SBD_STRING& module_name) noexcept;
  virtual ~SBD_PARAMETER_READER();
  SBD_PARAMETER_READER(const SBD_PARAMETER_READER&) = delete;
  SBD_PARAMETER_READER& operator=(const SBD_PARAMETER_READER&) = delete;

  // Readers live in the host's memory.
  static void* operator new(std::size_t size);
  static void operator delete(void* reader) noexcept;

  // Reads every parameter; false when that can't be done.
  virtual bool read_all_parameters() = 0;

  // Judges every parameter that was read; false when any is not as it must be.
  virtual bool validate_all_parameters() = 0;

  // Both in this order; a failed reading is not validated.
  bool read_and_validate_parameters();

  // ---- Reading; for read_all_parameters ------------------------------------------------------
  //
  // Reads one parameter into the table. `block_name` is the path of its block below the module, or
  // null for a parameter of the module itself. A null default stands for no default.
  //
  // When the block is not there, the value is `absent_block_value`. Otherwise it is what the
  // document says, and `default_value` when it says nothing. A statement without value of the right
  // kind leaves the parameter without value, default or not. Of two readings of one parameter the
  // first counts.
  //
  // The result tells whether the parameter has a value. A null `parameter_name` is an internal
  // error.

  // From true and false.
  bool read_bool_parameter(const char* block_name, const char* parameter_name,
                           const bool* default_value, const bool* absent_block_value);
  // From any number: scaled by its unit, rounded to the nearest integer (of two equally near ones
  // to the even one), low 32 bits.
  bool read_dword_parameter(const char* block_name, const char* parameter_name,
                            const unsigned long* default_value,
                            const unsigned long* absent_block_value);
  // From any number: scaled by its unit.
  bool read_double_parameter(const char* block_name, const char* parameter_name,
                             const double* default_value, const double* absent_block_value);
  // From a text, in lower case, with its quotes if it has any. A string always counts as defined
  // and as having a value: without any, and when written with another kind of value, it is "".
  bool read_string_parameter(const char* block_name, const char* parameter_name,
                             const char* default_value, const char* absent_block_value);

  // ---- Names -----------------------------------------------------------------------------

  // The full reference name of a reference. Null counts as "".
  SBD_STRING to_full_reference_name(const char* reference) const noexcept;

  // Block "." parameter, letters as they are. A null name is an internal error and gives "".
  static SBD_STRING join_block_and_parameter_name(const char* block_name,
                                                  const char* parameter_name) noexcept;

  // ---- Queries ---------------------------------------------------------------------------

  // The value of a parameter, or the type's zero when it has none. `is_defined` and `has_value` are
  // set as in SBD_PARAMETER_VALUE, both to false for a parameter that was never read. Internal
  // errors, which still give the results just said: a null name (counts as ""); a name never read,
  // if this reader reports those; a parameter of another type; and with `check_validated` one that
  // is not validated.
  bool lookup_bool_parameter(const char* reference_name, bool& is_defined, bool& has_value,
                             bool check_validated) const noexcept;
  unsigned long lookup_dword_parameter(const char* reference_name, bool& is_defined,
                                       bool& has_value, bool check_validated) const noexcept;
  double lookup_double_parameter(const char* reference_name, bool& is_defined, bool& has_value,
                                 bool check_validated) const noexcept;
  SBD_STRING lookup_string_parameter(const char* reference_name, bool& is_defined, bool& has_value,
                                     bool check_validated) const noexcept;

  // The value of a validated parameter. True when it has one; otherwise false, 0, 0.0 or "" is
  // written. Internal errors as for the lookups. A null name in a two-name form is an internal
  // error and counts as the reference "".
  bool get_parameter(const char* reference, bool& value) const noexcept;
  bool get_parameter(const char* block, const char* parameter, bool& value) const noexcept;
  bool get_parameter(const char* reference, unsigned long& value) const noexcept;
  bool get_parameter(const char* block, const char* parameter, unsigned long& value) const noexcept;
  bool get_parameter(const char* reference, double& value) const noexcept;
  bool get_parameter(const char* block, const char* parameter, double& value) const noexcept;
  bool get_parameter(const char* reference, SBD_STRING& value) const noexcept;
  bool get_parameter(const char* block, const char* parameter, SBD_STRING& value) const noexcept;

  // The record of a parameter of any type, validated or not; null, without a report, for a null
  // name and for one that was never read. It belongs to the reader.
  const SBD_PARAMETER_VALUE* find_parameter(const char* reference) const noexcept;

  // Where its value came from when it was read; PO_NONE for a name that was never read.
  SBD_PARAMETER_ORIGIN get_parameter_origin(const char* reference) const noexcept;

  // What validation refused so far, in the order of the messages. The list belongs to the reader
  // and grows while it validates: a handler finds the fault behind a message at its end.
  const SBD_VECTOR<SBD_PARAMETER_FAULT>& get_faults() const noexcept;

  const SBD_STRING& get_module_name() const { return m_module_name; }  // As given.

  // ---- Validation ------------------------------------------------------------------------

  // Marks a parameter as validated, for good; an unknown name is ignored. A null name is an
  // internal error.
  void mark_parameter_as_validated(const char* reference_name) noexcept;

  // Posts `message` to the host's default destination and destroys it, but only while this reader
  // posts messages: otherwise nothing happens at all, and the message stays the caller's. Null is
  // ignored.
  void post_message(MSG_POST* message) const noexcept;

 protected:
  // Keeps a fault for get_faults.
  void add_fault(SBD_PARAMETER_FAULT&& fault);

  SBD_PARAMETER_MAP m_parameters;  // By full reference name; only the reading above adds to it.
  SBD_STRING m_module_name;
  const SBD_FILE_PARSER& m_parser;
  bool m_post_messages = true;
  bool m_report_unread = false;  // A lookup of a name that was never read is an internal error.

 private:
  friend class SBD_PARAMETER_WALK;
  friend class SBD_PARAMETER_REVIEW;
  template <class VALUE, class DEFAULT>
  bool read_parameter(const char* block_name, const char* parameter_name,
                      const DEFAULT* default_value, const DEFAULT* absent_block_value);
  template <class VALUE, class DEFAULT>
  bool read_guarded(const char* block_name, const char* parameter_name,
                    const DEFAULT* default_value, const DEFAULT* absent_block_value);
  template <class VALUE>
  bool get_value(const char* reference, VALUE& value) const noexcept;
  template <class VALUE>
  bool get_value(const char* block, const char* parameter, VALUE& value) const noexcept;
  template <class VALUE>
  void look_up(const char* reference_name, bool& is_defined, bool& has_value, bool check_validated,
               VALUE& value) const;
  template <class VALUE>
  VALUE look_up_guarded(const char* reference_name, bool& is_defined, bool& has_value,
                        bool check_validated) const noexcept;
  bool insert(const char* block_name, const char* parameter_name, SBD_PARAMETER_VALUE&& record,
              SBD_PARAMETER_ORIGIN origin);
  bool insert(std::string_view reference, std::uint32_t hash, SBD_PARAMETER_VALUE&& record,
              SBD_PARAMETER_ORIGIN origin);
  SBD_STRING make_full_name(const char* reference) const;
  void report_about(const char* before, const char* reference, const char* behind) const;
  static SBD_PARAMETER_STORE* make_store(const SBD_FILE_PARSER& parser,
                                         const SBD_STRING& module_name);
  SBD_PARAMETER_READER(const SBD_FILE_PARSER& parser, SBD_PARAMETER_STORE* store) noexcept;
  SBD_PARAMETER_STORE& store();

  SBD_PARAMETER_STORE* m_store;  // Null when the host had no memory for it.
};

#endif
