// Edits, transactions and saving.
#include <cstddef>
#include <string>
#include <vector>

#include "capi/c_document.h"

using sbd_c::perform;
using ATTRIBUTE = SBD_FILE_PARSER::SBD_PARA_ATTR;

namespace {

bool is_known(const sbdc_document* document, const char* name) {
  return document->tree().get_ref_object(name, nullptr) != nullptr;
}

bool is_place(sbdc_place place, const char* sibling) {
  if (place == SBDC_AT_END) return true;
  return (place == SBDC_BEFORE || place == SBDC_BEHIND) && sibling != nullptr;
}

SBD_PLACE to_place(sbdc_place place, const char* sibling) {
  if (place == SBDC_BEFORE) return SBD_PLACE::before(sibling);
  if (place == SBDC_BEHIND) return SBD_PLACE::behind(sibling);
  return {};
}

// The library removes in silence what is not there: the caller wants to know. `remove` may say
// false for that only, or not say anything.
template <class REMOVE>
sbdc_status remove_known(sbdc_document* document, const char* name, REMOVE&& remove) {
  if (document == nullptr || name == nullptr) return SBDC_MISUSE;
  if (!is_known(document, name)) {
    document->findings.clear();
    return SBDC_NOT_FOUND;
  }
  return perform(document, SBDC_REFUSED, remove);
}

template <class SAVE>
sbdc_status save_as(sbdc_document* document, const char* path, SAVE&& save) {
  if (document == nullptr) return SBDC_MISUSE;
  return perform(document, SBDC_REFUSED, [document, path, &save](SBD_SOURCE_DOCUMENT& source) {
    if (path != nullptr || document->is_from_file) return save(source);
    document->findings.add_error("There is no file to save to: the text was read from memory.");
    return false;
  });
}

// A chain of attributes in memory of ours, which the library copies.
class ATTRIBUTE_CHAIN {
 public:
  ATTRIBUTE_CHAIN(const char* const* keys, const char* const* values, std::size_t count)
      : m_texts(count), m_links(count) {
    for (std::size_t i = 0; i < count; i++) {
      const char* const value = values != nullptr ? values[i] : nullptr;
      m_texts[i].key = keys[i];
      m_links[i].attr_key = m_texts[i].key.data();
      if (value != nullptr) {
        m_texts[i].value = value;
        m_links[i].attr_value = m_texts[i].value.data();
      }
      if (i > 0) m_links[i - 1].next = &m_links[i];
    }
  }

  const ATTRIBUTE* first() const { return m_links.empty() ? nullptr : m_links.data(); }

 private:
  struct TEXTS {
    std::string key;
    std::string value;
  };
  std::vector<TEXTS> m_texts;
  std::vector<ATTRIBUTE> m_links;
};

bool are_set(const char* const* texts, std::size_t count) {
  if (texts == nullptr) return count == 0;
  for (std::size_t i = 0; i < count; i++) {
    if (texts[i] == nullptr) return false;
  }
  return true;
}

}  // namespace

// ---- Parameters and references -----------------------------------------------------------------

sbdc_status sbdc_set_value(sbdc_document* document, const char* name, const char* value) {
  if (document == nullptr || name == nullptr || value == nullptr) return SBDC_MISUSE;
  return perform(document, SBDC_REFUSED, [name, value](SBD_SOURCE_DOCUMENT& source) {
    return source.set_value(name, value);
  });
}

sbdc_status sbdc_add_value(sbdc_document* document, const char* name, const char* value,
                           sbdc_place place, const char* sibling) {
  if (document == nullptr || name == nullptr || value == nullptr) return SBDC_MISUSE;
  if (!is_place(place, sibling)) return SBDC_MISUSE;
  return perform(document, SBDC_REFUSED, [=](SBD_SOURCE_DOCUMENT& source) {
    return source.add_value(name, value, to_place(place, sibling));
  });
}

sbdc_status sbdc_set_references(sbdc_document* document, const char* name,
                                const char* const* targets, size_t count, sbdc_place place,
                                const char* sibling) {
  if (document == nullptr || name == nullptr || count == 0) return SBDC_MISUSE;
  if (!are_set(targets, count) || !is_place(place, sibling)) return SBDC_MISUSE;
  return perform(document, SBDC_REFUSED, [=](SBD_SOURCE_DOCUMENT& source) {
    SBD_STRING_LIST names;
    for (std::size_t i = 0; i < count; i++) names.emplace_back(targets[i]);
    return source.set_references(name, names, to_place(place, sibling));
  });
}

