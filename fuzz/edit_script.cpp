// Edits of the tree: the bytes decode to operations on names that exist, or nearly so. A refused
// edit changes nothing and says why; whatever is done, the document stays consistent, and what the
// format has a form for is read back as it was written.
#include <utility>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "tests/reference/document_dump.h"

namespace {

constexpr std::size_t k_most_edits = 24;
constexpr std::size_t k_longest_name = 12;

constexpr const char* k_texts[] = {"word", "\"\"", "\"a ; } # text\"", "true", "x1", "\"\n\""};
constexpr const char* k_new_names[] = {"n",  "n1",   "N1",    "n[0]", "n[1][2]", "n[12]",
                                       "1n", "a.b",  "a b",   "",     "true",    "family",
                                       "x",  "main", "board", "x[0]"};
constexpr const char* k_types[] = {"device", "bus",        "MODULE", "slave", "master",
                                   "region", "Parameters", "thing",  ""};
constexpr const char* k_attribute_values[] = {"a.b", ".b", "board.title", "nothing", "a.b[1]"};
constexpr VALUE::QUANTITY_UNIT k_units[] = {VALUE::QU_NONE, VALUE::QU_KB, VALUE::QU_MB,
                                            VALUE::QU_GB,   VALUE::QU_HZ, VALUE::QU_MHZ};
constexpr unsigned char k_bases[] = {2, 8, 10, 16, 7};
constexpr double k_numbers[] = {0, 1.5, -2.25, 1e10, 3.0000001, -0.0};

class EDITING {
 public:
  EDITING(FUZZ_RUN& run, FUZZ_BYTES& bytes, SBD_FILE_PARSER& document)
      : m_run(run),
        m_bytes(bytes),
        m_document(document),
        m_objects(objects_of(document)),
        m_dump(dump_document(document)) {}

  void edit() {
    const bool is_done = perform();
    const std::vector<POSTED> posted = m_run.take_posted();
    FUZZ_EXPECT(posted.size() <= 1, posted.back().text);
    expect_consistent(m_document);
    std::string after = dump_document(m_document);
    FUZZ_EXPECT(is_done || after == m_dump, m_dump);
    if (!is_done) return;
    m_dump = std::move(after);
    m_objects = objects_of(m_document);
  }

 private:
  // A full name; now and then one that does not exist.
  std::string any_name() {
    const std::size_t choice = m_bytes.pick(m_objects.size() + 2);
    if (choice < m_objects.size()) return m_objects[choice].name;
    if (choice == m_objects.size()) return "none.such";
    return typed_name();
  }

  struct NAMES {
    std::string block;
    std::string parameter;
  };

  // A parameter that exists, or a new one of a block that does.
  NAMES any_parameter() {
    const std::string name = any_name();
    if (!m_bytes.chance(2)) return {name, new_name()};
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos) return {name, new_name()};
    return {name.substr(0, dot), name.substr(dot + 1)};
  }

  // As a caller hands it over.
  std::string typed_name() {
    const std::string name = m_bytes.text(k_longest_name);
    return name.substr(0, name.find('\0'));
  }

  std::string new_name() { return m_bytes.chance(8) ? typed_name() : m_bytes.pick_of(k_new_names); }

  VALUE* any_value(int depth) {
    constexpr int k_deepest = 3;
    auto* const value = new VALUE;
    const std::size_t kind = m_bytes.pick(depth < k_deepest ? 8 : 7);
    value->type = static_cast<VALUE::VALUE_TYPE>(kind);
    if (kind == VALUE::VT_LIST) {
      value->list = new SBD_FILE_PARSER::SBD_VALUE_LIST;
      for (std::size_t count = m_bytes.pick(4); count != 0; --count) {
        value->list->push_back(any_value(depth + 1));
      }
    } else if (kind == VALUE::VT_STRING) {
      value->text = sbd_copy_text(m_bytes.pick_of(k_texts));
    } else if (kind == VALUE::VT_BOOL) {
      value->flag = static_cast<std::uint32_t>(m_bytes.pick(2));
    } else {
      value->number = kind == VALUE::VT_FLOAT ? m_bytes.pick_of(k_numbers) : m_bytes.word();
      value->unit = m_bytes.pick_of(k_units);
    }
    return value;
  }

