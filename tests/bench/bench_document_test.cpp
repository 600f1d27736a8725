// A benchmark compares nothing unless all readers are given the same document.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"
#include "bench/readers/peers.h"

namespace {

class BENCH_DOCUMENT : public testing::TestWithParam<PEER> {};

std::uint64_t sum_of(const READER& reader, std::vector<std::string> names) {
  for (std::string& name : names) name = reader.path_of(name);
  return reader.look_up(names);
}

// XML knows texts only, where "2.2" can't be told from 2.2.
std::string comparable(std::string text) {
  return text == "2.2" ? "2.2 as a text or a number" : text;
}

TEST_P(BENCH_DOCUMENT, HoldsTheSameValues) {
  for (const std::size_t parameters : {std::size_t{2}, TYPICAL_PARAMETERS, std::size_t{3333}}) {
    const std::unique_ptr<READER> ours = make_sbd_reader();
    const std::unique_ptr<READER> peer = GetParam().make();
    ours->keep(ours->make_text(parameters));
    peer->keep(peer->make_text(parameters));
    const std::vector<std::string> names = make_parameter_names(parameters);
    ASSERT_EQ(names.size(), parameters);
    for (const std::string& name : names) {
      const std::string value = ours->value_text(name);
      ASSERT_NE(value, "") << name;
      ASSERT_EQ(comparable(peer->value_text(peer->path_of(name))), comparable(value)) << name;
    }
  }
}

TEST_P(BENCH_DOCUMENT, AnswersTheSameLookups) {
  const std::unique_ptr<READER> ours = make_sbd_reader();
  const std::unique_ptr<READER> peer = GetParam().make();
  ours->keep(ours->make_text(TYPICAL_PARAMETERS));
  peer->keep(peer->make_text(TYPICAL_PARAMETERS));
  const std::vector<std::string> names = make_number_names(TYPICAL_PARAMETERS, TYPICAL_PARAMETERS);
  ASSERT_GT(names.size(), std::size_t{40});
  EXPECT_GT(sum_of(*ours, names), 0U);
  EXPECT_EQ(sum_of(*peer, names), sum_of(*ours, names));
}

INSTANTIATE_TEST_SUITE_P(READERS, BENCH_DOCUMENT,
                         testing::Values(PEER{"rapidjson", make_rapidjson_reader},
                                         PEER{"rapidjson_compact", make_rapidjson_compact_reader},
                                         PEER{"rapidjson_pointer", make_rapidjson_pointer_reader},
                                         PEER{"simdjson", make_simdjson_reader},
                                         PEER{"pugixml", make_pugixml_reader},
                                         PEER{"libconfig", make_libconfig_reader},
                                         PEER{"toml", make_toml_reader}),
                         [](const auto& peer) { return std::string(peer.param.name); });

TEST(BENCH_TEXT, HasTheSizeOfAUsualDescriptor) {
  const std::string text = make_sbd_text(TYPICAL_PARAMETERS);
  EXPECT_GT(text.size(), 7500U);
  EXPECT_LT(text.size(), 8500U);
}

TEST(BENCH_TEXT, IsTheSameInEveryRun) {
  EXPECT_EQ(make_sbd_text(3333), make_sbd_text(3333));
}

}  // namespace
