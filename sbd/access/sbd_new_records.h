// Records that an edit has made but not linked yet: whatever stops the edit, they are freed.
#ifndef SBD_ACCESS_SBD_NEW_RECORDS_H
#define SBD_ACCESS_SBD_NEW_RECORDS_H

#include <memory>

#include "sbd/reading/sbd_store.h"
#include "sbd/sbd_file_parser.h"

struct SBD_NEW_TEXT_FREER {
  void operator()(char* text) const noexcept { sbd_free_text(text); }
};
using SBD_NEW_TEXT = std::unique_ptr<char, SBD_NEW_TEXT_FREER>;

inline SBD_NEW_TEXT sbd_new_text(const char* text) {
  return SBD_NEW_TEXT(sbd_duplicate_text(text));
}

// A symbol with a copy of the name, for `node` in the scope of `parent`; not entered.
struct SBD_NEW_SYMBOL {
  SBD_NEW_SYMBOL(const char* name, SBD_FILE_PARSER::SBD_SYMBOL::SYMBOL_TYPE type,
                 SBD_FILE_PARSER::SBD_NODE* node, SBD_FILE_PARSER::SBD_NODE* parent)
      : text(sbd_new_text(name)), record(new SBD_FILE_PARSER::SBD_SYMBOL) {
    record->type = type;
    record->name = text.get();
    record->node = node;
    record->parent = parent;
  }

  // Once it is entered, the document owns it.
  SBD_FILE_PARSER::SBD_SYMBOL* release() noexcept {
    (void)text.release();
    return record.release();
  }

  SBD_NEW_TEXT text;
  std::unique_ptr<SBD_FILE_PARSER::SBD_SYMBOL> record;
};

// A list of references or attributes under construction.
template <class T>
class SBD_NEW_LIST {
 public:
  SBD_NEW_LIST() = default;
  SBD_NEW_LIST(const SBD_NEW_LIST&) = delete;
  SBD_NEW_LIST& operator=(const SBD_NEW_LIST&) = delete;
  ~SBD_NEW_LIST() {
    while (m_first != nullptr) {
      T* const element = m_first;
      m_first = element->next;
      free_texts(*element);
      delete element;
    }
  }

  // Appends an empty element.
  T& append() {
    T* const element = new T;
    *m_end = element;
    m_end = &element->next;
    return *element;
  }
  T* release() noexcept {
    T* const first = m_first;
    m_first = nullptr;
    m_end = &m_first;
    return first;
  }

 private:
  static void free_texts(SBD_FILE_PARSER::SBD_PARA_REF& reference) noexcept {
    sbd_free_text(reference.name);
  }
  static void free_texts(SBD_FILE_PARSER::SBD_PARA_ATTR& attribute) noexcept {
    sbd_free_text(attribute.attr_key);
    sbd_free_text(attribute.attr_value);
  }

  T* m_first = nullptr;
  T** m_end = &m_first;
};

#endif
