#include "bench/measure/result_table.h"

#include <algorithm>
#include <cstdio>

namespace {

using LINE = std::vector<std::string>;

std::string digits(double value) {
  char text[32];
  const bool is_small = value > -0.1 && value < 0.1;
  std::snprintf(text, sizeof text, is_small ? "%.3f" : value < 100 ? "%.2f" : "%.0f", value);
  return text;
}

std::string value_text(const RESULT* result, bool is_markdown) {
  if (result == nullptr) return "";
  const std::string text = digits(result->value);
  if (!result->is_missed()) return text;
  return is_markdown ? "**" + text + "**" : text + " !";
}

std::string short_digits(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

template <class KEY>
std::vector<std::string> distinct(const std::vector<RESULT>& results, KEY&& key) {
  std::vector<std::string> keys;
  for (const RESULT& result : results) {
    if (std::find(keys.begin(), keys.end(), key(result)) == keys.end()) {
      keys.push_back(key(result));
    }
  }
  return keys;
}

const RESULT* find_result(const std::vector<RESULT>& results, const std::string& subject,
                          const std::string& size) {
  for (const RESULT& result : results) {
    if (result.subject == subject && result.size == size) return &result;
  }
  return nullptr;
}

// "<= 1.8", or with the sizes that each limit is for: "<= 1 (typical), <= 0.6 (10^6)".
std::string target_text(const std::vector<const RESULT*>& results) {
  std::vector<RESULT> limited;
  for (const RESULT* result : results) {
    if (result->limit) limited.push_back(*result);
  }
  const auto limit_of = [](const RESULT& result) { return "<= " + short_digits(*result.limit); };
  const std::vector<std::string> limits = distinct(limited, limit_of);
  if (limits.size() == 1 && limited.size() == results.size()) return limits.front();
  std::string text;
  for (const std::string& limit : limits) {
    std::string sizes;
    for (const RESULT& result : limited) {
      if (limit_of(result) == limit) sizes += (sizes.empty() ? "" : " ") + result.size;
    }
    text += (text.empty() ? "" : ", ") + limit + " (" + sizes + ")";
  }
  return text;
}

LINE make_line(const std::vector<RESULT>& results, const std::string& subject,
               const std::vector<std::string>& sizes, bool is_markdown) {
  LINE line = {subject};
  std::vector<const RESULT*> found;
  for (const std::string& size : sizes) {
    const RESULT* const result = find_result(results, subject, size);
    if (result != nullptr) found.push_back(result);
    line.push_back(value_text(result, is_markdown));
  }
  line.push_back(target_text(found));
  const bool is_missed =
      std::any_of(found.begin(), found.end(), [](const RESULT* one) { return one->is_missed(); });
  line.push_back(line.back().empty() ? "" : is_missed ? "miss" : "pass");
  return line;
}

std::string format_markdown(const std::vector<LINE>& lines) {
  std::string text;
  for (std::size_t i = 0; i < lines.size(); i++) {
    text += "|";
    for (const std::string& cell : lines[i]) text += " " + cell + " |";
    text += "\n";
    if (i > 0) continue;
    text += "|---|";
    for (std::size_t column = 1; column + 2 < lines[0].size(); column++) text += "---:|";
    text += "---|---|\n";
  }
  return text;
}

std::string format_columns(const std::vector<LINE>& lines) {
  std::vector<std::size_t> widths(lines.front().size());
  for (const LINE& line : lines) {
    for (std::size_t i = 0; i < line.size(); i++) widths[i] = std::max(widths[i], line[i].size());
  }
  std::string text;
  for (const LINE& line : lines) {
    for (std::size_t i = 0; i < line.size(); i++) {
      text += line[i] + std::string(widths[i] - line[i].size() + 2, ' ');
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text += '\n';
  }
  return text;
}

std::string make_part(const std::vector<RESULT>& results, bool is_markdown) {
  if (results.empty()) return "";
  const std::vector<std::string> sizes = distinct(results, [](const RESULT& r) { return r.size; });
  LINE head = {"figure"};
  for (const std::string& size : sizes) head.push_back(size.empty() ? "measured" : size);
  head.push_back("target");
  head.push_back("");
  std::vector<LINE> lines = {head};
  for (const std::string& subject : distinct(results, [](const RESULT& r) { return r.subject; })) {
    lines.push_back(make_line(results, subject, sizes, is_markdown));
  }
  return is_markdown ? format_markdown(lines) : format_columns(lines);
}

}  // namespace

std::string make_result_table(const std::vector<RESULT>& results, bool is_markdown) {
  std::vector<RESULT> with_size;
  std::vector<RESULT> without_size;
  for (const RESULT& result : results) {
    (result.size.empty() ? without_size : with_size).push_back(result);
  }
  const std::string first = make_part(with_size, is_markdown);
  const std::string second = make_part(without_size, is_markdown);
  return first + (first.empty() || second.empty() ? "" : "\n") + second;
}
