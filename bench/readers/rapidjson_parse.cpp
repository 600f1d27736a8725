#include "bench/readers/rapidjson_parse.h"

bool parse_rapidjson(rapidjson::Document& document, const char* text) {
  return !document.Parse(text).HasParseError();
}
