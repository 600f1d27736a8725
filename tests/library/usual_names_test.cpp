// The names that all documents share.
#include "sbd/reading/sbd_usual_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_parameter_rules.h"

namespace {

using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

std::multiset<std::string> usual_names() {
  std::multiset<std::string> names;
  std::string_view texts = sbd_usual_name_texts();
  while (!texts.empty()) {
    names.emplace(texts.data());
    texts.remove_prefix(std::string_view(texts.data()).size() + 1);
  }
  return names;
}

// A document with each of the names once, and each of them again in capitals.
std::string text_of_names() {
  std::string text = "device d {\n  module m {\n";
  for (const std::string& name : usual_names()) text += "    " + name + " = 1;\n";
  text += "  }\n  module n {\n";
  for (std::string name : usual_names()) {
    for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    text += "    " + name + " < d.m." + name + " >;\n";
  }
  return text + "  }\n}\n";
}

void read(SBD_FILE_PARSER& document, const std::string& text) {
  ASSERT_TRUE(document.read_text(text.data(), text.size(), "names.sbd"));
}

const SBD_SYMBOL* symbol_of(const SBD_FILE_PARSER& document, const std::string& name) {
  return document.get_ref_object(name.c_str(), nullptr)->statement->name;
}

std::size_t live_bytes() {
  return sbd_host::get_memory_account("SBD").live_bytes;
}

TEST(USUAL_NAMES, AreEachThereOnce) {
  const std::multiset<std::string> names = usual_names();
  EXPECT_GT(names.size(), 90U);
  for (const std::string& name : names) EXPECT_EQ(names.count(name), 1U) << name;
}

TEST(USUAL_NAMES, AreThoseOfAllParametersOfTheDevices) {
  const std::multiset<std::string> names = usual_names();
  for (const auto chip : {SBD_VELDRAN::CT_QMXA1, SBD_VELDRAN::CT_QMXA4, SBD_VELDRAN::CT_QMXA10}) {
    SBD_STRING_LIST references;
    ASSERT_TRUE(sbd_get_parameter_names(chip, references));
    EXPECT_GT(references.size(), 90U);
    for (const SBD_STRING& reference : references) {
      std::string_view left = reference;
      while (!left.empty()) {
        const std::string part(left.substr(0, left.find('.')));
        EXPECT_EQ(names.count(part), 1U) << reference;
        left.remove_prefix(std::min(part.size() + 1, left.size()));
      }
    }
  }
}

TEST(USUAL_NAMES, HaveABeginningAndAnEnd) {
  const std::string_view texts = sbd_usual_name_texts();
  EXPECT_TRUE(sbd_is_usual_name(texts.data()));
  EXPECT_TRUE(sbd_is_usual_name(texts.data() + texts.size() - 1));
  EXPECT_FALSE(sbd_is_usual_name(texts.data() + texts.size()));
  const std::string copy(texts);
  EXPECT_FALSE(sbd_is_usual_name(copy.data()));
}

// Two names may fall into one slot, and then one of them is like any other.
TEST(USUAL_NAMES, MostAreSharedByAllDocuments) {
  SBD_FILE_PARSER one;
  SBD_FILE_PARSER other;
  read(one, text_of_names());
  read(other, text_of_names());
  std::size_t shared = 0;
  for (const std::string& name : usual_names()) {
    const SBD_SYMBOL* const symbol = symbol_of(one, "d.m." + name);
    EXPECT_STREQ(symbol->name, name.c_str());
    if (!sbd_is_usual_name(symbol->name)) continue;
    EXPECT_EQ(symbol->name, symbol_of(other, "D.M." + name)->name);
    shared++;
  }
  EXPECT_GT(shared, usual_names().size() / 2);
}

TEST(USUAL_NAMES, SpelledOtherwiseAreTheDocumentsOwn) {
  SBD_FILE_PARSER document;
  read(document, text_of_names());
  for (const std::string& name : usual_names()) {
    const SBD_SYMBOL* const symbol = symbol_of(document, "d.n." + name);
    EXPECT_FALSE(sbd_is_usual_name(symbol->name));
    EXPECT_STRNE(symbol->name, name.c_str());
    EXPECT_STRCASEEQ(symbol->name, name.c_str());
  }
}

// Their buckets and hashes are worked out beforehand, and have to be those of any other name.
TEST(USUAL_NAMES, AreFoundLikeOthers) {
  SBD_FILE_PARSER document;
  read(document, text_of_names());
  const auto& buckets = *document.get_parser_para().symbol_table;
  for (const std::string& name : usual_names()) {
    const SBD_SYMBOL* const symbol = symbol_of(document, "d.m." + name);
    const SBD_SYMBOL* found = buckets[SBD_FILE_PARSER::hash_pjw(name.c_str(), buckets.size())];
    while (found != nullptr && found != symbol) found = found->next;
    EXPECT_EQ(found, symbol) << name;
    EXPECT_TRUE(document.is_parameter_defined(("d.m." + name).c_str()));
  }
}

TEST(USUAL_NAMES, AreNotFreedByEdits) {
  const std::size_t before = live_bytes();
  {
    SBD_FILE_PARSER document;
    read(document, text_of_names());
    int number = 0;
    for (const std::string& name : usual_names()) {
      const std::string full_name = "d.m." + name;
      switch (number++ % 3) {
        case 0:
          EXPECT_TRUE(
              document.rename(full_name.c_str(), ("y" + std::to_string(number)).c_str(), nullptr));
          break;
        case 1:
          document.delete_reference(full_name.c_str());
          document.delete_parameter("d.m", name.c_str());
          EXPECT_FALSE(document.is_parameter_defined(full_name.c_str()));
          break;
        default:
          EXPECT_TRUE(document.is_parameter_defined(full_name.c_str()));
          break;
      }
    }
    document.delete_block("d.n");
    document.delete_block("d.m");
    EXPECT_FALSE(document.is_block_defined("d.m"));
    EXPECT_TRUE(document.create_block("module", "enabled", "d"));
  }
  EXPECT_EQ(live_bytes(), before);
  SBD_FILE_PARSER document;
  read(document, text_of_names());
  for (const std::string& name : usual_names()) {
    EXPECT_STREQ(symbol_of(document, "d.m." + name)->name, name.c_str());
  }
}

}  // namespace