sbdc_status sbdc_set_attributes(sbdc_document* document, const char* name, const char* const* keys,
                                const char* const* values, size_t count) {
  if (document == nullptr || name == nullptr || !are_set(keys, count)) return SBDC_MISUSE;
  return perform(document, SBDC_REFUSED, [=](SBD_SOURCE_DOCUMENT& source) {
    const ATTRIBUTE_CHAIN chain(keys, values, count);
    return source.set_attributes(name, chain.first());
  });
}

sbdc_status sbdc_remove_parameter(sbdc_document* document, const char* name) {
  return remove_known(document, name, [name](SBD_SOURCE_DOCUMENT& source) {
    return source.remove_parameter(name);
  });
}

// ---- Blocks, names -----------------------------------------------------------------------------

sbdc_status sbdc_add_block(sbdc_document* document, const char* type, const char* name,
                           const char* parent, sbdc_place place, const char* sibling) {
  if (document == nullptr || type == nullptr || name == nullptr) return SBDC_MISUSE;
  if (!is_place(place, sibling)) return SBDC_MISUSE;
  return perform(document, SBDC_REFUSED, [=](SBD_SOURCE_DOCUMENT& source) {
    return source.add_block(type, name, parent, to_place(place, sibling));
  });
}

sbdc_status sbdc_remove_block(sbdc_document* document, const char* name) {
  return remove_known(document, name,
                      [name](SBD_SOURCE_DOCUMENT& source) { return source.remove_block(name); });
}

sbdc_status sbdc_remove_references(sbdc_document* document, const char* name) {
  return remove_known(document, name, [name](SBD_SOURCE_DOCUMENT& source) {
    return source.remove_references(name);
  });
}

sbdc_status sbdc_rename(sbdc_document* document, const char* name, const char* new_name,
                        int with_references) {
  if (new_name == nullptr) return SBDC_MISUSE;
  return remove_known(
      document, name, [document, name, new_name, with_references](SBD_SOURCE_DOCUMENT& source) {
        if (source.rename(name, new_name, with_references != 0)) return true;
        // The library says nothing about names that can't be had.
        if (document->findings.size() == 0) {
          document->findings.add_error("Cannot rename '" + std::string(name) + "' to '" + new_name +
                                       "'. That name is taken or not well formed.");
        }
        return false;
      });
}

// ---- Transactions and saving -------------------------------------------------------------------

sbdc_status sbdc_begin(sbdc_document* document) {
  if (document == nullptr) return SBDC_MISUSE;
  return perform(document, SBDC_MISUSE, [](SBD_SOURCE_DOCUMENT& source) { return source.begin(); });
}

sbdc_status sbdc_commit(sbdc_document* document) {
  if (document == nullptr) return SBDC_MISUSE;
  return perform(document, SBDC_MISUSE,
                 [](SBD_SOURCE_DOCUMENT& source) { return source.commit(); });
}

sbdc_status sbdc_roll_back(sbdc_document* document) {
  if (document == nullptr) return SBDC_MISUSE;
  return perform(document, SBDC_MISUSE,
                 [](SBD_SOURCE_DOCUMENT& source) { return source.roll_back(); });
}

sbdc_status sbdc_verify(sbdc_document* document) {
  if (document == nullptr) return SBDC_MISUSE;
  return perform(document, SBDC_REFUSED, [document](SBD_SOURCE_DOCUMENT& source) {
    SBD_STRING why;
    if (source.verify(why)) return true;
    document->findings.add_error(why);
    return false;
  });
}

sbdc_status sbdc_save(sbdc_document* document, const char* path) {
  return save_as(document, path,
                 [path](const SBD_SOURCE_DOCUMENT& source) { return source.save(path); });
}

sbdc_status sbdc_save_canonical(sbdc_document* document, const char* path) {
  return save_as(document, path,
                 [path](const SBD_SOURCE_DOCUMENT& source) { return source.save_canonical(path); });
}