  bool set_any_value(const NAMES& at) {
    const char* const block = at.block.c_str();
    const char* const parameter = at.parameter.c_str();
    switch (m_bytes.pick(6)) {
      case 0: {
        const unsigned long number = m_bytes.word();
        const unsigned char base = m_bytes.pick_of(k_bases);
        return m_document.set_value(block, parameter, number, base, m_bytes.pick_of(k_units));
      }
      case 1: {
        const double number = m_bytes.pick_of(k_numbers);
        return m_document.set_value(block, parameter, number, m_bytes.pick_of(k_units));
      }
      case 2:
        return m_document.set_value(block, parameter, static_cast<int>(m_bytes.pick(2)));
      case 3:
        return m_document.set_value(block, parameter, SBD_STRING(m_bytes.pick_of(k_texts)));
      case 4: {
        SBD_STRING_LIST names;
        for (std::size_t count = m_bytes.pick(4); count != 0; --count) {
          names.emplace_back(any_name().c_str());
        }
        return m_document.set_value(block, parameter, names);
      }
      default: {
        VALUE* const value = any_value(0);
        const bool is_done = m_document.set_para_value(block, parameter, *value);
        m_document.free_para_val(value);
        return is_done;
      }
    }
  }

  bool set_attributes(const NAMES& at) {
    SBD_FILE_PARSER::SBD_PARA_ATTR chain[3];
    const std::size_t count = m_bytes.pick(4);
    for (std::size_t i = 0; i != count; ++i) {
      chain[i].attr_key = const_cast<char*>("key");
      if (m_bytes.chance(2)) {
        chain[i].attr_value = const_cast<char*>(m_bytes.pick_of(k_attribute_values));
      }
      if (i != 0) chain[i - 1].next = &chain[i];
    }
    return m_document.set_attribute(at.block.c_str(), at.parameter.c_str(),
                                    count == 0 ? nullptr : chain);
  }

  // Operations without result count as done.
  bool perform() {
    switch (m_bytes.pick(10)) {
      case 0:
      case 1:
      case 2:
        return set_any_value(any_parameter());
      case 3:
        return set_attributes(any_parameter());
      case 4: {
        const NAMES at = any_parameter();
        m_document.delete_attribute(at.block.c_str(), at.parameter.c_str());
        return true;
      }
      case 5: {
        const NAMES at = any_parameter();
        m_document.delete_parameter(at.block.c_str(), at.parameter.c_str());
        return true;
      }
      case 6: {
        const char* const type = m_bytes.pick_of(k_types);
        const std::string name = new_name();
        const std::string parent = any_name();
        const bool is_top = m_bytes.chance(4);
        // A statement of that name does not stop the creation, and the name then stands for either.
        const std::string full = is_top ? name : parent + "." + name;
        if (m_document.is_parameter_defined(full.c_str())) return false;
        return m_document.create_block(type, name.c_str(), is_top ? nullptr : parent.c_str());
      }
      case 7:
        m_document.delete_reference(any_name().c_str());
        // Nothing refers to what is inside a block that goes.
        return delete_block(any_name());
      case 8: {
        const std::string name = any_name();
        const bool is_behind = m_bytes.chance(2);
        return m_document.move_member(name.c_str(), any_name().c_str(), is_behind);
      }
      default: {
        const std::string name = any_name();
        const std::size_t dot = name.rfind('.');
        const std::string scope = dot == std::string::npos ? "" : name.substr(0, dot);
        const std::string own = dot == std::string::npos ? name : name.substr(dot + 1);
        return m_document.rename(own.c_str(), new_name().c_str(),
                                 dot == std::string::npos ? nullptr : scope.c_str());
      }
    }
  }

  bool delete_block(const std::string& name) {
    for (const OBJECT& object : m_objects) {
      if (object.name.rfind(name + ".", 0) == 0) m_document.delete_reference(object.name.c_str());
    }
    m_document.delete_block(name.c_str());
    m_run.take_posted();
    return true;
  }

  FUZZ_RUN& m_run;
  FUZZ_BYTES& m_bytes;
  SBD_FILE_PARSER& m_document;
  std::vector<OBJECT> m_objects;
  std::string m_dump;
};

// What can be written can be read, and has the same form again.
void check_writing(const SBD_FILE_PARSER& document) {
  const std::string text = written(document);
  SBD_FILE_PARSER again;
  if (!read_text(again, text)) return;
  FUZZ_EXPECT(written(again) == text, text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FUZZ_RUN run(FUZZ_RUN::EMPTY_NAMES::ARE_ALLOWED);
  FUZZ_BYTES bytes(data, size);
  SBD_FILE_PARSER document;
  if (!read_text(document, bytes.descriptor())) return 0;
  EDITING editing(run, bytes, document);
  for (std::size_t count = 0; count != k_most_edits && !bytes.empty(); ++count) editing.edit();
  check_writing(document);
  return 0;
}
