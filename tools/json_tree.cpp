#include "tools/json_tree.h"

#include <string_view>

#include "tools/names.h"
#include "tools/notation.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;
using SOURCE_RANGE = SBD_FILE_PARSER::SBD_SOURCE_RANGE;
using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

std::string_view kind_of(const VALUE& value) {
  switch (value.type) {
    case VALUE::VT_UDECIMAL:
      return "decimal";
    case VALUE::VT_OCTAL:
      return "octal";
    case VALUE::VT_HEXAL:
      return "hexadecimal";
    case VALUE::VT_BINARY:
      return "binary";
    case VALUE::VT_FLOAT:
      return "float";
    case VALUE::VT_BOOL:
      return "boolean";
    case VALUE::VT_STRING:
      return "string";
    case VALUE::VT_LIST:
      break;
  }
  return "list";
}

std::string_view without_line_end(std::string_view text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  return text;
}

void write_scalar(JSON_WRITER& json, const VALUE& value) {
  if (is_number(value)) {
    json.number(get_scaled_number(value));
  } else if (value.type == VALUE::VT_BOOL) {
    json.boolean(value.flag != 0);
  } else {
    json.text(get_unquoted(value));
  }
}

// Writes the parts of a document as members of JSON objects.
class NODE_WRITER {
 public:
  NODE_WRITER(JSON_WRITER& json, const SBD_FILE_PARSER& document)
      : m_json(json), m_document(document) {}

  // Opens the node's object. That of a block stays open for its members.
  void enter(const NODE& node) {
    m_json.begin_object(node.type == NODE::NT_COMMENT ? LAYOUT::ONE_LINE : LAYOUT::LINES);
    write_text("kind", sbd_tool::kind_of(node));
    switch (node.type) {
      case NODE::NT_BLOCK:
        begin_block(node);
        return;
      case NODE::NT_STATEMENT:
        write_statement(node);
        break;
      case NODE::NT_COMMENT:
        write_text("text", without_line_end(node.comment));
        write_position(node);
        break;
    }
    m_json.end();
  }

  void leave_block() {
    m_json.end();
    m_json.end();
  }

 private:
  void begin_block(const NODE& block) {
    SOURCE_RANGE range;
    write_text("type", block.block->type);
    if (m_document.get_type_range(&block, range)) write_range("type_position", range);
    write_name(block);
    write_position(block);
    m_json.key("members");
    m_json.begin_array(LAYOUT::LINES);
  }

  void write_statement(const NODE& node) {
    const STATEMENT& statement = *node.statement;
    write_name(node);
    write_position(node);
    if (statement.type == STATEMENT::ST_REFERENCE) {
      write_references(statement);
    } else {
      m_json.key("value");
      write_value(*statement.value);
      if (statement.attributes != nullptr) write_attributes(statement);
    }
    if (statement.comment != nullptr) write_comment(node);
  }

  void write_references(const STATEMENT& statement) {
    m_json.key("references");
    m_json.begin_array(LAYOUT::LINES);
    for (const auto* reference = statement.reference; reference != nullptr;
         reference = reference->next) {
      m_json.begin_object(LAYOUT::ONE_LINE);
      write_text("name", reference->name);
      write_text("target", full_name(m_document, *reference->target));
      write_position(*reference);
      m_json.end();
    }
    m_json.end();
  }

  void write_attributes(const STATEMENT& statement) {
    m_json.key("attributes");
    m_json.begin_array(LAYOUT::LINES);
    for (const auto* attribute = statement.attributes; attribute != nullptr;
         attribute = attribute->next) {
      m_json.begin_object(LAYOUT::ONE_LINE);
      write_text("key", attribute->attr_key);
      if (attribute->attr_value != nullptr) write_text("value", attribute->attr_value);
      write_position(*attribute);
      m_json.end();
    }
    m_json.end();
  }

  void write_comment(const NODE& node) {
    SOURCE_RANGE range;
    m_json.key("comment");
    m_json.begin_object(LAYOUT::ONE_LINE);
    write_text("text", without_line_end(node.statement->comment));
    if (m_document.get_comment_range(&node, range)) write_range("position", range);
    m_json.end();
  }

