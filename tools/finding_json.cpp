#include "tools/finding_json.h"

#include "tools/json_tree.h"

namespace sbd_tool {

namespace {

void write_optional(JSON_WRITER& json, const char* key, const std::string& text) {
  if (text.empty()) return;
  json.key(key);
  json.text(text);
}

void write_optional(JSON_WRITER& json, const char* key, const std::optional<SOURCE_RANGE>& place) {
  if (!place) return;
  json.key(key);
  write_place(json, *place);
}

}  // namespace

void write_finding(JSON_WRITER& json, const FINDING& finding) {
  json.begin_object(JSON_WRITER::LAYOUT::LINES);
  json.key("severity");
  json.text(name_of(finding.severity));
  json.key("key");
  json.text(finding.key);
  json.key("text");
  json.text(finding.text);
  write_optional(json, "position", finding.place);
  write_optional(json, "device", finding.device);
  write_optional(json, "parameter", finding.parameter);
  write_optional(json, "note", finding.note);
  write_optional(json, "note_position", finding.note_place);
  write_optional(json, "mend", finding.mend);
  write_optional(json, "replacement", finding.replacement);
  json.end();
}

}  // namespace sbd_tool
