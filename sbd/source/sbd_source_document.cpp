#include "sbd/sbd_source_document.h"

#include <cstring>

#include "sbd/access/sbd_refusal.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/source/sbd_safe_save.h"
#include "sbd/source/sbd_source_editor.h"
#include "sbd/source/sbd_source_verify.h"

using EDIT = SBD_SOURCE_EDIT;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;

namespace {
constexpr char k_source[] = "sbd_source_document";
}  // namespace

// The edits since the text was read are kept: from them and the text as it was read, any earlier
// state can be made again.
class SBD_SOURCE_STATE : public SBD_RECORD {
 public:
  SBD_SOURCE_STATE() : editor(document) { editor.reset(); }
  SBD_SOURCE_STATE(const SBD_SOURCE_STATE&) = delete;
  SBD_SOURCE_STATE& operator=(const SBD_SOURCE_STATE&) = delete;

  // Takes over a document that was just read.
  void restart() {
    editor.reset();
    edits.clear();
    is_in_transaction = is_torn = is_detached = is_text_current = false;
  }

  // Performs an edit, and keeps it unless it is refused.
  bool apply(EDIT&& edit) {
    if (is_torn && !rebuild()) return false;
    edits.push_back(std::move(edit));
    is_torn = true;
    is_text_current = false;
    bool is_done = false;
    try {
      is_done = editor.apply(edits.back());
    } catch (...) {
      edits.pop_back();
      throw;
    }
    is_torn = false;
    if (!is_done) edits.pop_back();
    return is_done;
  }

  // Makes tree and text again from what was read and the edits that are kept. The text that was
  // read is out of the document meanwhile, and stays with us until that has succeeded.
  bool rebuild() {
    is_torn = true;
    is_text_current = false;
    if (!is_detached) original = editor.original();
    is_detached = true;
    const char* const name = document.get_file_name() != nullptr ? document.get_file_name() : "";
    if (!document.read_text(original.data(), original.size(), name)) return false;
    editor.reset();
    is_detached = false;
    SBD_STRING().swap(original);
    for (const EDIT& edit : edits) {
      if (!editor.apply(edit)) return false;
    }
    is_torn = false;
    return true;
  }

  std::string_view current_text() {
    if (is_torn && !rebuild()) return {};
    if (editor.is_unchanged()) return editor.original();
    if (!is_text_current) editor.assemble(text);
    is_text_current = true;
    return text;
  }

  SBD_FILE_PARSER document;
  SBD_SOURCE_EDITOR editor;
  std::list<EDIT, SBD_ALLOCATOR<EDIT>> edits;
  std::size_t edits_before = 0;  // How many there were when the transaction began.
  bool is_in_transaction = false;
  bool is_torn = false;  // An edit broke off in the middle.
  SBD_STRING original;   // What was read, while it is not in the document.
  bool is_detached = false;
  SBD_STRING text;
  bool is_text_current = false;
};

namespace {

// The scope and the own name in a full name.
void split_name(const char* full_name, EDIT& edit) {
  const char* const dot = std::strrchr(full_name, '.');
  if (dot == nullptr) {
    edit.name = full_name;
    return;
  }
  edit.scope.assign(full_name, static_cast<std::size_t>(dot - full_name));
  edit.name = dot + 1;
}

void set_place(const SBD_SOURCE_DOCUMENT::PLACE& place, EDIT& edit) {
  edit.place = place.kind;
  if (place.sibling != nullptr) edit.sibling = place.sibling;
}

bool is_known(const SBD_SOURCE_DOCUMENT::PLACE& place) {
  return SBD_CHECK(place.kind <= SBD_PLACE::BEHIND, "Invalid place kind", k_source);
}

// What `fill` makes of an empty edit is performed. When the host's memory ends in the middle, what
// is half done is undone.
template <class FILL>
bool perform(SBD_SOURCE_STATE* state, EDIT::KIND kind, FILL&& fill) {
  if (state == nullptr) return false;
  const bool is_done = sbd_guarded(k_source, false, [&] {
    EDIT edit;
    edit.kind = kind;
    fill(edit);
    return state->apply(std::move(edit));
  });
  if (!state->is_torn) return is_done;
  sbd_guarded(k_source, false, [state] { return state->rebuild(); });
  return false;
}

SBD_SOURCE_STATE* make_state() {
  return new SBD_SOURCE_STATE;
}

template <class READ>
bool read_document(SBD_SOURCE_STATE* state, READ&& read) {
  if (state == nullptr) return false;
  return sbd_guarded(k_source, false, [state, &read] {
    // A document that can't be read at all keeps what it has, its file name included.
    const char* const name_before = state->document.get_file_name();
    const bool is_good = read(state->document);
    // Every reading that got as far as the text has moved the name.
    if (state->document.get_file_name() != name_before) state->restart();
    return is_good;
  });
}

}  // namespace

