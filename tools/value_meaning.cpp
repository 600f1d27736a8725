#include "tools/value_meaning.h"

#include <algorithm>
#include <vector>

#include "tools/notation.h"
#include "tools/parameter_kind.h"

namespace sbd_tool {

namespace {

std::string get_scalar_meaning(const VALUE& value) {
  if (is_number(value)) return get_scaled_number(value);
  if (value.type == VALUE::VT_BOOL) return value.flag != 0 ? "true" : "false";
  // A device does not take a text in quotes for the same text without.
  return value.text != nullptr ? value.text : "";
}

}  // namespace

std::string get_meaning(const VALUE& value) {
  std::string text;
  VALUE_WALK walk(value);
  for (;;) {
    const VALUE_WALK::STEP step = walk.next();
    if (step == VALUE_WALK::STEP::END) return text;
    if (step == VALUE_WALK::STEP::LEAVE) {
      text += '}';
      continue;
    }
    if (walk.is_later_element()) text += ", ";
    text += walk.value().type == VALUE::VT_LIST ? "{" : get_scalar_meaning(walk.value());
  }
}

std::string get_attribute_meaning(const NODE& statement) {
  if (statement.statement->type != STATEMENT::ST_ASSIGNMENT) return {};
  std::vector<std::string> attributes;
  for (const auto* attribute = statement.statement->attributes; attribute != nullptr;
       attribute = attribute->next) {
    attributes.emplace_back(attribute->attr_key);
    if (attribute->attr_value != nullptr) {
      attributes.back().append(" ").append(attribute->attr_value);
    }
  }
  std::sort(attributes.begin(), attributes.end());
  std::string text;
  for (const std::string& attribute : attributes) {
    text.append(text.empty() ? "[" : ", ").append(attribute);
  }
  return text.empty() ? text : text + "]";
}

std::string fold_case(std::string_view name) {
  std::string folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return folded;
}

}  // namespace sbd_tool
