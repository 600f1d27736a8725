// The libraries that ours is held against.
#ifndef BENCH_READERS_PEERS_H
#define BENCH_READERS_PEERS_H

#include <memory>

#include "bench/readers/reader.h"

struct PEER {
  const char* name;
  std::unique_ptr<READER> (*make)();
};

constexpr PEER OURS = {"sbd", make_sbd_reader};
constexpr PEER RAPIDJSON = {"RapidJSON", make_rapidjson_reader};
constexpr PEER COMPACT_RAPIDJSON = {"RapidJSON compact", make_rapidjson_compact_reader};

constexpr PEER RAPIDJSON_POINTER = {"RapidJSON's Pointer", make_rapidjson_pointer_reader};

// Those without a target of their own.
constexpr PEER OTHER_PEERS[] = {{"simdjson", make_simdjson_reader},
                                {"pugixml", make_pugixml_reader},
                                {"libconfig++", make_libconfig_reader},
                                {"toml++", make_toml_reader}};

#endif