SBD_SOURCE_DOCUMENT::SBD_SOURCE_DOCUMENT() noexcept {
  m_state =
      sbd_guarded(k_source, static_cast<SBD_SOURCE_STATE*>(nullptr), [] { return make_state(); });
}

SBD_SOURCE_DOCUMENT::~SBD_SOURCE_DOCUMENT() {
  delete m_state;
}

bool SBD_SOURCE_DOCUMENT::read(const char* path) {
  return read_document(m_state, [path](SBD_FILE_PARSER& document) { return document.read(path); });
}

bool SBD_SOURCE_DOCUMENT::read_text(const char* text, std::size_t length, const char* name) {
  return read_document(m_state, [text, length, name](SBD_FILE_PARSER& document) {
    return document.read_text(text, length, name);
  });
}

const SBD_FILE_PARSER& SBD_SOURCE_DOCUMENT::document() const {
  if (m_state != nullptr) {
    if (m_state->is_torn) sbd_guarded(k_source, false, [this] { return m_state->rebuild(); });
    return m_state->document;
  }
  static const SBD_FILE_PARSER k_empty;
  return k_empty;
}

std::string_view SBD_SOURCE_DOCUMENT::text() const {
  if (m_state == nullptr) return {};
  return sbd_guarded(k_source, std::string_view(), [this] { return m_state->current_text(); });
}

// ---- Edits ------------------------------------------------------------------------------------
//
// Names that are null are refused by the document's own operations.

bool SBD_SOURCE_DOCUMENT::set_value(const char* name, const char* value) {
  if (m_state == nullptr) return false;
  if (name == nullptr) return m_state->document.set_value(nullptr, nullptr, 0);
  return perform(m_state, EDIT::SET_VALUE, [name, value](EDIT& edit) {
    split_name(name, edit);
    if (value != nullptr) edit.text = sbd_trim(value);
  });
}

bool SBD_SOURCE_DOCUMENT::add_value(const char* name, const char* value, const PLACE& place) {
  if (m_state == nullptr) return false;
  if (name == nullptr) return m_state->document.set_value(nullptr, nullptr, 0);
  if (!is_known(place)) return false;
  return perform(m_state, EDIT::ADD_VALUE, [name, value, &place](EDIT& edit) {
    split_name(name, edit);
    if (value != nullptr) edit.text = sbd_trim(value);
    set_place(place, edit);
  });
}

bool SBD_SOURCE_DOCUMENT::set_references(const char* name, const SBD_STRING_LIST& names,
                                         const PLACE& place) {
  if (m_state == nullptr) return false;
  if (name == nullptr) return m_state->document.set_value(nullptr, nullptr, names);
  if (!is_known(place)) return false;
  return perform(m_state, EDIT::SET_REFERENCES, [name, &names, &place](EDIT& edit) {
    split_name(name, edit);
    edit.names = names;
    set_place(place, edit);
  });
}

bool SBD_SOURCE_DOCUMENT::set_attributes(const char* name, const SBD_PARA_ATTR* attributes) {
  if (m_state == nullptr) return false;
  if (name == nullptr) return m_state->document.set_attribute(nullptr, nullptr, attributes);
  for (const auto* attribute = attributes; attribute != nullptr; attribute = attribute->next) {
    if (!SBD_CHECK(attribute->attr_key != nullptr, "attr_key != NULL", k_source)) return false;
  }
  return perform(m_state, EDIT::SET_ATTRIBUTES, [name, attributes](EDIT& edit) {
    split_name(name, edit);
    for (const auto* attribute = attributes; attribute != nullptr; attribute = attribute->next) {
      const bool has_value = attribute->attr_value != nullptr;
      const char* const value = has_value ? attribute->attr_value : "";
      edit.attributes.push_back({attribute->attr_key, value, has_value});
    }
  });
}

bool SBD_SOURCE_DOCUMENT::remove_attributes(const char* name) {
  if (m_state == nullptr) return false;
  if (name == nullptr) {
    m_state->document.delete_attribute(nullptr, nullptr);
    return false;
  }
  return perform(m_state, EDIT::REMOVE_ATTRIBUTES, [name](EDIT& edit) { split_name(name, edit); });
}

