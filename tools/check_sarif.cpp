#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include "sbd/sbd_api.h"
#include "tools/check_printer.h"
#include "tools/json_writer.h"
#include "tools/message_help.h"
#include "tools/source_region.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;

constexpr char k_schema[] =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";
constexpr char k_version[] = "2.1.0";
constexpr char k_fingerprint[] = "sbdFinding/v1";

std::string_view level_of(SEVERITY severity) {
  return severity == SEVERITY::INFO ? "note" : name_of(severity);
}

// ---- Addresses of files ------------------------------------------------------------------------

bool is_plain_in_uri(char c) {
  constexpr std::string_view k_plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  return k_plain.find(c) != std::string_view::npos;
}

// Relative paths stay relative: they are taken from the root of the sources.
std::string make_uri(const std::string& path) {
  const std::string normal = std::filesystem::path(path).lexically_normal().generic_string();
  std::string uri = !normal.empty() && normal.front() == '/' ? "file://" : "";
  for (const char c : normal) {
    uri += is_plain_in_uri(c) ? std::string(1, c)
                              : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return uri;
}

// ---- Fingerprints ------------------------------------------------------------------------------

std::uint64_t hash_text(std::string_view text, std::uint64_t hash) {
  constexpr std::uint64_t k_prime = 0x100000001B3U;  // FNV-1a.
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * k_prime;
  return (hash ^ 0xFFU) * k_prime;  // Ends the text: no byte of UTF-8 is 0xFF.
}

// The message without the name of its file and without line numbers: where it is does not make it
// another finding.
std::string strip_place(std::string text, const std::string& file) {
  for (std::size_t i = text.find(file); i != std::string::npos; i = text.find(file, i)) {
    text.erase(i, file.size());
  }
  for (const std::string_view word : {"line ", "line number "}) {
    for (std::size_t i = text.find(word); i != std::string::npos; i = text.find(word, i)) {
      i += word.size();
      const std::size_t end = std::min(text.find_first_not_of("0123456789", i), text.size());
      text.erase(i, end - i);
    }
  }
  return text;
}

// The same for findings that differ in nothing but their place, so that what was known already is
// recognised when lines were added above it.
class FINGERPRINTS {
 public:
  explicit FINGERPRINTS(const std::string& file) : m_file(file) {}

  std::string make(const FINDING& finding) {
    constexpr std::uint64_t k_offset_basis = 0xCBF29CE484222325U;
    std::uint64_t hash = hash_text(finding.key, k_offset_basis);
    hash = hash_text(finding.device, hash);
    hash = hash_text(strip_place(finding.text, m_file), hash);
    return fmt::format("{:016x}:{}", hash, ++m_counts[hash]);
  }

 private:
  const std::string& m_file;
  std::map<std::uint64_t, std::size_t> m_counts;  // Of equal ones in this file so far.
};

// ---- The document ------------------------------------------------------------------------------

class SARIF_PRINTER : public CHECK_PRINTER {
 public:
  explicit SARIF_PRINTER(OUTPUT& output) : m_json(output) {}

  void begin() override {
    m_json.begin_object(LAYOUT::LINES);
    write("$schema", k_schema);
    write("version", k_version);
    m_json.key("runs");
    m_json.begin_array(LAYOUT::LINES);
    m_json.begin_object(LAYOUT::LINES);
    write_tool();
    write("columnKind", "unicodeCodePoints");
    m_json.key("results");
    m_json.begin_array(LAYOUT::LINES);
  }

  void print(const CHECKED_FILE& file) override {
    const std::string uri = make_uri(file.name);
    REGION_FINDER regions(file.source);
    REGION_FINDER note_regions(file.source);
    FINGERPRINTS fingerprints(file.name);
    for (const std::vector<FINDING>* const list : {&file.findings.list, &file.findings.waived}) {
      for (const FINDING& finding : *list) {
        write_result(uri, finding, regions, note_regions, fingerprints);
      }
    }
  }

  void end(const CHECK_TOTALS&) override {
    m_json.end();
    m_json.end();
    m_json.end();
    m_json.end();
    m_json.finish();
  }

 private:
  void write(const char* key, std::string_view text) {
    m_json.key(key);
    m_json.text(text);
  }

  void write_text_object(const char* key, std::string_view text) {
    m_json.key(key);
    m_json.begin_object(LAYOUT::ONE_LINE);
    write("text", text);
    m_json.end();
  }

  void write_tool() {
    m_json.key("tool");
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("driver");
    m_json.begin_object(LAYOUT::LINES);
    write("name", "sbd");
    write("version", sbd_version());
    m_json.key("rules");
    m_json.begin_array(LAYOUT::LINES);
    for (const MESSAGE_HELP& message : list_messages()) write_rule(message);
    m_json.end();
    m_json.end();
    m_json.end();
  }

  void write_rule(const MESSAGE_HELP& message) {
    m_json.begin_object(LAYOUT::LINES);
    write("id", message.key);
    write_text_object("shortDescription", message.title);
    write_text_object("fullDescription", message.meaning);
    write_text_object("help", make_help(message));
    m_json.key("defaultConfiguration");
    m_json.begin_object(LAYOUT::ONE_LINE);
    write("level", level_of(message.severity));
    m_json.end();
    m_json.end();
  }

  static std::string make_help(const MESSAGE_HELP& message) {
    std::string help = fmt::format("{}\n\n{}\n", message.meaning, message.mend);
    if (message.example == MESSAGE_HELP::EXAMPLE::NONE) return help;
    return help + fmt::format("\nFaulty:\n\n{}\nMended:\n\n{}", message.faulty, message.mended);
  }

  void write_result(const std::string& uri, const FINDING& finding, REGION_FINDER& regions,
                    REGION_FINDER& note_regions, FINGERPRINTS& fingerprints) {
    m_json.begin_object(LAYOUT::LINES);
    write("ruleId", finding.key);
    if (const MESSAGE_HELP* const rule = find_message(finding.key)) {
      m_json.key("ruleIndex");
      m_json.count(static_cast<std::size_t>(rule - list_messages().data()));
    }
    write("level", level_of(finding.severity));
    write_text_object("message", make_message(finding));
    m_json.key("locations");
    m_json.begin_array(LAYOUT::LINES);
    write_location(uri, finding, regions);
    m_json.end();
    if (finding.note_place) write_related(uri, finding, note_regions);
    if (!finding.replacement.empty() && finding.place) write_fix(uri, finding, regions);
    m_json.key("partialFingerprints");
    m_json.begin_object(LAYOUT::ONE_LINE);
    write(k_fingerprint, fingerprints.make(finding));
    m_json.end();
    if (!finding.waiver.empty()) write_suppression(finding);
    m_json.end();
  }

  // What stands elsewhere in the text form has no other place here.
  static std::string make_message(const FINDING& finding) {
    std::string text = finding.text;
    if (!finding.note.empty()) text += "\n" + finding.note;
    if (!finding.mend.empty()) text += "\n" + finding.mend;
    return text;
  }

  void write_location(const std::string& uri, const FINDING& finding, REGION_FINDER& regions) {
    m_json.begin_object(LAYOUT::LINES);
    write_physical(uri, finding.place, regions);
    if (!finding.device.empty()) {
      m_json.key("logicalLocations");
      m_json.begin_array(LAYOUT::ONE_LINE);
      m_json.begin_object(LAYOUT::ONE_LINE);
      write("fullyQualifiedName", finding.device);
      write("kind", "object");
      m_json.end();
      m_json.end();
    }
    m_json.end();
  }

  void write_related(const std::string& uri, const FINDING& finding, REGION_FINDER& regions) {
    m_json.key("relatedLocations");
    m_json.begin_array(LAYOUT::LINES);
    m_json.begin_object(LAYOUT::LINES);
    write_physical(uri, finding.note_place, regions);
    write_text_object("message", finding.note);
    m_json.end();
    m_json.end();
  }

  void write_physical(const std::string& uri, const std::optional<SOURCE_RANGE>& place,
                      REGION_FINDER& regions) {
    m_json.key("physicalLocation");
    m_json.begin_object(LAYOUT::LINES);
    write_artifact(uri);
    if (place) {
      m_json.key("region");
      write_region(*place, regions);
    }
    m_json.end();
  }

  void write_artifact(const std::string& uri) {
    m_json.key("artifactLocation");
    m_json.begin_object(LAYOUT::ONE_LINE);
    write("uri", uri);
    m_json.end();
  }

  void write_region(const SOURCE_RANGE& place, REGION_FINDER& regions) {
    const SOURCE_REGION region = regions.find(place);
    m_json.begin_object(LAYOUT::ONE_LINE);
    for (const auto& [key, number] :
         {std::pair("startLine", region.start_line), std::pair("startColumn", region.start_column),
          std::pair("endLine", region.end_line), std::pair("endColumn", region.end_column),
          std::pair("byteOffset", place.offset), std::pair("byteLength", place.length)}) {
      m_json.key(key);
      m_json.count(number);
    }
    m_json.end();
  }

  void write_fix(const std::string& uri, const FINDING& finding, REGION_FINDER& regions) {
    m_json.key("fixes");
    m_json.begin_array(LAYOUT::LINES);
    m_json.begin_object(LAYOUT::LINES);
    write_text_object("description", finding.mend);
    m_json.key("artifactChanges");
    m_json.begin_array(LAYOUT::LINES);
    m_json.begin_object(LAYOUT::LINES);
    write_artifact(uri);
    m_json.key("replacements");
    m_json.begin_array(LAYOUT::LINES);
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("deletedRegion");
    write_region(*finding.place, regions);
    write_text_object("insertedContent", finding.replacement);
    m_json.end();
    m_json.end();
    m_json.end();
    m_json.end();
    m_json.end();
    m_json.end();
  }

  void write_suppression(const FINDING& finding) {
    m_json.key("suppressions");
    m_json.begin_array(LAYOUT::LINES);
    m_json.begin_object(LAYOUT::ONE_LINE);
    write("kind", "inSource");
    write("justification", finding.waiver);
    m_json.end();
    m_json.end();
  }

  JSON_WRITER m_json;
};

}  // namespace

std::unique_ptr<CHECK_PRINTER> make_sarif_printer(OUTPUT& output) {
  return std::make_unique<SARIF_PRINTER>(output);
}

}  // namespace sbd_tool
