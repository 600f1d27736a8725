// RapidJSON's parsing, in a file of its own: together with its other templates the compiler runs
// out of its budget for inlining, and compact text would take half as long again.
#ifndef BENCH_READERS_RAPIDJSON_PARSE_H
#define BENCH_READERS_RAPIDJSON_PARSE_H

#include <rapidjson/document.h>

// False for a text that is not JSON.
bool parse_rapidjson(rapidjson::Document& document, const char* text);

#endif