  void write_value(const VALUE& value) {
    VALUE_WALK walk(value);
    for (;;) {
      const VALUE_WALK::STEP step = walk.next();
      if (step == VALUE_WALK::STEP::END) return;
      if (step == VALUE_WALK::STEP::LEAVE) {
        m_json.end();
        m_json.end();
      } else if (walk.value().type == VALUE::VT_LIST) {
        begin_list(walk.value());
      } else {
        write_scalar_object(walk.value());
      }
    }
  }

  void begin_list(const VALUE& list) {
    m_json.begin_object(LAYOUT::LINES);
    write_text("kind", kind_of(list));
    write_position(list);
    m_json.key("elements");
    m_json.begin_array(LAYOUT::LINES);
  }

  void write_scalar_object(const VALUE& value) {
    m_json.begin_object(LAYOUT::ONE_LINE);
    write_text("kind", kind_of(value));
    write_text("written", get_notation(m_document, value));
    m_json.key("value");
    write_scalar(m_json, value);
    if (is_number(value) && value.unit != VALUE::QU_NONE) {
      m_json.key("unscaled");
      m_json.number(get_unscaled_number(value));
      write_text("unit", unit_text(value.unit));
    }
    write_position(value);
    m_json.end();
  }

  void write_name(const NODE& node) {
    SOURCE_RANGE range;
    write_text("name", declared_name(node));
    if (m_document.get_name_range(&node, range)) write_range("name_position", range);
  }

  template <class PART>
  void write_position(const PART& part) {
    SOURCE_RANGE range;
    if (m_document.get_range(&part, range)) write_range("position", range);
  }

  void write_range(std::string_view key, const SOURCE_RANGE& range) {
    m_json.key(key);
    write_place(m_json, range);
  }

  void write_text(std::string_view key, std::string_view text) {
    m_json.key(key);
    m_json.text(text);
  }

  JSON_WRITER& m_json;
  const SBD_FILE_PARSER& m_document;
};

void write_count(JSON_WRITER& json, std::string_view key, std::size_t count) {
  json.key(key);
  json.count(count);
}

}  // namespace

void write_place(JSON_WRITER& json, const SBD_FILE_PARSER::SBD_SOURCE_RANGE& place) {
  json.begin_object(LAYOUT::ONE_LINE);
  write_count(json, "line", place.line);
  write_count(json, "column", place.column);
  write_count(json, "offset", place.offset);
  write_count(json, "length", place.length);
  json.end();
}

std::string_view kind_of(const NODE& node) {
  switch (node.type) {
    case NODE::NT_BLOCK:
      return "block";
    case NODE::NT_STATEMENT:
      return node.statement->type == STATEMENT::ST_REFERENCE ? "reference" : "assignment";
    case NODE::NT_COMMENT:
      break;
  }
  return "comment";
}

void write_nodes(JSON_WRITER& json, const SBD_FILE_PARSER& document, TREE_WALK walk) {
  NODE_WRITER writer(json, document);
  json.begin_array(LAYOUT::LINES);
  for (;;) {
    const TREE_WALK::STEP step = walk.next();
    if (step == TREE_WALK::STEP::END) break;
    if (step == TREE_WALK::STEP::LEAVE) {
      writer.leave_block();
    } else {
      writer.enter(*walk.node());
    }
  }
  json.end();
}

void write_plain_value(JSON_WRITER& json, const VALUE& value) {
  VALUE_WALK walk(value);
  for (;;) {
    const VALUE_WALK::STEP step = walk.next();
    if (step == VALUE_WALK::STEP::END) return;
    if (step == VALUE_WALK::STEP::LEAVE) {
      json.end();
    } else if (walk.value().type == VALUE::VT_LIST) {
      json.begin_array(LAYOUT::ONE_LINE);
    } else {
      write_scalar(json, walk.value());
    }
  }
}

}  // namespace sbd_tool