bool SBD_SOURCE_DOCUMENT::remove_parameter(const char* name) {
  if (m_state == nullptr) return false;
  if (name == nullptr) {
    m_state->document.delete_parameter(nullptr, nullptr);
    return false;
  }
  return perform(m_state, EDIT::REMOVE_PARAMETER, [name](EDIT& edit) { split_name(name, edit); });
}

bool SBD_SOURCE_DOCUMENT::add_block(const char* type, const char* name, const char* parent,
                                    const PLACE& place) {
  if (m_state == nullptr) return false;
  if (type == nullptr || name == nullptr) {
    return m_state->document.create_block(type, name, parent);
  }
  if (!is_known(place)) return false;
  return perform(m_state, EDIT::ADD_BLOCK, [type, name, parent, &place](EDIT& edit) {
    if (parent != nullptr) edit.scope = parent;
    edit.name = name;
    edit.text = type;
    set_place(place, edit);
  });
}

bool SBD_SOURCE_DOCUMENT::remove_block(const char* name) {
  if (!SBD_CHECK(name != nullptr, "block_ref_name != NULL", k_source)) return false;
  if (*name == '\0') return false;
  return perform(m_state, EDIT::REMOVE_BLOCK, [name](EDIT& edit) { split_name(name, edit); });
}

bool SBD_SOURCE_DOCUMENT::remove_references(const char* name) {
  if (name == nullptr || *name == '\0') return false;
  return perform(m_state, EDIT::REMOVE_REFERENCES, [name](EDIT& edit) { split_name(name, edit); });
}

bool SBD_SOURCE_DOCUMENT::rename(const char* name, const char* new_name, bool with_references) {
  if (name == nullptr || new_name == nullptr || *name == '\0') return false;
  return perform(m_state, EDIT::RENAME, [name, new_name, with_references](EDIT& edit) {
    split_name(name, edit);
    edit.text = new_name;
    edit.with_references = with_references;
  });
}

// ---- Transactions -----------------------------------------------------------------------------

bool SBD_SOURCE_DOCUMENT::begin() {
  if (m_state == nullptr || m_state->is_in_transaction) return false;
  m_state->edits_before = m_state->edits.size();
  m_state->is_in_transaction = true;
  return true;
}

bool SBD_SOURCE_DOCUMENT::commit() {
  if (m_state == nullptr || !m_state->is_in_transaction) return false;
  m_state->is_in_transaction = false;
  return true;
}

bool SBD_SOURCE_DOCUMENT::roll_back() {
  if (m_state == nullptr || !m_state->is_in_transaction) return false;
  m_state->is_in_transaction = false;
  if (m_state->edits.size() == m_state->edits_before && !m_state->is_torn) return true;
  m_state->edits.resize(m_state->edits_before);
  return sbd_guarded(k_source, false, [this] { return m_state->rebuild(); });
}

// ---- Saving -----------------------------------------------------------------------------------

bool SBD_SOURCE_DOCUMENT::verify(SBD_STRING& why) const {
  if (m_state == nullptr) return false;
  return sbd_guarded(k_source, false, [this, &why] {
    const std::string_view text = m_state->current_text();
    if (m_state->is_torn) throw SBD_REPORTED();
    return sbd_verify_text(m_state->document, text, SBD_LAYOUT::AS_TYPED, why);
  });
}

bool SBD_SOURCE_DOCUMENT::save(const char* path) const {
  if (m_state == nullptr) return false;
  return sbd_guarded(k_source, false, [this, path] {
    const char* const target = path != nullptr ? path : document().get_file_name();
    if (!SBD_CHECK(target != nullptr, "path != NULL", k_source)) return false;
    const std::string_view text = m_state->current_text();
    if (m_state->is_torn) throw SBD_REPORTED();
    SBD_STRING why;
    const bool is_good = sbd_verify_text(m_state->document, text, SBD_LAYOUT::AS_TYPED, why) &&
                         sbd_replace_file(target, text, why);
    if (!is_good) sbd_refuse_save(target, why);
    return is_good;
  });
}

bool SBD_SOURCE_DOCUMENT::save_canonical(const char* path) const {
  if (m_state == nullptr) return false;
  const char* const target = path != nullptr ? path : document().get_file_name();
  if (!SBD_CHECK(target != nullptr, "path != NULL", k_source)) return false;
  return sbd_guarded(k_source, false, [this, target] {
    SBD_STRING why;
    return sbd_save_document(document(), target, why);
  });
}
